#include "ArticleNames.h"

#include "Database.h"
#include "FileSystem.h"
#include "QuarnHost.h"

namespace qi {

namespace {

constexpr const char* kSchema = "quarnartikel";

} // namespace

void fillArticleNames(Database& result, QGebDb& geb, const std::string& tablePrefix)
{
    if (tablePrefix != "T_I" && tablePrefix != "T_T" && tablePrefix != "T_B")
        return;
    std::string file;
    try {
        file = geb.ObjectsFile();
    } catch (const DbError&) {
        return;
    }
    try {
        result.execute(std::string("ATTACH DATABASE ?1 AS ") + kSchema, {nativePath(file)});
    } catch (const DbError&) {
        return;
    }
    try {
        // Several articles may share a number; the first one counts, as for the evaluation.
        result.execute(std::string("INSERT INTO P_Artikel (stArtNr, stBeschreibung) "
                                   "SELECT n.nr, coalesce((SELECT a.stName FROM ") +
                       kSchema + "." + tablePrefix +
                       "Artikel AS a WHERE a.stArtNr = n.nr ORDER BY a.lId LIMIT 1), '') "
                       "FROM (SELECT DISTINCT stArtNr AS nr FROM L_Unbekannt WHERE stArtNr <> '') AS n");
    } catch (const DbError&) {
        // The names are an addition; the result stands without them.
    }
    try {
        result.execute(std::string("DETACH DATABASE ") + kSchema);
    } catch (const DbError&) {
    }
}

} // namespace qi
