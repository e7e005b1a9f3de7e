// The project result of the orders of a demo project, built as a user builds them (orders,
// rooms, the demo's scanner files, evaluations): each order's figures are those its
// evaluation gives, an order whose list no longer fits its data is evaluated afresh on a
// copy, and computing the result writes nothing anywhere.

#include "ProjectOverview.h"

#include "CutOffChange.h"
#include "DemoInstallation.h"
#include "DemoOrderRooms.h"
#include "FileDigests.h"
#include "FileSystem.h"
#include "KeptOrders.h"
#include "OrderSource.h"
#include "Orders.h"
#include "ProjectHints.h"
#include "ProjectResultSchema.h"
#include "QuarnHost.h"
#include "QuarnRooms.h"
#include "ReportDatabase.h"
#include "ReportLinks.h"
#include "ScanTime.h"
#include "Startup.h"
#include "TestSupport.h"
#include "frmWork.h"

#include <filesystem>
#include <functional>
#include <map>
#include <set>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

/// An order's figures as P_Auftrag holds them, or as the test counts them in the order's database.
struct Counts {
    std::int64_t raeume = 0, raeumeN = 0, raeumeE = 0, raeumeL = 0, dateien = 0, scans = 0, soll = 0, amPlatz = 0;
    std::map<std::string, std::int64_t> perTyp;
    bool operator==(const Counts&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Counts& c)
{
    os << "Räume " << c.raeume << " N " << c.raeumeN << " E " << c.raeumeE << " L " << c.raeumeL << " Dateien "
       << c.dateien << " Scans " << c.scans << " Soll " << c.soll << " am Platz " << c.amPlatz;
    for (const auto& [typ, n] : c.perTyp)
        os << " [" << typ.substr(0, 2) << "] " << n;
    return os;
}

constexpr const char* kTypes[] = {"1 OK",
                                  "2a Zuviel im Raum (verschoben aus anderem Raum des Auftrags)",
                                  "2b Zuviel im Auftrag (gehört in einen Raum außerhalb des Auftrags)",
                                  "2c Nicht in Quarn erfasst",
                                  "3a Fehlt im Raum (verschoben in anderen Raum des Auftrags)",
                                  "3b Fehlt im Auftrag (bisher). Könnte noch in diesem oder in anderem Auftrag "
                                  "auftauchen."};
constexpr const char* kTypeColumns[] = {"i1", "i2a", "i2b", "i2c", "i3a", "i3b"};

std::int64_t number(Database& db, const std::string& sql, const std::vector<Value>& params = {})
{
    return toLong(db.scalar(sql, params));
}

double real(const Value& v) { return std::holds_alternative<double>(v) ? std::get<double>(v) : double(toLong(v)); }

std::string text(Database& db, const std::string& sql, const std::vector<Value>& params = {})
{
    return toText(db.scalar(sql, params));
}

/// What a hint row says.
struct Hint {
    std::string auftrag, art, text, datei;
    bool operator<(const Hint& o) const
    {
        return std::tie(auftrag, art, text, datei) < std::tie(o.auftrag, o.art, o.text, o.datei);
    }
    bool operator==(const Hint&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Hint& h)
{
    return os << "{" << h.auftrag << " | " << h.art << " | " << h.text << " | " << h.datei << "}";
}

class ProjectOverviewTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        program = dir.path() + "/Programm";
        project = dir.path() + "/Demo";
        ASSERT_TRUE(createFolder(program));
        createReportDatabase(program + "/QInventurRpt.mdb");
        demo::writeDemoProject(demo::smallSizes(), project, "");
        makeRegisterDatabase(project + "/QInventur.mdb");
        makeOrderDatabase(project + "/QAuftrag.mdb");
        inst = demo::buildInstallation(demo::smallSizes());
        scanFiles = demo::scannerFiles(inst, 0);
        ASSERT_GE(scanFiles.size(), 2u);
        rooms = groundFloorRooms(inst, scanFiles);
        ASSERT_FALSE(rooms.empty());

        settings.gstProjektPfad = project + "/";
        settings.gstProjekttyp = "ptJet";
        settings.gstAppPfad = program;
        settings.giModul = 0;
        // The program's reports read a copy of their own, as in the windows and the command line.
        settings.privateReportDatabase = std::make_shared<PrivateReportDatabase>();
        reg.setDbPath(project + "/QInventur.mdb");
        ASSERT_TRUE(reg.OpenDb()) << reg.LastError();
        std::string error;
        geb = openBuildingComponent(settings, &error);
        ASSERT_EQ(error, "");
    }

    void createOrder(const std::string& name)
    {
        CAuftragRec rec;
        rec.stBezeichung = name;
        rec.stErsteller = "Meier";
        ASSERT_EQ(CreateOrder(reg, settings, ui, rec), OrderResult::Done);
    }

    /// Opens the order for work as the main window does (its report databases relinked) and runs `fn`.
    void work(const std::string& name, const std::function<void(frmWork&, CAuftragDb&)>& fn)
    {
        CAuftragRecColl rows;
        ASSERT_TRUE(reg.ReadAllAuftragRec2Coll(rows));
        CAuftragRec* rec = findOrder(rows, name);
        ASSERT_NE(rec, nullptr);
        CAuftragDb db(ui);
        ASSERT_EQ(OpenOrderDatabase(reg, settings, ui, *rec, db, OrderAccess::Work), OrderResult::Done);
        frmWork w(db, settings, ui);
        w.f_QGebDb = geb.get();
        fn(w, db);
        db.CloseDb();
    }

    void addRooms(const std::string& name, const std::vector<demo::Room>& which)
    {
        work(name, [&](frmWork&, CAuftragDb& db) { ASSERT_EQ(addOrderRooms(db, which, name), ""); });
    }

    void addFile(const std::string& name, const std::string& path)
    {
        work(name, [&](frmWork& w, CAuftragDb&) {
            ASSERT_EQ(w.RoomsSelected(), FileListResult::Done);
            ASSERT_EQ(w.AddDataFile(path), FileListResult::Done);
        });
    }

    void evaluate(const std::string& name)
    {
        work(name, [&](frmWork& w, CAuftragDb&) { ASSERT_TRUE(w.ReportDifferenzListe()); });
    }

    /// An order of the ground-floor rooms with the demo's two ground-floor files.
    void groundFloorOrder(const std::string& name)
    {
        createOrder(name);
        addRooms(name, rooms);
        addFile(name, scanPath(0));
        addFile(name, scanPath(1));
    }

    std::string scanPath(std::size_t i) const { return project + "/" + scanFiles.at(i).name; }
    std::string orderFile(const std::string& name) const { return project + "/Inventur/" + name + ".mdb"; }

    std::unique_ptr<Database> compute(bool fresh = true)
    {
        OverviewOptions options;
        options.freshEvaluation = fresh;
        return computeProjectResult(settings, *geb, options);
    }

    /// The order's figures as the test counts them in its database.
    static Counts countsOfFile(const std::string& file)
    {
        auto db = Database::open(file, true);
        Counts c;
        c.raeume = number(*db, "SELECT COUNT(*) FROM T_Raum");
        c.raeumeN = number(*db, "SELECT COUNT(*) FROM T_Raum WHERE ststatus = 'N'");
        c.raeumeE = number(*db, "SELECT COUNT(*) FROM T_Raum WHERE ststatus = 'E'");
        c.raeumeL = number(*db, "SELECT COUNT(*) FROM T_Raum WHERE ststatus = 'L'");
        c.dateien = number(*db, "SELECT COUNT(*) FROM T_Dateien");
        c.scans = number(*db, "SELECT COUNT(*) FROM T_DatInventur");
        c.soll = number(*db, "SELECT COUNT(*) FROM T_Differenzliste WHERE stSollInvNR <> ''");
        c.amPlatz = number(*db, "SELECT COUNT(*) FROM T_Differenzliste WHERE stTyp = '1 OK'");
        // As `qinventur-cli auswerten` counts them.
        const Recordset rows = db->query(
            "SELECT stTyp, COUNT(*) FROM T_Differenzliste WHERE stTyp <> '' GROUP BY stTyp ORDER BY stTyp");
        for (const auto& row : rows.rows())
            c.perTyp[toText(row[0])] = toLong(row[1]);
        return c;
    }

    /// The order's figures as the project result holds them.
    static Counts countsOfResult(Database& result, const std::string& order)
    {
        Counts c;
        const Recordset rows = result.query("SELECT iRaeume, iRaeumeN, iRaeumeE, iRaeumeL, iDateien, iScans, iSoll, "
                                            "iAmPlatz, i1, i2a, i2b, i2c, i3a, i3b FROM P_Auftrag WHERE stAuftrag = ?1",
                                            {order});
        EXPECT_EQ(rows.size(), 1u) << order;
        if (rows.size() != 1)
            return c;
        const auto& r = rows.rows()[0];
        c.raeume = toLong(r[0]);
        c.raeumeN = toLong(r[1]);
        c.raeumeE = toLong(r[2]);
        c.raeumeL = toLong(r[3]);
        c.dateien = toLong(r[4]);
        c.scans = toLong(r[5]);
        c.soll = toLong(r[6]);
        c.amPlatz = toLong(r[7]);
        for (std::size_t i = 0; i < 6; ++i)
            if (toLong(r[8 + i]) > 0)
                c.perTyp[kTypes[i]] = toLong(r[8 + i]);
        return c;
    }

    static std::string stand(Database& result, const std::string& order)
    {
        return text(result, "SELECT stStand FROM P_Auftrag WHERE stAuftrag = ?1", {order});
    }

    static std::vector<Hint> hints(Database& result, const std::string& art)
    {
        std::vector<Hint> out;
        const Recordset rows = result.query(
            "SELECT stAuftrag, stArt, stText, stDatei FROM L_Hinweis WHERE stArt = ?1 ORDER BY rowid", {art});
        for (const auto& r : rows.rows())
            out.push_back({toText(r[0]), toText(r[1]), toText(r[2]), toText(r[3])});
        return out;
    }

    /// The difference list's rows with their room, sorted.
    static std::multiset<std::string> listOfFile(const std::string& file)
    {
        auto db = Database::open(file, true);
        std::multiset<std::string> out;
        const Recordset rows = db->query(
            "SELECT coalesce(r.stRaumNr, ''), d.stSollInvNR, d.stIstInvNR, d.stTyp, d.stZiel, d.stQuelle, d.stQuarn, "
            "d.Datum, d.Uhrzeit FROM T_Differenzliste AS d LEFT JOIN T_Raum AS r ON r.lID = d.lRaumID");
        for (const auto& r : rows.rows())
            out.insert(toText(r[0]) + "|" + toText(r[1]) + "|" + toText(r[2]) + "|" + toText(r[3]) + "|" +
                       toText(r[4]) + "|" + toText(r[5]) + "|" + toText(r[6]) + "|" + toText(r[7]) + "|" +
                       toText(r[8]));
        return out;
    }

    static std::multiset<std::string> listOfResult(Database& result, const std::string& order)
    {
        std::multiset<std::string> out;
        const Recordset rows = result.query("SELECT stRaumNr, stSollInvNR, stIstInvNR, stTyp, stZiel, stQuelle, "
                                            "stQuarn, Datum, Uhrzeit FROM P_Diff WHERE stAuftrag = ?1",
                                            {order});
        for (const auto& r : rows.rows())
            out.insert(toText(r[0]) + "|" + toText(r[1]) + "|" + toText(r[2]) + "|" + toText(r[3]) + "|" +
                       toText(r[4]) + "|" + toText(r[5]) + "|" + toText(r[6]) + "|" + toText(r[7]) + "|" +
                       toText(r[8]));
        return out;
    }

    /// A room of the installation outside the ground floor that Quarn expects objects in.
    demo::Room roomOutside() const
    {
        std::set<std::int32_t> inOrder;
        for (const demo::Room& r : rooms)
            inOrder.insert(r.id);
        for (const demo::Room& r : inst.rooms)
            if (!inOrder.count(r.id) && !inst.objectsOfRoom(0, r.id).empty())
                return r;
        ADD_FAILURE() << "no room outside the order";
        return {};
    }

    TempDir dir;
    std::string program, project;
    demo::Installation inst;
    std::vector<demo::ScanFile> scanFiles;
    std::vector<demo::Room> rooms;
    Settings settings;
    ScriptedUserInteraction ui;
    CInventurDb reg;
    std::unique_ptr<QGebDb> geb;
};

// ---------------------------------------------------------------- figures of an order

TEST_F(ProjectOverviewTest, AnEvaluatedOrdersFiguresAreThoseOfItsDifferenceListAndItsRooms)
{
    groundFloorOrder("EG");
    evaluate("EG");
    const auto result = compute();
    const Counts counts = countsOfFile(orderFile("EG"));
    ASSERT_FALSE(counts.perTyp.empty());
    EXPECT_EQ(countsOfResult(*result, "EG"), counts);
    EXPECT_EQ(counts.raeume, std::int64_t(rooms.size()));
    EXPECT_EQ(counts.dateien, 2);
    EXPECT_EQ(stand(*result, "EG"), kStandAktuell);
    EXPECT_EQ(listOfResult(*result, "EG"), listOfFile(orderFile("EG")));
    EXPECT_TRUE(hints(*result, kHinweisVeraltet).empty());
    EXPECT_TRUE(hints(*result, kHinweisNieAusgewertet).empty());
    EXPECT_TRUE(hints(*result, kHinweisRaeumeN).empty());

    // Quarn's objects per room, counted in the installation itself.
    std::int64_t expected = 0;
    auto order = Database::open(orderFile("EG"), true);
    for (const demo::Room& r : rooms) {
        const std::int64_t objects = std::int64_t(inst.objectsOfRoom(0, r.id).size());
        expected += objects;
        const Recordset row = result->query("SELECT iErwartet, iAmPlatz, iGescannt, stBezeichnung, stStatus, "
                                            "dProzent, stLetzterScan FROM P_Raum WHERE stAuftrag = 'EG' AND "
                                            "lIdRB = ?1",
                                            {std::int64_t(r.id)});
        ASSERT_EQ(row.size(), 1u) << r.nr;
        const auto& v = row.rows()[0];
        EXPECT_EQ(toLong(v[0]), objects) << r.nr;
        const std::int64_t ok =
            number(*order,
                   "SELECT COUNT(*) FROM T_Differenzliste AS d JOIN T_Raum AS r ON r.lID = d.lRaumID "
                   "WHERE r.lIdRB = ?1 AND d.stTyp = '1 OK'",
                   {std::int64_t(r.id)});
        EXPECT_EQ(toLong(v[1]), ok) << r.nr;
        EXPECT_EQ(toLong(v[2]), number(*order, "SELECT COUNT(*) FROM T_DatInventur WHERE stRaum = ?1", {r.nr}))
            << r.nr;
        EXPECT_EQ(toText(v[3]), r.name);
        EXPECT_EQ(toText(v[4]), "E");
        EXPECT_DOUBLE_EQ(std::get<double>(v[5]), objects ? 100.0 * double(ok) / double(objects) : 0.0);
        std::string last;
        const Recordset scans = order->query("SELECT Datum, Uhrzeit FROM T_DatInventur WHERE stRaum = ?1", {r.nr});
        for (const auto& s : scans.rows())
            last = std::max(last, scanTime(toText(s[0]), toText(s[1])));
        EXPECT_EQ(toText(v[6]), last) << r.nr;
    }
    EXPECT_EQ(number(*result, "SELECT iErwartet FROM P_Auftrag WHERE stAuftrag = 'EG'"), expected);
    EXPECT_EQ(number(*result, "SELECT COUNT(*) FROM P_Raum"), std::int64_t(rooms.size()));
    EXPECT_DOUBLE_EQ(real(result->scalar("SELECT dRaeumeFertig FROM P_Auftrag")), 100.0);
    EXPECT_DOUBLE_EQ(real(result->scalar("SELECT dProzent FROM P_Auftrag")),
                     100.0 * double(counts.amPlatz) / double(expected));

    // Every scan line with its file and time.
    EXPECT_EQ(number(*result, "SELECT COUNT(*) FROM P_Scan WHERE stAuftrag = 'EG'"), counts.scans);
    const Recordset scans = order->query("SELECT s.stInvNr, s.stRaum, s.Datum, s.Uhrzeit, f.stName FROM "
                                         "T_DatInventur AS s JOIN T_Dateien AS f ON f.lID = s.lDatID");
    ASSERT_EQ(std::int64_t(scans.size()), counts.scans);
    std::string last;
    for (const auto& s : scans.rows()) {
        const std::string zeit = scanTime(toText(s[2]), toText(s[3]));
        last = std::max(last, zeit);
        EXPECT_EQ(number(*result,
                         "SELECT COUNT(*) FROM P_Scan WHERE stInvNr = ?1 AND stRaum = ?2 AND stZeit = ?3 AND "
                         "stDatei = ?4",
                         {s[0], s[1], zeit, s[4]}),
                  1)
            << toText(s[0]);
    }
    EXPECT_EQ(text(*result, "SELECT stLetzterScan FROM P_Auftrag"), last);
    EXPECT_EQ(last.size(), 19u);
}

TEST_F(ProjectOverviewTest, AnOrderNeverEvaluatedGetsTheFiguresItsEvaluationGivesWithoutBeingChanged)
{
    groundFloorOrder("EG");
    const FileDigests before = digestFiles(project);
    const auto result = compute();
    EXPECT_EQ(changedFiles(before, digestFiles(project)), "");
    EXPECT_EQ(stand(*result, "EG"), kStandNie);
    EXPECT_EQ(hints(*result, kHinweisNieAusgewertet),
              std::vector<Hint>({{"EG", kHinweisNieAusgewertet, hinweis::nieAusgewertet("EG", true),
                                  orderFile("EG")}}));
    EXPECT_EQ(countsOfFile(orderFile("EG")).perTyp.size(), 0u);

    // The order's own evaluation, made now, gives what the overview gave.
    evaluate("EG");
    const Counts counts = countsOfFile(orderFile("EG"));
    ASSERT_FALSE(counts.perTyp.empty());
    EXPECT_EQ(countsOfResult(*result, "EG"), counts);
    EXPECT_EQ(listOfResult(*result, "EG"), listOfFile(orderFile("EG")));
    EXPECT_EQ(stand(*compute(), "EG"), kStandAktuell);

    // Without fresh evaluations such an order shows no list, and says so.
    ASSERT_NO_FATAL_FAILURE(createOrder("OG"));
    ASSERT_NO_FATAL_FAILURE(addRooms("OG", {roomOutside()}));
    work("OG", [](frmWork&, CAuftragDb& db) { db.database()->execute("UPDATE T_Raum SET ststatus = 'L'"); });
    const auto stored = compute(false);
    EXPECT_EQ(stand(*stored, "OG"), kStandNie);
    EXPECT_EQ(number(*stored, "SELECT COUNT(*) FROM P_Diff WHERE stAuftrag = 'OG'"), 0);
    EXPECT_EQ(hints(*stored, kHinweisNieAusgewertet),
              std::vector<Hint>({{"OG", kHinweisNieAusgewertet, hinweis::nieAusgewertet("OG", false),
                                  orderFile("OG")}}));
}

// ---------------------------------------------------------------- a list that no longer fits

TEST_F(ProjectOverviewTest, AListIsStaleWhenScansOrRoomsChangedAfterItWasMade)
{
    createOrder("EG");
    addRooms("EG", rooms);
    addFile("EG", scanPath(0));
    evaluate("EG");
    EXPECT_EQ(stand(*compute(), "EG"), kStandAktuell);

    // A scanner file added after the evaluation.
    addFile("EG", scanPath(1));
    const Counts storedCounts = countsOfFile(orderFile("EG"));
    {
        const auto result = compute();
        EXPECT_EQ(stand(*result, "EG"), kStandNeu);
        EXPECT_EQ(hints(*result, kHinweisVeraltet),
                  std::vector<Hint>({{"EG", kHinweisVeraltet, hinweis::veraltet("EG", true), orderFile("EG")}}));
        const auto stored = compute(false);
        EXPECT_EQ(stand(*stored, "EG"), kStandNeu);
        EXPECT_EQ(countsOfResult(*stored, "EG"), storedCounts);
        EXPECT_EQ(hints(*stored, kHinweisVeraltet),
                  std::vector<Hint>({{"EG", kHinweisVeraltet, hinweis::veraltet("EG", false), orderFile("EG")}}));
        evaluate("EG");
        EXPECT_NE(countsOfFile(orderFile("EG")), storedCounts);
        EXPECT_EQ(countsOfResult(*result, "EG"), countsOfFile(orderFile("EG")));
        EXPECT_EQ(listOfResult(*result, "EG"), listOfFile(orderFile("EG")));
    }
    EXPECT_EQ(stand(*compute(), "EG"), kStandAktuell);

    // A room without scan data is not evaluated: the list still fits, and the room is told.
    const demo::Room extra = roomOutside();
    addRooms("EG", {extra});
    {
        const auto result = compute();
        EXPECT_EQ(stand(*result, "EG"), kStandAktuell);
        EXPECT_EQ(hints(*result, kHinweisRaeumeN),
                  std::vector<Hint>({{"EG", kHinweisRaeumeN, hinweis::raeumeN("EG", 1), orderFile("EG")}}));
        EXPECT_EQ(number(*result, "SELECT iRaeumeN FROM P_Auftrag"), 1);
        EXPECT_EQ(number(*result, "SELECT iErwartet FROM P_Raum WHERE lIdRB = ?1", {std::int64_t(extra.id)}),
                  std::int64_t(inst.objectsOfRoom(0, extra.id).size()));
    }

    // The room marked "L" is to be evaluated: its objects are missing from the list.
    work("EG", [&](frmWork&, CAuftragDb& db) {
        db.database()->execute("UPDATE T_Raum SET ststatus = 'L' WHERE lIdRB = ?1", {std::int64_t(extra.id)});
    });
    {
        const auto result = compute();
        EXPECT_EQ(stand(*result, "EG"), kStandNeu);
        EXPECT_EQ(number(*result, "SELECT iRaeumeL FROM P_Auftrag"), 1);
        evaluate("EG");
        EXPECT_EQ(countsOfResult(*result, "EG"), countsOfFile(orderFile("EG")));
    }
    EXPECT_EQ(stand(*compute(), "EG"), kStandAktuell);

    // A scan line taken out of the order.
    work("EG", [&](frmWork&, CAuftragDb& db) {
        db.database()->execute("DELETE FROM T_DatInventur WHERE lID = (SELECT MIN(lID) FROM T_DatInventur)");
    });
    EXPECT_EQ(stand(*compute(), "EG"), kStandNeu);

    // Numbers and room numbers compare as the order database compares them: blanks at the end
    // and letter case don't make a list stale.
    evaluate("EG");
    work("EG", [&](frmWork&, CAuftragDb& db) {
        db.database()->execute("UPDATE T_DatInventur SET stInvNr = upper(stInvNr) || '  ', stRaum = stRaum || ' '");
        db.database()->execute("UPDATE T_Differenzliste SET stIstInvNR = lower(stIstInvNR) WHERE stIstInvNR <> ''");
    });
    EXPECT_EQ(stand(*compute(), "EG"), kStandAktuell);

    // A scan taken to another evaluated room of the order.
    work("EG", [&](frmWork&, CAuftragDb& db) {
        db.database()->execute("UPDATE T_DatInventur SET stRaum = (SELECT r.stRaumNr FROM T_Raum AS r "
                               "WHERE r.ststatus <> 'N' AND r.stRaumNr <> T_DatInventur.stRaum LIMIT 1) "
                               "WHERE lID = (SELECT MIN(lID) FROM T_DatInventur)");
    });
    EXPECT_EQ(stand(*compute(), "EG"), kStandNeu);
}

TEST_F(ProjectOverviewTest, AListIsStaleWhenQuarnsObjectsOfItsRoomsChanged)
{
    groundFloorOrder("EG");
    evaluate("EG");
    EXPECT_EQ(stand(*compute(), "EG"), kStandAktuell);
    // Another number in the list of a room than Quarn has there now.
    work("EG", [&](frmWork&, CAuftragDb& db) {
        ASSERT_EQ(db.database()->execute("UPDATE T_Differenzliste SET stSollInvNR = 'ANDERS-1' WHERE lID = (SELECT "
                                         "MIN(lID) FROM T_Differenzliste WHERE stSollInvNR <> '' AND stIstInvNR = "
                                         "'')"),
                  1);
    });
    EXPECT_EQ(stand(*compute(), "EG"), kStandNeu);
    // Numbers compare as the order database compares them.
    evaluate("EG");
    work("EG", [&](frmWork&, CAuftragDb& db) {
        ASSERT_GT(db.database()->execute("UPDATE T_Differenzliste SET stSollInvNR = lower(stSollInvNR) || '  ' "
                                         "WHERE stSollInvNR <> ''"),
                  0);
    });
    EXPECT_EQ(stand(*compute(), "EG"), kStandAktuell);
}

TEST_F(ProjectOverviewTest, WithoutTheProgramFoldersReportDatabaseTheEvaluationOnTheCopyMakesOneOfItsOwn)
{
    groundFloorOrder("EG");
    ASSERT_TRUE(removeFile(program + "/QInventurRpt.mdb"));
    const auto result = compute();
    EXPECT_EQ(stand(*result, "EG"), kStandNie);
    EXPECT_FALSE(fileExists(program + "/QInventurRpt.mdb"));
    evaluate("EG");
    EXPECT_EQ(countsOfResult(*result, "EG"), countsOfFile(orderFile("EG")));
}

TEST_F(ProjectOverviewTest, AnEvaluationThatFailsOnTheCopyLeavesTheStoredFiguresAndSaysWhy)
{
    groundFloorOrder("EG");
    // A module the evaluation has no statements for.
    settings.giModul = 7;
    const auto result = compute();
    EXPECT_EQ(stand(*result, "EG"), kStandFehler);
    const std::string why = text(*result, "SELECT stFehler FROM P_Auftrag");
    EXPECT_NE(why.find("frmWork."), std::string::npos) << why;
    EXPECT_EQ(hints(*result, kHinweisNichtLesbar),
              std::vector<Hint>({{"EG", kHinweisNichtLesbar, hinweis::nichtLesbar("EG", why), orderFile("EG")}}));
    EXPECT_EQ(hints(*result, kHinweisNieAusgewertet),
              std::vector<Hint>({{"EG", kHinweisNieAusgewertet, hinweis::nieAusgewertet("EG", false),
                                  orderFile("EG")}}));
    EXPECT_EQ(countsOfResult(*result, "EG"), countsOfFile(orderFile("EG")));
}

// ---------------------------------------------------------------- files

TEST_F(ProjectOverviewTest, AnOrderWhoseFileIsMissingIsARowWithoutFigures)
{
    groundFloorOrder("EG");
    createOrder("OG");
    ASSERT_TRUE(removeFile(orderFile("OG")));
    const auto result = compute();
    EXPECT_EQ(stand(*result, "OG"), kStandFehlt);
    EXPECT_EQ(text(*result, "SELECT stFehler FROM P_Auftrag WHERE stAuftrag = 'OG'"),
              hinweis::auftragFehlt("OG", orderFile("OG")));
    EXPECT_EQ(text(*result, "SELECT stPfad FROM P_Auftrag WHERE stAuftrag = 'OG'"), "\\Inventur\\OG.mdb");
    EXPECT_EQ(number(*result, "SELECT iRaeume + iScans + iDateien FROM P_Auftrag WHERE stAuftrag = 'OG'"), 0);
    EXPECT_EQ(hints(*result, kHinweisAuftragFehlt),
              std::vector<Hint>({{"OG", kHinweisAuftragFehlt, hinweis::auftragFehlt("OG", orderFile("OG")),
                                  orderFile("OG")}}));
    EXPECT_EQ(stand(*result, "EG"), kStandNie);
}

TEST_F(ProjectOverviewTest, AFileThatIsNoOrderDatabaseIsUnreadable)
{
    createOrder("EG");
    writeFile(orderFile("EG"), "kein Auftrag");
    const auto result = compute();
    EXPECT_EQ(stand(*result, "EG"), kStandFehler);
    const std::string why = text(*result, "SELECT stFehler FROM P_Auftrag");
    EXPECT_FALSE(why.empty());
    EXPECT_EQ(hints(*result, kHinweisNichtLesbar),
              std::vector<Hint>({{"EG", kHinweisNichtLesbar, hinweis::nichtLesbar("EG", why), orderFile("EG")}}));
    EXPECT_EQ(readFile(orderFile("EG")), "kein Auftrag");
}

TEST_F(ProjectOverviewTest, AnOrderWhoseLastChangeWasCutOffIsReadAsItWasBefore)
{
    groundFloorOrder("EG");
    evaluate("EG");
    const Counts counts = countsOfFile(orderFile("EG"));
    ASSERT_NO_FATAL_FAILURE(cutOffChange(orderFile("EG")));
    const FileDigests before = digestFiles(project);
    const auto result = compute();
    EXPECT_EQ(changedFiles(before, digestFiles(project)), "");
    EXPECT_TRUE(hasJournal(orderFile("EG")));
    EXPECT_EQ(stand(*result, "EG"), kStandAktuell);
    EXPECT_EQ(countsOfResult(*result, "EG"), counts);
}

TEST_F(ProjectOverviewTest, AnOrderIsSavedWhileTheOverviewReadsIt)
{
    // The main window computes its figures while the order windows go on working: reading an
    // order, however long it takes, never keeps a window from saving its scans.
    createOrder("EG");
    addRooms("EG", rooms);
    addFile("EG", scanPath(0));
    const Counts before = countsOfFile(orderFile("EG"));
    QuarnRooms quarn(*geb);
    const auto source = openOrderSource(orderFile("EG"), settings, *geb, quarn, true);
    ASSERT_EQ(source->error, "");
    Database& read = source->data();
    Database::Transaction reading(read);
    EXPECT_EQ(number(read, "SELECT COUNT(*) FROM T_DatInventur"), before.scans);

    addFile("EG", scanPath(1));
    EXPECT_GT(countsOfFile(orderFile("EG")).scans, before.scans);
    EXPECT_EQ(number(read, "SELECT COUNT(*) FROM T_DatInventur"), before.scans);
    for (const RecordedMessage& m : ui.messages)
        EXPECT_NE(m.icon, MsgIcon::Critical) << m.text;
}

TEST_F(ProjectOverviewTest, KeptCopiesAndOrderFilesWithoutRegisterRowAreTold)
{
    createOrder("EG");
    createOrder("OG");
    createOrder("UG");
    CAuftragRecColl rows;
    ASSERT_TRUE(reg.ReadAllAuftragRec2Coll(rows));
    std::string kept;
    ASSERT_EQ(DeleteOrder(reg, settings, ui, *findOrder(rows, "OG"), &kept), OrderResult::Done);
    ASSERT_FALSE(kept.empty());
    ASSERT_TRUE(copyFile(orderFile("EG"), project + "/Inventur/Alt.MDB"));
    ASSERT_TRUE(copyFile(orderFile("EG"), project + "/Inventur/Zweite.mdb"));
    writeFile(project + "/Inventur/EG.dat", "keine Datenbank");
    // A name of the register in another letter case names another file where the file system
    // tells letter cases apart.
    ASSERT_TRUE(copyFile(orderFile("UG"), project + "/Inventur/ug.mdb"));

    const auto result = compute();
    const std::string keptName = fileNamePart(kept);
    std::string order;
    JetDate when;
    ASSERT_TRUE(parseKeptFileName(keptName, order, when));
    EXPECT_EQ(hints(*result, kHinweisGesichert),
              std::vector<Hint>({{"OG", kHinweisGesichert, hinweis::gesichert("OG", when.toDisplayText(), keptName),
                                  displayPath(keptOrdersFolder(settings) + "\\" + keptName)}}));
    const std::string folder = project + "/Inventur/";
    EXPECT_EQ(hints(*result, kHinweisOhneAuftrag),
              std::vector<Hint>({{"", kHinweisOhneAuftrag, hinweis::ohneAuftrag("Alt.MDB"), folder + "Alt.MDB"},
                                 {"", kHinweisOhneAuftrag, hinweis::ohneAuftrag("Zweite.mdb"),
                                  folder + "Zweite.mdb"},
                                 {"", kHinweisOhneAuftrag, hinweis::ohneAuftrag("ug.mdb"), folder + "ug.mdb"}}));
    EXPECT_EQ(number(*result, "SELECT COUNT(*) FROM P_Auftrag"), 2);
}

TEST_F(ProjectOverviewTest, AScannerFileNoLongerAtItsPlaceIsTold)
{
    const std::string elsewhere = dir.path() + "/Ablage";
    ASSERT_TRUE(createFolder(elsewhere));
    const std::string moved = elsewhere + "/" + scanFiles[0].name;
    ASSERT_TRUE(copyFile(scanPath(0), moved));
    createOrder("EG");
    addRooms("EG", rooms);
    addFile("EG", moved);
    addFile("EG", scanPath(1));
    ASSERT_TRUE(removeFile(moved));
    const auto result = compute();
    const std::string stored =
        text(*Database::open(orderFile("EG"), true), "SELECT stPfad FROM T_Dateien WHERE stName = ?1",
             {scanFiles[0].name});
    ASSERT_FALSE(stored.empty());
    EXPECT_EQ(hints(*result, kHinweisDateiFehlt),
              std::vector<Hint>({{"EG", kHinweisDateiFehlt, hinweis::dateiFehlt("EG", stored), displayPath(stored)}}));
}

// ---------------------------------------------------------------- nothing is written

TEST_F(ProjectOverviewTest, ComputingTheResultLeavesEveryOrderAndTheReportDatabasesAsTheyWere)
{
    groundFloorOrder("EG");
    evaluate("EG");
    createOrder("OG");
    addRooms("OG", {roomOutside()});
    work("OG", [](frmWork&, CAuftragDb& db) { db.database()->execute("UPDATE T_Raum SET ststatus = 'L'"); });
    ui.messages.clear();
    const std::string privateFolder = settings.privateReportDatabase->folder();
    ASSERT_FALSE(privateFolder.empty());
    ASSERT_TRUE(fileExists(settings.privateReportDatabase->file()));

    const FileDigests projectBefore = digestFiles(project);
    const FileDigests programBefore = digestFiles(program);
    const FileDigests privateBefore = digestFiles(privateFolder);
    const auto result = compute();
    EXPECT_EQ(stand(*result, "OG"), kStandNie);
    EXPECT_GT(number(*result, "SELECT COUNT(*) FROM P_Diff WHERE stAuftrag = 'OG'"), 0);
    EXPECT_EQ(changedFiles(projectBefore, digestFiles(project)), "");
    EXPECT_EQ(changedFiles(programBefore, digestFiles(program)), "");
    EXPECT_EQ(changedFiles(privateBefore, digestFiles(privateFolder)), "");
    EXPECT_TRUE(ui.messages.empty());
}

// ---------------------------------------------------------------- progress, Quarn of its own

TEST_F(ProjectOverviewTest, ProgressIsToldBetweenTheStepsAndMayStopTheComputation)
{
    createOrder("EG");
    createOrder("OG");
    std::vector<std::string> steps;
    OverviewOptions options;
    options.progress = [&](int done, int total, const std::string& step) {
        steps.push_back(std::to_string(done) + "/" + std::to_string(total) + " " + step);
        return true;
    };
    computeProjectResult(settings, *geb, options);
    EXPECT_EQ(steps, std::vector<std::string>({"0/4 Auftrag 'EG'", "1/4 Auftrag 'OG'",
                                               "2/4 Listen über alle Aufträge", "3/4 Räume der Gebäudestruktur"}));

    int calls = 0;
    options.progress = [&](int, int, const std::string&) { return ++calls < 2; };
    EXPECT_THROW(computeProjectResult(settings, *geb, options), OverviewCancelled);
    EXPECT_EQ(calls, 2);
}

TEST_F(ProjectOverviewTest, QuarnsComponentsOfItsOwnGiveTheSameResult)
{
    groundFloorOrder("EG");
    evaluate("EG");
    const auto withOwn = computeProjectResult(settings);
    EXPECT_EQ(countsOfResult(*withOwn, "EG"), countsOfFile(orderFile("EG")));
    EXPECT_EQ(number(*withOwn, "SELECT COUNT(*) FROM L_Ungeprueft"),
              number(*compute(), "SELECT COUNT(*) FROM L_Ungeprueft"));

    Settings elsewhere = settings;
    elsewhere.gstProjektPfad = dir.path() + "/Leer/";
    ASSERT_TRUE(createFolder(dir.path() + "/Leer"));
    try {
        computeProjectResult(elsewhere);
        ADD_FAILURE() << "no error";
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(std::string(e.what()).rfind("Die Quarn-Datenbank konnte nicht geöffnet werden!", 0), 0u) << e.what();
    }
}

TEST_F(ProjectOverviewTest, ARegisterThatCantBeReadIsAnError)
{
    Settings elsewhere = settings;
    elsewhere.gstProjektPfad = dir.path() + "/Leer/";
    ASSERT_TRUE(createFolder(dir.path() + "/Leer"));
    try {
        computeProjectResult(elsewhere, *geb);
        ADD_FAILURE() << "no error";
    } catch (const std::runtime_error& e) {
        EXPECT_NE(std::string(e.what()).find("konnte nicht geöffnet werden"), std::string::npos) << e.what();
    }
}

TEST_F(ProjectOverviewTest, EachRoomHasItsBuildingAndFloorAndUnknownNumbersTheirArticlesNames)
{
    groundFloorOrder("EG");
    evaluate("EG");
    const auto result = compute();
    // The building part from the installation's own nodes: the building and floor above the room.
    std::map<std::int32_t, const demo::Node*> nodes;
    for (const demo::Node& n : inst.nodes)
        nodes[n.id] = &n;
    ASSERT_FALSE(rooms.empty());
    for (const demo::Room& r : rooms) {
        const demo::Node& floor = *nodes.at(r.floorId);
        const demo::Node& building = *nodes.at(floor.parentId);
        ASSERT_EQ(floor.typ, 3);
        ASSERT_EQ(building.typ, 2);
        EXPECT_EQ(text(*result, "SELECT stGebaeudeteil FROM P_Raum WHERE stAuftrag = 'EG' AND lIdRB = ?1",
                       {std::int64_t(r.id)}),
                  building.name + " / " + floor.name)
            << r.nr;
    }
    // Every article number of the unknown numbers once, with the name of the module's article.
    std::map<std::string, std::string> names;
    for (const demo::Article& a : inst.modules[0].articles)
        names.emplace(a.artNr, a.name);
    const Recordset unknown =
        result->query("SELECT DISTINCT stArtNr FROM L_Unbekannt WHERE stArtNr <> '' ORDER BY stArtNr");
    // The demo's unknown number "999001" carries the first article's number.
    EXPECT_FALSE(unknown.empty());
    EXPECT_EQ(number(*result, "SELECT COUNT(*) FROM P_Artikel"), std::int64_t(unknown.size()));
    for (const auto& row : unknown.rows()) {
        const std::string art = toText(row[0]);
        const auto it = names.find(art);
        EXPECT_EQ(text(*result, "SELECT stBeschreibung FROM P_Artikel WHERE stArtNr = ?1", {art}),
                  it == names.end() ? "" : it->second)
            << art;
    }
}

} // namespace
} // namespace qi::test
