#pragma once
// The only gate to the database of one order ("Inventur\<order>.mdb"): open and
// close, the structure check, the record family of the six order tables, and
// the statements that reconcile Soll and Ist data and keep the room status.

#include "RecordDb.h"
#include "UserInteraction.h"

#include <functional>
#include <initializer_list>
#include <string_view>

namespace qi {

template <> struct RecordTable<CArtikellisteRec> {
    static constexpr const char* name = "T_Artikelliste";
    static const std::span<const FieldMap<CArtikellisteRec>> write, read;
};
template <> struct RecordTable<CDateienRec> {
    static constexpr const char* name = "T_Dateien";
    static const std::span<const FieldMap<CDateienRec>> write, read;
};
template <> struct RecordTable<CDatInventurRec> {
    static constexpr const char* name = "T_DatInventur";
    static const std::span<const FieldMap<CDatInventurRec>> write, read;
};
template <> struct RecordTable<CDifferenzlisteRec> {
    static constexpr const char* name = "T_Differenzliste";
    static const std::span<const FieldMap<CDifferenzlisteRec>> write, read;
};
template <> struct RecordTable<CInvlisteRec> {
    static constexpr const char* name = "T_Invliste";
    static const std::span<const FieldMap<CInvlisteRec>> write, read;
};
template <> struct RecordTable<CRaumRec> {
    static constexpr const char* name = "T_Raum";
    static const std::span<const FieldMap<CRaumRec>> write, read;
};

class CAuftragDb : public RecordDb {
public:
    /// `ui` shows the messages of the reconciliation and room statements.
    /// Text values of the order hold at most 255 characters, as in Jet's text fields.
    explicit CAuftragDb(UserInteraction& ui) : ui_(ui) { limitText(); }

    /// True when the seven order tables exist (names only).
    bool IsValidDb();
    /// Opens DbPath (read-only as OpenReadOnly says) and checks that it is an order database:
    /// every table and column of a new one. False with LastError "Die Datenbank ... konnte nicht
    /// geöffnet werden!" and the reason (the engine's, or "Sie ist keine Auftragsdatenbank: die
    /// Tabelle T_Raum fehlt."); the database is closed then.
    bool OpenCheckedDb();

    // T_Artikelliste
    bool AddNewArtikellisteRec(CArtikellisteRec* rec) { return addNewRec(rec); }
    bool EditArtikellisteRec(CArtikellisteRec* rec) { return editRec(rec); }
    bool ReadArtikellisteRec(CArtikellisteRec* rec) { return rec ? readRec(rec, rec->lID) : (begin(), false); }
    bool DelArtikellisteRec(CArtikellisteRec* rec) { return delRec(rec); }
    bool DelAllArtikellisteRec();
    bool ReadAllArtikellisteRec2Coll(CArtikellisteRecColl& coll) { return readAllRec2Coll(coll); }

    // T_Dateien
    bool AddNewDateienRec(CDateienRec* rec) { return addNewRec(rec); }
    bool EditDateienRec(CDateienRec* rec) { return editRec(rec); }
    bool ReadDateienRec(CDateienRec* rec) { return rec ? readRec(rec, rec->lID) : (begin(), false); }
    bool DelDateienRec(CDateienRec* rec) { return delRec(rec); }
    bool ReadAllDateienRec2Coll(CDateienRecColl& coll) { return readAllRec2Coll(coll); }

    // T_DatInventur
    /// Stores the line; a line whose inventory number is already stored is refused
    /// with `duplicate` true and the result still true (the table is unchanged).
    bool AddNewDatInventurRec(CDatInventurRec* rec, bool& duplicate);
    /// Reads the stored line with rec's inventory number into `existing`; true also
    /// when there is none (then `existing` stays as it was).
    bool GetDatInventurByInvNr(CDatInventurRec* rec, CDatInventurRec& existing);
    bool EditDatInventurRec(CDatInventurRec* rec) { return editRec(rec); }
    bool ReadDatInventurRec(CDatInventurRec* rec) { return rec ? readRec(rec, rec->lID) : (begin(), false); }
    bool DelDatInventurRec(CDatInventurRec* rec) { return delRec(rec); }
    bool DelAllDatInventur();
    bool ReadAllDatInventurRec2Coll(CDatInventurRecColl& coll) { return readAllRec2Coll(coll); }
    /// The scan lines in key order, one at a time (see RecordDb::walkAllRec): `start` once
    /// the first can be read, then `each` for every line.
    bool WalkAllDatInventurRec(const std::function<void()>& start, const std::function<void(const CDatInventurRec&)>& each)
    {
        return walkAllRec<CDatInventurRec>(start, each);
    }

    // T_Differenzliste
    bool AddNewDifferenzlisteRec(CDifferenzlisteRec* rec) { return addNewRec(rec); }
    bool EditDifferenzlisteRec(CDifferenzlisteRec* rec) { return editRec(rec); }
    bool ReadDifferenzlisteRec(CDifferenzlisteRec* rec) { return rec ? readRec(rec, rec->lID) : (begin(), false); }
    bool DelDifferenzlisteRec(CDifferenzlisteRec* rec) { return delRec(rec); }
    bool ReadAllDifferenzlisteRec2Coll(CDifferenzlisteRecColl& coll) { return readAllRec2Coll(coll); }
    /// The lines that lack an article number and have a scanned number, in table order.
    bool ReadDifferenzlisteOhneArtNr2Coll(CDifferenzlisteRecColl& coll);

    // T_Invliste
    bool AddNewInvlisteRec(CInvlisteRec* rec) { return addNewRec(rec); }
    bool EditInvlisteRec(CInvlisteRec* rec) { return editRec(rec); }
    bool ReadInvlisteRec(CInvlisteRec* rec) { return rec ? readRec(rec, rec->lID) : (begin(), false); }
    bool DelInvlisteRec(CInvlisteRec* rec) { return delRec(rec); }
    bool ReadAllInvlisteRec2Coll(CInvlisteRecColl& coll) { return readAllRec2Coll(coll); }

    // T_Raum
    bool AddNewRaumRec(CRaumRec* rec) { return addNewRec(rec); }
    bool EditRaumRec(CRaumRec* rec) { return editRec(rec); }
    bool ReadRaumRec(CRaumRec* rec) { return rec ? readRec(rec, rec->lID) : (begin(), false); }
    bool DelRaumRec(CRaumRec* rec) { return delRec(rec); }
    bool ReadAllRaumRec2Coll(CRaumRecColl& coll) { return readAllRec2Coll(coll); }

    // Reconciliation and room statements (CAuftragDbStatements.cpp)
    bool WriteReihenfolgeDiffListe();
    bool WriteReihenfolgeDatInventur();
    bool RaumVorhanden(const std::string& room);
    bool RaumImAuftrag(const std::string& room);
    bool MakeInvListbyRoom(const std::string& room);
    bool SetStatusRoomsByDB();
    bool ResetStatusRooms();
    bool MakeIstInvOk();
    bool MakeIstScanExtra();
    bool GetRaumGefunden();
    bool GetRaumSoll();
    bool WriteIst();
    bool DelAllRaumRec();
    bool DelAllInvListe();
    bool DelAllDiffListe();
    bool MakeListNeu();
    bool MakeListVerschoben();
    bool MakeListFehlend();

private:
    bool CountArtikelIst(const std::string& article, std::int16_t& counter);
    /// Runs action statements one after another; an engine error takes the "Problem" path.
    bool runStatements(std::initializer_list<std::string_view> statements);
    /// The statements' failure path: the engine's description under the title "Problem".
    bool problem(const std::string& description);

    UserInteraction& ui_;
};

} // namespace qi
