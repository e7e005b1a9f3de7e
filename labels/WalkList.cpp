#include "WalkList.h"

#include "Database.h"
#include "FileSystem.h"
#include "HostMirror.h"
#include "QuarnHost.h"
#include "ReportFiles.h"
#include "Settings.h"

#include <map>
#include <stdexcept>

namespace qi {

namespace {

constexpr const char* kSchema =
    "CREATE TABLE W_Raum (lIdRB INTEGER PRIMARY KEY, stRaumNr TEXT COLLATE JET, stRaumName TEXT, stGebaeude TEXT, "
    " stGeschoss TEXT, stVerantwortlich TEXT, iObjekte INTEGER, stObjekte TEXT);"
    "CREATE TABLE W_Objekt (lIdRB INTEGER, iPos INTEGER, stInvNr TEXT COLLATE JET, stArtNr TEXT, stArtikel TEXT, "
    " stBeschreibung TEXT, stBemerkung TEXT);"
    "CREATE INDEX W_Objekt_Raum ON W_Objekt (lIdRB, iPos);";

constexpr const char* kObjects = "quarnobjekte";
constexpr const char* kBuilding = "quarngebaeude";
constexpr const char* kMaster = "quarnstamm";

/// Attaches a file for the time of the object; `attached` says whether that worked.
class Attached {
public:
    Attached(Database& db, const std::string& file, const char* schema) : db_(db), schema_(schema)
    {
        db_.execute(std::string("ATTACH DATABASE ?1 AS ") + schema_, {nativePath(file)});
    }
    ~Attached()
    {
        try {
            db_.execute(std::string("DETACH DATABASE ") + schema_);
        } catch (const DbError&) {
        }
    }
    Attached(const Attached&) = delete;
    Attached& operator=(const Attached&) = delete;

private:
    Database& db_;
    const char* schema_;
};

/// Whether a table of an attached database has the column.
bool hasColumn(Database& db, const std::string& table, const std::string& column)
{
    const Recordset empty = db.query("SELECT * FROM " + table + " LIMIT 0");
    for (const std::string& name : empty.columnNames())
        if (sameName(name, column))
            return true;
    return false;
}

/// The person responsible for each room ("Name, Vorname") from T_Raumkern and T_AnsprechPartner;
/// what can't be read stays out.
std::map<std::int32_t, std::string> responsiblePersons(const Settings& settings, Database& data)
{
    std::map<std::int32_t, std::string> persons;
    try {
        HostMirror mirror(HostMirror::defaultCacheFolder(), settings.gstAppPfad);
        const std::string building = mirror.mirrorFor(settings.buildingDatabase());
        const std::string master = mirror.mirrorFor(
            settings.isJet() ? HostSource::file(settings.gstProjektPfad + "QStammdaten.mdb")
                             : HostSource::odbc(settings.gstConnectionString));
        Attached b(data, building, kBuilding);
        Attached m(data, master, kMaster);
        const Recordset rows = data.query(
            std::string("SELECT k.lId, p.stName, p.stVorname FROM ") + kBuilding + ".T_Raumkern AS k INNER JOIN " +
            kMaster + ".T_AnsprechPartner AS p ON p.lId = k.lRaumverantwId WHERE k.lId IN (SELECT lIdRB FROM W_Raum)");
        for (const auto& row : rows.rows()) {
            std::string name = toText(row[1]);
            const std::string first = toText(row[2]);
            if (!first.empty())
                name += (name.empty() ? "" : ", ") + first;
            persons.emplace(std::int32_t(toLong(row[0])), name);
        }
    } catch (const std::exception&) {
        // The walk list stands without the persons responsible.
    }
    return persons;
}

std::string objectsText(std::int64_t n)
{
    if (n == 0)
        return "Quarn erwartet in diesem Raum keine Objekte.";
    return n == 1 ? "1 Objekt laut Quarn" : std::to_string(n) + " Objekte laut Quarn";
}

} // namespace

std::unique_ptr<Database> walkListData(const Settings& settings, QGebDb& geb, const std::vector<LabelRoom>& rooms)
{
    auto data = Database::inMemory();
    data->executeScript(kSchema);
    const std::string prefix = settings.tablePrefix();
    if (prefix.empty())
        throw std::runtime_error("Das Modul " + std::to_string(settings.giModul) + " des Projekts ist unbekannt.");
    {
        Database::Transaction tx(*data);
        for (const LabelRoom& room : rooms)
            data->execute("INSERT OR IGNORE INTO W_Raum (lIdRB, stRaumNr, stRaumName, stGebaeude, stGeschoss, "
                          "stVerantwortlich, iObjekte) VALUES (?1, ?2, ?3, ?4, ?5, '', 0)",
                          {std::int64_t(room.lId), room.number, room.name, room.building, room.floor});
        tx.commit();
    }
    const std::string objectsFile = geb.ObjectsFile();
    {
        Attached objects(*data, objectsFile, kObjects);
        const std::string objekt = std::string(kObjects) + "." + prefix + "Objekt";
        const std::string artikel = std::string(kObjects) + "." + prefix + "Artikel";
        const std::string remark = hasColumn(*data, objekt, "stBemerkung") ? "coalesce(o.stBemerkung, '')" : "''";
        // The objects standing in each room, as the building component answers them: attached to
        // the room, no variant; in the order of their keys.
        data->execute("INSERT INTO W_Objekt (lIdRB, iPos, stInvNr, stArtNr, stArtikel, stBeschreibung, stBemerkung) "
                      "SELECT o.lGebstruId, o.lId, coalesce(o.stName, ''), coalesce(a.stArtNr, ''), "
                      "coalesce(a.stName, ''), coalesce(o.stBeschreibung, ''), " +
                      remark + " FROM " + objekt + " AS o LEFT JOIN " + artikel +
                      " AS a ON a.lId = o.lArtikelId "
                      "WHERE o.lGebstruId IN (SELECT lIdRB FROM W_Raum) AND o.byGebstruTyp = 4 AND o.iVariante = 0");
    }
    data->execute("UPDATE W_Raum SET iObjekte = (SELECT count(*) FROM W_Objekt AS o WHERE o.lIdRB = W_Raum.lIdRB)");
    const Recordset counts = data->query("SELECT lIdRB, iObjekte FROM W_Raum");
    const std::map<std::int32_t, std::string> persons = responsiblePersons(settings, *data);
    Database::Transaction tx(*data);
    for (const auto& row : counts.rows()) {
        const std::int32_t id = std::int32_t(toLong(row[0]));
        const auto person = persons.find(id);
        data->execute("UPDATE W_Raum SET stObjekte = ?2, stVerantwortlich = ?3 WHERE lIdRB = ?1",
                      {std::int64_t(id), objectsText(toLong(row[1])),
                       person == persons.end() ? std::string() : person->second});
    }
    tx.commit();
    return data;
}

std::string walkListReportFile(const Settings& settings)
{
    return reportFileOrTemplate(settings.gstProjektPfad + "Report\\" + kWalkListFile, settings.gstAppPfad);
}

std::unique_ptr<Report> openWalkList(const Settings& settings, Database& data, const std::string& scope,
                                     const std::string& printDate)
{
    ReportOptions options;
    options.orderName = scope;
    options.projectFolder = settings.gstProjektPfad;
    options.printDate = printDate;
    return Report::over(walkListReportFile(settings), data, kWalkListTitle, options);
}

} // namespace qi
