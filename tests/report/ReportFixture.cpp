#include "ReportFixture.h"

#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "TestSupport.h"
#include "ReportError.h"

#include <QApplication>
#include <QRegularExpression>
#include <QString>

#include <array>
#include <cstdio>

namespace qi::test {

namespace {

std::string quotedArg(const std::string& s)
{
    std::string out = "'";
    for (char c : s) {
        if (c == '\'')
            out += "'\\''";
        else
            out += c;
    }
    return out + "'";
}

QString unescapeXml(QString s)
{
    s.replace(QStringLiteral("&lt;"), QStringLiteral("<"))
        .replace(QStringLiteral("&gt;"), QStringLiteral(">"))
        .replace(QStringLiteral("&quot;"), QStringLiteral("\""))
        .replace(QStringLiteral("&apos;"), QStringLiteral("'"))
        .replace(QStringLiteral("&amp;"), QStringLiteral("&"));
    return s;
}

/// The <row> elements of the first sheet.
QStringList sheetRows(const std::string& xlsx)
{
    const QString sheet = QString::fromStdString(zipEntry(xlsx, "xl/worksheets/sheet1.xml"));
    QStringList rows;
    static const QRegularExpression row(QStringLiteral("<row [^>]*>(.*?)</row>"),
                                        QRegularExpression::DotMatchesEverythingOption);
    for (auto it = row.globalMatch(sheet); it.hasNext();)
        rows << it.next().captured(0);
    return rows;
}

} // namespace

void ReportFixture::SetUp()
{
    qtApplication();
    dataFile = dir.file("QInventurRpt.mdb");
    auto db = Database::create(dataFile);
    LinkedDatabase::createSchema(*db);
}

void ReportFixture::sql(const std::string& script) { Database::open(dataFile)->executeScript(script); }

std::string ReportFixture::definition(const std::string& name, const std::string& text)
{
    const std::string path = dir.file(name);
    writeFile(path, text);
    return path;
}

std::unique_ptr<Report> ReportFixture::open(const std::string& file, const std::string& title)
{
    ReportOptions options;
    options.printDate = kTestPrintDate;
    options.orderName = "Auftrag 1";
    options.projectFolder = "Projekt";
    return Report::open(file, dataFile, title, options);
}

std::string ReportFixture::openError(const std::string& file)
{
    try {
        open(file);
    } catch (const ReportError& e) {
        return e.what();
    }
    return {};
}

std::string pdfText(const std::string& pdf) { return commandOutput("pdftotext -layout " + quotedArg(pdf) + " - 2>/dev/null"); }

std::string zipEntry(const std::string& zip, const std::string& entry)
{
    return commandOutput("unzip -p " + quotedArg(zip) + " " + quotedArg(entry) + " 2>/dev/null");
}

std::vector<std::string> xlsxRow(const std::string& xlsx, int row)
{
    std::vector<std::string> cells;
    static const QRegularExpression text(QStringLiteral("<c r=\"[A-Z]+\\d+\"[^>]*?(?:/>|>(.*?)</c>)"),
                                         QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression value(QStringLiteral("<(?:t|v)[^>]*>(.*?)</(?:t|v)>"),
                                          QRegularExpression::DotMatchesEverythingOption);
    for (const QString& r : sheetRows(xlsx)) {
        if (!r.startsWith(QStringLiteral("<row r=\"") + QString::number(row) + QStringLiteral("\"")))
            continue;
        for (auto it = text.globalMatch(r); it.hasNext();) {
            const QString inner = it.next().captured(1);
            const auto v = value.match(inner);
            cells.push_back(unescapeXml(v.hasMatch() ? v.captured(1) : QString()).toStdString());
        }
    }
    return cells;
}

int xlsxRowCount(const std::string& xlsx) { return int(sheetRows(xlsx).size()); }

bool xlsxCellIsNumber(const std::string& xlsx, const std::string& cell)
{
    const QString sheet = QString::fromStdString(zipEntry(xlsx, "xl/worksheets/sheet1.xml"));
    const QRegularExpression c(QStringLiteral("<c r=\"") + QString::fromStdString(cell) +
                               QStringLiteral("\"([^>]*)>\\s*<v>"));
    const auto m = c.match(sheet);
    return m.hasMatch() && !m.captured(1).contains(QStringLiteral("t=\""));
}

} // namespace qi::test
