#include "frmWork.h"

#include "frmWorkSupport.h"

#include "Categories.h"
#include "DbError.h"
#include "FileSystem.h"
#include "JetCollation.h"
#include "ProjectAccess.h"
#include "QuarnHost.h"
#include "RunCache.h"
#include "ScannerFile.h"
#include "TextFile.h"
#include "bGeneral.h"

#include <limits>
#include <optional>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

namespace qi {

namespace {

constexpr const char* kTitle = "Quarn-Inventur";
constexpr const char* kProgressTitle = "Scannerdaten werden eingelesen";

constexpr const char* kKeinRaum = "Zuerst müssen Räume ausgewählt werden!";
constexpr const char* kRaeumeNichtInAuftrag =
    "In der Datei sind Räume enthalten, die nicht zum Auftrag gehören. Bearbeiten Sie bitte die Textdatei.";
constexpr const char* kVerschiedeneTage =
    "In der Datei sind Daten an verschiedenen Tagen aufgenommen worden. Bearbeiten Sie bitte die Textdatei.";
constexpr const char* kRaeumeVorhanden = "In der Datei sind Daten von Räumen, die bereits eingelesen wurden.";
constexpr const char* kSchonHinzugefuegt = "Datei dieses Namens wurde bereits hinzugefügt.";
constexpr const char* kNichtMehrDa =
    "Die Datei ist an der ursprünglichen Stelle nicht mehr vorhanden. Stellen Sie den alten Zustand wieder her "
    "oder bauen Sie die Dateiliste neu auf";
constexpr const char* kFilter = "Alle Dateien (*.*)|*.*|Scannerdaten (*.dat)|*.dat";

} // namespace

std::int32_t idFromItemKey(const std::string& key)
{
    if (key.size() < 2)
        return 0;
    // Like Val(): leading blanks, then an optional sign and the digits; anything else ends the number.
    std::size_t i = 1;
    while (i < key.size() && key[i] == ' ')
        ++i;
    bool negative = false;
    if (i < key.size() && (key[i] == '-' || key[i] == '+'))
        negative = key[i++] == '-';
    std::int64_t n = 0;
    for (; i < key.size() && key[i] >= '0' && key[i] <= '9'; ++i) {
        n = n * 10 + (key[i] - '0');
        if (n > 0x7fffffff)
            return 0;
    }
    return static_cast<std::int32_t>(negative ? -n : n);
}

frmWork::frmWork(CAuftragDb& db, const Settings& settings, UserInteraction& ui)
    : f_DBAuftrag(db), settings_(settings), ui_(ui)
{
}

frmWork::~frmWork() = default;

// ---------------------------------------------------------------- lists

bool frmWork::Init()
{
    try {
        lvDateien.clear();
        check(f_DBAuftrag.ReadAllDateienRec2Coll(f_collDateien), f_DBAuftrag);
        pbRemoveEnabled = f_collDateien.Count() > 0 && !readOnly();
        for (const CDateienRec& d : f_collDateien)
            lvDateien.push_back({CDateienRecColl::MakeIndex(d.lID), d.stName, {d.Datum, d.stPfad}});
        if (onDateienChanged)
            onDateienChanged();
        return true;
    } catch (const std::exception& e) {
        // The window shows the cleared list, not the rows before, behind the message.
        lvDateien.clear();
        pbRemoveEnabled = false;
        if (onDateienChanged)
            onDateienChanged();
        ui_.showError("frmWork.Init", e.what());
        return false;
    }
}

bool frmWork::InitData()
{
    try {
        lvRooms.clear();
        check(f_DBAuftrag.ReadAllRaumRec2Coll(f_collRooms), f_DBAuftrag);
        for (const CRaumRec& r : f_collRooms) {
            std::string datei;
            if (r.lDatID != 0) {
                CDateienRec d;
                d.lID = r.lDatID;
                if (f_DBAuftrag.ReadDateienRec(&d))
                    datei = d.stName;
            }
            lvRooms.push_back({"R " + std::to_string(r.lID), r.stRaumNr,
                               {r.ststatus, r.Datum, std::to_string(r.iAnzahl), datei}});
        }
        if (onRoomsChanged)
            onRoomsChanged();
        return true;
    } catch (const std::exception& e) {
        lvRooms.clear();
        if (onRoomsChanged)
            onRoomsChanged();
        ui_.showError("frmWork.InitData", e.what());
        return false;
    }
}

// ---------------------------------------------------------------- checks

namespace {
/// True as soon as `found` answers true for the room (normalised) of a record of the
/// file; a room that answered false is not asked again.
template <class Found>
bool anyRoomOfFile(const std::string& path, Found&& found)
{
    ScannerFile file(path);
    std::unordered_set<std::string> asked;
    while (file.nextRecord()) {
        std::string room = normaliseRoom(file.field(5));
        if (asked.count(room))
            continue;
        if (found(room))
            return true;
        asked.insert(std::move(room));
    }
    return false;
}
} // namespace

bool frmWork::RaeumeNichtInAuftrag()
{
    try {
        return anyRoomOfFile(f_stfilename, [this](const std::string& room) { return !f_DBAuftrag.RaumImAuftrag(room); });
    } catch (const std::exception& e) {
        ui_.showError("frmWork.RaeumeNichtInAuftrag", e.what());
        return false;
    }
}

bool frmWork::VerschiedeneTage()
{
    try {
        ScannerFile file(f_stfilename);
        if (!file.nextRecord())
            return false;
        const std::string first = file.field(3);
        while (file.nextRecord())
            if (file.field(3) != first)
                return true;
        return false;
    } catch (const std::exception& e) {
        // The date check reports under the label of the room check.
        ui_.showError("frmWork.RaeumeVorhanden", e.what());
        return false;
    }
}

bool frmWork::RaeumeVorhanden()
{
    try {
        return anyRoomOfFile(f_stfilename, [this](const std::string& room) { return f_DBAuftrag.RaumVorhanden(room); });
    } catch (const std::exception& e) {
        ui_.showError("frmWork.RaeumeVorhanden", e.what());
        return false;
    }
}

// ---------------------------------------------------------------- import

namespace {
/// The lines of a file, or all lines, without their numbers.
constexpr const char* kUnnumberLinesOfFile = "UPDATE T_DatInventur SET iReihenfolge = 0 WHERE lDatID = ?1";
constexpr const char* kUnnumberLines = "UPDATE T_DatInventur SET iReihenfolge = 0";
} // namespace

bool frmWork::GetDataFromDat()
{
    // One transaction for the whole file; what was stored before an error is kept all the same.
    std::optional<KeptTransaction> tx;
    importError_ = 0;
    importOverflow_ = false;
    try {
        ensureHost();
        // The first lookups of a file may read all of Quarn's objects into memory.
        const Database::Turning quarnPainting(f_GebDb->database(), [this] { ui_.keepPainting(); });
        const QObjektDb::LookupBatch lookups(*f_GebDb);
        ScannerFile file(f_stfilename);
        ProgressScope progress(*this, kProgressTitle);
        const std::string fileName = fileNamePart(f_stfilename);
        tx.emplace(f_DBAuftrag);

        CDatInventurRec rec;
        ScanRecord r;
        std::int64_t nextReport = kProgressStep;
        // The lines are numbered per room as they are written, from 1 in the order of the file,
        // so that numbering the rooms afterwards finds a new room in order. A room that had lines
        // before, or that a conflict changes, is found out of order and numbered there anew. A
        // room of more lines than the 16-bit counter reaches leaves the whole file unnumbered
        // (DatEinlesen), for the numbering to stop at that room as it does.
        std::unordered_map<std::string, std::int16_t> linesOfRoom;
        while (file.next(r)) {
            if (file.linesRead() >= nextReport) {
                ui_.reportProgress(fileName, file.linesRead());
                nextReport = file.linesRead() + kProgressStep;
            }
            rec.stMitarbNr = r.stMitarbNr;
            rec.stAuftragsNr = r.stAuftragsNr;
            rec.Datum = r.Datum;
            rec.Uhrzeit = r.Uhrzeit;
            rec.stRaum = normaliseRoom(r.stRaum);
            rec.stInvNr = trimBlanks(r.stInvNr);
            if (rec.stInvNr.empty()) {
                ui_.messageBox("In der Datei '" + f_stfilename + "' steht ein Datensatz ohne Objektnummer.",
                               MsgButtons::Ok, MsgIcon::None, kTitle);
                rec.stInvNr = kObjectWithoutNumber;
            }
            rec.stArtNr = trimBlanks(r.stArtNr);
            rec.stTaet = r.stTaet;
            if (const auto host = f_GebDb->FindByInvNr(rec.stInvNr)) {
                rec.stArtNr = host->stArtNr;
                rec.stArtName = host->stArtName;
            }
            rec.lDatID = f_lDatId;
            std::int16_t& lines = linesOfRoom[jetFoldKey(rec.stRaum)];
            // Past the 16-bit counter the line stays unnumbered, for the numbering to overflow on.
            const bool countable = lines < std::numeric_limits<std::int16_t>::max();
            importOverflow_ = importOverflow_ || !countable;
            rec.iReihenfolge = countable ? std::int16_t(lines + 1) : std::int16_t{0};

            bool duplicate = false;
            check(f_DBAuftrag.AddNewDatInventurRec(&rec, duplicate), f_DBAuftrag);
            if (!duplicate && countable)
                ++lines;
            if (duplicate) {
                CDatInventurRec stored;
                check(f_DBAuftrag.GetDatInventurByInvNr(&rec, stored), f_DBAuftrag);
                stored.stArtName = rec.stArtName;
                if (stored.stRaum == rec.stRaum) {
                    ui_.messageBox("Warnung: Im Raum " + rec.stRaum + " ist die Objektnummer '" + rec.stInvNr +
                                       "' mehrfach eingescannt worden.",
                                   MsgButtons::Ok, MsgIcon::Exclamation, kTitle);
                } else {
                    CDateienRec first;
                    first.lID = stored.lDatID;
                    check(f_DBAuftrag.ReadDateienRec(&first), f_DBAuftrag);
                    const ConflictInfo info{rec.stInvNr,    rec.stArtNr, rec.stArtName,
                                            stored.stRaum,  first.stName, stored.Datum,
                                            rec.stRaum,     fileName,     rec.Datum};
                    if (ui_.resolveConflict(info)) {
                        stored.stRaum = rec.stRaum;
                        stored.Datum = rec.Datum;
                        stored.lDatID = rec.lDatID;
                        check(f_DBAuftrag.EditDatInventurRec(&stored), f_DBAuftrag);
                    }
                    ui_.processEvents();
                }
            }
            rec.Init();
        }
        tx->commit();
        return true;
    } catch (const std::exception& e) {
        // Keeps the lines stored before the error; the first error is the one the user needs to see.
        tx.reset();
        if (const auto* engine = dynamic_cast<const DbError*>(&e))
            importError_ = engine->number();
        else if (dynamic_cast<const Failure*>(&e))
            importError_ = f_DBAuftrag.LastErrorNumber();
        ui_.showError("frmWork.GetDataFromDat", e.what());
        return false;
    }
}

bool frmWork::DatEinlesen()
{
    const bool ok = GetDataFromDat();
    // After a failure of the disk the import is gone as a whole; there is nothing to number.
    if (!storageFailed()) {
        if (importOverflow_)
            f_DBAuftrag.database()->execute(kUnnumberLinesOfFile, {std::int64_t{f_lDatId}});
        f_DBAuftrag.WriteReihenfolgeDatInventur();
    }
    return ok;
}

namespace {
/// True for a failure of the disk (full, or failing), after which a command's changes are undone.
bool isDiskFailure(const std::exception& e)
{
    const auto* db = dynamic_cast<const DbError*>(&e);
    return db && (db->number() == dberr::DiskFull || db->number() == dberr::DiskOrNetwork);
}
} // namespace

// ---------------------------------------------------------------- data file list

FileListResult frmWork::RoomsSelected()
{
    if (RefuseOrderChange(f_DBAuftrag, ui_))
        return FileListResult::ReadOnly;
    try {
        check(f_DBAuftrag.ReadAllRaumRec2Coll(f_collRooms), f_DBAuftrag);
    } catch (const std::exception& e) {
        ui_.showError("frmWork.pbAdd_Click", e.what());
        return FileListResult::Failed;
    }
    if (f_collRooms.Count() > 0)
        return FileListResult::Done;
    ui_.messageBox(kKeinRaum, MsgButtons::Ok, MsgIcon::Exclamation, "Problem");
    return FileListResult::NoRooms;
}

FileListResult frmWork::pbAdd_Click()
{
    if (const FileListResult rooms = RoomsSelected(); rooms != FileListResult::Done)
        return rooms;
    std::optional<std::string> chosen;
    try {
        FileDialogRequest request;
        // Before the first file the dialog opens in the project folder, where scanner
        // files are usually put; afterwards in the folder of the file added last.
        request.startFolder = f_stfilename.empty() ? settings_.gstProjektPfad : folderPart(f_stfilename);
        request.filter = kFilter;
        request.filterIndex = 2;
        chosen = ui_.openFile(request);
    } catch (const std::exception& e) {
        ui_.showError("frmWork.pbAdd_Click", e.what());
        return FileListResult::Failed;
    }
    if (!chosen || chosen->empty())
        return FileListResult::Cancelled;
    return AddDataFile(*chosen);
}

Database::Turning frmWork::keepPainting()
{
    return Database::Turning(f_DBAuftrag.database(), [this] { ui_.keepPainting(); });
}

FileListResult frmWork::AddDataFile(const std::string& path)
{
    const Database::Turning painting = keepPainting();
    try {
        ui_.setBusy(true);
        f_stfilename = path;

        CDateienRec datei;
        datei.stName = fileNamePart(f_stfilename);
        datei.stPfad = f_stfilename;
        // A file that is no text of the scanners, or empty, is refused before anything is written.
        datei.Datum = GetField(ScannerFile::check(f_stfilename), ",", 3);

        const auto refuse = [this](const char* text, FileListResult why) {
            ui_.setBusy(false);
            ui_.messageBox(text, MsgButtons::Ok, MsgIcon::None, kTitle);
            return why;
        };
        if (RaeumeNichtInAuftrag())
            return refuse(kRaeumeNichtInAuftrag, FileListResult::RoomsNotInOrder);
        if (VerschiedeneTage())
            return refuse(kVerschiedeneTage, FileListResult::SeveralDays);
        if (RaeumeVorhanden())
            return refuse(kRaeumeVorhanden, FileListResult::RoomsAlreadyRead);

        // The file's row, its scan lines, their numbers and the rooms' status are written as
        // one: a process that dies on the way leaves the order as it was before the file.
        const RunCache cache(f_DBAuftrag.database(), kImportCacheKiB);
        KeptTransaction tx(f_DBAuftrag);
        if (!f_DBAuftrag.AddNewDateienRec(&datei)) {
            // Only a name the order holds already is refused so; a disk that can't take the row, or
            // a path longer than its field holds, says why.
            if (storageFailed() || f_DBAuftrag.LastErrorNumber() == dberr::FieldTooSmall)
                throw Failure(f_DBAuftrag.LastError());
            return refuse(kSchonHinzugefuegt, FileListResult::AlreadyAdded);
        }

        f_lDatId = datei.lID;
        ui_.processEvents();
        bool ok = DatEinlesen();
        ui_.processEvents();
        if (importError_ == dberr::FieldTooSmall) {
            // A value longer than its field holds refuses the whole file (the import said why):
            // nothing of it stays, not even its row in the list.
            tx.rollback();
            ui_.setBusy(false);
            Init();
            InitData();
            return FileListResult::Failed;
        }
        const bool statusSet = !storageFailed() && f_DBAuftrag.SetStatusRoomsByDB();
        if (storageFailed()) {
            // The disk took nothing of the file (the import said why): the order is as before it.
            ui_.setBusy(false);
            Init();
            InitData();
            return FileListResult::Failed;
        }
        if (statusSet) {
            Init();
            InitData();
        } else {
            ok = false;
        }
        tx.commit();
        ui_.setBusy(false);
        return ok ? FileListResult::Done : FileListResult::Failed;
    } catch (const std::exception& e) {
        ui_.setBusy(false);
        ui_.showError("frmWork.pbAdd_Click", e.what());
        // The file's changes could not be written and are gone: the lists show the order as it is.
        if (storageFailed() || isDiskFailure(e)) {
            Init();
            InitData();
        }
        return FileListResult::Failed;
    }
}

FileListResult frmWork::pbRemove_Click(const std::string& itemKey, const std::string& itemText)
{
    if (itemKey.empty())
        return FileListResult::Cancelled;
    if (RefuseOrderChange(f_DBAuftrag, ui_))
        return FileListResult::ReadOnly;
    try {
        if (!ui_.askYesNo("Die Datei '" + itemText +
                              "' entfernen und Inventurdaten entsprechen verbleibenden Dateien aktualisieren ?",
                          kTitle))
            return FileListResult::Cancelled;
    } catch (const std::exception& e) {
        ui_.showError("frmWork.pbRemove_Click", e.what());
        return FileListResult::Failed;
    }
    // The file's row goes with the rebuild: a process that dies on the way leaves the order as it was.
    KeptTransaction tx(f_DBAuftrag);
    try {
        CDateienRec datei;
        datei.lID = idFromItemKey(itemKey);
        check(f_DBAuftrag.DelDateienRec(&datei), f_DBAuftrag);
        f_stfilename.clear();
    } catch (const std::exception& e) {
        ui_.showError("frmWork.pbRemove_Click", e.what());
        return FileListResult::Failed;
    }
    return pbNeu_Click();
}

void frmWork::lvDateien_DblClick(const std::string& itemKey)
{
    if (itemKey.empty())
        return;
    try {
        CDateienRec datei;
        datei.lID = idFromItemKey(itemKey);
        check(f_DBAuftrag.ReadDateienRec(&datei), f_DBAuftrag);
        if (!fileExists(datei.stPfad)) {
            ui_.messageBox(kNichtMehrDa, MsgButtons::Ok, MsgIcon::None, kTitle);
            return;
        }
        ui_.openInEditor(datei.stPfad);
        ui_.processEvents();
    } catch (const std::exception& e) {
        ui_.showError("frmWork.lvDateien_DblClick", e.what());
    }
}

void frmWork::clearScanData()
{
    check(f_DBAuftrag.DelAllDiffListe(), f_DBAuftrag);
    check(f_DBAuftrag.DelAllInvListe(), f_DBAuftrag);
    check(f_DBAuftrag.DelAllArtikellisteRec(), f_DBAuftrag);
    check(f_DBAuftrag.DelAllDatInventur(), f_DBAuftrag);
    // The room statement shows its own message when it fails.
    f_DBAuftrag.ResetStatusRooms();
    Init();
    InitData();
}

FileListResult frmWork::pbNeu_Click()
{
    if (RefuseOrderChange(f_DBAuftrag, ui_))
        return FileListResult::ReadOnly;
    // All scan data are made anew as one: a process that dies on the way leaves the order as
    // it was; the specified stops (a missing file, rooms read twice) keep what they left. A disk
    // that can't take the changes leaves the order as it was, too.
    const Database::Turning painting = keepPainting();
    const RunCache cache(f_DBAuftrag.database(), kImportCacheKiB);
    KeptTransaction tx(f_DBAuftrag);
    try {
        ui_.setBusy(true);
        clearScanData();

        ProgressScope progress(*this, kProgressTitle);
        bool conflict = false;
        bool ok = true;
        // Lines are read in numbered unless a room overflowed the counter; then none is, as
        // numbering them all at the end stops at that room.
        bool overflow = false;
        CDateienRec* datei = nullptr;
        f_collDateien.ResetIndex();
        while (f_collDateien.GetNext(datei)) {
            f_stfilename = datei->stPfad;
            if (!fileExists(f_stfilename)) {
                progress.end();
                ui_.setBusy(false);
                ui_.messageBox("Die Datei " + f_stfilename +
                                   " ist an dieser Stelle nicht mehr vorhanden. Stellen Sie den alten Zustand "
                                   "wieder her oder bauen Sie die Dateiliste neu auf",
                               MsgButtons::Ok, MsgIcon::None, kTitle);
                return FileListResult::FileMissing;
            }
            f_lDatId = datei->lID;
            if (RaeumeVorhanden()) {
                conflict = true;
                break;
            }
            ok = GetDataFromDat() && ok;
            overflow = overflow || importOverflow_;
            if (storageFailed())
                break;
        }
        progress.end();
        if (storageFailed()) {
            ui_.setBusy(false);
            Init();
            InitData();
            return FileListResult::Failed;
        }

        if (conflict) {
            ui_.setBusy(false);
            ui_.messageBox("In der Datei " + f_stfilename +
                               " sind Daten von Räumen, die von einer vorhergehenden Datei bereits eingelesen wurden.",
                           MsgButtons::Ok, MsgIcon::None, kTitle);
            clearScanData();
            return FileListResult::RoomsAlreadyRead;
        }

        if (overflow)
            f_DBAuftrag.database()->execute(kUnnumberLines);
        ok = f_DBAuftrag.WriteReihenfolgeDatInventur() && ok;
        const bool statusSet = !storageFailed() && f_DBAuftrag.SetStatusRoomsByDB();
        if (statusSet) {
            Init();
            InitData();
        } else {
            ok = false;
        }
        tx.commit();
        ui_.setBusy(false);
        return ok ? FileListResult::Done : FileListResult::Failed;
    } catch (const std::exception& e) {
        ui_.setBusy(false);
        ui_.showError("frmWork.pbNeu_Click", e.what());
        if (storageFailed() || isDiskFailure(e)) {
            Init();
            InitData();
        }
        return FileListResult::Failed;
    }
}

// ---------------------------------------------------------------- archive

std::string frmWork::MakeArchive()
{
    // The archive is written into the project folder, which a read-only order leaves alone.
    if (RefuseOrderChange(f_DBAuftrag, ui_))
        return {};
    try {
        const std::string dbName = fileNamePart(f_DBAuftrag.DbPath());
        if (dbName.size() < 4)
            throw std::runtime_error("Ungültiger Prozeduraufruf oder ungültiges Argument");
        const std::string archive =
            settings_.gstProjektPfad + "Inventur\\" + dbName.substr(0, dbName.size() - 4) + ".dat";

        // The lines go to the file as they are read: the memory needed does not grow with the
        // order. The file is begun once the first line can be read.
        std::optional<TextFileWriter> out;
        bool read = false;
        try {
            read = f_DBAuftrag.WalkAllDatInventurRec([&] { out.emplace(archive); },
                                                     [&](const CDatInventurRec& rec) {
                                                         out->writeLine(rec.stMitarbNr + "," + rec.stAuftragsNr + "," +
                                                                        rec.Datum + "," + rec.Uhrzeit + "," +
                                                                        rec.stRaum + "," + rec.stInvNr + "," +
                                                                        rec.stArtNr + "," + rec.stTaet);
                                                     });
            if (read)
                out->close();
        } catch (const DbError&) {
            // A write that fails (a full disk) leaves the lines written until then in the archive;
            // a process that dies while writing leaves the earlier archive whole.
            if (out)
                out->keepWrittenLines();
            throw;
        }
        if (!read) {
            // A line that can't be read leaves the earlier archive as it was.
            ui_.showError("frmWork.MakeArchive", f_DBAuftrag.LastError());
            return {};
        }
        return archive;
    } catch (const std::exception& e) {
        ui_.showError("frmWork.MakeArchive", e.what());
    }
    return {};
}

} // namespace qi
