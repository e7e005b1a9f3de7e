#include "ReportDatabase.h"

#include "FileSystem.h"

#include <array>
#include <stdexcept>

namespace qi {

namespace {

/// The run-time error of a module that has no texts.
constexpr const char* kInvalidCall = "Ungültiger Prozeduraufruf oder ungültiges Argument";

// Module 0 (INVENTAR); the other modules name their own object table instead of T_IObjekt.
constexpr const char* kAnzProRaumJet =
    "SELECT t_Raum.stRaumNr, t_Raum.stAuftrag, Count(T_IObjekt.stName) AS "
    "[Anzahl von stName], t_Raum.stStatus FROM T_IObjekt INNER JOIN t_Raum ON T_IObjekt.lGebstruId = t_Raum.lIdRB "
    "GROUP BY t_Raum.stRaumNr, t_Raum.stAuftrag, t_Raum.stStatus, T_IObjekt.byGebstruTyp HAVING "
    "(((T_IObjekt.byGebstruTyp)=4))";
constexpr const char* kAnzProRaumSqlite =
    "SELECT t_Raum.stRaumNr, t_Raum.stAuftrag, count(T_IObjekt.stName) AS \"Anzahl von stName\", "
    "t_Raum.ststatus AS stStatus FROM T_IObjekt INNER JOIN t_Raum ON T_IObjekt.lGebstruId = t_Raum.lIdRB "
    "GROUP BY t_Raum.stRaumNr, t_Raum.stAuftrag, t_Raum.ststatus, T_IObjekt.byGebstruTyp "
    "HAVING T_IObjekt.byGebstruTyp = 4";

constexpr const char* kDiffPiece4Module0 =
    "t_Differenzliste.Uhrzeit, t_Differenzliste.iReihenfolge, t_Differenzliste.stTyp, t_Differenzliste.stObjBemerkung,  ";
constexpr const char* kDiffPiece4Other = "t_Differenzliste.Uhrzeit, t_Differenzliste.iReihenfolge, t_Differenzliste.stTyp,  ";

std::string diffListeJet(bool module0)
{
    return std::string("SELECT t_Differenzliste.lID, t_Differenzliste.lRaumId, t_Differenzliste.stSollInvNR,  ") +
           "t_Differenzliste.stIstInvNR, t_Differenzliste.stBeschreibung, t_Differenzliste.stZiel,  " +
           "t_Differenzliste.stQuelle, t_Differenzliste.stQuarn, t_Differenzliste.stArtNr, t_Differenzliste.Datum,  " +
           (module0 ? kDiffPiece4Module0 : kDiffPiece4Other) +
           "[T_AnsprechPartner]![stName]+\", \"+[T_AnsprechPartner]![stVorname] AS Name, T_KST.stKST, t_Raum.lID,  " +
           "t_Raum.lIdRB, t_Raum.stRaumNr, t_Raum.stStatus, t_Raum.lDatId, t_Raum.Datum, t_Raum.Uhrzeit,  " +
           "t_Raum.iAnzahl, t_Raum.stAuftrag, T_IObjekt.iVariante FROM (((t_Differenzliste LEFT JOIN t_Raum ON  " +
           "t_Differenzliste.lRaumId = t_Raum.lID) LEFT JOIN (T_Raumkern LEFT JOIN T_AnsprechPartner ON  " +
           "T_Raumkern.lRaumverantwId = T_AnsprechPartner.lId) ON t_Raum.lIdRB = T_Raumkern.lId) LEFT JOIN  " +
           "T_IObjekt ON t_Differenzliste.stIstInvNR = T_IObjekt.stName) LEFT JOIN T_KST ON T_IObjekt.lKstId = T_KST.lId " +
           "Where (T_IObjekt.iVariante = 0 And t_Differenzliste.stIstInvNR <> \"\") Or  " +
           "(t_Differenzliste.stSollInvNR <> \"\" And t_Differenzliste.stIstInvNR = \"\")";
}

// Jet names the columns that two tables share "table.column"; the aliases keep those names.
// Jet's "+" on texts gives Null when one side is Null, as "||" does.
std::string diffListeSqlite(bool module0)
{
    return std::string("SELECT t_Differenzliste.lID AS \"t_Differenzliste.lID\", t_Differenzliste.lRaumID AS lRaumId, "
                       "t_Differenzliste.stSollInvNR, t_Differenzliste.stIstInvNR, t_Differenzliste.stBeschreibung, "
                       "t_Differenzliste.stZiel, t_Differenzliste.stQuelle, t_Differenzliste.stQuarn, "
                       "t_Differenzliste.stArtNr, t_Differenzliste.Datum AS \"t_Differenzliste.Datum\", "
                       "t_Differenzliste.Uhrzeit AS \"t_Differenzliste.Uhrzeit\", t_Differenzliste.iReihenfolge, "
                       "t_Differenzliste.stTyp, ") +
           (module0 ? "t_Differenzliste.stObjBemerkung, " : "") +
           "T_AnsprechPartner.stName || ', ' || T_AnsprechPartner.stVorname AS Name, T_KST.stKST, "
           "t_Raum.lID AS \"t_Raum.lID\", t_Raum.lIdRB, t_Raum.stRaumNr, t_Raum.ststatus AS stStatus, "
           "t_Raum.lDatID AS lDatId, t_Raum.Datum AS \"t_Raum.Datum\", t_Raum.Uhrzeit AS \"t_Raum.Uhrzeit\", "
           "t_Raum.iAnzahl, t_Raum.stAuftrag, T_IObjekt.iVariante "
           "FROM t_Differenzliste LEFT JOIN t_Raum ON t_Differenzliste.lRaumID = t_Raum.lID "
           "LEFT JOIN T_Raumkern ON t_Raum.lIdRB = T_Raumkern.lId "
           "LEFT JOIN T_AnsprechPartner ON T_Raumkern.lRaumverantwId = T_AnsprechPartner.lId "
           "LEFT JOIN T_IObjekt ON t_Differenzliste.stIstInvNR = T_IObjekt.stName "
           "LEFT JOIN T_KST ON T_IObjekt.lKstId = T_KST.lId "
           "WHERE (T_IObjekt.iVariante = 0 AND t_Differenzliste.stIstInvNR <> '') "
           "OR (t_Differenzliste.stSollInvNR <> '' AND t_Differenzliste.stIstInvNR = '')";
}

std::string withObjectTable(std::string text, const char* table)
{
    static const std::string from = "T_IObjekt";
    for (auto p = text.find(from); p != std::string::npos; p = text.find(from, p + 1))
        text.replace(p, from.size(), table);
    return text;
}

struct ModuleTexts {
    std::string jet, sqlite;
};

const ModuleTexts& texts(int which, std::int16_t modul)
{
    static const std::array<const char*, 3> tables = {"T_IObjekt", "T_TObjekt", "T_BObjekt"};
    static const auto all = [] {
        std::array<std::array<ModuleTexts, 3>, 2> t;
        for (std::size_t m = 0; m < 3; ++m) {
            t[0][m] = {withObjectTable(kAnzProRaumJet, tables[m]), withObjectTable(kAnzProRaumSqlite, tables[m])};
            t[1][m] = {withObjectTable(diffListeJet(m == 0), tables[m]),
                       withObjectTable(diffListeSqlite(m == 0), tables[m])};
        }
        return t;
    }();
    // Only the three modules have texts; any other number is an invalid call, as in the evaluation.
    if (modul < 0 || modul > 2)
        throw std::runtime_error(kInvalidCall);
    return all[std::size_t(which)][std::size_t(modul)];
}

} // namespace

std::string reportDatabasePath(const Settings& settings)
{
    if (!settings.reportDatabaseFile.empty())
        return settings.reportDatabaseFile;
    if (settings.privateReportDatabase)
        return settings.privateReportDatabase->file();
    return sharedReportDatabasePath(settings);
}

std::string sharedReportDatabasePath(const Settings& settings)
{
    return (settings.ownProgramFolder.empty() ? settings.gstAppPfad : settings.ownProgramFolder) + "\\" +
           kReportDatabaseFile;
}

void PrivateReportDatabase::copyFrom(const std::string& shared)
{
    if (!folder_) {
        folder_ = std::make_unique<PrivateFolder>();
        file_ = folder_->file(kReportDatabaseFile);
    }
    // Copied beside the copy and renamed over it: a report that still reads the earlier copy
    // keeps reading it whole.
    const std::string next = file_ + ".neu";
    auto source = LinkedDatabase::open(shared);
    try {
        source->database().copyTo(next);
    } catch (const DbError& e) {
        // The copy is named as the file it becomes.
        if (e.number() != dberr::FileNotFound)
            throw;
        throw DbError(dberr::FileNotFound, "Die Datei '" + displayPath(file_) + "' konnte nicht angelegt werden.");
    }
    source.reset();
    if (!moveFile(next, file_)) {
        removeFile(next);
        throw DbError(dberr::FileNotFound, "Die Datei '" + displayPath(file_) + "' konnte nicht angelegt werden.");
    }
}

JetSql anzProRaumQuery(std::int16_t modul)
{
    const ModuleTexts& t = texts(0, modul);
    return {t.jet, t.sqlite};
}

JetSql diffListeQuery(std::int16_t modul)
{
    const ModuleTexts& t = texts(1, modul);
    return {t.jet, t.sqlite};
}

void setReportQueries(LinkedDatabase& db, std::int16_t modul)
{
    db.setQuerySql(kQueryAnzProRaum, anzProRaumQuery(modul));
    db.setQuerySql(kQueryDiffListe, diffListeQuery(modul));
}

} // namespace qi
