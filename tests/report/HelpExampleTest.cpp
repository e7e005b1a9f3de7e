// The help file's example of a report file is one that works: read from the help
// file the program ships, it prints the deviations of the demo order.

#include "DemoOrder.h"

#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "ReportMenus.h"

#include <QString>

namespace qi::test {
namespace {

/// The text of the help file's example, its entities resolved.
std::string helpExample()
{
    const QString help = QString::fromStdString(readFile(std::string(QI_PROGRAM_DIR) + "/QInventur.html"));
    const QString start = QStringLiteral("<pre id=\"beispiel-bericht\">");
    const auto from = help.indexOf(start);
    const auto to = help.indexOf(QStringLiteral("</pre>"), from);
    if (from < 0 || to < 0)
        return {};
    QString text = help.mid(from + start.size(), to - from - start.size());
    text.replace(QStringLiteral("&lt;"), QStringLiteral("<"))
        .replace(QStringLiteral("&gt;"), QStringLiteral(">"))
        .replace(QStringLiteral("&quot;"), QStringLiteral("\""))
        .replace(QStringLiteral("&amp;"), QStringLiteral("&"));
    return text.toStdString();
}

TEST(HelpExample, PrintsTheDeviationsOfTheDemoOrder)
{
    const std::string example = helpExample();
    ASSERT_FALSE(example.empty());
    DemoOrder& order = DemoOrder::shared();
    const RenderedReport* list = order.runReportMenu(reportmenu::Differenz);
    ASSERT_NE(list, nullptr);
    const std::string file = order.project + "/Report/beispiel.rpt";
    writeFile(file, example);
    ReportOptions options;
    options.printDate = kTestPrintDate;
    auto report = Report::open(file, order.reportDb, "Abweichungen", options);
    const std::string text = report->text();
    EXPECT_NE(text.find("Abweichungen je Raum | Projekt: "), std::string::npos);
    EXPECT_NE(text.find("Objekte, die in ihrem Raum fehlen oder nicht dorthin gehören."), std::string::npos);
    EXPECT_NE(text.find("# Raum 1001 · Köhler, Günther"), std::string::npos) << text;
    EXPECT_NE(text.find("# Raum 1002 · kein Raumverantwortlicher"), std::string::npos);
    EXPECT_EQ(text.find("| 1 OK |"), std::string::npos);
    EXPECT_NE(text.find("Abweichungen je Kategorie:"), std::string::npos);
    EXPECT_NE(text.find("Seite 1 von " + std::to_string(report->pageCount())), std::string::npos);
    // Every row of the report database's difference list that is not "1 OK" is in it.
    const std::int64_t deviations = toLong(LinkedDatabase::open(order.reportDb)
                                               ->openForStatements()
                                               ->scalar("SELECT count(*) FROM Q_DiffListe WHERE stTyp NOT LIKE '1 %'"));
    EXPECT_GT(deviations, 3);
    EXPECT_EQ(std::int64_t(report->model().rowCount()), deviations);
    EXPECT_NE(text.find("Abweichungen im Auftrag: " + std::to_string(deviations) + "\n"), std::string::npos);
}

} // namespace
} // namespace qi::test
