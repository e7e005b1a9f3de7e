#pragma once
// The project's order register "QInventur.mdb" with its one table T_Auftrag.

#include "ListControl.h"
#include "RecordDb.h"

namespace qi {

template <> struct RecordTable<CAuftragRec> {
    static constexpr const char* name = "T_Auftrag";
    static const std::span<const FieldMap<CAuftragRec>> write, read;
};

/// Creates the register's table in a new, empty database.
void createRegisterSchema(Database& db);

class CInventurDb : public RecordDb {
public:
    /// True when the register holds a table T_Auftrag.
    bool IsValidDb();
    /// Opens DbPath (read-only as OpenReadOnly says) and checks that it is an order register
    /// (T_Auftrag with every column). False with LastError "Die Datenbank ... konnte nicht geöffnet
    /// werden!" and the reason; the database is closed then.
    bool OpenCheckedDb();
    /// Inserts the record; it receives the new lID.
    bool AddNewAuftragRec(CAuftragRec* rec) { return addNewRec(rec); }
    /// Updates the row with the record's lID.
    bool EditAuftragRec(CAuftragRec* rec) { return editRec(rec); }
    /// Reads the row with this id into the record.
    bool ReadAuftragRec(std::int32_t id, CAuftragRec* rec) { return readRec(rec, id); }
    /// Deletes the row with this id.
    bool DelAuftragRec(std::int32_t id) { return delRec<CAuftragRec>(id); }
    /// Adds every order's name to the control, its lID as the entry's data.
    bool ReadAllAuftragRec2Ctrl(ListControl& ctrl);
    /// Reads every row into the collection (emptied first).
    bool ReadAllAuftragRec2Coll(CAuftragRecColl& coll) { return readAllRec2Coll(coll); }
};

} // namespace qi
