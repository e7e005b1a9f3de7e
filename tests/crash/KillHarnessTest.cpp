// Kills a process at random moments while it changes a large order (adding a file,
// removing one with its rebuild, the rebuild, the evaluation, the article tally, the
// inventory list, saving the rooms) and checks that the order database is then intact
// and holds either what it held before the operation or what the finished operation leaves.
//
// QI_KILLS sets the number of kills per operation (default 35, 245 in all).

#include "CrashOrder.h"

#include "FileSystem.h"
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

} // namespace
} // namespace qi::test
