// Decisions survive a kill during a bulk accept: a child process accepts many proposals at
// once and is killed at random moments while it does; the decisions database then opens and
// holds all of the accepted decisions or none of them (the earlier decisions as they were),
// never a part.
//
// QI_KILLS sets the number of kills (default 30).

#include "Corrections.h"

#include "FileSystem.h"
#include "Settings.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

namespace qi::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kProposals = 4000;
constexpr const char* kBulkComment = "Alle Umsetzungen bestätigt";

std::vector<Proposal> manyProposals()
{
    std::vector<Proposal> list;
    for (int i = 0; i < kProposals; ++i) {
        Proposal p;
        p.art = i % 4 == 0 ? kArtFehlt : kArtStandort;
        char nr[16];
        std::snprintf(nr, sizeof nr, "I%06d", i);
        p.invNr = nr;
        p.artNr = "TA001";
        p.beschreibung = "Schreibtisch, Buche";
        p.raumQuarn = "1001";
        p.raumNeu = p.art == kArtFehlt ? "" : "1002";
        p.auftraege = "A, B";
        p.raeume = p.art == kArtFehlt ? "1001" : "1002";
        p.gebaeudeteil = "Hauptgebäude / Erdgeschoss";
        p.beleg = p.art + " " + p.invNr + " 1001 -> " + p.raeume + " (A, B)";
        list.push_back(std::move(p));
    }
    return list;
}

std::vector<std::pair<std::string, std::string>> allOf(const std::vector<Proposal>& list)
{
    std::vector<std::pair<std::string, std::string>> which;
    for (const Proposal& p : list)
        which.push_back({p.art, p.invNr});
    return which;
}

/// The decisions as the next program sees them: one text per proposal with a decision.
std::string decisions(const Settings& settings, const std::vector<Proposal>& list, int& accepted)
{
    accepted = 0;
    CorrectionDecisions d(settings, false);
    std::string state;
    for (const ReviewedProposal& r : d.review(list)) {
        if (!r.decision)
            continue;
        accepted += r.decision->entscheidung == kAngenommen && r.decision->kommentar == kBulkComment;
        state += r.proposal.invNr + " " + r.decision->entscheidung + " " + r.decision->kommentar + "\n";
    }
    return state;
}

/// Starts a child that opens the decisions, tells the parent through `ready` and accepts every proposal.
pid_t startBulkAccept(const Settings& settings, const std::vector<Proposal>& list, int& readyFd)
{
    int ready[2];
    if (pipe(ready) != 0)
        return -1;
    std::fflush(stdout);
    const pid_t pid = fork();
    if (pid == 0) {
        close(ready[0]);
        try {
            CorrectionDecisions d(settings, false);
            const auto which = allOf(list);
            const char go = 'g';
            if (write(ready[1], &go, 1) != 1)
                _exit(3);
            d.decide(list, which, kAngenommen, kBulkComment, "Meier");
        } catch (...) {
            _exit(4);
        }
        _exit(0);
    }
    close(ready[1]);
    readyFd = ready[0];
    return pid;
}

bool waitReady(int fd)
{
    char go = 0;
    const bool ok = read(fd, &go, 1) == 1 && go == 'g';
    close(fd);
    return ok;
}

int killsWanted()
{
    const char* v = std::getenv("QI_KILLS");
    return v ? std::max(1, std::atoi(v)) : 30;
}

TEST(CorrectionsKill, aKilledBulkAcceptLeavesAllOfItsDecisionsOrNone)
{
    TempDir dir;
    Settings settings;
    settings.gstProjektPfad = dir.path() + "/";
    const std::vector<Proposal> list = manyProposals();
    const std::string file = dir.path() + "/" + kCorrectionsFile;

    // Earlier decisions: some rejected, which the bulk accept turns into accepted.
    {
        CorrectionDecisions d(settings, false);
        std::vector<std::pair<std::string, std::string>> some;
        for (int i = 0; i < kProposals; i += 97)
            some.push_back({list[std::size_t(i)].art, list[std::size_t(i)].invNr});
        d.decide(list, some, kAbgelehnt, "Nicht auffindbar", "Schulz");
    }
    int accepted = 0;
    const std::string before = decisions(settings, list, accepted);
    ASSERT_EQ(accepted, 0);
    ASSERT_FALSE(before.empty());
    const std::string saved = dir.path() + "/saved.db";
    ASSERT_TRUE(copyFile(file, saved));
    const auto restore = [&] {
        for (const char* suffix : {"-journal", "-wal", "-shm"})
            removeFile(file + suffix);
        ASSERT_TRUE(copyFile(saved, file));
    };

    // The bulk accept to its end: how long it takes and what it leaves.
    int readyFd = -1;
    pid_t pid = startBulkAccept(settings, list, readyFd);
    ASSERT_GT(pid, 0);
    ASSERT_TRUE(waitReady(readyFd));
    const auto t0 = Clock::now();
    int status = 0;
    waitpid(pid, &status, 0);
    const auto duration = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - t0);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the bulk accept did not succeed: " << status;
    const std::string after = decisions(settings, list, accepted);
    ASSERT_EQ(accepted, kProposals);

    const int kills = killsWanted();
    std::mt19937 random(20251126);
    std::uniform_int_distribution<long> moment(0, long(duration.count() * 11 / 10));
    int asBefore = 0, asAfter = 0;
    for (int k = 0; k < kills; ++k) {
        restore();
        const long at = moment(random);
        pid = startBulkAccept(settings, list, readyFd);
        ASSERT_GT(pid, 0);
        const bool ready = waitReady(readyFd);
        std::this_thread::sleep_for(std::chrono::microseconds(at));
        kill(pid, SIGKILL);
        waitpid(pid, &status, 0);
        ASSERT_TRUE(ready) << "kill " << k << ": the child could not open the decisions";
        SCOPED_TRACE("kill " + std::to_string(k) + " after " + std::to_string(at) + " µs");
        std::string now;
        try {
            now = decisions(settings, list, accepted);
        } catch (const std::exception& e) {
            FAIL() << "the decisions can't be opened after the kill: " << e.what();
        }
        ASSERT_TRUE(now == before || now == after)
            << accepted << " of " << kProposals << " proposals accepted after the kill: a part";
        ++(now == before ? asBefore : asAfter);
        // A read-only program sees the same.
        CorrectionDecisions ro(settings, true);
        EXPECT_EQ(ro.review(list).size(), list.size());
    }
    std::printf("bulk accept of %d proposals %6.3f s to the end; %d kills: %d as before, %d as after\n", kProposals,
                double(duration.count()) / 1e6, kills, asBefore, asAfter);
}

} // namespace
} // namespace qi::test
