#pragma once
// Texts of the system (UTF-8) as the Qt widgets take them.

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace qi {

/// The texts as a list for Qt (headings, a row's cells).
inline QStringList qtTexts(const std::vector<std::string>& texts)
{
    QStringList out;
    for (const std::string& t : texts)
        out << QString::fromStdString(t);
    return out;
}

} // namespace qi
