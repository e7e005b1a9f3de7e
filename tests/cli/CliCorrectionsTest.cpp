// The correction list on the command line, as a process on the demo project with the
// evaluated order "EG": the list with its heading, deciding (accept, reject, open again,
// with a comment and the person), the refusals of wrong calls and unknown numbers (nothing
// decided), the refusal while another program holds the project, the exports read back
// against the list, and the Inventurprotokoll's text.

#include "TestSupport.h"
#include "CliFixture.h"

#include "CliSession.h"
#include "CommandLine.h"
#include "Corrections.h"
#include "FileSystem.h"
#include "HoldingChild.h"
#include "ProjectLock.h"

#include <signal.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <sstream>

namespace qi::test {
namespace {

constexpr const char* kHeading = "Art\tInventar-Nr.\tRaum alt\tRaum neu\tAufträge\tEntscheidung\tKommentar\tPerson";

enum Field { FArt, FNr, FAlt, FNeu, FAuftraege, FEntscheidung, FKommentar, FPerson };

class CliCorrectionsTest : public CliFixture {
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        prepareOrder("EG");
        expectCli(0, {"auswerten", "EG"});
    }

    /// The list's rows (without the heading, which is checked).
    std::vector<std::vector<std::string>> list()
    {
        const CliRun r = expectCli(0, {"korrekturen"});
        const std::vector<std::string> lines = linesOf(r.out);
        EXPECT_FALSE(lines.empty());
        EXPECT_EQ(lines.front(), kHeading);
        std::vector<std::vector<std::string>> rows;
        for (std::size_t i = 1; i < lines.size(); ++i) {
            rows.push_back(splitFields(lines[i], '\t'));
            EXPECT_EQ(rows.back().size(), 8u) << lines[i];
        }
        return rows;
    }

    /// The first row of a kind in the list.
    static std::vector<std::string> firstOf(const std::vector<std::vector<std::string>>& rows, const std::string& art)
    {
        for (const auto& row : rows)
            if (row[FArt] == art)
                return row;
        ADD_FAILURE() << "no " << art;
        return std::vector<std::string>(8);
    }

    std::string decisionsFile() const { return demoDir + "/" + kCorrectionsFile; }
};

TEST_F(CliCorrectionsTest, ListsEveryProposalOpenThenDecidesWithCommentAndPerson)
{
    const auto before = list();
    ASSERT_GE(before.size(), 3u);
    for (const auto& row : before) {
        EXPECT_EQ(row[FEntscheidung], "offen");
        EXPECT_EQ(row[FKommentar], "");
        EXPECT_EQ(row[FPerson], "");
        EXPECT_TRUE(row[FArt] == kArtStandort || row[FArt] == kArtNeu || row[FArt] == kArtFehlt ||
                    row[FArt] == kArtKlaeren)
            << row[FArt];
        EXPECT_EQ(row[FAuftraege], "EG") << row[FArt] << " " << row[FNr];
    }
    // Looking decides nothing and makes no decisions database.
    EXPECT_FALSE(fileExists(decisionsFile()));

    const auto standort = firstOf(before, kArtStandort);
    const auto neu = firstOf(before, kArtNeu);
    const auto fehlt = firstOf(before, kArtFehlt);
    EXPECT_NE(standort[FAlt], standort[FNeu]);
    EXPECT_EQ(neu[FAlt], "");
    EXPECT_EQ(fehlt[FNeu], "");

    CliRun r = expectCli(0, {"korrekturen", "--annehmen", standort[FNr], neu[FNr], "--kommentar", "vor Ort bestätigt"});
    EXPECT_EQ(r.out, "2 Vorschläge angenommen.\n");
    r = expectCli(0, {"korrekturen", "--ablehnen", fehlt[FNr], "--art", "fehlt"});
    EXPECT_EQ(r.out, "1 Vorschlag abgelehnt.\n");
    EXPECT_TRUE(fileExists(decisionsFile()));

    const std::string person = ProjectLock::self().user;
    const auto after = list();
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < after.size(); ++i) {
        const auto& row = after[i];
        SCOPED_TRACE(row[FNr]);
        EXPECT_EQ(std::vector<std::string>(row.begin(), row.begin() + FEntscheidung),
                  std::vector<std::string>(before[i].begin(), before[i].begin() + FEntscheidung));
        if ((row[FNr] == standort[FNr] && row[FArt] == kArtStandort) || (row[FNr] == neu[FNr] && row[FArt] == kArtNeu)) {
            EXPECT_EQ(row[FEntscheidung], "angenommen");
            EXPECT_EQ(row[FKommentar], "vor Ort bestätigt");
            EXPECT_EQ(row[FPerson], person);
        } else if (row[FNr] == fehlt[FNr] && row[FArt] == kArtFehlt) {
            EXPECT_EQ(row[FEntscheidung], "abgelehnt");
            EXPECT_EQ(row[FKommentar], "");
            EXPECT_EQ(row[FPerson], person);
        } else {
            EXPECT_EQ(row[FEntscheidung], "offen");
        }
    }

    // Open again: the decision is gone.
    r = expectCli(0, {"korrekturen", "--offen", fehlt[FNr]});
    EXPECT_EQ(r.out, "1 Vorschlag wieder offen.\n");
    EXPECT_EQ(firstOf(list(), kArtFehlt)[FEntscheidung], "offen");
    EXPECT_EQ(count(decisionsFile(), "SELECT count(*) FROM K_Entscheidung"), 2);
}

TEST_F(CliCorrectionsTest, AnUnknownNumberDecidesNothingAndSaysWhich)
{
    const auto standort = firstOf(list(), kArtStandort);
    CliRun r = expectCli(17, {"korrekturen", "--annehmen", standort[FNr], "XYZ-0"});
    EXPECT_EQ(r.out, "");
    EXPECT_NE(r.err.find("[qinventur-cli] Zur Inventarnummer 'XYZ-0' gibt es keinen Vorschlag. Es wurde nichts "
                         "entschieden.\n"),
              std::string::npos)
        << r.err;
    // A number of another kind than --art says.
    r = expectCli(17, {"korrekturen", "--annehmen", standort[FNr], "--art", "klaeren"});
    EXPECT_NE(r.err.find("[qinventur-cli] Zur Inventarnummer '" + standort[FNr] + "' gibt es keinen Vorschlag "
                         "'Klären'. Es wurde nichts entschieden.\n"),
              std::string::npos)
        << r.err;
    for (const auto& row : list())
        EXPECT_EQ(row[FEntscheidung], "offen");
    EXPECT_TRUE(!fileExists(decisionsFile()) || count(decisionsFile(), "SELECT count(*) FROM K_Entscheidung") == 0);
}

TEST_F(CliCorrectionsTest, WrongCallsAreRefusedBeforeTheProjectIsRead)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> calls = {
        {{"korrekturen", "--annehmen"}, "Es fehlen die Inventarnummern der Vorschläge."},
        {{"korrekturen", "100001"}, "Inventarnummern gehören zu --annehmen, --ablehnen oder --offen."},
        {{"korrekturen", "--annehmen", "--ablehnen", "1"}, "Nur eine von --annehmen, --ablehnen und --offen."},
        {{"korrekturen", "--kommentar", "x"}, "--art und --kommentar gehören zu --annehmen, --ablehnen oder --offen."},
        {{"korrekturen", "--annehmen", "1", "--art", "umzug"},
         "Eine Art 'umzug' gibt es nicht. Arten: standort, neu, fehlt, klaeren."},
        {{"korrekturen", "--annehmen", "1", "--export", "x"},
         "--export geht nicht zusammen mit --annehmen, --ablehnen oder --offen."},
        {{"korrekturen", "--format", "csv"}, "--format gehört zu --export."},
        {{"korrekturen", "--export", "x", "--format", "pdf"}, "--format nimmt xlsx oder csv, nicht 'pdf'."},
    };
    for (const auto& [args, message] : calls) {
        const CliRun r = expectCli(2, args);
        EXPECT_EQ(r.err, "[qinventur-cli] " + message + "\n");
        EXPECT_EQ(r.out, "");
    }
    EXPECT_FALSE(fileExists(decisionsFile()));
}

TEST_F(CliCorrectionsTest, WhileAnotherProgramHoldsTheProjectItListsAndExportsButDecidesNothing)
{
    const auto standort = firstOf(list(), kArtStandort);
    expectCli(0, {"korrekturen", "--annehmen", standort[FNr]});
    const std::string decided = expectCli(0, {"korrekturen"}).out;

    const OtherProgram holder(demoDir);
    ASSERT_TRUE(holder.held());
    const auto before = treeDigest(demoDir);
    const CliRun r = expectCli(15, {"korrekturen", "--ablehnen", standort[FNr]});
    EXPECT_NE(r.err.find("[qinventur-cli] Das Projekt ist nur zum Lesen geöffnet: Entscheidungen der Korrekturliste "
                         "können nicht geändert werden.\n"),
              std::string::npos)
        << r.err;
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(expectCli(0, {"korrekturen"}).out, decided);
    expectCli(0, {"korrekturen", "--export", root.file("aus"), "--format", "csv"});
    EXPECT_EQ(treeDigest(demoDir), before);
    EXPECT_NE(readFile(root.file("aus/Korrekturen_Standort.csv")).find(standort[FNr] + ";"), std::string::npos);
}

TEST_F(CliCorrectionsTest, ChangedEvidenceIsShownWithTheDecisionBefore)
{
    const auto standort = firstOf(list(), kArtStandort);
    expectCli(0, {"korrekturen", "--annehmen", standort[FNr], "--kommentar", "ok"});
    {
        // The evidence kept with the decision is not the proposal's any more, as after a new scan.
        auto db = Database::open(decisionsFile(), false);
        db->execute("UPDATE K_Entscheidung SET stBeleg = ?1", {Value("anders")});
    }
    const auto row = firstOf(list(), kArtStandort);
    EXPECT_EQ(row[FEntscheidung], "geändert – bitte prüfen (bisher angenommen)");
    EXPECT_EQ(row[FKommentar], "ok");
    // It waits for a new decision: the export leaves it out.
    const CliRun r = expectCli(0, {"korrekturen", "--export", root.file("aus"), "--format", "csv"});
    EXPECT_NE(r.out.find("0 angenommene Vorschläge.\n"), std::string::npos) << r.out;
}

TEST_F(CliCorrectionsTest, ExportsHoldTheAcceptedRowsOfTheList)
{
    const auto rows = list();
    std::vector<std::string> numbers;
    for (const auto& row : rows)
        if (row[FArt] == kArtStandort || row[FArt] == kArtFehlt)
            numbers.push_back(row[FNr]);
    std::vector<std::string> args = {"korrekturen", "--annehmen"};
    args.insert(args.end(), numbers.begin(), numbers.end());
    args.insert(args.end(), {"--kommentar", "Übernahme; geprüft"});
    expectCli(0, args);

    const std::string folder = root.file("Ausgabe");
    CliRun r = expectCli(0, {"korrekturen", "--export", folder, "--format", "csv"});
    std::string expectedOut;
    for (const char* f : {"Korrekturen_Standort.csv", "Korrekturen_Neu.csv", "Korrekturen_Fehlt.csv",
                          "Korrekturen_Klaeren.csv"})
        expectedOut += "Korrekturen geschrieben: " + displayPath(folder + "/" + f) + "\n";
    expectedOut += std::to_string(numbers.size()) + " angenommene Vorschläge.\n";
    EXPECT_EQ(r.out, expectedOut);

    // Each accepted row of the list is a row of its kind's file, in the list's order.
    for (const auto& [art, file, oldColumn, newColumn] :
         {std::tuple<std::string, std::string, int, int>{kArtStandort, "Korrekturen_Standort.csv", 3, 4},
          {kArtFehlt, "Korrekturen_Fehlt.csv", 3, -1}}) {
        SCOPED_TRACE(art);
        std::string text = readFile(folder + "/" + file);
        ASSERT_EQ(text.rfind("\xEF\xBB\xBF", 0), 0u);
        const std::vector<std::string> lines = linesOf(text.substr(3));
        std::vector<std::vector<std::string>> expected;
        for (const auto& row : rows)
            if (row[FArt] == art)
                expected.push_back(row);
        ASSERT_EQ(lines.size(), expected.size() + 1);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const std::string& line = lines[i + 1];
            EXPECT_EQ(line.substr(0, line.find(';')), expected[i][FNr]);
            const std::vector<std::string> cells = splitFields(line, ';');
            EXPECT_EQ(cells[std::size_t(oldColumn)], expected[i][FAlt]);
            if (newColumn >= 0) {
                EXPECT_EQ(cells[std::size_t(newColumn)], expected[i][FNeu]);
            }
            EXPECT_NE(line.find(";\"Übernahme; geprüft\";"), std::string::npos) << line;
        }
    }
    EXPECT_EQ(linesOf(readFile(folder + "/Korrekturen_Neu.csv").substr(3)).size(), 1u);

    r = expectCli(0, {"korrekturen", "--export", folder});
    EXPECT_EQ(r.out, "Korrekturen geschrieben: " + displayPath(folder + "/Korrekturen.xlsx") + "\n" +
                         std::to_string(numbers.size()) + " angenommene Vorschläge.\n");
    EXPECT_TRUE(fileExists(folder + "/Korrekturen.xlsx"));
}

/// The text of a PDF file (pdftotext, in reading order).
std::string pdfText(const std::string& pdf)
{
    return commandOutput("pdftotext -layout '" + pdf + "' - 2>/dev/null");
}

TEST_F(CliCorrectionsTest, TheProtocolHasTheCountsTheAcceptedRowsAndTheSignatureLines)
{
    const auto rows = list();
    const auto standort = firstOf(rows, kArtStandort);
    const auto fehlt = firstOf(rows, kArtFehlt);
    expectCli(0, {"korrekturen", "--annehmen", standort[FNr], "--kommentar", "umgestellt"});
    expectCli(0, {"korrekturen", "--ablehnen", fehlt[FNr], "--art", "fehlt"});

    const std::string pdf = root.file("protokoll.pdf");
    const CliRun r = expectCli(0, {"bericht", "--projekt-weit", "protokoll", "--ausgabe", pdf});
    EXPECT_EQ(r.out, "Bericht 'protokoll' geschrieben: " + displayPath(pdf) + "\n");
    const std::string text = pdfText(pdf);
    for (const std::string& expected :
         {std::string("Inventurprotokoll"), std::string("1. Objekte je Kategorie"),
          std::string("2. Vorschläge der Korrekturliste"), std::string("3. Angenommen: Standort ändern"),
          std::string("Inventurleitung"), std::string("Anlagenverantwortliche(r)"), std::string("Unterschrift"),
          std::string("Datum _____"), std::string("„umgestellt“")})
        EXPECT_NE(text.find(expected), std::string::npos) << expected << " in\n" << text;

    // The accepted row with its rooms; the rejected one is not among the corrections.
    const std::string row = standort[FNr];
    const std::size_t at = text.find("\n" + row + " ");
    ASSERT_NE(at, std::string::npos) << text;
    const std::string line = text.substr(at + 1, text.find('\n', at + 1) - at - 1);
    EXPECT_NE(line.find(" " + standort[FAlt] + " "), std::string::npos) << line;
    EXPECT_NE(line.find(" " + standort[FNeu] + " "), std::string::npos) << line;
    EXPECT_EQ(text.find("\n" + fehlt[FNr] + " "), std::string::npos) << text;

    // The counts per kind and decision: one accepted and the rest open of its kind.
    std::size_t standorte = 0, fehlende = 0;
    for (const auto& r2 : rows) {
        standorte += r2[FArt] == kArtStandort;
        fehlende += r2[FArt] == kArtFehlt;
    }
    const auto countLine = [&](const std::string& art) {
        const std::size_t a = text.find(art + "  ");
        return a == std::string::npos ? std::string() : text.substr(a, text.find('\n', a) - a);
    };
    const std::string s = countLine("Standort ändern");
    EXPECT_NE(s.find("angenommen 1 · abgelehnt 0 · offen"), std::string::npos) << s;
    EXPECT_EQ(s.substr(s.find_last_not_of("0123456789") + 1), std::to_string(standorte)) << s;
    const std::string f = countLine("Fehlt");
    EXPECT_NE(f.find("angenommen 0 · abgelehnt 1 · offen"), std::string::npos) << f;
    EXPECT_EQ(f.substr(f.find_last_not_of("0123456789") + 1), std::to_string(fehlende)) << f;
}

TEST(CliCorrections, NumbersNameTheirProposalsOrAreRefused)
{
    std::vector<Proposal> proposals(3);
    proposals[0].art = kArtStandort;
    proposals[0].invNr = "A-1";
    proposals[1].art = kArtKlaeren;
    proposals[1].invNr = "A-1";
    proposals[2].art = kArtFehlt;
    proposals[2].invNr = "B-2";
    std::vector<std::string> refused;
    // Letter case and trailing blanks don't count, as in the order database.
    auto chosen = cli::proposalsNamed(proposals, {"b-2  "}, "", refused);
    EXPECT_TRUE(refused.empty());
    EXPECT_EQ(chosen, (std::vector<std::pair<std::string, std::string>>{{kArtFehlt, "B-2"}}));
    chosen = cli::proposalsNamed(proposals, {"A-1"}, kArtKlaeren, refused);
    EXPECT_EQ(chosen, (std::vector<std::pair<std::string, std::string>>{{kArtKlaeren, "A-1"}}));
    chosen = cli::proposalsNamed(proposals, {"A-1", "C-3"}, "", refused);
    EXPECT_TRUE(chosen.empty());
    EXPECT_EQ(refused, (std::vector<std::string>{
                           "Zur Inventarnummer 'A-1' gibt es Vorschläge mehrerer Arten (Standort ändern, Klären); "
                           "geben Sie --art an. Es wurde nichts entschieden.",
                           "Zur Inventarnummer 'C-3' gibt es keinen Vorschlag. Es wurde nichts entschieden."}));
    EXPECT_EQ(cli::correctionKindOf("Klaeren"), kArtKlaeren);
    EXPECT_EQ(cli::correctionKindOf("standort ändern"), kArtStandort);
    EXPECT_EQ(cli::correctionKindOf("neu"), kArtNeu);
    EXPECT_EQ(cli::correctionKindOf("weg"), "");
}

} // namespace
} // namespace qi::test
