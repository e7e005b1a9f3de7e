#include "ProjectResultSchema.h"

#include "Database.h"

#include <array>
#include <utility>

namespace qi {

namespace {

// Column declarations: "name" alone is a text compared as Jet compares, "i"/"l" an integer,
// "d" a real number.
std::string column(const std::string& name)
{
    switch (name.front()) {
    case 'i':
    case 'l': return name + " INTEGER DEFAULT 0";
    case 'd': return name + " REAL DEFAULT 0";
    default: return name + " TEXT COLLATE JET DEFAULT ''";
    }
}

std::string table(const std::string& name, std::initializer_list<const char*> columns)
{
    std::string sql = "CREATE TABLE " + name + " (";
    bool first = true;
    for (const char* c : columns) {
        if (!first)
            sql += ", ";
        sql += column(c);
        first = false;
    }
    return sql + ");\n";
}

constexpr std::array<std::pair<const char*, const char*>, 8> kLists{{
    {"verschoben", "L_Verschoben"},
    {"doppelt", "L_Doppelt"},
    {"zuviel", "L_Zuviel"},
    {"unbekannt", "L_Unbekannt"},
    {"fehlend", "L_Fehlend"},
    {"ungeprueft", "L_Ungeprueft"},
    {"ueberschneidung", "L_Ueberschneidung"},
    {"hinweise", "L_Hinweis"},
}};

} // namespace

void indexNumbers(Database& db)
{
    db.executeScript("CREATE INDEX IF NOT EXISTS P_Scan_stInvNr ON P_Scan (stInvNr);\n"
                     "CREATE INDEX IF NOT EXISTS P_Diff_stSollInvNR ON P_Diff (stSollInvNR);\n"
                     "CREATE INDEX IF NOT EXISTS P_Diff_stIstInvNR ON P_Diff (stIstInvNR);\n");
}

void createProjectResultSchema(Database& db)
{
    const std::string sql =
        table("P_Auftrag", {"lAuftragID", "stAuftrag", "stPfad", "stDatei", "stStand", "iRaeume", "iRaeumeN",
                            "iRaeumeE", "iRaeumeL", "iDateien", "iScans", "iSoll", "iErwartet", "iAmPlatz", "i1",
                            "i2a", "i2b", "i2c", "i3a", "i3b", "dProzent", "dRaeumeFertig", "stLetzterScan",
                            "stFehler"}) +
        table("P_Raum", {"stAuftrag", "lRaumID", "lIdRB", "stRaumNr", "stBezeichnung", "stStatus", "iErwartet",
                         "iAmPlatz", "iGescannt", "dProzent", "stLetzterScan", "stGebaeudeteil"}) +
        "CREATE INDEX P_Raum_stRaumNr ON P_Raum (stRaumNr);\n"
        "CREATE INDEX P_Raum_lIdRB ON P_Raum (lIdRB);\n" +
        table("P_Scan", {"stAuftrag", "stInvNr", "stRaum", "stArtNr", "Datum", "Uhrzeit", "stZeit", "stDatei"}) +
        table("P_Diff", {"stAuftrag", "stRaumNr", "stSollInvNR", "stIstInvNR", "stTyp", "stBeschreibung",
                         "stArtNr", "stZiel", "stQuelle", "stQuarn", "Datum", "Uhrzeit", "stZeit"}) +
        table("L_Verschoben", {"stInvNr", "stBeschreibung", "stArtNr", "stAuftragSoll", "stRaumSoll",
                               "stAuftragIst", "stRaumIst", "Datum", "Uhrzeit", "stZeit"}) +
        table("L_Doppelt",
              {"stInvNr", "stAuftrag", "stRaum", "Datum", "Uhrzeit", "stZeit", "stDatei", "iAuftraege", "iRang"}) +
        table("L_Zuviel", {"stAuftrag", "stRaum", "stInvNr", "stArtNr", "stQuarn", "Datum", "Uhrzeit", "stZeit"}) +
        table("L_Unbekannt", {"stInvNr", "stArtNr", "stAuftraege", "stRaum", "iScans", "Datum", "stZeit"}) +
        table("L_Fehlend", {"stInvNr", "stBeschreibung", "stArtNr", "stAuftrag", "stRaum"}) +
        table("L_Ungeprueft", {"lIdRB", "stRaumNr", "stBezeichnung", "iErwartet", "stPruefung"}) +
        table("L_Ueberschneidung", {"lIdRB", "stRaumNr", "stBezeichnung", "stAuftraege", "iAuftraege"}) +
        table("L_Hinweis", {"stAuftrag", "stArt", "stText", "stDatei"}) +
        table("P_Artikel", {"stArtNr", "stBeschreibung"});
    Database::Transaction tx(db);
    db.executeScript(sql);
    tx.commit();
}

std::string listTable(const std::string& listName)
{
    for (const auto& [name, tableName] : kLists)
        if (listName == name)
            return tableName;
    return {};
}

std::vector<std::string> listNames()
{
    std::vector<std::string> names;
    for (const auto& entry : kLists)
        names.emplace_back(entry.first);
    return names;
}

} // namespace qi
