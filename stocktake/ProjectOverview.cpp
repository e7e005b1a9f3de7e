#include "ProjectOverview.h"

#include "ArticleNames.h"
#include "CInventurDb.h"
#include "CrossOrderLists.h"
#include "DifferenceListState.h"
#include "FileSystem.h"
#include "IndexesSetAside.h"
#include "JetCollation.h"
#include "KeptOrders.h"
#include "NumberSightings.h"
#include "OrderFigures.h"
#include "OrderSource.h"
#include "Orders.h"
#include "ProjectHints.h"
#include "ProjectResultSchema.h"
#include "QuarnHost.h"
#include "QuarnRooms.h"
#include "RolledBackCopy.h"
#include "ScriptedUserInteraction.h"
#include "Settings.h"
#include "Startup.h"

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace qi {

namespace {

namespace fs = std::filesystem;

constexpr const char* kInsertHint = "INSERT INTO L_Hinweis (stAuftrag, stArt, stText, stDatei) VALUES (?1, ?2, ?3, ?4)";

void hint(Database& result, const std::string& order, const char* kind, const std::string& text,
          const std::string& file)
{
    result.execute(kInsertHint, {order, std::string(kind), text, file.empty() ? file : displayPath(file)});
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

/// The order databases of the register opened, checked and evaluated afresh ahead of writing
/// their rows, by the calling thread and one more of its own, at most kAhead orders ahead of
/// the one being written. An order's work is two jobs: its check, then (where its list does not
/// fit) its fresh evaluation; each by whichever thread is free, so that the checks find the long
/// evaluations early and both threads share them. For fresh evaluations each thread has Quarn's
/// building component of its own. The sources are taken in the register's order, so the result
/// is the same however the work was shared. The helper ends with the object.
class OrderSources {
public:
    /// `files`: per register row the order database to open, '' for a row whose file is not read.
    OrderSources(std::vector<std::string> files, const Settings& settings, QGebDb& geb, const QuarnRooms& quarn,
                 bool fresh)
        : files_(std::move(files)), slots_(files_.size()), settings_(settings), geb_(geb), quarn_(quarn),
          fresh_(fresh)
    {
        std::size_t toRead = 0;
        for (std::size_t i = 0; i < files_.size(); ++i) {
            if (files_[i].empty())
                slots_[i].stage = Stage::Done;
            else
                ++toRead;
        }
        if (toRead < 2)
            return;
        // Where the component can't be had, the calling thread does all the work.
        if (fresh_) {
            std::string error;
            helperGeb_ = openBuildingComponent(settings_, &error);
            if (!error.empty())
                return;
        }
        helper_ = std::thread([this] { helpUntilStopped(); });
    }

    ~OrderSources()
    {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            stop_ = true;
        }
        changed_.notify_all();
        if (helper_.joinable())
            helper_.join();
    }

    OrderSources(const OrderSources&) = delete;
    OrderSources& operator=(const OrderSources&) = delete;

    /// The source of row `i` (null for a row whose file is not read); works on the next rows
    /// while it waits for a source the helper is making. Rows are taken in rising order.
    std::unique_ptr<OrderSource> take(std::size_t i)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        writing_ = i;
        changed_.notify_all();
        for (;;) {
            if (slots_[i].stage == Stage::Done)
                return std::move(slots_[i].source);
            // The row waited for comes first; then the checks, which find the evaluations.
            Job job;
            if (slots_[i].stage == Stage::Checked)
                job = {i, Work::Evaluate};
            else if (!claimCheck(job) && !claimEvaluation(job)) {
                changed_.wait(lock);
                continue;
            }
            run(job, geb_, lock);
        }
    }

private:
    static constexpr std::size_t kAhead = 16;

    /// Waiting: nothing done yet; Checking: its check runs; Checked: its evaluation waits;
    /// Evaluating: its evaluation runs; Done: its source is there.
    enum class Stage { Waiting, Checking, Checked, Evaluating, Done };

    struct Slot {
        std::unique_ptr<OrderSource> source;
        Stage stage = Stage::Waiting;
    };

    enum class Work { Check, Evaluate };

    struct Job {
        std::size_t row = 0;
        Work work = Work::Check;
    };

    bool within(std::size_t row) const { return row < writing_ + kAhead; }

    /// The next order to check, if there is one within reach (under the lock).
    bool claimCheck(Job& job)
    {
        while (nextCheck_ < slots_.size() && slots_[nextCheck_].stage != Stage::Waiting)
            ++nextCheck_;
        if (nextCheck_ >= slots_.size() || !within(nextCheck_))
            return false;
        job = {nextCheck_++, Work::Check};
        return true;
    }

    /// The first checked order whose evaluation waits, within reach (under the lock).
    bool claimEvaluation(Job& job)
    {
        for (std::size_t r = writing_; r < slots_.size() && within(r); ++r)
            if (slots_[r].stage == Stage::Checked) {
                job = {r, Work::Evaluate};
                return true;
            }
        return false;
    }

    /// Runs `job` outside the lock (held on entry and on return).
    void run(const Job& job, QGebDb& geb, std::unique_lock<std::mutex>& lock)
    {
        Slot& slot = slots_[job.row];
        slot.stage = job.work == Work::Check ? Stage::Checking : Stage::Evaluating;
        lock.unlock();
        std::unique_ptr<OrderSource> checked;
        if (job.work == Work::Check)
            checked = checkOrderSource(files_[job.row], quarn_);
        else
            evaluateAfresh(*slot.source, settings_, geb);
        lock.lock();
        if (checked)
            slot.source = std::move(checked);
        slot.stage = fresh_ && needsFreshEvaluation(*slot.source) ? Stage::Checked : Stage::Done;
        changed_.notify_all();
    }

    void helpUntilStopped()
    {
        // Without fresh evaluations the component is never asked.
        QGebDb& geb = helperGeb_ ? *helperGeb_ : geb_;
        std::unique_lock<std::mutex> lock(mutex_);
        for (;;) {
            // The evaluations first: they are the long work.
            Job job;
            changed_.wait(lock, [&] { return stop_ || claimEvaluation(job) || claimCheck(job); });
            if (stop_)
                return;
            run(job, geb, lock);
        }
    }

    const std::vector<std::string> files_;
    std::vector<Slot> slots_;
    const Settings& settings_;
    QGebDb& geb_;
    const QuarnRooms& quarn_;
    const bool fresh_;
    std::unique_ptr<QGebDb> helperGeb_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t nextCheck_ = 0;
    std::size_t writing_ = 0;
    bool stop_ = false;
    std::thread helper_;
};

/// The order database of a register row that is read: '' where its file is outside the
/// order folder or not at its place.
std::string fileToRead(const Settings& settings, const CAuftragRec& rec)
{
    const std::string file = orderDatabaseFile(settings, rec.stPfad);
    return file.empty() || !fileExists(displayPath(file)) ? std::string() : displayPath(file);
}

/// Everything the overview tells of one order of the register.
class OrderReading {
public:
    explicit OrderReading(Database& result, const Settings& settings, const QuarnRooms& quarn)
        : result_(result), settings_(settings), quarn_(quarn)
    {
    }

    /// Where the numbers of the rows written so far occur. Rows of an order whose writing was
    /// undone may be noted too: the lists take a row only for what the table holds.
    const NumberSightings& sightings() const { return sightings_; }

    /// Writes the rows of `rec`, from `source` (null where the row's file is not read).
    void read(const CAuftragRec& rec, std::unique_ptr<OrderSource> source)
    {
        OrderHeader h;
        h.lAuftragID = rec.lID;
        h.stAuftrag = rec.stBezeichung;
        h.stPfad = rec.stPfad;
        const std::string file = orderDatabaseFile(settings_, rec.stPfad);
        h.stDatei = file.empty() ? file : displayPath(file);
        // The rows come set-based from the database of the figures, attached before the transaction.
        std::unique_ptr<AttachedOrder> attached;
        if (source && source->error.empty()) {
            try {
                attached = std::make_unique<AttachedOrder>(
                    result_, source->evaluation ? source->evaluation->database() : source->data());
            } catch (const std::exception& e) {
                source->error = e.what();
            }
        }
        Database::Transaction tx(result_);
        if (h.stDatei.empty()) {
            unreadable(h, ordermsg::outsideOrderFolder(rec.stPfad));
        } else if (!source) {
            h.stStand = kStandFehlt;
            h.stFehler = hinweis::auftragFehlt(h.stAuftrag, h.stDatei);
            hint(result_, h.stAuftrag, kHinweisAuftragFehlt, h.stFehler, h.stDatei);
            writeOrderWithoutFigures(result_, h);
        } else if (!source->error.empty()) {
            unreadable(h, source->error);
        } else {
            try {
                Database::Transaction rows(result_);
                readDatabase(h, *source, *attached);
                rows.commit();
            } catch (const std::exception& e) {
                unreadable(h, e.what());
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

    void readDatabase(OrderHeader& h, OrderSource& source, const AttachedOrder& figures)
    {
        Database& data = source.data();
        h.stStand = kStandAktuell;
        if (source.state != ListState::Fits) {
            h.stStand = source.state == ListState::Never ? kStandNie : kStandNeu;
            const bool freshFigures = source.evaluation != nullptr;
            if (source.state == ListState::Never)
                hint(result_, h.stAuftrag, kHinweisNieAusgewertet, hinweis::nieAusgewertet(h.stAuftrag, freshFigures),
                     h.stDatei);
            else
                hint(result_, h.stAuftrag, kHinweisVeraltet, hinweis::veraltet(h.stAuftrag, freshFigures), h.stDatei);
        }
        if (!source.failure.empty()) {
            // The figures are those the order holds; why they could not be made afresh is told.
            h.stStand = kStandFehler;
            h.stFehler = source.failure;
            hint(result_, h.stAuftrag, kHinweisNichtLesbar, hinweis::nichtLesbar(h.stAuftrag, source.failure),
                 h.stDatei);
        }
        writeOrderFigures(result_, figures, h, quarn_, sightings_);

        if (const std::int64_t n = roomsWithoutScans(data); n > 0)
            hint(result_, h.stAuftrag, kHinweisRaeumeN, hinweis::raeumeN(h.stAuftrag, int(n)), h.stDatei);
        for (const std::string& file : missingScannerFiles(data))
            hint(result_, h.stAuftrag, kHinweisDateiFehlt, hinweis::dateiFehlt(h.stAuftrag, file), file);
    }

    Database& result_;
    const Settings& settings_;
    const QuarnRooms& quarn_;
    NumberSightings sightings_;
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
    const std::vector<std::string> indexes = dropMadeIndexes(*result);
    QuarnRooms quarn(gebDb);

    // One step per order, then the lists across orders and the coverage of the building structure.
    const int total = int(orders.Count()) + 2;
    int done = 0;
    const auto next = [&](const std::string& step) {
        if (options.progress && !options.progress(done, total, step))
            throw OverviewCancelled{};
    };
    std::vector<std::string> files;
    for (const CAuftragRec& rec : orders)
        files.push_back(fileToRead(settings, rec));
    OrderSources sources(std::move(files), settings, gebDb, quarn, options.freshEvaluation);
    OrderReading reading(*result, settings, quarn);
    std::size_t row = 0;
    for (const CAuftragRec& rec : orders) {
        next("Auftrag '" + rec.stBezeichung + "'");
        reading.read(rec, sources.take(row++));
        ++done;
    }

    next("Listen über alle Aufträge");
    {
        Database::Transaction tx(*result);
        for (const std::string& index : indexes)
            result->execute(index);
        folderHints(*result, settings, orders);
        makeCrossOrderLists(*result, reading.sightings());
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
