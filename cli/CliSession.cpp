#include "CliSession.h"

#include "FileSystem.h"
#include "HostMirror.h"
#include "JetCollation.h"
#include "OdbcDatabase.h"
#include "KeptOrders.h"
#include "ProfileFile.h"
#include "ProjectAccess.h"
#include "ProjectChoice.h"
#include "ProjectReports.h"
#include "ProjectResultSchema.h"
#include "ReportDatabase.h"
#include "SystemError.h"
#include "TextFile.h"
#include "frmRaum.h"
#include "frmWork.h"

#include <filesystem>
#include <functional>
#include <ostream>
#include <set>
#include <sstream>
#include <unordered_map>

namespace qi::cli {

namespace {

/// The program folder's "Quarn.ini" as the main window reads it, except that its project is
/// the folder given on the command line.
class GivenProject : public ProfileService {
public:
    GivenProject(std::string quarnIni, std::string folder) : quarnIni_(std::move(quarnIni)), folder_(std::move(folder))
    {
    }
    std::string ReadProfileValue(const std::string& file, const std::string& section, const std::string& key,
                                 const std::string& defaultValue) const override
    {
        if (file == quarnIni_ && jetEqual(section, "Quarn") && jetEqual(key, "Projekt"))
            return folder_;
        return ProfileService::ReadProfileValue(file, section, key, defaultValue);
    }

private:
    std::string quarnIni_;
    std::string folder_;
};

/// The objects of the difference list per category (rooms without objects have none).
constexpr const char* kCountPerCategory =
    "SELECT stTyp, COUNT(*) FROM T_Differenzliste WHERE stTyp <> '' GROUP BY stTyp ORDER BY stTyp";

ExitCode exitCodeOf(FileListResult r)
{
    switch (r) {
    case FileListResult::Done: return kSuccess;
    case FileListResult::NoRooms: return kNoRooms;
    case FileListResult::RoomsNotInOrder: return kRoomsNotInOrder;
    case FileListResult::SeveralDays: return kSeveralDays;
    case FileListResult::RoomsAlreadyRead: return kRoomsAlreadyRead;
    case FileListResult::AlreadyAdded: return kFileAlreadyAdded;
    case FileListResult::FileMissing: return kFileMissing;
    case FileListResult::ReadOnly: return kReadOnly;
    case FileListResult::Cancelled:
    case FileListResult::Failed: break;
    }
    return kFailure;
}

/// Why a scanner file was not added, after the message that told it.
std::string notAdded(const std::string& path, FileListResult r)
{
    const std::string file = "Die Datei '" + displayPath(path) + "'";
    if (r != FileListResult::Failed && r != FileListResult::Cancelled)
        for (const ExitCodeInfo& info : kExitCodes)
            if (info.code == exitCodeOf(r))
                return file + " ist abgewiesen: " + std::string(info.meaning) + ".";
    return file + " konnte nicht hinzugefügt werden (siehe die Meldung oben).";
}

/// Whether the command changes the order (or the project's orders, or writes the order's archive).
bool changesTheOrder(const Invocation& inv)
{
    static const std::set<std::string> changing = {"anlegen",      "loeschen",  "hinzufuegen", "entfernen",
                                                   "neu-einlesen", "auswerten", "archiv",      "wiederherstellen"};
    return changing.count(inv.command) > 0 || (inv.command == "raeume" && inv.has("--setzen"));
}

/// Told when a command changed the order as asked although errors were reported on its way.
constexpr const char* kChangedDespiteErrors =
    "Warnung: Der Befehl ist ausgeführt und seine Änderung gespeichert; die Fehlermeldungen oben haben sie "
    "nicht verhindert.";

/// Told when a command did its work on the last copy of Quarn's data (made at `madeAt`) while the
/// server could not be reached.
std::string serverWarning(const std::string& madeAt)
{
    return "Warnung: Der Server der Quarn-Datenbank war nicht erreichbar. Der Befehl hat mit der letzten Kopie "
           "ihrer Daten vom " +
           madeAt + " gearbeitet.";
}

/// One room of `raeume --setzen`: its number and the status asked for ("L", "N" or none).
struct WantedRoom {
    std::string number;
    std::string status;
};

/// "101", "101:L" or "101:N" (the letter in either case).
WantedRoom wantedRoom(const std::string& text)
{
    const std::size_t colon = text.rfind(':');
    if (colon != std::string::npos && colon + 2 == text.size()) {
        const char s = char(std::toupper(static_cast<unsigned char>(text[colon + 1])));
        if (s == 'L' || s == 'N')
            return {text.substr(0, colon), std::string(1, s)};
    }
    return {text, {}};
}

} // namespace

std::string absolutePath(const std::string& path)
{
    std::error_code ec;
    const auto p = std::filesystem::absolute(std::filesystem::u8path(path), ec);
    return ec ? path : p.string();
}

Session::Session(const Invocation& inv, std::string programFolder, std::ostream& out, std::ostream& err,
                 bool terminal)
    : inv_(inv), programFolder_(std::move(programFolder)), out_(out), err_(err), ui_(err, terminal)
{
    // This run's reports read a copy of the report database of its own (see ReportDatabase.h).
    settings_.privateReportDatabase = std::make_shared<PrivateReportDatabase>();
}

Session::~Session() = default;

void Session::say(const std::string& text) { err_ << ConsoleUserInteraction::format("qinventur-cli", text) << '\n'; }

void Session::unchanged() { say("Der Auftrag bleibt, wie er vor dem Befehl war."); }

std::string Session::lastCopyOfServer() const
{
    return HostMirror(HostMirror::defaultCacheFolder(), programFolder_)
        .madeAt(HostSource::odbc(settings_.gstConnectionString));
}

int Session::run()
{
    // What can be told from the command line alone is told before the project is opened.
    const std::string konflikt = inv_.option("--konflikt");
    if (!konflikt.empty() && konflikt != "behalten" && konflikt != "verwerfen") {
        say("--konflikt nimmt behalten oder verwerfen, nicht '" + konflikt + "'.");
        return kBadArguments;
    }
    if (inv_.command == "raeume") {
        const bool setzen = inv_.has("--setzen");
        const bool rooms = inv_.args.size() > 1 || inv_.options.count("--datei") || inv_.has("--alle");
        if (!setzen && rooms) {
            say("Räume, --datei und --alle gehören zu --setzen.");
            return kBadArguments;
        }
        if (setzen && !rooms) {
            say("Es fehlen die Räume: Raumnummern, --datei DATEI oder --alle.");
            return kBadArguments;
        }
    }

    if (inv_.command == "projekt" && inv_.options.count("--liste") && listTable(inv_.option("--liste")).empty()) {
        say("Eine Liste '" + inv_.option("--liste") + "' gibt es nicht. Listen: " + projectListNames() + ".");
        return kBadArguments;
    }
    if (inv_.command == "korrekturen") {
        if (const std::string refused = refusedCorrectionCall(inv_); !refused.empty()) {
            say(refused);
            return kBadArguments;
        }
    }
    if (const std::string refused = refusedLabelCall(inv_); !refused.empty()) {
        say(refused);
        return kBadArguments;
    }
    if (inv_.command == "bericht" || inv_.command == "export") {
        if (inv_.option("--ausgabe").empty()) {
            say("Es fehlt --ausgabe " + std::string(inv_.command == "export" ? "ORDNER" : "PFAD") + ".");
            return kBadArguments;
        }
        const std::string projectReport = inv_.option("--projekt-weit");
        if (inv_.command == "bericht" && inv_.options.count("--projekt-weit") && !findProjectReport(projectReport)) {
            say("Einen Projektbericht '" + projectReport + "' gibt es nicht. Projektberichte: " +
                projectReportNames() + ".");
            return kBadArguments;
        }
        if (inv_.command == "bericht" && !inv_.options.count("--projekt-weit") && !knownReport(inv_.args.at(1))) {
            say("Einen Bericht '" + inv_.args.at(1) + "' gibt es nicht. Berichte: " + reportNames() + ".");
            return kBadArguments;
        }
        if (reportFormatOf(inv_).empty()) {
            say(inv_.options.count("--format")
                    ? "--format nimmt pdf, xlsx oder csv, nicht '" + inv_.option("--format") + "'."
                    : "Die Endung von '" + inv_.option("--ausgabe") +
                          "' nennt kein Format (pdf, xlsx oder csv); geben Sie --format an.");
            return kBadArguments;
        }
    }

    // Without a project to work on the command is refused before anything is written anywhere.
    // An installed program's writable files lie in the user's own program folder.
    const ProgramFolders folders = programFolders(programFolder_);
    const std::string noProject = inv_.projekt.empty() ? missingProjectOfQuarnIni(folders)
                                                       : emptyGivenProject(absolutePath(inv_.projekt));
    if (!noProject.empty()) {
        say(noProject);
        return kNoProject;
    }
    // A server that can't be reached is told as the windows tell it; while the last copy of its data
    // serves, as a warning.
    ui_.setWarningTest([this](const std::string& text) {
        return !settings_.isJet() && !settings_.gstConnectionString.empty() &&
               text.find(odbcUnreachableHeadline(settings_.gstConnectionString)) != std::string::npos &&
               !lastCopyOfServer().empty();
    });

    if (inv_.projekt.empty()) {
        startup_ = RunStartup(folders, settings_, ui_);
    } else {
        const GivenProject profile(quarnIniFolder(folders) + "\\" + kQuarnIni, absolutePath(inv_.projekt));
        startup_ = RunStartup(folders, settings_, ui_, profile);
    }
    if (!startup_.completed)
        return kProjectUnusable;
    if (!startup_.inventurDb || !startup_.inventurDb->ReadAllAuftragRec2Coll(orders_)) {
        ui_.showError(mainlabel::InitAuftraege,
                      startup_.inventurDb ? startup_.inventurDb->LastError() : std::string(kNoObject));
        return kFailure;
    }
    int code = kFailure;
    try {
        code = dispatch();
    } catch (const std::exception& e) {
        // Nothing the project holds may end the program without a word.
        ui_.showError("qinventur-cli." + inv_.command, e.what());
        return kFailure;
    }
    // Whatever a command reported as an error makes it fail, unless it ended with a refusal of its own
    // or it changed the order as asked: that change stands, and the errors are told as a warning.
    if (code == kSuccess && ui_.errorCount() > 0) {
        if (!changesTheOrder(inv_))
            return kFailure;
        say(kChangedDespiteErrors);
    }
    if (code == kSuccess && ui_.warningCount() > 0)
        say(serverWarning(lastCopyOfServer()));
    return code;
}

int Session::dispatch()
{
    const std::string& c = inv_.command;
    if (c == "auftraege")
        return auftraege();
    if (c == "anlegen")
        return anlegen();
    if (c == "loeschen")
        return loeschen();
    if (c == "raeume")
        return inv_.has("--setzen") ? raeumeSetzen() : raeume();
    if (c == "hinzufuegen")
        return hinzufuegen();
    if (c == "entfernen")
        return entfernen();
    if (c == "neu-einlesen")
        return neuEinlesen();
    if (c == "auswerten")
        return auswerten();
    if (c == "projekt")
        return projekt();
    if (c == "bericht")
        return inv_.options.count("--projekt-weit") ? projektBericht() : bericht();
    if (c == "export")
        return exportAll();
    if (c == "korrekturen")
        return korrekturen();
    if (c == "etiketten")
        return etiketten();
    if (c == "begehungsliste")
        return begehungsliste();
    if (c == "archiv")
        return archiv();
    if (c == "gesichert")
        return gesichert();
    if (c == "wiederherstellen")
        return wiederherstellen();
    return kBadArguments;
}

CAuftragRec* Session::order() { return order(inv_.args.at(0)); }

CAuftragRec* Session::order(const std::string& name)
{
    CAuftragRec* rec = findOrder(orders_, name);
    if (!rec)
        say("Einen Auftrag '" + name + "' gibt es im Projekt nicht.");
    return rec;
}

bool Session::open(CAuftragRec& rec, OrderAccess access)
{
    db_ = std::make_unique<CAuftragDb>(ui_);
    if (OpenOrderDatabase(*startup_.inventurDb, settings_, ui_, rec, *db_, access, &putBack_) != OrderResult::Done)
        return false;
    if (putBack_)
        say(keptmsg::readBeforeCutOff(rec.stBezeichung));
    return true;
}

int Session::openOrder(Intent intent, CAuftragRec*& rec)
{
    rec = order();
    if (!rec)
        return kOrderUnknown;
    if (!open(*rec, intent == Intent::Look ? OrderAccess::Look : OrderAccess::Work))
        return kFailure;
    if (intent == Intent::Change && RefuseOrderChange(*db_, ui_))
        return kReadOnly;
    return kSuccess;
}

// ---------------------------------------------------------------- orders

int Session::auftraege()
{
    out_ << "Name\terstellt\tgeändert\tErsteller\n";
    for (const CAuftragRec& rec : orders_)
        out_ << rec.stBezeichung << '\t' << rec.erstellt.toDisplayText() << '\t' << rec.letzte_Aenderung.toDisplayText()
             << '\t' << rec.stErsteller << '\n';
    return kSuccess;
}

int Session::anlegen()
{
    const std::string& name = inv_.args.at(0);
    if (refuseTakenName(orders_, name, ui_))
        return kOrderExists;
    CAuftragRec rec;
    rec.Init();
    rec.stBezeichung = name;
    rec.stErsteller = inv_.option("--mitarbeiter");
    std::vector<std::string> kept;
    const OrderResult created = CreateOrder(*startup_.inventurDb, settings_, ui_, rec, &kept);
    for (const std::string& file : kept)
        say(keptmsg::kept(file));
    switch (created) {
    case OrderResult::Done:
        out_ << "Auftrag '" << name << "' angelegt: " << displayPath(orderDatabaseFile(settings_, rec.stPfad)) << '\n';
        return kSuccess;
    case OrderResult::NameRefused: return kNameRefused;
    case OrderResult::ReadOnly: return kReadOnly;
    default: return kFailure;
    }
}

int Session::loeschen()
{
    CAuftragRec* rec = order();
    if (!rec)
        return kOrderUnknown;
    std::string kept;
    switch (DeleteOrder(*startup_.inventurDb, settings_, ui_, *rec, &kept)) {
    case OrderResult::Done:
        if (!kept.empty())
            say(keptmsg::kept(kept));
        break;
    case OrderResult::ReadOnly: return kReadOnly;
    default: return kFailure;
    }
    out_ << "Auftrag '" << inv_.args.at(0) << "' gelöscht.\n";
    return kSuccess;
}

// ---------------------------------------------------------------- rooms

int Session::raeume()
{
    CAuftragRec* rec = nullptr;
    if (const int code = openOrder(Intent::Look, rec); code != kSuccess)
        return code;
    frmWork work(*db_, settings_, ui_);
    if (!work.InitData())
        return kFailure;
    out_ << "Raum\tStatus\tDatum\tAnzahl\tDatei\n";
    for (const ListItem& room : work.lvRooms) {
        out_ << room.text;
        for (const std::string& sub : room.subItems)
            out_ << '\t' << sub;
        out_ << '\n';
    }
    return kSuccess;
}

int Session::raeumeSetzen()
{
    CAuftragRec* rec = order();
    if (!rec)
        return kOrderUnknown;

    // The rooms asked for, from the command line and the file, in their order.
    std::vector<WantedRoom> wanted;
    for (std::size_t i = 1; i < inv_.args.size(); ++i)
        wanted.push_back(wantedRoom(inv_.args[i]));
    if (inv_.options.count("--datei")) {
        const std::string file = inv_.option("--datei");
        std::string text;
        if (!readTextFile(file, text)) {
            say("Die Datei '" + displayPath(file) + "' kann nicht gelesen werden.");
            return kFileMissing;
        }
        std::istringstream lines(text);
        std::string line;
        while (std::getline(lines, line)) {
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            const std::size_t first = line.find_first_not_of(" \t");
            if (first == std::string::npos || line[first] == '#')
                continue;
            line = line.substr(first, line.find_last_not_of(" \t") - first + 1);
            wanted.push_back(wantedRoom(line));
        }
    }

    if (!open(*rec, OrderAccess::Work))
        return kFailure;
    // The room selection as the user works it: every room of the installation in its list,
    // the order's rooms taken out and the rooms asked for put in, marked as asked, then saved.
    frmRaum rooms(*db_, startup_.gebDb.get(), settings_, ui_);
    rooms.Form_Load();
    rooms.InitData();
    rooms.cbAllRooms = true;
    rooms.cbAllRooms_Click();
    if (ui_.errorCount() > 0)
        return kFailure;
    std::vector<std::pair<std::string, std::string>> marks; // row key, status asked for
    // A number names the last line of exactly that number, else the first line equal to it
    // under the text comparison; looked up, so that many rooms cost no walk of the list each.
    std::unordered_map<std::string, RoomLine*> exactLine, equalLine;
    for (RoomLine& line : rooms.lbRooms) {
        exactLine[line.text] = &line;
        equalLine.emplace(jetFoldKey(line.text), &line);
    }
    for (const WantedRoom& want : wanted) {
        RoomLine* match = nullptr;
        if (const auto exact = exactLine.find(want.number); exact != exactLine.end())
            match = exact->second;
        else if (const auto equal = equalLine.find(jetFoldKey(want.number)); equal != equalLine.end())
            match = equal->second;
        if (!match) {
            say("Einen Raum '" + want.number + "' gibt es in der Gebäudestruktur nicht.");
            return kRoomUnknown;
        }
        match->selected = true;
        if (!want.status.empty())
            marks.emplace_back(raumtext::KeyPrefix + std::to_string(match->itemData), want.status);
    }
    rooms.pbAllOut_Click();
    if (inv_.has("--alle"))
        rooms.pbAllIn_Click();
    else
        rooms.pbIn_Click();
    for (const auto& [key, status] : marks) {
        // The window's toggle: "N" becomes "L" and back; a room with scans keeps its "E".
        const RoomRow* row = rooms.rowByKey(key);
        if (row && row->status != status) {
            rooms.lvRoomsSelectedKey = key;
            rooms.lvRooms_DblClick();
        }
    }
    if (RefuseOrderChange(*db_, ui_))
        return kReadOnly;
    if (!rooms.SaveRooms())
        return kFailure;
    out_ << rooms.lvRooms.size() << " Räume im Auftrag '" << rec->stBezeichung << "' gespeichert.\n";
    return kSuccess;
}

// ---------------------------------------------------------------- data files

int Session::hinzufuegen()
{
    std::vector<std::string> files;
    for (std::size_t i = 1; i < inv_.args.size(); ++i) {
        const std::string path = absolutePath(inv_.args[i]);
        if (!fileExists(path)) {
            // A folder, a pipe or a device is there, but is no file.
            const std::string notAFile = notAFileMessage(path);
            say(notAFile.empty() ? "Die Datei '" + displayPath(path) + "' gibt es nicht." : notAFile);
            return kFileMissing;
        }
        files.push_back(path);
    }
    CAuftragRec* rec = nullptr;
    if (const int code = openOrder(Intent::Work, rec); code != kSuccess)
        return code;
    frmWork work(*db_, settings_, ui_);
    work.f_QGebDb = startup_.gebDb.get();
    if (const FileListResult rooms = work.RoomsSelected(); rooms != FileListResult::Done)
        return exitCodeOf(rooms);
    // All files or none: a refused file undoes the files added before it. The files are told as
    // added once the change is committed; a refused one is named with the reason.
    std::vector<std::string> added;
    const int code = asOneChange([&] {
        for (const std::string& path : files) {
            if (const FileListResult r = work.AddDataFile(path); r != FileListResult::Done) {
                if (r != FileListResult::ReadOnly)
                    say(notAdded(path, r));
                return r;
            }
            added.push_back(fileNamePart(path));
        }
        return FileListResult::Done;
    });
    if (code == kSuccess)
        for (const std::string& name : added)
            out_ << "Datei '" << name << "' hinzugefügt.\n";
    return code;
}

int Session::asOneChange(const std::function<FileListResult()>& change)
{
    const std::string konflikt = inv_.option("--konflikt");
    ui_.setConflictPolicy(konflikt == "behalten"    ? ConflictPolicy::Keep
                          : konflikt == "verwerfen" ? ConflictPolicy::Discard
                                                    : ConflictPolicy::None);
    Database::Transaction all(*db_->database());
    try {
        if (const FileListResult r = change(); r != FileListResult::Done) {
            all.rollback();
            // A read-only order was never touched, as its own message said.
            if (r != FileListResult::ReadOnly)
                unchanged();
            return exitCodeOf(r);
        }
    } catch (const UnresolvedConflict& c) {
        all.rollback();
        err_ << ConsoleUserInteraction::format("Fehler", "Bitte zwischen beiden Räumen entscheiden !\n" +
                                                             ConsoleUserInteraction::describeConflict(c.info))
             << '\n';
        say("Ohne --konflikt behalten oder --konflikt verwerfen kann der Befehl nicht entscheiden. "
            "Der Auftrag bleibt, wie er vor dem Befehl war.");
        return kUnresolvedConflict;
    }
    all.commit();
    return kSuccess;
}

int Session::entfernen()
{
    CAuftragRec* rec = nullptr;
    if (const int code = openOrder(Intent::Work, rec); code != kSuccess)
        return code;
    frmWork work(*db_, settings_, ui_);
    if (!work.Init())
        return kFailure;
    const std::string& name = inv_.args.at(1);
    const ListItem* entry = nullptr;
    for (const ListItem& item : work.lvDateien)
        if (item.text == name)
            entry = &item;
    if (!entry) {
        say("Eine Datei '" + name + "' gehört nicht zum Auftrag '" + rec->stBezeichung + "'.");
        return kFileMissing;
    }
    const std::string key = entry->key, text = entry->text;
    const int code = asOneChange([&] { return work.pbRemove_Click(key, text); });
    if (code == kSuccess)
        out_ << "Datei '" << text << "' entfernt, Scandaten neu eingelesen.\n";
    return code;
}

int Session::neuEinlesen()
{
    CAuftragRec* rec = nullptr;
    if (const int code = openOrder(Intent::Work, rec); code != kSuccess)
        return code;
    frmWork work(*db_, settings_, ui_);
    if (!work.Init())
        return kFailure;
    const int code = asOneChange([&] { return work.pbNeu_Click(); });
    if (code == kSuccess)
        out_ << "Scandaten aus " << work.f_collDateien.Count() << " Dateien neu eingelesen.\n";
    return code;
}

// ---------------------------------------------------------------- evaluation and archive

int Session::auswerten()
{
    // The evaluation writes the difference list into the order.
    CAuftragRec* rec = nullptr;
    if (const int code = openOrder(Intent::Change, rec); code != kSuccess)
        return code;
    frmWork work(*db_, settings_, ui_);
    work.f_QGebDb = startup_.gebDb.get();
    if (!work.ReportDifferenzListe())
        return kFailure;
    const Recordset counts = db_->database()->query(kCountPerCategory);
    out_ << "Kategorie\tAnzahl\n";
    for (const auto& row : counts.rows())
        out_ << toText(row[0]) << '\t' << toText(row[1]) << '\n';
    return kSuccess;
}

int Session::archiv()
{
    CAuftragRec* rec = nullptr;
    if (const int code = openOrder(Intent::Change, rec); code != kSuccess)
        return code;
    frmWork work(*db_, settings_, ui_);
    const std::string archive = work.MakeArchive();
    if (archive.empty())
        return kFailure;
    out_ << "Scandaten zusammengefasst in " << displayPath(archive) << '\n';
    return kSuccess;
}

} // namespace qi::cli
