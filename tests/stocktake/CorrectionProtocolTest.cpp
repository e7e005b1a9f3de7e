// The Inventurprotokoll over a project result filled by hand: the proposals with their
// decisions put into K_Vorschlag, the counts per category and per kind and decision, the
// accepted corrections per kind and the signature lines, as the report's text.

#include "CorrectionProtocol.h"

#include "Database.h"
#include "ProjectReports.h"
#include "ProjectResultSchema.h"
#include "Report.h"
#include "Settings.h"
#include "TestSupport.h"
#include "Value.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace qi::test {
namespace {

Proposal proposal(const std::string& art, const std::string& invNr, const std::string& alt, const std::string& neu)
{
    Proposal p;
    p.art = art;
    p.invNr = invNr;
    p.artNr = "A0" + invNr.substr(invNr.size() - 1);
    p.beschreibung = "Objekt " + invNr;
    p.raumQuarn = alt;
    p.raumNeu = neu;
    p.raeume = art == kArtKlaeren ? "1001, 2002" : neu;
    p.auftraege = art == kArtKlaeren ? "EG, OG" : "EG";
    p.datum = art == kArtFehlt ? "" : "14.03.2025";
    p.beleg = alt + "→" + neu;
    return p;
}

ReviewedProposal decided(Proposal p, const std::string& entscheidung, const std::string& kommentar = {})
{
    ReviewedProposal r{std::move(p), entscheidung, std::nullopt};
    if (entscheidung != kOffen)
        r.decision = Decision{r.proposal.art, r.proposal.invNr,
                              entscheidung == kGeaendert ? std::string(kAngenommen) : entscheidung,
                              kommentar, "Meier", "20.03.2025 14:00:00", "alt"};
    return r;
}

class CorrectionProtocolTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        project = dir.file("Projekt");
        std::filesystem::create_directories(project);
        settings.gstAppPfad = QI_PROGRAM_DIR;
        settings.gstProjektPfad = project + "\\";
        createProjectResultSchema(*result);
        const char* order = "INSERT INTO P_Auftrag (stAuftrag, iRaeume, iRaeumeE, iErwartet, iAmPlatz, i1, i2a, i2b, "
                            "i2c, i3a, i3b) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)";
        result->execute(order, {Value("EG"), Value(4), Value(3), Value(50), Value(40), Value(40), Value(2), Value(3),
                                Value(1), Value(2), Value(5)});
        result->execute(order, {Value("OG"), Value(2), Value(2), Value(30), Value(27), Value(27), Value(0), Value(1),
                                Value(4), Value(0), Value(2)});
    }

    /// The report's pages as text, read from K_Vorschlag as it stands.
    std::string text()
    {
        const ProjectReport& r = *findProjectReport("protokoll");
        ReportOptions options;
        options.orderName = kAllOrders;
        options.projectFolder = "Projekt";
        options.printDate = "01.04.2025";
        return Report::over(projectReportFile(settings, r), *result, "Inventurprotokoll", options)->text();
    }

    /// The line of the text that holds `what`.
    static std::string lineWith(const std::string& text, const std::string& what)
    {
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);)
            if (line.find(what) != std::string::npos)
                return line;
        return {};
    }

    TempDir dir;
    std::string project;
    Settings settings;
    std::unique_ptr<Database> result = Database::inMemory();
};

TEST_F(CorrectionProtocolTest, ProposalsGoIntoTheTableWithTheirDecisions)
{
    putProposalTable(*result, {decided(proposal(kArtStandort, "100001", "1001", "1002"), kAngenommen, "ok"),
                               decided(proposal(kArtKlaeren, "100009", "1001", ""), kGeaendert),
                               decided(proposal(kArtFehlt, "100007", "1003", ""), kOffen)});
    const Recordset rows = result->query("SELECT iPos, iArt, stArt, stInvNr, stRaumQuarn, stRaumNeu, stEntscheidung, "
                                         "stBisher, stKommentar, stPerson, stEntschieden FROM K_Vorschlag ORDER BY iPos");
    ASSERT_EQ(rows.rows().size(), 3u);
    const auto cell = [&](std::size_t r, std::size_t c) { return toText(rows.rows()[r][c]); };
    EXPECT_EQ(cell(0, 1), "1");
    EXPECT_EQ(cell(0, 2), kArtStandort);
    EXPECT_EQ(cell(0, 5), "1002");
    EXPECT_EQ(cell(0, 6), kAngenommen);
    EXPECT_EQ(cell(0, 7), "");
    EXPECT_EQ(cell(0, 8), "ok");
    EXPECT_EQ(cell(0, 9), "Meier");
    EXPECT_EQ(cell(0, 10), "20.03.2025 14:00:00");
    EXPECT_EQ(cell(1, 1), "4");
    EXPECT_EQ(cell(1, 6), kGeaendert);
    EXPECT_EQ(cell(1, 7), kAngenommen);
    EXPECT_EQ(cell(2, 1), "3");
    EXPECT_EQ(cell(2, 6), kOffen);
    EXPECT_EQ(cell(2, 9), "");

    // Made anew: the rows of an earlier call are gone.
    putProposalTable(*result, {});
    EXPECT_EQ(toLong(result->scalar("SELECT count(*) FROM K_Vorschlag")), 0);
}

TEST_F(CorrectionProtocolTest, HasTheCountsTheAcceptedCorrectionsAndTheSignatureLines)
{
    putProposalTable(*result, {decided(proposal(kArtStandort, "100001", "1001", "1002"), kAngenommen, "umgestellt"),
                               decided(proposal(kArtStandort, "100002", "1001", "1003"), kAbgelehnt),
                               decided(proposal(kArtStandort, "100003", "1002", "1004"), kOffen),
                               decided(proposal(kArtNeu, "999001", "", "1005"), kAngenommen),
                               decided(proposal(kArtFehlt, "100007", "1003", ""), kAngenommen, "ausgesondert"),
                               decided(proposal(kArtKlaeren, "100009", "1001", ""), kGeaendert)});
    const std::string t = text();

    // Per category: the sums of both orders.
    for (const auto& [category, sum] : std::vector<std::pair<std::string, std::string>>{
             {"1   OK", "67"}, {"2a  Zuviel im Raum", "2"}, {"2b  Zuviel im Auftrag", "4"},
             {"2c  Nicht in Quarn erfasst", "5"}, {"3a  Fehlt im Raum", "2"}, {"3b  Fehlt im Auftrag", "7"}}) {
        const std::string line = lineWith(t, category);
        EXPECT_EQ(line.substr(line.rfind(' ') + 1), sum) << line;
    }
    EXPECT_NE(t.find("Aufträge: 2"), std::string::npos) << t;
    EXPECT_NE(t.find("Objekte am Platz gefunden: 67 von 80 (83,8 %)"), std::string::npos) << t;

    // Per kind and decision.
    const auto kindLine = [&](const std::string& kind) { return lineWith(t, "| " + kind + " |"); };
    EXPECT_NE(kindLine("Standort ändern").find("angenommen 1 · abgelehnt 1 · offen 1 · geändert 0 | 3"),
              std::string::npos)
        << kindLine("Standort ändern");
    EXPECT_NE(kindLine("Neu erfassen").find("angenommen 1 · abgelehnt 0 · offen 0 · geändert 0 | 1"), std::string::npos);
    EXPECT_NE(kindLine("Fehlt").find("angenommen 1 · abgelehnt 0 · offen 0 · geändert 0 | 1"), std::string::npos);
    EXPECT_NE(kindLine("Klären").find("angenommen 0 · abgelehnt 0 · offen 0 · geändert 1 | 1"), std::string::npos);
    EXPECT_NE(kindLine("Alle Vorschläge").find("angenommen 3 · abgelehnt 1 · offen 1 · geändert 1 | 6"),
              std::string::npos);

    // The accepted ones, each in its kind's section with its rooms; the others not.
    EXPECT_NE(lineWith(t, "100001").find("| 1001 | 1002 |"), std::string::npos) << lineWith(t, "100001");
    EXPECT_NE(lineWith(t, "100001").find("„umgestellt“"), std::string::npos);
    EXPECT_NE(lineWith(t, "999001").find("| 1005 |"), std::string::npos) << lineWith(t, "999001");
    EXPECT_NE(lineWith(t, "100007").find("angenommen von Meier am 20.03.2025"), std::string::npos);
    for (const char* notAccepted : {"100002", "100003", "100009"})
        EXPECT_EQ(lineWith(t, notAccepted), "") << notAccepted;
    EXPECT_LT(t.find("3. Angenommen: Standort ändern"), t.find("100001"));
    EXPECT_LT(t.find("100001"), t.find("4. Angenommen: Neu erfassen"));
    EXPECT_LT(t.find("5. Angenommen: Fehlt"), t.find("100007"));
    EXPECT_NE(t.find("6. Angenommen: Klären"), std::string::npos);

    // The signature lines, the lead's first.
    const std::size_t lead = t.find("Inventurleitung");
    const std::size_t owner = t.find("Anlagenverantwortliche(r)");
    ASSERT_NE(lead, std::string::npos);
    ASSERT_NE(owner, std::string::npos);
    EXPECT_LT(lead, owner);
    EXPECT_NE(t.find("Datum _", lead), std::string::npos);
    EXPECT_NE(t.find("Name _", owner), std::string::npos);
    EXPECT_NE(t.find("Unterschrift _", owner), std::string::npos);
}

TEST_F(CorrectionProtocolTest, OpenedAsAProjectReportItReadsTheProposalsOfTheResultWithoutDecisions)
{
    // No proposals in this result, no decisions database: every kind counts none.
    const std::string t = openProjectReport(settings, *result, *findProjectReport("protokoll"), "01.04.2025")->text();
    EXPECT_NE(lineWith(t, "| Alle Vorschläge |").find("angenommen 0 · abgelehnt 0 · offen 0 · geändert 0 | 0"),
              std::string::npos)
        << t;
    EXPECT_TRUE(result->tableExists("K_Vorschlag"));
    EXPECT_FALSE(std::filesystem::exists(project + "/QInventurKorrekturen.db"));
}

} // namespace
} // namespace qi::test
