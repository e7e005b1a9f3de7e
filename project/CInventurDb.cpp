#include "CInventurDb.h"

#include "OrderSchema.h"

#include <array>

namespace qi {

namespace {
using A = CAuftragRec;
constexpr std::array<FieldMap<A>, 6> kWrite{{
    {"stBezeichung", &A::stBezeichung}, {"stPfad", &A::stPfad}, {"erstellt", &A::erstellt},
    {"letzte_Aenderung", &A::letzte_Aenderung}, {"stErsteller", &A::stErsteller}, {"stEditor", &A::stEditor}}};
constexpr std::array<FieldMap<A>, 7> kRead{{
    {"lID", &A::lID}, {"stBezeichung", &A::stBezeichung}, {"stPfad", &A::stPfad}, {"erstellt", &A::erstellt},
    {"letzte_Aenderung", &A::letzte_Aenderung}, {"stErsteller", &A::stErsteller}, {"stEditor", &A::stEditor}}};
constexpr const char* kReadAllToCtrl = "Die Datensätze konnten nicht ins Listenfeld gelesen werden!";
} // namespace

const std::span<const FieldMap<A>> RecordTable<A>::write{kWrite};
const std::span<const FieldMap<A>> RecordTable<A>::read{kRead};

void createRegisterSchema(Database& db)
{
    using namespace coltype;
    const std::string t = Text;
    db.executeScript("CREATE TABLE T_Auftrag (lID " + std::string(AutoNumber) + ", stBezeichung " + t +
                     ", stPfad " + t + ", erstellt " + Date + ", letzte_Aenderung " + Date + ", stErsteller " + t +
                     ", stEditor " + t + ");");
}

bool CInventurDb::OpenCheckedDb()
{
    static const Structure expected = structureMadeBy(createRegisterSchema);
    return openChecked(expected, "kein Auftragsregister");
}

bool CInventurDb::IsValidDb()
{
    begin();
    if (!isOpen())
        return fail(failtext::InvalidDb);
    try {
        if (db().tableExists("T_Auftrag"))
            return true;
        return fail(failtext::InvalidDb,
                    DbError(dberr::ItemNotFound, "Element in dieser Auflistung nicht gefunden."));
    } catch (const DbError& e) {
        return fail(failtext::InvalidDb, e);
    }
}

bool CInventurDb::ReadAllAuftragRec2Ctrl(ListControl& ctrl)
{
    begin();
    try {
        TableRecordset rs(db(), RecordTable<A>::name);
        if (rs.moveFirst()) {
            for (; !rs.eof(); rs.moveNext()) {
                const int index = ctrl.addItem(toText(rs.field("stBezeichung")));
                ctrl.setItemData(index, toInt32(rs.field("lID")));
            }
        }
        return true;
    } catch (const NoDatabase&) {
        return fail(kReadAllToCtrl);
    } catch (const DbError& e) {
        return fail(kReadAllToCtrl, e);
    }
}

} // namespace qi
