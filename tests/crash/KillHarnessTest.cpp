// Kills a process at random moments while it changes a large order (adding a file,
// removing one with its rebuild, the rebuild, the evaluation, the article tally, the
// inventory list, saving the rooms) and checks that the order database is then intact
// and holds either what it held before the operation or what the finished operation
// leaves; and while it creates or deletes an order, checking that the register and the
// order's database are as before or as after, and that what a death leaves never breaks
// the next order of that name.
//
// QI_KILLS sets the number of kills per operation (default 35, 315 in all).

#include "CrashOrder.h"

#include "CInventurDb.h"
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
#include <random>
#include <thread>

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
        const auto t0 = Clock::now();
        const int status = finish(start(o, operation));
        const auto duration = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - t0);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the operation did not succeed";
        ASSERT_TRUE(integrityOk(o.order));
        const std::string after = contentDigest(o.order);
        ASSERT_NE(after, before) << "the operation changed nothing";

        int asBefore = 0, asAfter = 0;
        std::uniform_int_distribution<long> moment(0, long(duration.count() * 11 / 10));
        for (int k = 0; k < kills; ++k) {
            restore(o, saved);
            const long at = moment(random);
            const pid_t pid = start(o, operation);
            std::this_thread::sleep_for(std::chrono::microseconds(at));
            kill(pid, SIGKILL);
            finish(pid);
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
        const auto t0 = Clock::now();
        const int status = finish(start(o, operation));
        const auto duration = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - t0);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the operation did not succeed";
        const ProjectState after = projectState(o, orderFile);
        ASSERT_NE(after.registry, before.registry);
        ASSERT_NE(after.orderDb, before.orderDb);

        int asBefore = 0, asAfter = 0, orphans = 0;
        std::uniform_int_distribution<long> moment(0, long(duration.count() * 11 / 10));
        for (int k = 0; k < kills; ++k) {
            restoreProject(o, savedRegistry, savedOrder);
            const long at = moment(random);
            const pid_t pid = start(o, operation);
            std::this_thread::sleep_for(std::chrono::microseconds(at));
            kill(pid, SIGKILL);
            finish(pid);
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

} // namespace
} // namespace qi::test
