#include "CrashOrder.h"

#include "CAuftragDb.h"
#include "CInventurDb.h"
#include "DemoInstallation.h"
#include "FileSystem.h"
#include "OrderSchema.h"
#include "Orders.h"
#include "Report.h"
#include "ReportLinks.h"
#include "ScriptedUserInteraction.h"
#include "Settings.h"
#include "Startup.h"
#include "frmRaum.h"
#include "frmWork.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <stdexcept>
#include <utility>

namespace qi::test {

namespace {

constexpr int kOrderRooms = 170;
constexpr int kRoomsPerReadFile = 40; // three files read before: rooms 0..119
constexpr int kNewFileFirstRoom = 120;

Settings settingsOf(const CrashOrder& o)
{
    Settings s;
    s.gstProjektPfad = o.project + "/";
    s.gstProjekttyp = "ptJet";
    s.gstAppPfad = o.program;
    s.giModul = 0;
    return s;
}

/// One scanner file for the rooms [first, last): most objects in place, some moved to
/// the next room, one unknown number and one double scan per room.
void writeScanFile(const demo::Installation& inst, int first, int last, const std::string& date,
                   const std::string& path)
{
    std::ofstream out(nativePath(path), std::ios::binary | std::ios::trunc);
    int line = 0;
    for (int r = first; r < last; ++r) {
        const std::string& nr = inst.rooms[std::size_t(r)].nr;
        const std::string& next = inst.rooms[std::size_t(r + 1 < last ? r + 1 : first)].nr;
        std::string firstObject;
        for (const demo::Object* o : inst.objectsOfRoom(0, inst.rooms[std::size_t(r)].id)) {
            const int pick = o->id % 20;
            if (pick == 0)
                continue; // missing
            const std::string& room = pick == 1 ? next : nr;
            out << "7,4711," << date << ",10:" << (10 + line % 50) << ":00," << room << "," << o->name << ",S,I\r\n";
            ++line;
            if (firstObject.empty())
                firstObject = o->name;
        }
        out << "7,4711," << date << ",11:00:00," << nr << ",UNBEKANNT-" << r << ",S,I\r\n";
        if (!firstObject.empty())
            out << "7,4711," << date << ",11:01:00," << nr << "," << firstObject << ",S,I\r\n";
    }
}


} // namespace

CrashOrder::CrashOrder(std::string r)
    : root(std::move(r)), project(root + "/Projekt"), program(root + "/Programm"),
      order(root + "/Projekt/Inventur/A1.mdb"), registry(root + "/Projekt/QInventur.mdb"),
      firstProgram(root + "/Erststart/Programm"), firstProject(root + "/Erststart/Projekt")
{
}

std::string CrashOrder::newFile() const { return project + "/Neu.dat"; }

std::string CrashOrder::output(const std::string& operation) const
{
    if (operation == "archiv")
        return project + "/Inventur/A1.dat";
    return root + (operation == "pdf" ? "/Ausgabe/Raumliste." : "/Ausgabe/Differenzliste.") + operation;
}

std::string CrashOrder::templateFolder() const { return firstProgram + "/Leeres Projekt"; }

std::vector<std::string> seededFiles()
{
    std::vector<std::string> files = {"QInventur.mdb", "QAuftrag.mdb"};
    for (const char* report : kReportFiles)
        files.push_back(std::string("Report") + report);
    return files;
}

void prepareFirstStart(const CrashOrder& o)
{
    std::filesystem::create_directories(o.templateFolder() + "/Report");
    std::filesystem::create_directories(o.firstProject);
    createRegisterSchema(*Database::create(o.templateFolder() + "/QInventur.mdb"));
    createOrderSchema(*Database::create(o.templateFolder() + "/QAuftrag.mdb"));
    for (const char* report : kReportFiles)
        if (!copyFile(std::string(QI_REPORTS_DIR) + "/" + report, o.templateFolder() + "/Report/" + report))
            throw std::runtime_error(std::string("Der Report '") + report + "' fehlt.");
    demo::writeHostDatabases(demo::buildInstallation(demo::smallSizes()), o.firstProject);
    demo::writeProjectIni(o.firstProject, "INVENTAR");
    demo::writeQuarnIni(o.firstProgram + "/Quarn.ini", o.firstProject);
}

void prepareCrashOrder(const CrashOrder& o)
{
    std::filesystem::create_directories(o.project + "/Inventur");
    std::filesystem::create_directories(o.program);
    demo::Sizes sizes;
    sizes.sites = 1;
    sizes.buildingsPerSite = 2;
    sizes.floorsPerBuilding = 3;
    sizes.roomsPerFloor = 30;
    sizes.inventarArticles = 40;
    sizes.inventarObjects = 40000;
    sizes.technikObjects = 50;
    sizes.brandschutzObjects = 50;
    const demo::Installation inst = demo::buildInstallation(sizes);
    demo::writeHostDatabases(inst, o.project);
    {
        auto db = Database::create(o.order);
        createOrderSchema(*db);
        // The order's own name, as a new order gets it.
        db->execute("INSERT INTO T_Auftrag (stAuftrag) VALUES (?1)", {std::string("A1")});
    }
    {
        // The project's register naming the order, and the empty order database new orders copy.
        auto db = Database::create(o.project + "/QAuftrag.mdb");
        createOrderSchema(*db);
    }
    {
        createRegisterSchema(*Database::create(o.registry));
        CInventurDb reg;
        reg.setDbPath(o.registry);
        reg.OpenDb();
        CAuftragRec a1;
        a1.stBezeichung = "A1";
        a1.stPfad = "\\Inventur\\A1.mdb";
        a1.stErsteller = "Meier";
        a1.erstellt = JetDate::fromParts(2025, 3, 1, 8, 0, 0);
        a1.letzte_Aenderung = a1.erstellt;
        reg.AddNewAuftragRec(&a1);
    }
    createReportDatabase(o.program + "/QInventurRpt.mdb");
    demo::copyReports(QI_REPORTS_DIR, o.project);
    std::filesystem::create_directories(o.root + "/Ausgabe");
    ScriptedUserInteraction ui;
    const Settings settings = settingsOf(o);
    CheckReportMdbLink(settings, o.order, ui);

    CAuftragDb db(ui);
    db.setDbPath(o.order);
    db.OpenDb();
    {
        Database::Transaction tx(*db.database());
        for (int r = 0; r < kOrderRooms; ++r) {
            CRaumRec room;
            room.lIdRB = inst.rooms[std::size_t(r)].id;
            room.stRaumNr = inst.rooms[std::size_t(r)].nr;
            room.ststatus = "N";
            room.stAuftrag = "A1";
            db.AddNewRaumRec(&room);
        }
        tx.commit();
    }
    frmWork w(db, settings, ui);
    for (int f = 0; f < 3; ++f) {
        const std::string path = o.project + "/Teil" + std::to_string(f + 1) + ".dat";
        writeScanFile(inst, f * kRoomsPerReadFile, (f + 1) * kRoomsPerReadFile, "0" + std::to_string(f + 1) + ".03.2025",
                      path);
        ui.fileChoices.push_back(path);
        w.pbAdd_Click();
    }
    writeScanFile(inst, kNewFileFirstRoom, kOrderRooms, "09.03.2025", o.newFile());
}

namespace {

/// The room selection of the order as a person uses it: the installation's last twenty rooms in,
/// every tenth room of the order out, one room marked, then the window is closed (which saves).
bool saveChangedRooms(CAuftragDb& db, Settings& settings, UserInteraction& ui)
{
    QGebDb geb;
    if (!geb.Open(settings.gstAppPfad, settings.buildingDatabase()))
        return false;
    frmRaum r(db, &geb, settings, ui);
    r.Form_Load();
    r.Form_Activate();
    r.cbAllRooms = true;
    r.cbAllRooms_Click();
    if (r.lbRooms.size() < 20)
        return false;
    for (std::size_t i = 0; i < 20; ++i)
        r.lbRooms[r.lbRooms.size() - 1 - i].selected = true;
    r.pbIn_Click();
    for (std::size_t i = 0; i < r.lvRooms.size(); i += 10)
        r.lvRooms[i].selected = true;
    r.pbOut_Click();
    r.lvRoomsSelectedKey = r.lvRooms.back().key;
    r.lvRooms_DblClick();
    r.Form_Unload();
    return true;
}

/// True when no message told of a failure; the others are printed.
bool noProblem(const ScriptedUserInteraction& ui)
{
    bool ok = true;
    for (const RecordedMessage& m : ui.messages)
        if (m.icon == MsgIcon::Critical || m.title == "Problem") {
            std::fprintf(stderr, "%s: %s\n", m.title.c_str(), m.text.c_str());
            ok = false;
        }
    return ok;
}

} // namespace

bool runCrashOperation(const CrashOrder& o, const std::string& operation)
{
    ScriptedUserInteraction ui;
    Settings settings = settingsOf(o);
    if (operation == "anlegen" || operation == "loeschen") {
        CInventurDb reg;
        reg.setDbPath(o.registry);
        if (!reg.OpenDb())
            return false;
        if (operation == "anlegen") {
            CAuftragRec rec;
            rec.stBezeichung = kNewOrder;
            rec.stErsteller = "Schulz";
            return CreateOrder(reg, settings, ui, rec) == OrderResult::Done;
        }
        CAuftragRecColl orders;
        CAuftragRec* a1 = reg.ReadAllAuftragRec2Coll(orders) ? findOrder(orders, "A1") : nullptr;
        return a1 && DeleteOrder(reg, settings, ui, *a1) == OrderResult::Done;
    }
    if (operation == "einrichten") {
        Settings first;
        const StartupResult started = RunStartup(o.firstProgram, first, ui);
        return started.completed && noProblem(ui);
    }
    for (const auto& [name, format] : {std::pair{"pdf", ReportFormat::Pdf}, std::pair{"xlsx", ReportFormat::Xlsx},
                                       std::pair{"csv", ReportFormat::Csv}})
        if (operation == name) {
            // The pages of the long difference list take long to lay out; the PDF shows the rooms.
            const bool pdf = format == ReportFormat::Pdf;
            const std::string error = writeReportFile(
                o.project + (pdf ? "/Report/invraum.rpt" : "/Report/invdiff.rpt"), o.program + "/QInventurRpt.mdb",
                pdf ? "Raumliste" : "Differenzliste", "A1", settings.gstProjektPfad, format, o.output(operation));
            if (!error.empty())
                std::fprintf(stderr, "%s\n", error.c_str());
            return error.empty();
        }
    CAuftragDb db(ui);
    db.setDbPath(o.order);
    if (!db.OpenDb())
        return false;
    frmWork w(db, settings, ui);
    const std::map<std::string, std::function<bool()>> operations = {
        {"hinzufuegen",
         [&] {
             ui.fileChoices.push_back(o.newFile());
             w.pbAdd_Click();
             return true;
         }},
        {"entfernen",
         [&] {
             if (!w.Init() || w.lvDateien.empty())
                 return false;
             w.pbRemove_Click(w.lvDateien[0].key, w.lvDateien[0].text);
             return true;
         }},
        {"neu",
         [&] {
             if (!w.Init())
                 return false;
             w.pbNeu_Click();
             return true;
         }},
        {"auswerten", [&] { return w.ReportDifferenzListe(); }},
        {"artikel", [&] { return w.MakeArtikelAufstellung(); }},
        {"inventur", [&] { return w.MakeInvListe(); }},
        {"raeume", [&] { return saveChangedRooms(db, settings, ui); }},
        {"archiv", [&] { return !w.MakeArchive().empty(); }},
    };
    const auto op = operations.find(operation);
    if (op == operations.end() || !op->second())
        return false;
    return noProblem(ui);
}

} // namespace qi::test
