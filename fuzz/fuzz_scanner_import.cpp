// A whole scanner data file into an order, as adding a file does it: the three
// checks of the file (rooms not in the order, different days, rooms already read),
// then the import under a new T_Dateien row, the numbering of the scan lines and
// the rooms' status, and the two lists of the work window.
//
// Once per process a small Quarn installation is made (the demo's smallest), and an
// order of the first floor's rooms into which an earlier file has already brought
// a few scans, so that the input meets numbers that are stored, in the same room
// and in others. Every input works on a fresh copy of that order; the user answers
// the conflict dialog alternately "Verwerfen" and "Behalten".

#include "FuzzSupport.h"

#include "CAuftragDb.h"
#include "DemoInstallation.h"
#include "FileSystem.h"
#include "OrderSchema.h"
#include "QuarnHost.h"
#include "ScriptedUserInteraction.h"
#include "Settings.h"
#include "frmWork.h"

#include <algorithm>
#include <memory>

using namespace qi;

namespace {

struct Installation {
    Settings settings;
    std::string orderTemplate;
    std::string order;
    std::string scanFile;
    /// Quarn's object component, opened once and lent to each input's work window.
    std::unique_ptr<QObjektDb> host;
};

/// The earlier file: the first floor's first objects in their rooms, one object of
/// another floor, and one number that no object has.
std::string earlierFile(const demo::Installation& inst)
{
    std::string lines;
    const auto line = [&](const std::string& room, const std::string& invNr) {
        lines += "M1,4711,01.02.2015,09:00:00," + room + "," + invNr + ",,E\r\n";
    };
    const demo::Room& first = inst.rooms.front();
    int taken = 0;
    for (const demo::Object* o : inst.objectsOfRoom(0, first.id))
        if (taken++ < 3)
            line(first.nr, o->name);
    const demo::Room& other = inst.rooms.back();
    for (const demo::Object* o : inst.objectsOfRoom(0, other.id)) {
        line(other.nr, o->name);
        break;
    }
    line(first.nr, "FREMD-1");
    return lines;
}

void importInto(CAuftragDb& db, frmWork& work, const std::string& path)
{
    CDateienRec file;
    file.stName = fileNamePart(path);
    file.stPfad = path;
    file.Datum = "01.02.2015";
    fuzz::require(db.AddNewDateienRec(&file), "the data file's row is written");
    work.f_stfilename = path;
    work.f_lDatId = file.lID;
    work.DatEinlesen();
    db.SetStatusRoomsByDB();
}

Installation& installation()
{
    static Installation* inst = [] {
        auto* in = new Installation;
        const std::string project = fuzz::scratchFile("Projekt");
        fuzz::require(createFolder(project), "the project folder is made");
        const demo::Installation quarn = demo::buildInstallation(demo::smallSizes());
        demo::writeHostDatabases(quarn, project);
        in->settings.gstProjektPfad = project + "/";
        in->settings.gstProjekttyp = "ptJet";
        in->settings.gstAppPfad = fuzz::scratchFile("");
        in->settings.giModul = 0;
        in->orderTemplate = fuzz::scratchFile("Vorlage.mdb");
        in->order = fuzz::scratchFile("Auftrag.mdb");
        in->scanFile = fuzz::scratchFile("Scanner.dat");

        createOrderSchema(*Database::create(in->orderTemplate));
        ScriptedUserInteraction ui;
        CAuftragDb db(ui);
        db.setDbPath(in->orderTemplate);
        fuzz::require(db.OpenDb(), "the order template opens");
        const std::int32_t floorId = quarn.rooms.front().floorId;
        for (const demo::Room* r : quarn.roomsOfFloor(floorId)) {
            CRaumRec room;
            room.lIdRB = r->id;
            room.stRaumNr = r->nr;
            room.ststatus = "N";
            room.stAuftrag = "Fuzz";
            fuzz::require(db.AddNewRaumRec(&room), "a room of the order is written");
        }
        const std::string earlier = fuzz::scratchFile("Vorher.dat");
        fuzz::writeBytes(earlier, earlierFile(quarn));
        frmWork work(db, in->settings, ui);
        importInto(db, work, earlier);
        fuzz::require(ui.messages.empty(), "the earlier file imports without a message");
        in->host = std::move(work.f_GebDb);
        return in;
    }();
    return *inst;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Installation& inst = installation();
    const std::string_view in = fuzz::bytesOf(data, size);
    fuzz::writeBytes(inst.scanFile, in);
    fuzz::copyFileOver(inst.orderTemplate, inst.order);

    ScriptedUserInteraction ui;
    const auto lineEnds = std::count_if(in.begin(), in.end(), [](char c) { return c == '\n' || c == '\r'; });
    for (std::ptrdiff_t i = 0; i <= lineEnds; ++i)
        ui.conflictAnswers.push_back(i % 2 == 0);

    CAuftragDb db(ui);
    db.setDbPath(inst.order);
    fuzz::require(db.OpenDb(), "the order opens");
    frmWork work(db, inst.settings, ui);
    work.f_GebDb = std::move(inst.host);
    work.f_stfilename = inst.scanFile;
    work.RaeumeNichtInAuftrag();
    work.VerschiedeneTage();
    work.RaeumeVorhanden();
    importInto(db, work, inst.scanFile);
    work.Init();
    work.InitData();
    inst.host = std::move(work.f_GebDb);
    return 0;
}
