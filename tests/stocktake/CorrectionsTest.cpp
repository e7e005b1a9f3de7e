// The correction list's proposals, made from a hand-filled project result, and the decisions
// kept for them in the project folder's database.

#include "Corrections.h"

#include "Categories.h"
#include "Database.h"
#include "FileSystem.h"
#include "ProjectLock.h"
#include "ProjectResultSchema.h"
#include "Settings.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kHaupt = "Hauptgebäude / Erdgeschoss";
constexpr const char* kLabor = "Laborgebäude / Erdgeschoss";
constexpr const char* kLager = "Lagerhalle / 1. Obergeschoss";

// The sortable stamp of a scanner date and time.
std::string stamp(const std::string& datum, const std::string& uhrzeit)
{
    return datum.substr(6, 4) + "-" + datum.substr(3, 2) + "-" + datum.substr(0, 2) + " " + uhrzeit;
}

/// A project result filled by hand: the orders "Nord" (rooms 1001 E, 1002 L, 1003 N), "Süd"
/// (2001 E, 2002 E, and 1001 E, which it shares with Nord) and "West" (3001 E); room 9001
/// belongs to no order.
class Result {
public:
    Result()
    {
        db = Database::inMemory();
        createProjectResultSchema(*db);
        raum("Nord", "1001", "E", kHaupt);
        raum("Nord", "1002", "L", kHaupt);
        raum("Nord", "1003", "N", kHaupt);
        raum("Süd", "2001", "E", kLabor);
        raum("Süd", "2002", "E", kLabor);
        raum("Süd", "1001", "E", kHaupt);
        raum("West", "3001", "E", kLager);
    }

    void raum(const std::string& auftrag, const std::string& nr, const std::string& status, const std::string& teil)
    {
        db->execute("INSERT INTO P_Raum (stAuftrag, stRaumNr, stStatus, stGebaeudeteil) VALUES (?1, ?2, ?3, ?4)",
                    {auftrag, nr, status, teil});
    }

    void scan(const std::string& auftrag, const std::string& nr, const std::string& raum, const std::string& art,
              const std::string& datum, const std::string& uhrzeit, const std::string& datei)
    {
        db->execute("INSERT INTO P_Scan (stAuftrag, stInvNr, stRaum, stArtNr, Datum, Uhrzeit, stZeit, stDatei) "
                    "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)",
                    {auftrag, nr, raum, art, datum, uhrzeit, stamp(datum, uhrzeit), datei});
    }

    // A "3a" row in Quarn's room and its "2a" row in the room where the order found the object.
    void movedWithin(const std::string& auftrag, const std::string& nr, const std::string& von, const std::string& nach,
                     const std::string& beschreibung, const std::string& art, const std::string& datum,
                     const std::string& uhrzeit)
    {
        db->execute("INSERT INTO P_Diff (stAuftrag, stRaumNr, stSollInvNR, stTyp, stBeschreibung, stArtNr, stZiel, "
                    "Datum, Uhrzeit, stZeit) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
                    {auftrag, von, nr, std::string(category::k3a), beschreibung, art, nach, datum, uhrzeit,
                     stamp(datum, uhrzeit)});
        db->execute("INSERT INTO P_Diff (stAuftrag, stRaumNr, stIstInvNR, stTyp, stQuelle, Datum, Uhrzeit, stZeit) "
                    "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)",
                    {auftrag, nach, nr, std::string(category::k2a), von, datum, uhrzeit, stamp(datum, uhrzeit)});
    }

    void movedBetween(const std::string& nr, const std::string& beschreibung, const std::string& art,
                      const std::string& auftragSoll, const std::string& raumSoll, const std::string& auftragIst,
                      const std::string& raumIst, const std::string& datum, const std::string& uhrzeit)
    {
        db->execute("INSERT INTO L_Verschoben (stInvNr, stBeschreibung, stArtNr, stAuftragSoll, stRaumSoll, "
                    "stAuftragIst, stRaumIst, Datum, Uhrzeit, stZeit) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
                    {nr, beschreibung, art, auftragSoll, raumSoll, auftragIst, raumIst, datum, uhrzeit,
                     stamp(datum, uhrzeit)});
    }

    // A "2b" row and its row of L_Zuviel.
    void surplus(const std::string& auftrag, const std::string& raum, const std::string& nr, const std::string& art,
                 const std::string& beschreibung, const std::string& quarn, const std::string& datum,
                 const std::string& uhrzeit)
    {
        db->execute("INSERT INTO P_Diff (stAuftrag, stRaumNr, stIstInvNR, stTyp, stBeschreibung, stArtNr, stQuarn, "
                    "Datum, Uhrzeit, stZeit) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
                    {auftrag, raum, nr, std::string(category::k2b), beschreibung, art, quarn, datum, uhrzeit,
                     stamp(datum, uhrzeit)});
        db->execute("INSERT INTO L_Zuviel (stAuftrag, stRaum, stInvNr, stArtNr, stQuarn, Datum, Uhrzeit, stZeit) "
                    "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)",
                    {auftrag, raum, nr, art, quarn, datum, uhrzeit, stamp(datum, uhrzeit)});
    }

    void unknown(const std::string& nr, const std::string& art, const std::string& auftraege, const std::string& raum,
                 const std::string& datum, const std::string& uhrzeit)
    {
        db->execute("INSERT INTO L_Unbekannt (stInvNr, stArtNr, stAuftraege, stRaum, iScans, Datum, stZeit) "
                    "VALUES (?1, ?2, ?3, ?4, 1, ?5, ?6)",
                    {nr, art, auftraege, raum, datum, stamp(datum, uhrzeit)});
    }

    void article(const std::string& art, const std::string& name)
    {
        db->execute("INSERT INTO P_Artikel (stArtNr, stBeschreibung) VALUES (?1, ?2)", {art, name});
    }

    void missing(const std::string& nr, const std::string& beschreibung, const std::string& art,
                 const std::string& auftrag, const std::string& raum)
    {
        db->execute("INSERT INTO L_Fehlend (stInvNr, stBeschreibung, stArtNr, stAuftrag, stRaum) "
                    "VALUES (?1, ?2, ?3, ?4, ?5)",
                    {nr, beschreibung, art, auftrag, raum});
    }

    // Rows of L_Doppelt: the scans of a number in several orders, the latest first.
    void twice(const std::string& nr, const std::vector<std::vector<std::string>>& scans)
    {
        std::int64_t rang = 0;
        for (const auto& s : scans)
            db->execute("INSERT INTO L_Doppelt (stInvNr, stAuftrag, stRaum, Datum, Uhrzeit, stZeit, stDatei, "
                        "iAuftraege, iRang) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9)",
                        {nr, s[0], s[1], s[2], s[3], stamp(s[2], s[3]), s[4], std::int64_t(scans.size()), ++rang});
    }

    std::vector<Proposal> proposals() { return makeProposals(*db); }

    std::unique_ptr<Database> db;
};

/// A proposal's fields in the order of the structure.
std::vector<std::string> fields(const Proposal& p)
{
    return {p.art,     p.invNr,   p.artNr, p.beschreibung, p.raumQuarn,    p.raumNeu, p.auftraege,
            p.raeume, p.datei, p.datum, p.uhrzeit,      p.gebaeudeteil, p.beleg};
}

std::vector<std::string> keysOf(const std::vector<Proposal>& all)
{
    std::vector<std::string> keys;
    for (const Proposal& p : all)
        keys.push_back(p.art + " " + p.invNr);
    return keys;
}

// ---------------------------------------------------------------- the kinds' rules

TEST(CorrectionProposals, MovedWithinAnOrderIsALocationChangeWithQuarnsDescriptionFromItsMissingRow)
{
    Result r;
    r.movedWithin("Nord", "I100", "1001", "1002", "Schreibtisch", "A1", "02.03.2026", "10:00:00");
    r.scan("Nord", "i100 ", "1002", "A1", "02.03.2026", "10:00:00", "MDE1.dat");
    const auto all = r.proposals();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(fields(all[0]),
              (std::vector<std::string>{kArtStandort, "I100", "A1", "Schreibtisch", "1001", "1002", "Nord", "1002",
                                        "MDE1.dat", "02.03.2026", "10:00:00", kHaupt, "1001→1002|Nord"}));
}

TEST(CorrectionProposals, MovedBetweenOrdersIsALocationChangeWithTheFindingOrdersScan)
{
    Result r;
    r.movedBetween("I200", "Stuhl", "A2", "Nord", "1001", "Süd", "2001", "03.03.2026", "09:15:00");
    r.scan("Süd", "I200", "2001", "A2", "01.03.2026", "08:00:00", "MDE-alt.dat");
    r.scan("Süd", "I200", "2001", "A2", "03.03.2026", "09:15:00", "MDE2.dat");
    const auto all = r.proposals();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(fields(all[0]),
              (std::vector<std::string>{kArtStandort, "I200", "A2", "Stuhl", "1001", "2001", "Süd", "2001", "MDE2.dat",
                                        "03.03.2026", "09:15:00", kLabor, "1001→2001|Süd"}));
}

TEST(CorrectionProposals, SurplusWhoseQuarnRoomIsKnownIsALocationChange)
{
    Result r;
    r.surplus("West", "3001", "I300", "A3", "Regal", "9001", "04.03.2026", "11:30:00");
    r.scan("West", "I300", "3001", "A3", "04.03.2026", "11:30:00", "West.dat");
    // A surplus row without Quarn's room says nothing of a location.
    r.db->execute("INSERT INTO L_Zuviel (stAuftrag, stRaum, stInvNr, stArtNr, stQuarn) "
                  "VALUES ('West', '3001', 'I301', 'A3', '')");
    const auto all = r.proposals();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(fields(all[0]),
              (std::vector<std::string>{kArtStandort, "I300", "A3", "Regal", "9001", "3001", "West", "3001", "West.dat",
                                        "04.03.2026", "11:30:00", kLager, "9001→3001|West"}));
}

TEST(CorrectionProposals, ANumberUnknownToQuarnIsToBeRecordedWithItsArticlesName)
{
    Result r;
    r.unknown("U500", "A5", "Nord, Süd", "1002", "05.03.2026", "12:00:00");
    r.scan("Nord", "U500", "1002", "A5", "05.03.2026", "12:00:00", "MDE5.dat");
    r.scan("Süd", "U500", "1002", "A5", "06.03.2026", "07:00:00", "MDE6.dat");
    r.article("a5 ", "Monitor");
    r.unknown("U510", "", "Nord", "1001", "05.03.2026", "12:05:00");
    r.article("", "kein Artikel");
    const auto all = r.proposals();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(fields(all[0]),
              (std::vector<std::string>{kArtNeu, "U500", "A5", "Monitor", "", "1002", "Nord, Süd", "1002", "MDE5.dat",
                                        "05.03.2026", "12:00:00", kHaupt, "1002|A5"}));
    // Without an article number there is no name to give.
    EXPECT_EQ(all[1].invNr, "U510");
    EXPECT_EQ(all[1].beschreibung, "");
    EXPECT_EQ(all[1].datei, "");
}

TEST(CorrectionProposals, AnObjectNoOrderFoundIsMissingInQuarnsRoom)
{
    Result r;
    r.missing("I700", "Schrank", "A7", "Süd", "2002");
    const auto all = r.proposals();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(fields(all[0]), (std::vector<std::string>{kArtFehlt, "I700", "A7", "Schrank", "2002", "", "Süd", "2002",
                                                        "", "", "", kLabor, "2002|Süd"}));
}

TEST(CorrectionProposals, AMissingObjectNamesEveryOrderThatMissesIt)
{
    Result r;
    // Nord and Süd both have room 1001; neither found it. The list holds the first order's row.
    for (const char* auftrag : {"Süd", "Nord"})
        r.db->execute("INSERT INTO P_Diff (stAuftrag, stRaumNr, stSollInvNR, stTyp, stBeschreibung, stArtNr) "
                      "VALUES (?1, '1001', 'I720', ?2, 'Schrank', 'A7')",
                      {std::string(auftrag), std::string(category::k3b)});
    r.missing("I720", "Schrank", "A7", "Nord", "1001");
    const auto all = r.proposals();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].auftraege, "Nord, Süd");
    EXPECT_EQ(all[0].beleg, "1001|Nord, Süd");
}

TEST(CorrectionProposals, ANumberScannedInSeveralOrdersInDifferentRoomsIsToBeClarifiedAndNothingElse)
{
    Result r;
    // Quarn has it in West's room 3001; Süd and Nord both found it elsewhere.
    r.db->execute("INSERT INTO P_Diff (stAuftrag, stRaumNr, stSollInvNR, stTyp, stBeschreibung, stArtNr) "
                  "VALUES ('West', '3001', 'I800', ?1, 'Drucker', 'A8')",
                  {std::string(category::k3b)});
    r.movedBetween("I800", "Drucker", "A8", "West", "3001", "Nord", "1001", "01.03.2026", "08:00:00");
    r.movedBetween("I800", "Drucker", "A8", "West", "3001", "Süd", "2001", "07.03.2026", "14:00:00");
    r.twice("I800", {{"Süd", "2001", "07.03.2026", "14:00:00", "Sued.dat"},
                     {"Nord", "1001", "01.03.2026", "08:00:00", "Nord.dat"}});
    const auto all = r.proposals();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(fields(all[0]),
              (std::vector<std::string>{kArtKlaeren, "I800", "A8", "Drucker", "3001", "", "Nord, Süd", "1001, 2001",
                                        "Sued.dat", "07.03.2026", "14:00:00", kLabor, "1001, 2001|Nord, Süd"}));
}

TEST(CorrectionProposals, ANumberScannedTwiceInOneRoomIsNoQuestion)
{
    Result r;
    // Nord and Süd share room 1001: both took the number there; Quarn has it in 1002.
    r.surplus("Süd", "1001", "I810", "A8", "Lampe", "1002", "02.03.2026", "09:00:00");
    r.twice("I810", {{"Süd", "1001", "02.03.2026", "09:00:00", "Sued.dat"},
                     {"Nord", "1001 ", "01.03.2026", "09:00:00", "Nord.dat"}});
    const auto all = r.proposals();
    EXPECT_EQ(keysOf(all), std::vector<std::string>{std::string(kArtStandort) + " I810"});
}

TEST(CorrectionProposals, RoomsNoOrderCheckedGiveNone)
{
    Result r;
    // Room 1003 is "N" in Nord; room 9001 belongs to no order.
    r.movedWithin("Nord", "I400", "1001", "1003", "Tisch", "A4", "02.03.2026", "10:00:00");
    r.surplus("Nord", "9001", "I410", "A4", "Tisch", "1001", "02.03.2026", "10:00:00");
    r.unknown("U600", "A6", "Nord", "1003", "05.03.2026", "12:00:00");
    r.unknown("U610", "A6", "Nord", "9001", "05.03.2026", "12:00:00");
    r.missing("I710", "Schrank", "A7", "Nord", "1003");
    r.missing("I711", "Schrank", "A7", "Nord", "9001");
    // Only one of the rooms it was scanned in is checked: nothing to clarify.
    r.twice("I820", {{"Süd", "2001", "07.03.2026", "14:00:00", "Sued.dat"},
                     {"Nord", "1003", "01.03.2026", "08:00:00", "Nord.dat"}});
    EXPECT_TRUE(r.proposals().empty());
}

TEST(CorrectionProposals, ARoomIsCheckedWhenAnyOrderCheckedIt)
{
    Result r;
    // Süd checked 1001 too (it is "E" there), so 1003 alone stands for Nord's unchecked room.
    r.raum("Süd", "1003", "E", kHaupt);
    r.missing("I710", "Schrank", "A7", "Nord", "1003");
    EXPECT_EQ(keysOf(r.proposals()), std::vector<std::string>{std::string(kArtFehlt) + " I710"});
}

TEST(CorrectionProposals, NumbersCompareIgnoringLetterCaseAndTrailingBlanksOneProposalPerKindAndNumber)
{
    Result r;
    r.movedWithin("Nord", "I100", "1001", "1002", "Schreibtisch", "A1", "02.03.2026", "10:00:00");
    r.scan("Nord", "I100", "1002", "A1", "02.03.2026", "10:00:00", "MDE1.dat");
    // West found the same object in the same room a day later, written in other letters.
    r.movedBetween("i100  ", "Schreibtisch", "A1", "Nord", "1001", "West", "1002 ", "03.03.2026", "09:00:00");
    r.scan("West", "i100", "1002", "A1", "03.03.2026", "09:00:00", "MDE3.dat");
    const auto all = r.proposals();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(fields(all[0]),
              (std::vector<std::string>{kArtStandort, "I100", "A1", "Schreibtisch", "1001", "1002 ", "Nord, West",
                                        "1002 ", "MDE3.dat", "03.03.2026", "09:00:00", kHaupt,
                                        "1001→1002|Nord, West"}));
}

TEST(CorrectionProposals, TheLatestSightingDecidesTheNewRoom)
{
    Result r;
    r.movedWithin("Nord", "I120", "1001", "1002", "Tisch", "A1", "05.03.2026", "10:00:00");
    r.surplus("West", "3001", "I120", "A1", "Tisch", "1001", "02.03.2026", "10:00:00");
    const auto all = r.proposals();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].raumNeu, "1002");
    EXPECT_EQ(all[0].auftraege, "Nord");
    EXPECT_EQ(all[0].beleg, "1001→1002|Nord");
}

TEST(CorrectionProposals, KindsComeInTheirOrderThenByNumber)
{
    Result r;
    r.missing("I702", "Schrank", "A7", "Süd", "2002");
    r.missing("I701", "Schrank", "A7", "Süd", "2002");
    r.unknown("U500", "A5", "Nord", "1002", "05.03.2026", "12:00:00");
    r.surplus("West", "3001", "I300", "A3", "Regal", "9001", "04.03.2026", "11:30:00");
    r.movedBetween("I200", "Stuhl", "A2", "Nord", "1001", "Süd", "2001", "03.03.2026", "09:15:00");
    r.twice("I800", {{"Süd", "2001", "07.03.2026", "14:00:00", "Sued.dat"},
                     {"Nord", "1001", "01.03.2026", "08:00:00", "Nord.dat"}});
    const std::string s = kArtStandort, n = kArtNeu, f = kArtFehlt, k = kArtKlaeren;
    EXPECT_EQ(keysOf(r.proposals()), (std::vector<std::string>{s + " I200", s + " I300", n + " U500", f + " I701",
                                                               f + " I702", k + " I800"}));
}

// ---------------------------------------------------------------- the decisions

class CorrectionDecisionsTest : public ::testing::Test {
protected:
    void SetUp() override { settings.gstProjektPfad = systemPath(dir.path()) + "\\"; }

    std::string file() const { return dir.file(kCorrectionsFile); }

    /// The project result of a stocktake: a move, an unknown number, a missing object.
    static void fill(Result& r, const std::string& neuerRaum = "2001", bool fehltNoch = true)
    {
        r.movedBetween("I200", "Stuhl", "A2", "Nord", "1001", "Süd", neuerRaum, "03.03.2026", "09:15:00");
        r.unknown("U500", "A5", "Nord", "1002", "05.03.2026", "12:00:00");
        if (fehltNoch)
            r.missing("I700", "Schrank", "A7", "Süd", "2002");
    }

    static std::vector<Proposal> proposals(const std::string& neuerRaum = "2001", bool fehltNoch = true)
    {
        Result r;
        fill(r, neuerRaum, fehltNoch);
        return r.proposals();
    }

    static std::map<std::string, ReviewedProposal> byNumber(const std::vector<ReviewedProposal>& reviewed)
    {
        std::map<std::string, ReviewedProposal> m;
        for (const ReviewedProposal& r : reviewed)
            m.emplace(r.proposal.invNr, r);
        return m;
    }

    TempDir dir;
    Settings settings;
};

TEST_F(CorrectionDecisionsTest, TheFileIsMadeInTheProjectFolderWithItsTable)
{
    EXPECT_EQ(correctionsPath(settings), settings.gstProjektPfad + "QInventurKorrekturen.db");
    {
        CorrectionDecisions decisions(settings, false);
    }
    ASSERT_TRUE(fs::exists(file()));
    EXPECT_EQ(sortedNames(dir.path()), std::vector<std::string>{"QInventurKorrekturen.db"});
    auto db = Database::open(file(), true);
    EXPECT_TRUE(db->tableExists("K_Entscheidung"));
    const Recordset columns = db->query("SELECT name FROM pragma_table_info('K_Entscheidung') ORDER BY cid");
    std::vector<std::string> names;
    for (const auto& row : columns.rows())
        names.push_back(toText(row[0]));
    EXPECT_EQ(names, (std::vector<std::string>{"stArt", "stInvNr", "stEntscheidung", "stKommentar", "stPerson",
                                               "stZeit", "stStempel", "stBeleg"}));
}

TEST_F(CorrectionDecisionsTest, ACreationThatWasKilledLeavesNoBrokenFileAndIsMadeAnew)
{
    // What a killed first creation leaves: at most the file under its building name.
    writeFile(dir.file("QInventurKorrekturen.db.neu"), "halb geschrieben");
    {
        CorrectionDecisions decisions(settings, false);
        decisions.decide(proposals(), {{kArtFehlt, "I700"}}, kAngenommen, "", "anna");
    }
    EXPECT_EQ(sortedNames(dir.path()), std::vector<std::string>{"QInventurKorrekturen.db"});
    EXPECT_TRUE(integrityOk(file()));
}

TEST_F(CorrectionDecisionsTest, AFileThatIsNoDatabaseIsReportedAndLeftAsItIs)
{
    writeFile(file(), "kein SQLite");
    try {
        CorrectionDecisions decisions(settings, false);
        FAIL() << "opened";
    } catch (const std::runtime_error& e) {
        const std::string text = e.what();
        EXPECT_EQ(text.rfind("Die Korrekturliste '" + displayPath(file()) + "' kann nicht geöffnet werden. ", 0), 0u)
            << text;
    }
    EXPECT_EQ(readFile(file()), "kein SQLite");
}

TEST_F(CorrectionDecisionsTest, AcceptedAndRejectedProposalsKeepTheirDecisionCommentPersonAndEvidence)
{
    const auto all = proposals();
    CorrectionDecisions decisions(settings, false);
    decisions.decide(all, {{kArtStandort, "I200"}, {kArtNeu, "U500"}}, kAngenommen, "geprüft", "anna");
    decisions.decide(all, {{kArtFehlt, "I700"}}, kAbgelehnt, "steht im Keller", "bernd");
    const auto reviewed = byNumber(decisions.review(all));
    ASSERT_EQ(reviewed.size(), 3u);
    const ReviewedProposal& standort = reviewed.at("I200");
    EXPECT_EQ(standort.entscheidung, kAngenommen);
    ASSERT_TRUE(standort.decision);
    EXPECT_EQ(standort.decision->art, kArtStandort);
    EXPECT_EQ(standort.decision->kommentar, "geprüft");
    EXPECT_EQ(standort.decision->person, "anna");
    EXPECT_EQ(standort.decision->beleg, "1001→2001|Süd");
    const std::string& zeit = standort.decision->zeit;
    ASSERT_EQ(zeit.size(), 19u) << zeit;
    EXPECT_EQ(zeit[2], '.');
    EXPECT_EQ(zeit[5], '.');
    EXPECT_EQ(zeit[13], ':');
    EXPECT_EQ(reviewed.at("U500").entscheidung, kAngenommen);
    EXPECT_EQ(reviewed.at("I700").entscheidung, kAbgelehnt);
    EXPECT_EQ(reviewed.at("I700").decision->person, "bernd");
    EXPECT_EQ(reviewed.at("I700").decision->kommentar, "steht im Keller");
    EXPECT_TRUE(decisions.history(all).empty());
}

TEST_F(CorrectionDecisionsTest, UndecidedProposalsAreOpen)
{
    const auto all = proposals();
    CorrectionDecisions decisions(settings, false);
    for (const ReviewedProposal& r : decisions.review(all)) {
        EXPECT_EQ(r.entscheidung, kOffen);
        EXPECT_FALSE(r.decision);
    }
}

TEST_F(CorrectionDecisionsTest, DecisionsStayWithTheirProposalsInANewResultWithTheSameEvidence)
{
    {
        CorrectionDecisions decisions(settings, false);
        decisions.decide(proposals(), {{kArtStandort, "I200"}}, kAngenommen, "", "anna");
    }
    // A new evaluation: the same evidence, the rows made again (and a further scan elsewhere).
    Result r;
    r.scan("Nord", "X1", "1001", "", "09.03.2026", "08:00:00", "Neu.dat");
    fill(r);
    CorrectionDecisions decisions(settings, false);
    const auto reviewed = byNumber(decisions.review(r.proposals()));
    EXPECT_EQ(reviewed.at("I200").entscheidung, kAngenommen);
    EXPECT_EQ(reviewed.at("U500").entscheidung, kOffen);
}

TEST_F(CorrectionDecisionsTest, AProposalWhoseRoomChangedIsMarkedWithItsOldDecisionBeside)
{
    {
        CorrectionDecisions decisions(settings, false);
        decisions.decide(proposals(), {{kArtStandort, "I200"}}, kAbgelehnt, "falsch gelesen", "anna");
    }
    CorrectionDecisions decisions(settings, false);
    const auto changed = proposals("2002");
    const auto reviewed = byNumber(decisions.review(changed));
    const ReviewedProposal& r = reviewed.at("I200");
    EXPECT_EQ(r.entscheidung, kGeaendert);
    EXPECT_EQ(std::string(kGeaendert), "geändert – bitte prüfen");
    ASSERT_TRUE(r.decision);
    EXPECT_EQ(r.decision->entscheidung, kAbgelehnt);
    EXPECT_EQ(r.decision->kommentar, "falsch gelesen");
    EXPECT_EQ(r.decision->beleg, "1001→2001|Süd");
    EXPECT_EQ(r.proposal.beleg, "1001→2002|Süd");
    // Deciding it again takes the new evidence.
    decisions.decide(changed, {{kArtStandort, "I200"}}, kAngenommen, "", "anna");
    EXPECT_EQ(byNumber(decisions.review(changed)).at("I200").entscheidung, kAngenommen);
}

TEST_F(CorrectionDecisionsTest, AProposalThatDisappearedKeepsItsDecisionInTheHistory)
{
    {
        CorrectionDecisions decisions(settings, false);
        decisions.decide(proposals(), {{kArtFehlt, "I700"}}, kAngenommen, "ausbuchen", "anna");
        decisions.decide(proposals(), {{kArtNeu, "U500"}}, kAbgelehnt, "", "bernd");
    }
    // The missing object was found after all.
    const auto now = proposals("2001", false);
    CorrectionDecisions decisions(settings, false);
    EXPECT_EQ(decisions.review(now).size(), 2u);
    const auto gone = decisions.history(now);
    ASSERT_EQ(gone.size(), 1u);
    EXPECT_EQ(gone[0].art, kArtFehlt);
    EXPECT_EQ(gone[0].invNr, "I700");
    EXPECT_EQ(gone[0].entscheidung, kAngenommen);
    EXPECT_EQ(gone[0].kommentar, "ausbuchen");
    EXPECT_EQ(gone[0].beleg, "2002|Süd");
    // When it shows again, its decision is there again.
    EXPECT_EQ(byNumber(decisions.review(proposals())).at("I700").entscheidung, kAngenommen);
    EXPECT_TRUE(decisions.history(proposals()).empty());
}

TEST_F(CorrectionDecisionsTest, TheHistoryListsTheNewestDecisionFirst)
{
    Settings s = settings;
    {
        CorrectionDecisions decisions(s, false);
        decisions.decide(proposals(), {{kArtFehlt, "I700"}}, kAngenommen, "", "anna");
    }
    // A decision made later (its time stamp written as a later one).
    {
        CorrectionDecisions decisions(s, false);
        decisions.decide(proposals(), {{kArtNeu, "U500"}}, kAngenommen, "", "anna");
    }
    {
        auto db = Database::open(file());
        db->execute("UPDATE K_Entscheidung SET stStempel = '2099-01-01 00:00:00' WHERE stInvNr = 'U500'");
        db->execute("UPDATE K_Entscheidung SET stStempel = '2000-01-01 00:00:00' WHERE stInvNr = 'I700'");
    }
    CorrectionDecisions decisions(s, false);
    const auto gone = decisions.history({});
    ASSERT_EQ(gone.size(), 2u);
    EXPECT_EQ(gone[0].invNr, "U500");
    EXPECT_EQ(gone[1].invNr, "I700");
}

TEST_F(CorrectionDecisionsTest, NumbersAreFoundIgnoringLetterCaseAndTrailingBlanks)
{
    const auto all = proposals();
    CorrectionDecisions decisions(settings, false);
    decisions.decide(all, {{kArtStandort, "i200  "}}, kAngenommen, "", "anna");
    EXPECT_EQ(byNumber(decisions.review(all)).at("I200").entscheidung, kAngenommen);
    // Kept under the proposal's own spelling.
    auto db = Database::open(file(), true);
    EXPECT_EQ(toText(db->scalar("SELECT stInvNr FROM K_Entscheidung")), "I200");
    // A proposal whose number is written otherwise in a new result keeps its decision.
    Result r;
    r.movedBetween("i200 ", "Stuhl", "A2", "Nord", "1001", "Süd", "2001", "03.03.2026", "09:15:00");
    EXPECT_EQ(decisions.review(r.proposals()).at(0).entscheidung, kAngenommen);
    // The kind must match: the same number under another kind is another proposal.
    EXPECT_THROW(decisions.decide(all, {{kArtNeu, "I200"}}, kAngenommen, "", "anna"), std::runtime_error);
}

TEST_F(CorrectionDecisionsTest, ABulkDecisionWithAnUnknownNumberDecidesNothing)
{
    const auto all = proposals();
    CorrectionDecisions decisions(settings, false);
    decisions.decide(all, {{kArtFehlt, "I700"}}, kAbgelehnt, "alt", "anna");
    try {
        decisions.decide(all, {{kArtStandort, "I200"}, {kArtFehlt, "I999"}, {kArtFehlt, "I700"}}, kAngenommen, "neu",
                         "bernd");
        FAIL() << "decided";
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(std::string(e.what()),
                  "Zur Inventarnummer 'I999' gibt es keinen Vorschlag 'Fehlt'. Es wurde nichts entschieden.");
    }
    const auto reviewed = byNumber(decisions.review(all));
    EXPECT_EQ(reviewed.at("I200").entscheidung, kOffen);
    EXPECT_EQ(reviewed.at("I700").entscheidung, kAbgelehnt);
    EXPECT_EQ(reviewed.at("I700").decision->kommentar, "alt");
}

TEST_F(CorrectionDecisionsTest, ABulkDecisionFailingInTheMiddleLeavesEveryDecisionAsItWas)
{
    const auto all = proposals();
    CorrectionDecisions decisions(settings, false);
    decisions.decide(all, {{kArtFehlt, "I700"}}, kAbgelehnt, "alt", "anna");
    {
        // A trigger of the test's own refuses the second row that is written.
        auto db = Database::open(file());
        db->execute("CREATE TRIGGER stop BEFORE UPDATE ON K_Entscheidung BEGIN SELECT RAISE(ABORT, 'Halt'); END");
    }
    EXPECT_ANY_THROW(
        decisions.decide(all, {{kArtStandort, "I200"}, {kArtFehlt, "I700"}}, kAngenommen, "neu", "bernd"));
    const auto reviewed = byNumber(decisions.review(all));
    EXPECT_EQ(reviewed.at("I200").entscheidung, kOffen);
    EXPECT_EQ(reviewed.at("I700").entscheidung, kAbgelehnt);
}

TEST_F(CorrectionDecisionsTest, OpenRemovesTheDecision)
{
    const auto all = proposals();
    CorrectionDecisions decisions(settings, false);
    decisions.decide(all, {{kArtStandort, "I200"}, {kArtNeu, "U500"}}, kAngenommen, "ja", "anna");
    decisions.decide(all, {{kArtStandort, "I200"}}, kOffen, "", "anna");
    const auto reviewed = byNumber(decisions.review(all));
    EXPECT_EQ(reviewed.at("I200").entscheidung, kOffen);
    EXPECT_FALSE(reviewed.at("I200").decision);
    EXPECT_EQ(reviewed.at("U500").entscheidung, kAngenommen);
    // Gone, not kept in the history.
    EXPECT_EQ(decisions.history({}).size(), 1u);
    auto db = Database::open(file(), true);
    EXPECT_EQ(toLong(db->scalar("SELECT COUNT(*) FROM K_Entscheidung")), 1);
}

TEST_F(CorrectionDecisionsTest, AnUnknownDecisionIsRefused)
{
    CorrectionDecisions decisions(settings, false);
    try {
        decisions.decide(proposals(), {{kArtFehlt, "I700"}}, "vielleicht", "", "anna");
        FAIL() << "decided";
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(std::string(e.what()), "'vielleicht' ist keine Entscheidung (angenommen, abgelehnt oder offen).");
    }
    EXPECT_EQ(decisions.review(proposals()).at(0).entscheidung, kOffen);
}

TEST_F(CorrectionDecisionsTest, ReadOnlyItShowsTheDecisionsAndRefusesToChangeThem)
{
    const auto all = proposals();
    {
        CorrectionDecisions decisions(settings, false);
        decisions.decide(all, {{kArtFehlt, "I700"}}, kAngenommen, "", "anna");
    }
    const std::string before = readFile(file());
    CorrectionDecisions decisions(settings, true);
    EXPECT_EQ(byNumber(decisions.review(all)).at("I700").entscheidung, kAngenommen);
    try {
        decisions.decide(all, {{kArtFehlt, "I700"}}, kAbgelehnt, "", "bernd");
        FAIL() << "decided";
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(std::string(e.what()), "Das Projekt ist nur zum Lesen geöffnet: Entscheidungen der Korrekturliste "
                                         "können nicht geändert werden.");
    }
    EXPECT_EQ(readFile(file()), before);
}

TEST_F(CorrectionDecisionsTest, ReadOnlyWithoutAFileNothingIsMadeAndEverythingIsOpen)
{
    CorrectionDecisions decisions(settings, true);
    EXPECT_FALSE(fs::exists(file()));
    for (const ReviewedProposal& r : decisions.review(proposals()))
        EXPECT_EQ(r.entscheidung, kOffen);
    EXPECT_TRUE(decisions.history(proposals()).empty());
    EXPECT_THROW(decisions.decide(proposals(), {{kArtFehlt, "I700"}}, kAngenommen, "", "anna"), std::runtime_error);
    EXPECT_TRUE(sortedNames(dir.path()).empty());
}

TEST_F(CorrectionDecisionsTest, TheFileIsReadWithTheJetComparisonOfEveryFileOfOurs)
{
    {
        CorrectionDecisions decisions(settings, false);
        decisions.decide(proposals(), {{kArtFehlt, "I700"}}, kAngenommen, "", "anna");
    }
    auto db = Database::open(file(), true);
    EXPECT_EQ(toLong(db->scalar("SELECT COUNT(*) FROM K_Entscheidung WHERE stInvNr = 'i700  ' AND stArt = 'fehlt'")),
              1);
}

TEST(CorrectionTexts, EveryTextOfTheCorrectionList)
{
    EXPECT_STREQ(kCorrectionsFile, "QInventurKorrekturen.db");
    EXPECT_STREQ(kArtStandort, "Standort ändern");
    EXPECT_STREQ(kArtNeu, "Neu erfassen");
    EXPECT_STREQ(kArtFehlt, "Fehlt");
    EXPECT_STREQ(kArtKlaeren, "Klären");
    EXPECT_STREQ(kOffen, "offen");
    EXPECT_STREQ(kAngenommen, "angenommen");
    EXPECT_STREQ(kAbgelehnt, "abgelehnt");
    EXPECT_STREQ(kGeaendert, "geändert – bitte prüfen");
    EXPECT_EQ(cannotOpenCorrectionsMessage("/p/QInventurKorrekturen.db", "Die Datei ist keine Datenbank."),
              "Die Korrekturliste '" + displayPath("/p/QInventurKorrekturen.db") +
                  "' kann nicht geöffnet werden. Die Datei ist keine Datenbank.");
    EXPECT_EQ(cannotCreateCorrectionsMessage("/p/QInventurKorrekturen.db", ""),
              "Die Korrekturliste '" + displayPath("/p/QInventurKorrekturen.db") + "' kann nicht angelegt werden.");
    EXPECT_EQ(readOnlyCorrectionsMessage(),
              "Das Projekt ist nur zum Lesen geöffnet: Entscheidungen der Korrekturliste können nicht geändert werden.");
    EXPECT_EQ(unknownProposalMessage("Klären", "X1"),
              "Zur Inventarnummer 'X1' gibt es keinen Vorschlag 'Klären'. Es wurde nichts entschieden.");
    EXPECT_EQ(unknownDecisionMessage("ja"), "'ja' ist keine Entscheidung (angenommen, abgelehnt oder offen).");
}

TEST(CorrectionTexts, ThePersonIsTheUserRunningTheProgram)
{
    EXPECT_EQ(correctionPerson(), ProjectLock::self().user);
    EXPECT_FALSE(correctionPerson().empty());
}

TEST_F(CorrectionDecisionsTest, AFolderThatCantBeWrittenIsReported)
{
    settings.gstProjektPfad = systemPath(dir.file("fehlt")) + "\\";
    try {
        CorrectionDecisions decisions(settings, false);
        FAIL() << "made";
    } catch (const std::runtime_error& e) {
        const std::string text = e.what();
        EXPECT_EQ(text.rfind("Die Korrekturliste '" + displayPath(dir.file("fehlt/QInventurKorrekturen.db")) +
                                 "' kann nicht angelegt werden.",
                             0),
                  0u)
            << text;
    }
    EXPECT_FALSE(fs::exists(dir.file("fehlt")));
}

} // namespace
} // namespace qi::test
