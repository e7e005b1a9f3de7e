#include "LabelSheets.h"

#include "FileSystem.h"
#include "ReportDefinition.h"
#include "ReportError.h"
#include "ReportFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QString>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>

namespace qi {

namespace {

constexpr const char* kLayoutFolder = "Etiketten";
constexpr const char* kLayoutExtension = "etl";

LabelError layoutError(const std::string& file, int line, const std::string& what)
{
    std::string where = "Fehler in der Etikettendatei '" + displayPath(file) + "'";
    if (line > 0)
        where += ", Zeile " + std::to_string(line);
    return LabelError(where + ": " + what);
}

enum class Kind { Text, Length, Count };

struct Key {
    const char* name; ///< as written in the shipped files
    Kind kind;
    bool required;
};

// The keys in the order of the shipped files.
constexpr std::array kKeys = {
    Key{"Name", Kind::Text, true},
    Key{"Seitenbreite", Kind::Length, true},
    Key{"Seitenhöhe", Kind::Length, true},
    Key{"Rand links", Kind::Length, false},
    Key{"Rand oben", Kind::Length, false},
    Key{"Etikettenbreite", Kind::Length, true},
    Key{"Etikettenhöhe", Kind::Length, true},
    Key{"Abstand waagrecht", Kind::Length, false},
    Key{"Abstand senkrecht", Kind::Length, false},
    Key{"Spalten", Kind::Count, true},
    Key{"Zeilen", Kind::Count, true},
};

/// A number with a decimal comma or point.
std::optional<double> numberOf(std::string_view text)
{
    QString s = QString::fromUtf8(text.data(), qsizetype(text.size())).trimmed();
    s.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    const double v = s.toDouble(&ok);
    if (!ok || !std::isfinite(v))
        return std::nullopt;
    return v;
}

struct Value {
    std::string text;
    int line = 0;
};

LabelLayout parseLayout(std::string_view text, const std::string& file)
{
    std::map<std::string, Value> values; // by the key's index as text
    int lineNo = 0;
    std::size_t pos = 0;
    while (pos <= text.size()) {
        std::size_t end = text.find('\n', pos);
        if (end == std::string_view::npos)
            end = text.size();
        const std::string_view line = definitionTrim(text.substr(pos, end - pos));
        pos = end + 1;
        ++lineNo;
        if (line.empty() || line.front() == '#' || line.front() == ';')
            continue;
        const std::size_t eq = line.find('=');
        if (eq == std::string_view::npos)
            throw layoutError(file, lineNo, "Erwartet wird 'Schlüssel = Wert'.");
        const std::string name(definitionTrim(line.substr(0, eq)));
        const std::string key = definitionKey(name);
        const auto known = std::find_if(kKeys.begin(), kKeys.end(),
                                        [&](const Key& k) { return definitionKey(k.name) == key; });
        if (known == kKeys.end())
            throw layoutError(file, lineNo, "Unbekannter Schlüssel '" + name + "'.");
        if (values.count(known->name))
            throw layoutError(file, lineNo, "Der Schlüssel '" + std::string(known->name) + "' steht zweimal in der Datei.");
        values[known->name] = Value{std::string(definitionTrim(line.substr(eq + 1))), lineNo};
    }

    LabelLayout layout;
    layout.marginLeftMm = layout.marginTopMm = layout.gapXMm = layout.gapYMm = 0;
    for (const Key& k : kKeys) {
        const auto it = values.find(k.name);
        if (it == values.end()) {
            if (k.required)
                throw layoutError(file, 0, "Der Schlüssel '" + std::string(k.name) + "' fehlt.");
            continue;
        }
        const Value& v = it->second;
        if (k.kind == Kind::Text) {
            if (v.text.empty())
                throw layoutError(file, v.line, "Der Name fehlt.");
            layout.name = v.text;
            continue;
        }
        const std::optional<double> n = numberOf(v.text);
        if (!n)
            throw layoutError(file, v.line, "'" + v.text + "' ist keine Zahl.");
        const std::string_view key = k.name;
        if (k.kind == Kind::Count) {
            if (*n < 1 || *n != std::floor(*n) || *n > 1000)
                throw layoutError(file, v.line, "Die Zahl muss eine ganze Zahl zwischen 1 und 1000 sein.");
            (key == "Spalten" ? layout.columns : layout.rows) = int(*n);
            continue;
        }
        const bool size = k.required;
        if (size ? *n <= 0 : *n < 0)
            throw layoutError(file, v.line,
                              size ? "Die Länge muss größer als 0 sein." : "Die Länge darf nicht negativ sein.");
        if (*n > 10000)
            throw layoutError(file, v.line, "Die Länge ist größer als 10 m.");
        if (key == "Seitenbreite")
            layout.pageWidthMm = *n;
        else if (key == "Seitenhöhe")
            layout.pageHeightMm = *n;
        else if (key == "Rand links")
            layout.marginLeftMm = *n;
        else if (key == "Rand oben")
            layout.marginTopMm = *n;
        else if (key == "Etikettenbreite")
            layout.labelWidthMm = *n;
        else if (key == "Etikettenhöhe")
            layout.labelHeightMm = *n;
        else if (key == "Abstand waagrecht")
            layout.gapXMm = *n;
        else
            layout.gapYMm = *n;
    }
    // A tenth of a millimetre is given for rounded measures.
    constexpr double kSlack = 0.1;
    if (layout.marginLeftMm + layout.columns * layout.labelWidthMm + (layout.columns - 1) * layout.gapXMm >
        layout.pageWidthMm + kSlack)
        throw layoutError(file, values["Spalten"].line, "Die Etiketten sind zusammen breiter als die Seite.");
    if (layout.marginTopMm + layout.rows * layout.labelHeightMm + (layout.rows - 1) * layout.gapYMm >
        layout.pageHeightMm + kSlack)
        throw layoutError(file, values["Zeilen"].line, "Die Etiketten sind zusammen höher als die Seite.");
    return layout;
}

/// The layout files of the template folder, by file name.
QStringList layoutFiles(const std::string& templateDir)
{
    const std::string folder = labelLayoutDir(templateDir);
    if (folder.empty())
        return {};
    QDir dir(QString::fromStdString(folder));
    QStringList files;
    for (const QString& name : dir.entryList(QDir::Files, QDir::Name | QDir::IgnoreCase))
        if (name.endsWith(QStringLiteral(".") + QString::fromLatin1(kLayoutExtension), Qt::CaseInsensitive))
            files << dir.filePath(name);
    return files;
}

} // namespace

LabelLayout readLabelLayout(const std::string& path)
{
    std::string text;
    try {
        text = readReportFile(path);
    } catch (const ReportError& e) {
        throw LabelError(e.what());
    }
    return parseLayout(text, path);
}

std::string labelLayoutDir(const std::string& templateDir)
{
    return findIgnoringCase(templateDir + "/" + kLayoutFolder);
}

std::vector<std::string> labelLayoutNames(const std::string& templateDir)
{
    std::vector<std::string> names;
    for (const QString& file : layoutFiles(templateDir)) {
        try {
            names.push_back(readLabelLayout(file.toStdString()).name);
        } catch (const LabelError&) {
            // A file that can't be read offers no layout; asking for it by name tells why.
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

LabelLayout findLabelLayout(const std::string& templateDir, const std::string& name)
{
    const QString wanted = QString::fromStdString(name).trimmed();
    std::vector<std::string> known;
    for (const QString& file : layoutFiles(templateDir)) {
        const QString base = QFileInfo(file).completeBaseName();
        if (base.compare(wanted, Qt::CaseInsensitive) == 0)
            return readLabelLayout(file.toStdString());
        try {
            LabelLayout layout = readLabelLayout(file.toStdString());
            if (QString::fromStdString(layout.name).compare(wanted, Qt::CaseInsensitive) == 0)
                return layout;
            known.push_back(base.toStdString());
        } catch (const LabelError&) {
        }
    }
    std::string message = "Das Etikettenformat '" + name + "' gibt es nicht.";
    if (!known.empty()) {
        message += " Vorhanden:";
        for (std::size_t i = 0; i < known.size(); ++i)
            message += (i ? ", " : " ") + known[i];
        message += ".";
    }
    throw LabelError(message);
}

} // namespace qi
