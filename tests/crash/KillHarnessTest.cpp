// Kills a process at random moments while it changes a large order (adding a file,
// removing one with its rebuild, the rebuild, the evaluation, the article tally, the
// inventory list, saving the rooms) and checks that the order database is then intact
// and holds either what it held before the operation or what the finished operation
// leaves; while it creates or deletes an order, checking that the register and the
// order's database are as before or as after, and that what a death leaves never breaks
// the next order of that name; while it writes the room list as PDF file, the difference
// list as Excel and CSV file and the archive of the scan data, checking that the file is the earlier one or the
// whole new one and nothing else is left; and while the program starts the first time on
// a new project, checking that every file seeding makes is missing or a whole copy of the
// template, never a register without the rest, and that the next start seeds or uses it.
//
// QI_KILLS sets the number of kills per operation (default 35: 315 for the nine operations
// on orders, 140 for the four outputs, 35 for the first start; 490 in all).

#include "CrashOrder.h"

#include "CInventurDb.h"
#include "Database.h"
#include "FileSystem.h"
#include "Orders.h"
#include "ScriptedUserInteraction.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string_view>
#include <thread>
#include <utility>

namespace qi::test {
namespace {

using Clock = std::chrono::steady_clock;

pid_t start(const CrashOrder& o, const std::string& operation)
{
    const pid_t pid = fork();
    if (pid == 0) {
        execl(QI_CRASH_OP, QI_CRASH_OP, o.root.c_str(), operation.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    return pid;
}

int finish(pid_t pid)
{
    int status = 0;
    waitpid(pid, &status, 0);
    return status;
}

/// Runs the operation to its end: its exit status and how long it took.
std::pair<int, std::chrono::microseconds> runToItsEnd(const CrashOrder& o, const std::string& operation)
{
    const auto t0 = Clock::now();
    const int status = finish(start(o, operation));
    return {status, std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - t0)};
}

/// Starts the operation and kills it after a moment drawn from `moment`; returns that moment (µs).
long killAtRandom(const CrashOrder& o, const std::string& operation, std::uniform_int_distribution<long>& moment,
                  std::mt19937& random)
{
    const long at = moment(random);
    const pid_t pid = start(o, operation);
    std::this_thread::sleep_for(std::chrono::microseconds(at));
    kill(pid, SIGKILL);
    finish(pid);
    return at;
}

/// Puts the order back as prepared: the journal a killed process left goes first.
void restore(const CrashOrder& o, const std::string& saved)
{
    removeFile(o.order + "-journal");
    ASSERT_TRUE(copyFile(saved, o.order));
}

int killsPerOperation()
{
    const char* v = std::getenv("QI_KILLS");
    return v ? std::max(1, std::atoi(v)) : 35;
}

TEST(KillHarness, EveryOperationLeavesTheOrderAsBeforeOrAsAfter)
{
    TempDir dir;
    const CrashOrder o(dir.path());
    prepareCrashOrder(o);
    const std::string saved = dir.path() + "/A1.saved";
    ASSERT_TRUE(copyFile(o.order, saved));
    const std::string before = contentDigest(o.order);

    const int kills = killsPerOperation();
    std::mt19937 random(20251123);
    int total = 0;
    for (const char* operation : {"hinzufuegen", "entfernen", "neu", "auswerten", "artikel", "inventur", "raeume"}) {
        SCOPED_TRACE(operation);
        // The operation to its end: how long it takes and what it leaves.
        restore(o, saved);
        const auto [status, duration] = runToItsEnd(o, operation);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the operation did not succeed";
        ASSERT_TRUE(integrityOk(o.order));
        const std::string after = contentDigest(o.order);
        ASSERT_NE(after, before) << "the operation changed nothing";

        int asBefore = 0, asAfter = 0;
        std::uniform_int_distribution<long> moment(0, long(duration.count() * 11 / 10));
        for (int k = 0; k < kills; ++k) {
            restore(o, saved);
            const long at = killAtRandom(o, operation, moment, random);
            ASSERT_TRUE(integrityOk(o.order)) << "kill " << k << " after " << at << " µs";
            const std::string now = contentDigest(o.order);
            ASSERT_TRUE(now == before || now == after) << "kill " << k << " after " << at << " µs left a third state";
            ++(now == before ? asBefore : asAfter);
            ++total;
        }
        std::printf("%-12s %6.3f s to the end; %d kills: %d as before, %d as after\n", operation,
                    double(duration.count()) / 1e6, kills, asBefore, asAfter);
    }
    std::printf("%d kills in all\n", total);
}

/// What a kill left of the project: the register, and the database of an order (empty when
/// there is none).
struct ProjectState {
    std::string registry;
    std::string orderDb;
};

ProjectState projectState(const CrashOrder& o, const std::string& orderFile)
{
    EXPECT_TRUE(integrityOk(o.registry));
    // The register's rows without their times, which differ from run to run.
    std::string registry;
    const Recordset rows = Database::open(o.registry, true)
                               ->query("SELECT lID, stBezeichung, stPfad, stErsteller FROM T_Auftrag ORDER BY lID");
    for (const auto& row : rows.rows())
        for (const Value& v : row)
            registry += toText(v) + "\x1f";
    ProjectState s{registry, {}};
    if (fileExists(orderFile)) {
        EXPECT_TRUE(integrityOk(orderFile)) << orderFile;
        s.orderDb = contentDigest(orderFile);
    }
    return s;
}

/// Puts the project back as prepared: the register, the order "A1", and no trace of the new order.
void restoreProject(const CrashOrder& o, const std::string& savedRegistry, const std::string& savedOrder)
{
    const std::string inventur = o.project + "/Inventur/";
    for (const std::string& f : {o.registry, o.order, inventur + kNewOrder + ".mdb", inventur + "~Auftrag.neu"})
        removeFile(f + "-journal");
    removeFile(inventur + kNewOrder + ".mdb");
    removeFile(inventur + "~Auftrag.neu");
    ASSERT_TRUE(copyFile(savedRegistry, o.registry));
    ASSERT_TRUE(copyFile(savedOrder, o.order));
}

TEST(KillHarness, CreatingAndDeletingAnOrderLeaveTheProjectAsBeforeOrAsAfter)
{
    TempDir dir;
    const CrashOrder o(dir.path());
    prepareCrashOrder(o);
    const std::string savedRegistry = dir.path() + "/QInventur.saved", savedOrder = dir.path() + "/A1.saved";
    ASSERT_TRUE(copyFile(o.registry, savedRegistry));
    ASSERT_TRUE(copyFile(o.order, savedOrder));
    const std::string newOrder = o.project + "/Inventur/" + kNewOrder + ".mdb";

    const int kills = killsPerOperation();
    std::mt19937 random(20251124);
    int total = 0;
    for (const std::string operation : {"anlegen", "loeschen"}) {
        SCOPED_TRACE(operation);
        // The order whose database the operation makes or deletes.
        const std::string orderFile = operation == "anlegen" ? newOrder : o.order;
        restoreProject(o, savedRegistry, savedOrder);
        const ProjectState before = projectState(o, orderFile);
        const auto [status, duration] = runToItsEnd(o, operation);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the operation did not succeed";
        const ProjectState after = projectState(o, orderFile);
        ASSERT_NE(after.registry, before.registry);
        ASSERT_NE(after.orderDb, before.orderDb);

        int asBefore = 0, asAfter = 0, orphans = 0;
        std::uniform_int_distribution<long> moment(0, long(duration.count() * 11 / 10));
        for (int k = 0; k < kills; ++k) {
            restoreProject(o, savedRegistry, savedOrder);
            const long at = killAtRandom(o, operation, moment, random);
            SCOPED_TRACE("kill " + std::to_string(k) + " after " + std::to_string(at) + " µs");
            const ProjectState now = projectState(o, orderFile);
            // The register decides: the order it names is whole; a file it does not name is an orphan.
            if (now.registry == before.registry) {
                ++asBefore;
                if (operation == "loeschen")
                    ASSERT_EQ(now.orderDb, before.orderDb) << "the register names an order that is gone";
                else if (!now.orderDb.empty())
                    ++orphans;
            } else {
                ASSERT_EQ(now.registry, after.registry) << "the register is in a third state";
                ++asAfter;
                if (operation == "anlegen")
                    ASSERT_EQ(now.orderDb, after.orderDb) << "the register names an order that is not whole";
                else if (!now.orderDb.empty())
                    ++orphans;
            }
            // What the death left never breaks the next order of that name: the operation run
            // again, or (after a delete) the order created anew in place of the orphan.
            if (now.registry == after.registry && operation == "anlegen")
                continue;
            if (now.registry == after.registry && operation == "loeschen") {
                CInventurDb reg;
                reg.setDbPath(o.registry);
                ASSERT_TRUE(reg.OpenDb());
                ScriptedUserInteraction ui;
                Settings settings;
                settings.gstProjektPfad = o.project + "/";
                CAuftragRec rec;
                rec.stBezeichung = "A1";
                ASSERT_EQ(CreateOrder(reg, settings, ui, rec), OrderResult::Done);
                ASSERT_EQ(toText(Database::open(o.order, true)->scalar("SELECT stAuftrag FROM T_Auftrag")), "A1");
                ASSERT_EQ(toLong(Database::open(o.order, true)->scalar("SELECT COUNT(*) FROM T_Raum")), 0);
            } else {
                ASSERT_EQ(WEXITSTATUS(finish(start(o, operation))), 0);
                ASSERT_EQ(projectState(o, orderFile).registry, after.registry);
                ASSERT_EQ(projectState(o, orderFile).orderDb, after.orderDb);
            }
        }
        total += kills;
        std::printf("%-12s %6.3f s to the end; %d kills: %d as before, %d as after, %d left a file no row names\n",
                    operation.c_str(), double(duration.count()) / 1e6, kills, asBefore, asAfter, orphans);
    }
    std::printf("%d kills in all\n", total);
}

/// The names of the hidden files in a folder (a file replaced whole is written under one).
std::string hiddenFiles(const std::string& folder)
{
    std::string names;
    for (const auto& e : std::filesystem::directory_iterator(folder))
        if (e.path().filename().string().front() == '~')
            names += e.path().filename().string() + " ";
    return names;
}

/// Whether `now` is the whole output that a finished run wrote as `reference`. CSV and the
/// archive are the same bytes every time; a PDF and an Excel file carry the time they were
/// made, so that they are whole when they end as such a file ends.
bool wholeOutput(const std::string& operation, const std::string& now, const std::string& reference)
{
    if (operation == "pdf") {
        // The pages carry the time they were printed, which the compressed page streams
        // make a few bytes longer or shorter from one second to the next.
        const std::string_view end = "%%EOF\n";
        return now.size() > end.size() && now.compare(0, 5, "%PDF-") == 0 &&
               now.compare(now.size() - end.size(), end.size(), end) == 0 && now.size() + 64 > reference.size() &&
               now.size() < reference.size() + 64;
    }
    if (operation == "xlsx") {
        // A zip archive ends with the record of its directory (22 bytes without a comment).
        return now.size() > 22 && now.compare(0, 2, "PK") == 0 && now.compare(now.size() - 22, 4, "PK\x05\x06") == 0 &&
               now.size() + 64 > reference.size() && now.size() < reference.size() + 64;
    }
    return now == reference;
}

TEST(KillHarness, AKilledOutputLeavesTheEarlierFileOrTheWholeNewOne)
{
    TempDir dir;
    const CrashOrder o(dir.path());
    prepareCrashOrder(o);
    // The difference list that the outputs show.
    ASSERT_EQ(finish(start(o, "auswerten")), 0);

    const std::string earlier = "Die frühere Ausgabe\r\n";
    const int kills = killsPerOperation();
    std::mt19937 random(20251125);
    int total = 0;
    for (const std::string operation : {"pdf", "xlsx", "csv", "archiv"}) {
        SCOPED_TRACE(operation);
        const std::string path = o.output(operation);
        const std::string folder = std::filesystem::path(path).parent_path().string();
        writeFile(path, earlier);
        const auto [status, duration] = runToItsEnd(o, operation);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the operation did not succeed";
        const std::string reference = readFile(path);
        ASSERT_NE(reference, earlier) << "the operation wrote nothing";
        ASSERT_EQ(hiddenFiles(folder), "");

        int asBefore = 0, asAfter = 0;
        std::uniform_int_distribution<long> moment(0, long(duration.count() * 11 / 10));
        for (int k = 0; k < kills; ++k) {
            writeFile(path, earlier);
            const long at = killAtRandom(o, operation, moment, random);
            SCOPED_TRACE("kill " + std::to_string(k) + " after " + std::to_string(at) + " µs");
            const std::string now = readFile(path);
            if (now == earlier) {
                ++asBefore;
            } else {
                ASSERT_TRUE(wholeOutput(operation, now, reference))
                    << "a file of " << now.size() << " bytes, the whole one has " << reference.size();
                ++asAfter;
            }
            ASSERT_EQ(hiddenFiles(folder), "") << "a temporary file was left";
            ++total;
        }
        std::printf("%-12s %6.3f s to the end; %d kills: %d as before, %d as after\n", operation.c_str(),
                    double(duration.count()) / 1e6, kills, asBefore, asAfter);
    }
    std::printf("%d kills in all\n", total);
}

TEST(KillHarness, AKilledFirstStartLeavesAProjectTheNextStartSeedsOrUses)
{
    TempDir dir;
    const CrashOrder o(dir.path());
    prepareFirstStart(o);
    std::map<std::string, std::string> templates;
    for (const std::string& name : seededFiles())
        templates[name] = readFile(o.templateFolder() + "/" +
                                   (name.rfind("Report", 0) == 0 ? "Report/" + name.substr(6) : name));
    const auto unseed = [&] {
        for (const std::string& name : seededFiles()) {
            removeFile(o.firstProject + "/" + name);
            removeFile(o.firstProject + "/" + name + "-journal");
        }
    };
    // Every file seeding makes is missing or a whole copy of the template; true when all are there.
    const auto seededWhole = [&](int& present) {
        present = 0;
        for (const std::string& name : seededFiles()) {
            const std::string file = o.firstProject + "/" + name;
            if (!fileExists(file))
                continue;
            EXPECT_EQ(readFile(file), templates[name]) << name << " is not a whole copy";
            ++present;
        }
        return present == int(templates.size());
    };

    const auto [status, duration] = runToItsEnd(o, "einrichten");
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the first start did not succeed";
    int present = 0;
    ASSERT_TRUE(seededWhole(present));

    const int kills = killsPerOperation();
    std::mt19937 random(20251126);
    int none = 0, part = 0, all = 0;
    std::uniform_int_distribution<long> moment(0, long(duration.count() * 11 / 10));
    for (int k = 0; k < kills; ++k) {
        unseed();
        const long at = killAtRandom(o, "einrichten", moment, random);
        SCOPED_TRACE("kill " + std::to_string(k) + " after " + std::to_string(at) + " µs");
        const bool whole = seededWhole(present);
        // The register comes last: a project with one has all the rest.
        if (fileExists(o.firstProject + "/QInventur.mdb")) {
            ASSERT_TRUE(whole) << "a register without the rest of the project";
        }
        ++(whole ? all : present == 0 ? none : part);
        // The next start works on what the death left.
        ASSERT_EQ(finish(start(o, "einrichten")), 0) << "the next start failed";
        ASSERT_TRUE(seededWhole(present));
        EXPECT_TRUE(integrityOk(o.firstProject + "/QInventur.mdb"));
        EXPECT_TRUE(integrityOk(o.firstProject + "/QAuftrag.mdb"));
        ASSERT_EQ(hiddenFiles(o.firstProject), "");
    }
    std::printf("%-12s %6.3f s to the end; %d kills: %d before seeding, %d part-way, %d seeded\n", "einrichten",
                double(duration.count()) / 1e6, kills, none, part, all);
}

} // namespace
} // namespace qi::test
