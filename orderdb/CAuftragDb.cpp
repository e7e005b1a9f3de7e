#include "CAuftragDb.h"

#include "OrderSchema.h"

#include "JetSql.h"

#include <array>

namespace qi {

namespace {

using Art = CArtikellisteRec;
constexpr std::array<FieldMap<Art>, 5> kArtWrite{{
    {"stArtikel", &Art::stArtikel}, {"iAnzSoll", &Art::iAnzSoll}, {"iAnzIst", &Art::iAnzIst},
    {"stBeschreibung", &Art::stBeschreibung}, {"stAuftrag", &Art::stAuftrag}}};
constexpr std::array<FieldMap<Art>, 6> kArtRead{{
    {"lID", &Art::lID}, {"stArtikel", &Art::stArtikel}, {"iAnzSoll", &Art::iAnzSoll}, {"iAnzIst", &Art::iAnzIst},
    {"stBeschreibung", &Art::stBeschreibung}, {"stAuftrag", &Art::stAuftrag}}};

using Dat = CDateienRec;
constexpr std::array<FieldMap<Dat>, 3> kDatWrite{{{"stName", &Dat::stName}, {"Datum", &Dat::Datum}, {"stPfad", &Dat::stPfad}}};
constexpr std::array<FieldMap<Dat>, 4> kDatRead{{
    {"lID", &Dat::lID}, {"stName", &Dat::stName}, {"Datum", &Dat::Datum}, {"stPfad", &Dat::stPfad}}};

using Inv = CDatInventurRec;
// The data file's key is written last.
constexpr std::array<FieldMap<Inv>, 10> kInvWrite{{
    {"stMitarbNr", &Inv::stMitarbNr}, {"stAuftragsNr", &Inv::stAuftragsNr}, {"Datum", &Inv::Datum},
    {"Uhrzeit", &Inv::Uhrzeit}, {"stRaum", &Inv::stRaum}, {"stInvNr", &Inv::stInvNr}, {"stArtNr", &Inv::stArtNr},
    {"stTaet", &Inv::stTaet}, {"iReihenfolge", &Inv::iReihenfolge}, {"lDatID", &Inv::lDatID}}};
constexpr std::array<FieldMap<Inv>, 11> kInvRead{{
    {"lID", &Inv::lID}, {"lDatID", &Inv::lDatID}, {"stMitarbNr", &Inv::stMitarbNr},
    {"stAuftragsNr", &Inv::stAuftragsNr}, {"Datum", &Inv::Datum}, {"Uhrzeit", &Inv::Uhrzeit},
    {"stRaum", &Inv::stRaum}, {"stInvNr", &Inv::stInvNr}, {"stArtNr", &Inv::stArtNr}, {"stTaet", &Inv::stTaet},
    {"iReihenfolge", &Inv::iReihenfolge}}};

using Diff = CDifferenzlisteRec;
// iReihenfolge is set by its own statement, never by the field copy.
constexpr std::array<FieldMap<Diff>, 11> kDiffWrite{{
    {"lRaumID", &Diff::lRaumID}, {"stSollInvNR", &Diff::stSollInvNR}, {"stIstInvNR", &Diff::stIstInvNR},
    {"stBeschreibung", &Diff::stBeschreibung}, {"stZiel", &Diff::stZiel}, {"stQuelle", &Diff::stQuelle},
    {"stQuarn", &Diff::stQuarn}, {"stArtNr", &Diff::stArtNr}, {"Datum", &Diff::Datum}, {"Uhrzeit", &Diff::Uhrzeit},
    {"stTyp", &Diff::stTyp}}};
constexpr std::array<FieldMap<Diff>, 12> kDiffRead{{
    {"lID", &Diff::lID}, {"lRaumID", &Diff::lRaumID}, {"stSollInvNR", &Diff::stSollInvNR},
    {"stIstInvNR", &Diff::stIstInvNR}, {"stBeschreibung", &Diff::stBeschreibung}, {"stZiel", &Diff::stZiel},
    {"stQuelle", &Diff::stQuelle}, {"stQuarn", &Diff::stQuarn}, {"stArtNr", &Diff::stArtNr},
    {"Datum", &Diff::Datum}, {"Uhrzeit", &Diff::Uhrzeit}, {"stTyp", &Diff::stTyp}}};

using Il = CInvlisteRec;
constexpr std::array<FieldMap<Il>, 7> kIlWrite{{
    {"stRaumNr", &Il::stRaumNr}, {"stInvNr", &Il::stInvNr}, {"stBeschreibung", &Il::stBeschreibung},
    {"stArtNr", &Il::stArtNr}, {"iRFolge", &Il::iRFolge}, {"Datum", &Il::Datum}, {"Uhrzeit", &Il::Uhrzeit}}};
// The description is the one column that may be Null; it then reads as an empty text.
constexpr std::array<FieldMap<Il>, 8> kIlRead{{
    {"lID", &Il::lID}, {"stRaumNr", &Il::stRaumNr}, {"stInvNr", &Il::stInvNr},
    {"stBeschreibung", &Il::stBeschreibung, true}, {"stArtNr", &Il::stArtNr}, {"iRFolge", &Il::iRFolge},
    {"Datum", &Il::Datum}, {"Uhrzeit", &Il::Uhrzeit}}};

using Raum = CRaumRec;
constexpr std::array<FieldMap<Raum>, 8> kRaumWrite{{
    {"lIdRB", &Raum::lIdRB}, {"stRaumNr", &Raum::stRaumNr}, {"ststatus", &Raum::ststatus},
    {"stAuftrag", &Raum::stAuftrag}, {"Datum", &Raum::Datum}, {"Uhrzeit", &Raum::Uhrzeit},
    {"iAnzahl", &Raum::iAnzahl}, {"lDatID", &Raum::lDatID}}};
// The time is written but never read back: a room record keeps the time it had.
constexpr std::array<FieldMap<Raum>, 8> kRaumRead{{
    {"lID", &Raum::lID}, {"lIdRB", &Raum::lIdRB}, {"stRaumNr", &Raum::stRaumNr}, {"ststatus", &Raum::ststatus},
    {"Datum", &Raum::Datum}, {"iAnzahl", &Raum::iAnzahl}, {"stAuftrag", &Raum::stAuftrag},
    {"lDatID", &Raum::lDatID}}};

constexpr JetSql kGetDatInventurByInvNr{
    R"(SELECT T_DatInventur.* From T_DatInventur WHERE (((T_DatInventur.stInvNr)=")" R"(" + stInvNr + ")" R"("));)",
    "SELECT * FROM T_DatInventur WHERE stInvNr = ?1 ORDER BY lID LIMIT 1"};
constexpr JetSql kDelAllArtikelliste{"DELETE * From T_Artikelliste", "DELETE FROM T_Artikelliste"};
constexpr JetSql kDelAllDatInventur{"DELETE * FROM T_DatInventur;", "DELETE FROM T_DatInventur"};

} // namespace

const std::span<const FieldMap<Art>> RecordTable<Art>::write{kArtWrite};
const std::span<const FieldMap<Art>> RecordTable<Art>::read{kArtRead};
const std::span<const FieldMap<Dat>> RecordTable<Dat>::write{kDatWrite};
const std::span<const FieldMap<Dat>> RecordTable<Dat>::read{kDatRead};
const std::span<const FieldMap<Inv>> RecordTable<Inv>::write{kInvWrite};
const std::span<const FieldMap<Inv>> RecordTable<Inv>::read{kInvRead};
const std::span<const FieldMap<Diff>> RecordTable<Diff>::write{kDiffWrite};
const std::span<const FieldMap<Diff>> RecordTable<Diff>::read{kDiffRead};
const std::span<const FieldMap<Il>> RecordTable<Il>::write{kIlWrite};
const std::span<const FieldMap<Il>> RecordTable<Il>::read{kIlRead};
const std::span<const FieldMap<Raum>> RecordTable<Raum>::write{kRaumWrite};
const std::span<const FieldMap<Raum>> RecordTable<Raum>::read{kRaumRead};

bool CAuftragDb::OpenCheckedDb()
{
    static const Structure expected = structureMadeBy(createOrderSchema);
    return openChecked(expected, "keine Auftragsdatenbank");
}

bool CAuftragDb::IsValidDb()
{
    begin();
    if (!isOpen())
        return fail(failtext::InvalidDb);
    static constexpr const char* kTables[] = {"T_Abschreibung", "T_Artikelliste", "T_Dateien", "T_DatInventur",
                                              "T_Differenzliste", "T_Invliste", "T_Raum"};
    try {
        for (const char* t : kTables)
            if (!db().tableExists(t))
                throw DbError(dberr::ItemNotFound, "Element in dieser Auflistung nicht gefunden.");
        return true;
    } catch (const DbError& e) {
        return fail(failtext::InvalidDb, e);
    }
}

bool CAuftragDb::DelAllArtikellisteRec() { return executeDelete(kDelAllArtikelliste.sqlite); }

bool CAuftragDb::DelAllDatInventur() { return executeDelete(kDelAllDatInventur.sqlite); }

bool CAuftragDb::AddNewDatInventurRec(CDatInventurRec* rec, bool& duplicate)
{
    begin();
    duplicate = false;
    if (!rec)
        return false;
    try {
        TableRecordset rs(db(), RecordTable<Inv>::name);
        rec->lID = static_cast<std::int32_t>(rs.addNew());
        writeFields<Inv>(rs, *rec, kInvWrite);
        try {
            rs.update();
        } catch (const DbError& e) {
            // A refused duplicate is abandoned: the table stays unchanged. Any other
            // failure (disk, lock, engine) is the operation's failure.
            if (e.number() != dberr::DuplicateKey)
                throw;
            duplicate = true;
        }
        return true;
    } catch (const NoDatabase&) {
        rec->lID = 0;
        return fail(failtext::Save);
    } catch (const DbError& e) {
        rec->lID = 0;
        return fail(failtext::Save, e);
    } catch (const std::exception& e) {
        rec->lID = 0;
        return fail(failtext::Save, e);
    }
}

bool CAuftragDb::ReadDifferenzlisteOhneArtNr2Coll(CDifferenzlisteRecColl& coll)
{
    // Empty means no character at all, as for the record's text; a Null is read (and
    // refused) as the whole table's read would.
    return readQueryRec2Coll("SELECT * FROM T_Differenzliste WHERE (stArtNr IS NULL OR length(stArtNr) = 0) "
                             "AND (stIstInvNR IS NULL OR length(stIstInvNR) > 0) ORDER BY rowid",
                             coll);
}

bool CAuftragDb::GetDatInventurByInvNr(CDatInventurRec* rec, CDatInventurRec& existing)
{
    begin();
    if (!rec)
        return fail(failtext::Save, std::runtime_error(kNoObject));
    try {
        Recordset rs = db().query(kGetDatInventurByInvNr.sqlite, {rec->stInvNr});
        if (!rs.empty()) {
            rs.moveFirst();
            readFields<Inv>(rs, existing, kInvRead);
        }
        return true;
    } catch (const NoDatabase&) {
        rec->lID = 0;
        return fail(failtext::Save);
    } catch (const DbError& e) {
        rec->lID = 0;
        return fail(failtext::Save, e);
    }
}

bool CAuftragDb::problem(const std::string& description)
{
    ui_.messageBox(description, MsgButtons::Ok, MsgIcon::Exclamation, "Problem");
    return false;
}

} // namespace qi
