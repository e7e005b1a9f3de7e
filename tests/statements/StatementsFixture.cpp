#include "StatementsFixture.h"

namespace qi::test {

std::int32_t StatementsTest::addRoom(const std::string& nr, const std::string& uhrzeit)
{
    CRaumRec r;
    r.stRaumNr = nr;
    r.ststatus = "E";
    r.stAuftrag = "A1";
    r.Uhrzeit = uhrzeit;
    EXPECT_TRUE(db.AddNewRaumRec(&r)) << db.LastError();
    return r.lID;
}

bool StatementsTest::addScan(const std::string& room, const std::string& inv, const std::string& art,
                             const std::string& datum, std::int32_t datId, const std::string& uhrzeit)
{
    CDatInventurRec r;
    r.stMitarbNr = "7";
    r.stAuftragsNr = "100";
    r.Datum = datum;
    r.Uhrzeit = uhrzeit;
    r.stRaum = room;
    r.stInvNr = inv;
    r.stArtNr = art;
    r.stTaet = "I";
    r.lDatID = datId;
    bool duplicate = false;
    EXPECT_TRUE(db.AddNewDatInventurRec(&r, duplicate)) << db.LastError();
    return !duplicate;
}

std::int32_t StatementsTest::addSoll(std::int32_t roomId, const std::string& inv, const std::string& beschreibung,
                                     const std::string& art)
{
    CDifferenzlisteRec r;
    r.lRaumID = roomId;
    r.stSollInvNR = inv;
    r.stBeschreibung = beschreibung;
    r.stArtNr = art;
    r.stTyp = kTyp3b;
    return addDiff(r);
}

std::int32_t StatementsTest::addDiff(CDifferenzlisteRec rec)
{
    EXPECT_TRUE(db.AddNewDifferenzlisteRec(&rec)) << db.LastError();
    return rec.lID;
}

std::vector<DiffRow> StatementsTest::diffRows()
{
    std::vector<DiffRow> out;
    Recordset rs = sql().query("SELECT * FROM T_Differenzliste ORDER BY lID");
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        DiffRow r;
        r.lID = toLong(rs.field("lID"));
        r.lRaumID = toLong(rs.field("lRaumID"));
        r.stSollInvNR = toText(rs.field("stSollInvNR"));
        r.stIstInvNR = toText(rs.field("stIstInvNR"));
        r.stBeschreibung = toText(rs.field("stBeschreibung"));
        r.stZiel = toText(rs.field("stZiel"));
        r.stQuelle = toText(rs.field("stQuelle"));
        r.stQuarn = toText(rs.field("stQuarn"));
        r.Datum = toText(rs.field("Datum"));
        r.Uhrzeit = toText(rs.field("Uhrzeit"));
        r.stTyp = toText(rs.field("stTyp"));
        r.iReihenfolge = toLong(rs.field("iReihenfolge"));
        out.push_back(r);
    }
    return out;
}

void StatementsTest::dropUniqueInvNr() { sql().execute("DROP INDEX T_DatInventur_stInvNr"); }

std::string StatementsTest::missingTableText(const std::string& table)
{
    try {
        sql().query("SELECT * FROM " + table);
    } catch (const DbError& e) {
        return e.description();
    }
    ADD_FAILURE() << "table " << table << " still exists";
    return {};
}

} // namespace qi::test
