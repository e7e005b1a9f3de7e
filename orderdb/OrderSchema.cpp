#include "OrderSchema.h"

namespace qi {

std::string coltype::integer(const char* column)
{
    return std::string("SMALLINT DEFAULT 0 CHECK (") + column + " BETWEEN -32768 AND 32767)";
}

void createOrderSchema(Database& db)
{
    using namespace coltype;
    const std::string t = Text;
    const std::string sql =
        "CREATE TABLE T_Abschreibung (lID " + std::string(AutoNumber) + ", stInvNr " + t + ", stRaumNr " + t +
        ", Datum " + t + ", stBemerkung " + t + ");\n"

        "CREATE TABLE T_Artikelliste (lID " + AutoNumber + ", stArtikel " + t + ", iAnzSoll " +
        integer("iAnzSoll") + ", iAnzIst " + integer("iAnzIst") + ", stBeschreibung " + t + ", stAuftrag " + t +
        ");\n"
        "CREATE INDEX T_Artikelliste_stArtikel ON T_Artikelliste (stArtikel);\n"

        "CREATE TABLE T_Dateien (lID " + AutoNumber + ", stName " + t + ", Datum " + t + ", stPfad " + t + ");\n"
        "CREATE UNIQUE INDEX T_Dateien_stName ON T_Dateien (stName);\n"

        "CREATE TABLE T_DatInventur (lID " + AutoNumber + ", lDatID " + Long + ", stMitarbNr " + t +
        ", stAuftragsNr " + t + ", Datum " + t + ", Uhrzeit " + t + ", stRaum " + t + ", stInvNr " + t +
        ", stArtNr " + t + ", stTaet " + t + ", iReihenfolge " + integer("iReihenfolge") + ");\n"
        "CREATE UNIQUE INDEX T_DatInventur_stInvNr ON T_DatInventur (stInvNr);\n"
        "CREATE INDEX T_DatInventur_stRaum ON T_DatInventur (stRaum, iReihenfolge);\n"
        "CREATE INDEX T_DatInventur_Gruppe ON T_DatInventur (stRaum, Datum, lDatID);\n"
        "CREATE INDEX T_DatInventur_stArtNr ON T_DatInventur (stArtNr);\n"

        "CREATE TABLE T_Differenzliste (lID " + AutoNumber + ", lRaumID " + Long + ", stSollInvNR " + t +
        ", stIstInvNR " + t + ", stBeschreibung " + t + ", stZiel " + t + ", stQuelle " + t + ", stQuarn " + t +
        ", stArtNr " + t + ", Datum " + t + ", Uhrzeit " + t + ", stTyp " + t + ", iReihenfolge " +
        integer("iReihenfolge") + ", stObjBemerkung " + t + ");\n"
        "CREATE INDEX T_Differenzliste_stSollInvNR ON T_Differenzliste (stSollInvNR);\n"
        "CREATE INDEX T_Differenzliste_stIstInvNR ON T_Differenzliste (stIstInvNR);\n"
        "CREATE INDEX T_Differenzliste_lRaumID ON T_Differenzliste (lRaumID);\n"

        "CREATE TABLE T_Invliste (lID " + AutoNumber + ", stRaumNr " + t + ", stInvNr " + t + ", stBeschreibung " +
        NullableText + ", stArtNr " + t + ", iRFolge " + integer("iRFolge") + ", Datum " + t + ", Uhrzeit " + t +
        ");\n"

        "CREATE TABLE T_Raum (lID " + AutoNumber + ", lIdRB " + Long + ", stRaumNr " + t + ", ststatus " + t +
        ", stAuftrag " + t + ", Datum " + t + ", Uhrzeit " + t + ", iAnzahl " + integer("iAnzahl") + ", lDatID " +
        Long + ");\n"
        "CREATE INDEX T_Raum_stRaumNr ON T_Raum (stRaumNr);\n"

        "CREATE TABLE T_Auftrag (lID " + AutoNumber + ", stAuftrag " + t + ");\n";
    Database::Transaction tx(db);
    db.executeScript(sql);
    tx.commit();
}

} // namespace qi
