#include "frmRaum.h"

#include "DbError.h"
#include "ProjectAccess.h"
#include "TableRecordset.h"
#include "frmWorkSupport.h"

#include <limits>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

namespace qi {

namespace {

/// Descriptions of the run-time errors the window's own steps raise.
constexpr const char* kTypeMismatch = "Typen unverträglich";
constexpr const char* kOverflow = "Überlauf";
constexpr const char* kKeyNotUnique = "Schlüssel ist in der Auflistung nicht eindeutig";

/// Raised when a call of the order database answered false; its text is in LastError.
struct DbCallFailed {};

void require(bool ok)
{
    if (!ok)
        throw DbCallFailed{};
}

} // namespace

std::int32_t hostIdFromKey(const std::string& key)
{
    // The rest of the key after its first character, converted as a whole: blanks around
    // the number are allowed, anything else is no number.
    const std::string rest = key.size() > 1 ? key.substr(1) : std::string();
    std::size_t i = rest.find_first_not_of(' ');
    const std::size_t end = rest.find_last_not_of(' ');
    if (i == std::string::npos)
        throw std::invalid_argument(kTypeMismatch);
    bool negative = false;
    if (rest[i] == '-' || rest[i] == '+')
        negative = rest[i++] == '-';
    if (i > end)
        throw std::invalid_argument(kTypeMismatch);
    std::int64_t n = 0;
    for (; i <= end; ++i) {
        if (rest[i] < '0' || rest[i] > '9')
            throw std::invalid_argument(kTypeMismatch);
        n = n * 10 + (rest[i] - '0');
        if (n > std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1)
            throw std::overflow_error(kOverflow);
    }
    n = negative ? -n : n;
    if (n > std::numeric_limits<std::int32_t>::max())
        throw std::overflow_error(kOverflow);
    return static_cast<std::int32_t>(n);
}

frmRaum::frmRaum(CAuftragDb& db, QGebDb* gebDb, Settings& settings, UserInteraction& ui)
    : db_(db), gebDb_(gebDb), settings_(settings), ui_(ui)
{
}

QGebDb& frmRaum::gebDb()
{
    if (!gebDb_)
        throw std::runtime_error(kNoObject);
    return *gebDb_;
}

RoomRow* frmRaum::rowByKey(const std::string& key)
{
    for (RoomRow& row : lvRooms)
        if (row.key == key)
            return &row;
    return nullptr;
}

std::unordered_set<std::string> frmRaum::listedKeys() const
{
    std::unordered_set<std::string> keys;
    keys.reserve(lvRooms.size());
    for (const RoomRow& row : lvRooms)
        keys.insert(row.key);
    return keys;
}

bool frmRaum::addRow(const RoomLine& line, std::unordered_set<std::string>& listed)
{
    const std::string key = raumtext::KeyPrefix + std::to_string(line.itemData);
    if (!listed.insert(key).second)
        return false;
    lvRooms.push_back({key, line.text, std::string(roomstatus::New), false});
    return true;
}

void frmRaum::listRooms(const std::vector<GebRoom>& rooms)
{
    for (const GebRoom& room : rooms)
        lbRooms.push_back({room.stRaumNr, room.lId, room.stBezeichnung, false});
}

// ---------------------------------------------------------------- window events

void frmRaum::Form_Load()
{
    bFirstActivation = true;
    settings_.gbRaeumeGeaendert = false;
}

void frmRaum::Form_Activate()
{
    if (!bFirstActivation)
        return;
    try {
        std::optional<GebStruktur> structure = gebDb().GetGebStruktur(1);
        if (!structure)
            throw std::runtime_error(gebDb().LastError().empty() ? kNoObject : gebDb().LastError());
        tvGebStruktur = std::move(structure);
        tvGebSelected.reset();
        notify(onTreeChanged);
    } catch (const std::exception& e) {
        // Without the tree the order's rooms are still listed, so that the unload writes them back as they are.
        ui_.showError(raumlabel::Activate, e.what());
    }
    InitData();
    bFirstActivation = false;
    cbAllRooms = false;
    notify(onAllRoomsChanged);
}

void frmRaum::Form_Deactivate()
{
    if (!settings_.gbRaeumeGeaendert)
        return;
    if (ui_.askYesNo(raumtext::SaveQuestion, kProgramName))
        SaveRooms();
}

void frmRaum::Form_Unload()
{
    // An order that is open read-only was only looked at: nothing to save.
    if (!readOnly())
        SaveRooms();
    ui_.processEvents();
}

// ---------------------------------------------------------------- procedures

void frmRaum::InitData()
{
    try {
        lvRooms.clear();
        require(db_.ReadAllRaumRec2Coll(collRooms));
        std::unordered_set<std::string> listed;
        CRaumRec* rec = nullptr;
        collRooms.ResetIndex();
        while (collRooms.GetNext(rec)) {
            const std::string key = raumtext::KeyPrefix + std::to_string(rec->lIdRB);
            if (!listed.insert(key).second)
                throw std::runtime_error(kKeyNotUnique);
            lvRooms.push_back({key, rec->stRaumNr, rec->ststatus, false});
        }
        notify(onOrderRoomsChanged);
    } catch (const DbCallFailed&) {
        notify(onOrderRoomsChanged);
        ui_.showError(raumlabel::InitData, db_.LastError());
    } catch (const std::exception& e) {
        notify(onOrderRoomsChanged);
        ui_.showError(raumlabel::InitData, e.what());
    }
}

void frmRaum::CheckStatus()
{
    try {
        // Walking the whole collection for every row, the last stored record of a room counts.
        std::unordered_map<std::int32_t, const CRaumRec*> stored;
        for (const CRaumRec& rec : collRooms)
            stored[rec.lIdRB] = &rec;
        for (RoomRow& row : lvRooms) {
            const auto it = stored.find(hostIdFromKey(row.key));
            if (it != stored.end())
                row.status = it->second->ststatus;
        }
        notify(onOrderRoomsChanged);
    } catch (const std::exception& e) {
        notify(onOrderRoomsChanged);
        ui_.showError(raumlabel::CheckStatus, e.what());
    }
}

void frmRaum::tvGeb_Click()
{
    try {
        if (!tvGebSelected)
            return;
        cbAllRooms = false;
        notify(onAllRoomsChanged);
        if (tvGebSelected->byTyp != 3)
            return;
        lbRooms.clear();
        std::vector<GebRoom> rooms;
        if (!gebDb().GetRoomsOfNode(tvGebSelected->lId, rooms, 0))
            throw std::runtime_error(gebDb().LastError());
        listRooms(rooms);
        notify(onRoomLinesChanged);
    } catch (const std::exception& e) {
        notify(onRoomLinesChanged);
        ui_.showError(raumlabel::TreeClick, e.what());
    }
}

void frmRaum::cbAllRooms_Click()
{
    try {
        if (!cbAllRooms)
            return;
        lbRooms.clear();
        std::vector<GebRoom> rooms;
        if (!gebDb().GetAllRooms(rooms, 0))
            throw std::runtime_error(gebDb().LastError());
        listRooms(rooms);
        notify(onRoomLinesChanged);
    } catch (const std::exception& e) {
        notify(onRoomLinesChanged);
        ui_.showError(raumlabel::AllRoomsClick, e.what());
    }
}

void frmRaum::pbIn_Click()
{
    if (readOnly())
        return;
    try {
        bool anySelected = false;
        for (const RoomLine& line : lbRooms)
            anySelected = anySelected || line.selected;
        if (!anySelected)
            return;
        std::unordered_set<std::string> listed = listedKeys();
        for (const RoomLine& line : lbRooms)
            if (line.selected)
                addRow(line, listed);
        notify(onOrderRoomsChanged);
    } catch (const std::exception& e) {
        ui_.showError(raumlabel::In, e.what());
        return;
    }
    CheckStatus();
}

void frmRaum::pbAllIn_Click()
{
    if (readOnly())
        return;
    // A line whose room is listed already is not added again; the rest go in.
    std::unordered_set<std::string> listed = listedKeys();
    for (const RoomLine& line : lbRooms)
        addRow(line, listed);
    notify(onOrderRoomsChanged);
    CheckStatus();
}

void frmRaum::pbOut_Click()
{
    if (readOnly())
        return;
    bool anySelected = false;
    for (const RoomRow& row : lvRooms)
        anySelected = anySelected || row.selected;
    if (!anySelected)
        return;
    std::size_t i = 0;
    while (i < lvRooms.size()) {
        if (lvRooms[i].selected)
            lvRooms.erase(lvRooms.begin() + std::ptrdiff_t(i));
        else
            ++i;
    }
    if (!rowByKey(lvRoomsSelectedKey))
        lvRoomsSelectedKey.clear();
    settings_.gbRaeumeGeaendert = true;
    notify(onOrderRoomsChanged);
}

void frmRaum::pbAllOut_Click()
{
    if (readOnly())
        return;
    lvRooms.clear();
    lvRoomsSelectedKey.clear();
    notify(onOrderRoomsChanged);
}

void frmRaum::pbFertig_Click() { notify(onUnloadRequested); }

void frmRaum::lvRooms_DblClick()
{
    RoomRow* row = rowByKey(lvRoomsSelectedKey);
    if (!row || readOnly())
        return;
    if (row->status == roomstatus::New)
        row->status = roomstatus::Marked;
    else if (row->status == roomstatus::Marked)
        row->status = roomstatus::New;
    else
        return;
    notify(onOrderRoomsChanged);
}

// ---------------------------------------------------------------- saving

void frmRaum::saveFailed(const std::string& description)
{
    // The database's own text first; an error of the window's own steps under "Problem".
    if (!db_.LastError().empty())
        ui_.messageBox(db_.LastError(), MsgButtons::Ok, MsgIcon::Exclamation, raumtext::SaveFailedTitle);
    else
        ui_.messageBox(description, MsgButtons::Ok, MsgIcon::Exclamation, raumtext::ErrorTitle);
}

bool frmRaum::SaveRooms()
{
    if (RefuseOrderChange(db_, ui_))
        return false;
    try {
        // The order's name, from its own database file.
        std::string auftrag;
        {
            auto order = Database::open(db_.DbPath(), true);
            TableRecordset rs(*order, "T_Auftrag");
            rs.moveFirst();
            auftrag = toText(rs.field("stAuftrag"));
        }
        CRaumRec rec;
        {
            // One transaction: a process that dies on the way leaves the rooms as they were; a
            // step that fails keeps what the steps before it did.
            KeptTransaction tx(db_);
            require(db_.DelAllDiffListe());
            require(db_.DelAllRaumRec());
            for (const RoomRow& row : lvRooms) {
                rec.lIdRB = hostIdFromKey(row.key);
                rec.stRaumNr = row.text;
                rec.ststatus = row.status;
                rec.stAuftrag = auftrag;
                require(db_.AddNewRaumRec(&rec));
                rec.Init();
            }
            InitData();
            db_.SetStatusRoomsByDB();
            tx.commit();
        }
        settings_.gbRaeumeGeaendert = false;
        return true;
    } catch (const DbCallFailed&) {
        saveFailed({});
    } catch (const std::exception& e) {
        saveFailed(e.what());
    }
    return false;
}

} // namespace qi
