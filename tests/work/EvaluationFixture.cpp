#include "EvaluationFixture.h"

#include "DemoInstallation.h"
#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "ReportDatabase.h"
#include "ReportLinks.h"
#include "WorkFixture.h"

namespace qi::test {

namespace {

struct ObjectPlan {
    std::int32_t id;
    const char* name;
    const char* beschreibung;
    std::int32_t articleId;
    const char* ort;        ///< room number of the location
    std::int32_t gebstruId; ///< room node (or floor node 3)
    int gebstruTyp;
    const char* bemerkung;  ///< the remark the INVENTAR table keeps
    int variante;
};

constexpr ObjectPlan kObjects[] = {
    {1, "INV-001", "Stuhl grau", 1, "101", 10, 4, "Kratzer", 0},
    {2, "INV-002", "Tisch eiche", 2, "101", 10, 4, "", 0},
    {3, "INV-003", "Stuhl blau", 1, "102", 11, 4, "", 0},
    {4, "INV-004", "Regal hoch", 3, "201", 15, 4, "Leihgabe", 0},
    {5, "INV-005", "Tisch klein", 2, "104", 13, 4, "", 0},
    {6, "INV-006", "Stuhl rot", 1, "105", 14, 4, "", 0},
    {7, "INV-007", "Stuhl Variante", 1, "101", 10, 4, "", 1},
    {8, "INV-008", "Regal niedrig", 3, "101", 10, 4, "", 0},
    {10, "INV-010", "Tisch rund", 2, "102", 11, 4, "", 0},
    {11, "INV-011", "Stuhl im Flur", 1, "", 3, 3, "", 0},
};

demo::Installation installation(int modul)
{
    demo::Installation inst;
    inst.nodes = {{1, 0, 1, "L1", "Liegenschaft Nord"}, {2, 1, 2, "G1", "Verwaltung"}, {3, 2, 3, "EG", "Erdgeschoss"}};
    const std::pair<std::int32_t, const char*> rooms[] = {{10, "101"}, {11, "102"}, {12, "103"},
                                                          {13, "104"}, {14, "105"}, {15, "201"}};
    for (const auto& [id, nr] : rooms) {
        inst.nodes.push_back({id, 3, 4, nr, std::string("Raum ") + nr});
        inst.rooms.push_back({id, 3, nr, std::string("Raum ") + nr, 1});
    }
    const char* names[] = {"INVENTAR", "TECHNIK", "BRANDSCHUTZ"};
    const char* prefixes[] = {"T_I", "T_T", "T_B"};
    const char* files[] = {"QOvInventar.mdb", "QOvTechnik.mdb", "QOvBrandschutz.mdb"};
    for (int m = 0; m < 3; ++m) {
        demo::Module& mod = inst.modules[m];
        mod.name = names[m];
        mod.prefix = prefixes[m];
        mod.file = files[m];
        // Descriptions and remarks name their module, so that a test sees which table answered.
        const std::string suffix = std::string(" ") + names[m];
        mod.articles = {{1, "ART-1", "Bürostuhl" + suffix}, {2, "ART-2", "Schreibtisch" + suffix},
                        {3, "ART-3", "Regal" + suffix}};
        // The INVENTAR table always holds the objects (the remarks come from it); the
        // module under test holds them too.
        if (m != 0 && m != modul)
            continue;
        for (const ObjectPlan& o : kObjects)
            mod.objects.push_back({o.id, o.name, o.beschreibung + suffix, o.articleId, o.ort, o.gebstruId,
                                   o.gebstruTyp, m == 0 ? o.bemerkung : "Bemerkung" + suffix, o.variante, 1});
    }
    inst.persons = {{1, "Müller", "Anna"}};
    inst.costCentres = {{1, "4711", "Verwaltung"}};
    return inst;
}

} // namespace

void EvaluationTest::SetUp()
{
    project = dir.path() + "/Projekt";
    program = dir.path() + "/Programm";
    ASSERT_TRUE(createFolder(project));
    ASSERT_TRUE(createFolder(program));
    ASSERT_TRUE(createFolder(project + "/Inventur"));
    demo::writeHostDatabases(installation(modul()), project);

    settings.gstProjektPfad = project + "/";
    settings.gstProjekttyp = "ptJet";
    settings.gstAppPfad = program;
    settings.giModul = std::int16_t(modul());

    dbFile = project + "/Inventur/A1.mdb";
    makeOrderDatabase(dbFile);
    db.setDbPath(dbFile);
    ASSERT_TRUE(db.OpenDb()) << db.LastError();

    reportDb = program + "/QInventurRpt.mdb";
    createReportDatabase(reportDb);
    ASSERT_TRUE(CheckReportMdbLink(settings, dbFile, ui));
    if (modul() != 0) {
        // The remarks always come from the INVENTAR objects: the link points at the
        // project's file, as an earlier INVENTAR project left it.
        auto links = LinkedDatabase::open(reportDb);
        links->setConnect("T_IObjekt", ";DATABASE=" + project + "/QOvInventar.mdb");
        links->refreshLink("T_IObjekt");
    }

    const std::pair<std::int32_t, const char*> orderRooms[] = {
        {10, "101"}, {11, "102"}, {12, "103"}, {13, "104"}, {14, "105"}};
    for (const auto& [id, nr] : orderRooms) {
        CRaumRec r;
        r.lIdRB = id;
        r.stRaumNr = nr;
        r.ststatus = std::string(nr) == "104" ? "L" : "N";
        r.stAuftrag = "A1";
        ASSERT_TRUE(db.AddNewRaumRec(&r)) << db.LastError();
        roomKeys_[nr] = r.lID;
    }

    file1 = datFile("Erfassung1.dat", {scanLine("101", "INV-001", "01.02.2015", "X", "08:00:00"),
                                        scanLine("101", "INV-001", "01.02.2015", "X", "08:01:00"),
                                        scanLine("101", "INV-004", "01.02.2015", "X", "08:02:00"),
                                        scanLine("101", "INV-008", "01.02.2015", "X", "08:03:00"),
                                        scanLine("103", "UNBEKANNT-1", "01.02.2015", "ART-9", "08:10:00"),
                                        scanLine("103", "INV-010", "01.02.2015", "X", "08:11:00")});
    file2 = datFile("Erfassung2.dat", {scanLine("102", "INV-002", "02.02.2015", "X", "09:00:00"),
                                        scanLine("102", "INV-008", "02.02.2015", "X", "09:01:00"),
                                        scanLine("102", "INV-010", "02.02.2015", "X", "09:02:00"),
                                        scanLine("102", "", "02.02.2015", "X", "09:03:00")});
    file3 = datFile("Fremd.dat", {scanLine("201", "INV-004", "03.02.2015")});
    w = std::make_unique<frmWork>(db, settings, ui);
}

void EvaluationTest::addFile(const std::string& path)
{
    ui.fileChoices.push_back(path);
    w->pbAdd_Click();
}

void EvaluationTest::importAll()
{
    ui.conflictAnswers = {false, true};
    addFile(file1);
    addFile(file2);
    addFile(file3);
}

std::string EvaluationTest::datFile(const std::string& name, const std::vector<std::string>& lines)
{
    const std::string path = project + "/" + name;
    writeFile(path, crlf(lines));
    return path;
}

std::vector<EvalRow> EvaluationTest::rows()
{
    const Recordset rs = sql().query(
        "SELECT coalesce(r.stRaumNr, ''), d.stSollInvNR, d.stIstInvNR, d.stTyp, d.stZiel, d.stQuelle, d.stQuarn, "
        "d.stArtNr, d.stBeschreibung, d.stObjBemerkung, d.Datum, d.Uhrzeit "
        "FROM T_Differenzliste AS d LEFT JOIN T_Raum AS r ON r.lID = d.lRaumID ORDER BY d.lID");
    std::vector<EvalRow> out;
    for (const auto& v : rs.rows())
        out.push_back({toText(v[0]), toText(v[1]), toText(v[2]), toText(v[3]), toText(v[4]), toText(v[5]),
                       toText(v[6]), toText(v[7]), toText(v[8]), toText(v[9]), toText(v[10]), toText(v[11])});
    return out;
}

std::vector<EvalRow> EvaluationTest::rowsOf(const std::string& raum)
{
    std::vector<EvalRow> out;
    for (EvalRow& r : rows())
        if (r.raum == raum)
            out.push_back(std::move(r));
    return out;
}

int EvaluationTest::messagesStartingWith(const std::string& prefix) const
{
    int n = 0;
    for (const RecordedMessage& m : ui.messages)
        if (m.text.rfind(prefix, 0) == 0)
            ++n;
    return n;
}

} // namespace qi::test
