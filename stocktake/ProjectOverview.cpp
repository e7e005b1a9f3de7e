#include "ProjectOverview.h"

#include "ArticleNames.h"
#include "CInventurDb.h"
#include "CrossOrderLists.h"
#include "DifferenceListState.h"
#include "FileSystem.h"
#include "FreshEvaluation.h"
#include "JetCollation.h"
#include "KeptOrders.h"
#include "OrderFigures.h"
#include "Orders.h"
#include "ProjectHints.h"
#include "ProjectResultSchema.h"
#include "QuarnHost.h"
#include "QuarnRooms.h"
#include "RolledBackCopy.h"
#include "ScriptedUserInteraction.h"
#include "SqlName.h"
#include "Settings.h"
#include "Startup.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace qi {

namespace {

namespace fs = std::filesystem;

constexpr const char* kInsertHint = "INSERT INTO L_Hinweis (stAuftrag, stArt, stText, stDatei) VALUES (?1, ?2, ?3, ?4)";

void hint(Database& result, const std::string& order, const char* kind, const std::string& text,
          const std::string& file)
{
    result.execute(kInsertHint, {order, std::string(kind), text, file.empty() ? file : displayPath(file)});
}

std::string describe(const std::exception& e)
{
    if (const auto* db = dynamic_cast<const DbError*>(&e))
        return db->description();
    return e.what();
}

/// The register's orders, only read (a register whose last change was cut off from a put-back copy).
void readRegister(const Settings& settings, CAuftragRecColl& orders)
{
    std::string file = settings.gstProjektPfad;
    if (!file.empty() && file.back() != '\\' && file.back() != '/')
        file += '\\';
    file += "QInventur.mdb";
    std::unique_ptr<RolledBackCopy> putBack;
    if (hasJournal(file))
        putBack = std::make_unique<RolledBackCopy>(file);
    CInventurDb reg;
    reg.setDbPath(putBack ? putBack->path() : file);
    reg.setOpenReadOnly(Value(std::int64_t{-1}));
    if (!reg.OpenCheckedDb() || !reg.ReadAllAuftragRec2Coll(orders))
        throw std::runtime_error(reg.LastError());
}

/// Everything the overview tells of one order of the register.
class OrderReading {
public:
    OrderReading(Database& result, const Settings& settings, QGebDb& geb, const QuarnRooms& quarn, bool fresh)
        : result_(result), settings_(settings), geb_(geb), quarn_(quarn), fresh_(fresh)
    {
    }

    void read(const CAuftragRec& rec)
    {
        OrderHeader h;
        h.lAuftragID = rec.lID;
        h.stAuftrag = rec.stBezeichung;
        h.stPfad = rec.stPfad;
        const std::string file = orderDatabaseFile(settings_, rec.stPfad);
        h.stDatei = file.empty() ? file : displayPath(file);
        Database::Transaction tx(result_);
        if (h.stDatei.empty()) {
            unreadable(h, ordermsg::outsideOrderFolder(rec.stPfad));
        } else if (!fileExists(h.stDatei)) {
            h.stStand = kStandFehlt;
            h.stFehler = hinweis::auftragFehlt(h.stAuftrag, h.stDatei);
            hint(result_, h.stAuftrag, kHinweisAuftragFehlt, h.stFehler, h.stDatei);
            writeOrderWithoutFigures(result_, h);
        } else {
            try {
                Database::Transaction rows(result_);
                readDatabase(h);
                rows.commit();
            } catch (const std::exception& e) {
                unreadable(h, describe(e));
            }
        }
        tx.commit();
    }

private:
    void unreadable(OrderHeader& h, const std::string& why)
    {
        h.stStand = kStandFehler;
        h.stFehler = why;
        hint(result_, h.stAuftrag, kHinweisNichtLesbar, hinweis::nichtLesbar(h.stAuftrag, why), h.stDatei);
        writeOrderWithoutFigures(result_, h);
    }

    void readDatabase(OrderHeader& h)
    {
        // Only read, as the file stands; a change that was cut off is read as it was before it.
        std::unique_ptr<RolledBackCopy> putBack;
        if (hasJournal(h.stDatei))
            putBack = std::make_unique<RolledBackCopy>(h.stDatei);
        ScriptedUserInteraction quiet;
        CAuftragDb order(quiet);
        order.setDbPath(putBack ? putBack->path() : h.stDatei);
        order.setOpenReadOnly(Value(std::int64_t{-1}));
        if (!order.OpenCheckedDb())
            throw std::runtime_error(order.LastError());
        Database& data = *order.database();

        h.stStand = kStandAktuell;
        const ListState state = differenceListState(data, quarn_);
        std::unique_ptr<FreshEvaluation> evaluation;
        std::string failure;
        if (state != ListState::Fits) {
            h.stStand = state == ListState::Never ? kStandNie : kStandNeu;
            if (fresh_) {
                evaluation = std::make_unique<FreshEvaluation>(data, fileNamePart(h.stDatei), settings_, geb_);
                if (evaluation->failed()) {
                    failure = evaluation->error();
                    evaluation.reset();
                }
            }
            const bool freshFigures = evaluation != nullptr;
            if (state == ListState::Never)
                hint(result_, h.stAuftrag, kHinweisNieAusgewertet, hinweis::nieAusgewertet(h.stAuftrag, freshFigures),
                     h.stDatei);
            else
                hint(result_, h.stAuftrag, kHinweisVeraltet, hinweis::veraltet(h.stAuftrag, freshFigures), h.stDatei);
        }
        if (!failure.empty()) {
            // The figures are those the order holds; why they could not be made afresh is told.
            h.stStand = kStandFehler;
            h.stFehler = failure;
            hint(result_, h.stAuftrag, kHinweisNichtLesbar, hinweis::nichtLesbar(h.stAuftrag, failure), h.stDatei);
        }
        writeOrderFigures(result_, evaluation ? evaluation->database() : data, h, quarn_);

        if (const std::int64_t n = roomsWithoutScans(data); n > 0)
            hint(result_, h.stAuftrag, kHinweisRaeumeN, hinweis::raeumeN(h.stAuftrag, int(n)), h.stDatei);
        for (const std::string& file : missingScannerFiles(data))
            hint(result_, h.stAuftrag, kHinweisDateiFehlt, hinweis::dateiFehlt(h.stAuftrag, file), file);
    }

    Database& result_;
    const Settings& settings_;
    QGebDb& geb_;
    const QuarnRooms& quarn_;
    bool fresh_;
};

/// The kept copies in "Inventur\Gesichert" and the order databases in "Inventur" that no row names.
void folderHints(Database& result, const Settings& settings, const CAuftragRecColl& orders)
{
    for (const KeptOrder& k : listKeptOrders(settings))
        hint(result, k.order, kHinweisGesichert, hinweis::gesichert(k.order, k.keptAt.toDisplayText(), k.file),
             keptOrdersFolder(settings) + "\\" + k.file);

    // A file is named by a row when the file system finds the row's file in it (letter case as it
    // tells them apart, links followed).
    std::vector<fs::path> named;
    for (const CAuftragRec& rec : orders) {
        const std::string file = orderDatabaseFile(settings, rec.stPfad);
        if (!file.empty() && fileExists(file))
            named.push_back(fs::u8path(nativePath(file)));
    }
    const std::string folder = settings.gstProjektPfad + kOrderFolder;
    std::vector<std::string> unnamed;
    std::error_code ec;
    for (fs::directory_iterator it(fs::u8path(nativePath(folder)), ec), end; !ec && it != end; it.increment(ec)) {
        std::error_code typeEc;
        const std::string name = it->path().filename().string();
        if (!it->is_regular_file(typeEc) || !jetEqual(it->path().extension().string(), ".mdb"))
            continue;
        bool isNamed = false;
        for (const fs::path& p : named) {
            std::error_code same;
            isNamed = isNamed || fs::equivalent(p, it->path(), same);
        }
        if (!isNamed)
            unnamed.push_back(name);
    }
    std::sort(unnamed.begin(), unnamed.end());
    for (const std::string& name : unnamed)
        hint(result, "", kHinweisOhneAuftrag, hinweis::ohneAuftrag(name), folder + "\\" + name);
}

} // namespace

std::unique_ptr<Database> computeProjectResult(const Settings& settings, QGebDb& gebDb, const OverviewOptions& options)
{
    CAuftragRecColl orders;
    readRegister(settings, orders);
    auto result = Database::inMemory();
    createProjectResultSchema(*result);
    // The orders' rows go in first and their indexes are made afterwards, at once.
    const Recordset indexes = result->query("SELECT name, sql FROM sqlite_master WHERE type = 'index' AND sql <> ''");
    for (const auto& index : indexes.rows())
        result->execute("DROP INDEX " + sqlName(toText(index[0])));
    QuarnRooms quarn(gebDb);

    // One step per order, then the lists across orders and the coverage of the building structure.
    const int total = int(orders.Count()) + 2;
    int done = 0;
    const auto next = [&](const std::string& step) {
        if (options.progress && !options.progress(done, total, step))
            throw OverviewCancelled{};
    };
    OrderReading reading(*result, settings, gebDb, quarn, options.freshEvaluation);
    for (const CAuftragRec& rec : orders) {
        next("Auftrag '" + rec.stBezeichung + "'");
        reading.read(rec);
        ++done;
    }

    next("Listen über alle Aufträge");
    {
        Database::Transaction tx(*result);
        for (const auto& index : indexes.rows())
            result->execute(toText(index[1]));
        folderHints(*result, settings, orders);
        makeCrossOrderLists(*result);
        tx.commit();
    }
    fillArticleNames(*result, gebDb, settings.tablePrefix());
    ++done;

    next("Räume der Gebäudestruktur");
    std::vector<ExpectedRoom> rooms;
    rooms.reserve(quarn.all().size());
    for (const GebRoom& r : quarn.all())
        rooms.push_back({r.lId, r.stRaumNr, r.stBezeichnung, int(quarn.objectsOf(r.lId).size())});
    {
        Database::Transaction tx(*result);
        makeCoverageLists(*result, rooms);
        tx.commit();
    }
    return result;
}

std::unique_ptr<Database> computeProjectResult(const Settings& settings, const OverviewOptions& options)
{
    std::string error;
    const std::unique_ptr<QGebDb> geb = openBuildingComponent(settings, &error);
    if (!error.empty())
        throw std::runtime_error(error);
    // A component that is not open says so when the rooms are asked for.
    return computeProjectResult(settings, *geb, options);
}

} // namespace qi
