// One writer per project: the lock file, a second program on the same project, and a
// lock left by a killed program.

#include "FileSystem.h"
#include "HoldingChild.h"
#include "ProjectLock.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

using namespace qi;
using qi::test::TempDir;

namespace {

/// Runs `body` in a child process; its exit code is the answer.
template <class Body>
int inChild(Body body)
{
    const pid_t pid = fork();
    if (pid == 0)
        _exit(body());
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// A child that takes the lock, tells the parent through a pipe and waits to be killed.
pid_t holdInChild(const std::string& folder)
{
    return test::startHoldingChild([&](const test::ChildReady& ready) {
        ProjectLock lock(folder);
        ready(lock.held());
    });
}

} // namespace

TEST(ProjectLock, TheFirstProgramHoldsTheProjectAndNamesItself)
{
    TempDir dir;
    ProjectLock lock(dir.path());
    ASSERT_TRUE(lock.held()) << lock.problem();
    EXPECT_EQ(lock.message(), "");
    const std::string text = test::readFile(dir.file(ProjectLock::kFileName));
    const LockOwner me = ProjectLock::self();
    EXPECT_NE(text.find("Benutzer=" + me.user + "\n"), std::string::npos) << text;
    EXPECT_NE(text.find("Rechner=" + me.machine + "\n"), std::string::npos) << text;
    // The same program may ask again (its windows and its command share the project).
    ProjectLock again(dir.path() + "/");
    EXPECT_TRUE(again.held());
}

TEST(ProjectLock, ASecondProgramIsToldWhoHoldsTheProject)
{
    TempDir dir;
    ProjectLock lock(dir.path());
    ASSERT_TRUE(lock.held());
    const LockOwner me = ProjectLock::self();
    const int answer = inChild([&] {
        ProjectLock second(dir.path());
        if (second.held())
            return 1;
        if (second.owner().user != me.user || second.owner().machine != me.machine)
            return 2;
        const std::string expected = "Das Projekt wird bereits von " + me.user + " auf dem Rechner " + me.machine +
                                     " bearbeitet (seit " + second.owner().since +
                                     "). Sie können es ansehen, aber nichts ändern.";
        return second.message() == expected && !second.owner().since.empty() ? 0 : 3;
    });
    EXPECT_EQ(answer, 0);
}

TEST(ProjectLock, TheLockOfAKilledProgramIsTakenOver)
{
    TempDir dir;
    const pid_t holder = holdInChild(dir.path());
    ASSERT_GT(holder, 0);
    // While the other program runs, this one only looks.
    EXPECT_EQ(inChild([&] { return ProjectLock(dir.path()).held() ? 1 : 0; }), 0);
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    // Its file is still there, naming it; the lock is free.
    EXPECT_NE(test::readFile(dir.file(ProjectLock::kFileName)).find("Benutzer="), std::string::npos);
    ProjectLock lock(dir.path());
    EXPECT_TRUE(lock.held());
    EXPECT_NE(test::readFile(dir.file(ProjectLock::kFileName)).find("Prozess=" + std::to_string(getpid())),
              std::string::npos);
}

TEST(ProjectLock, AReleasedProjectIsFreeForTheNextProgram)
{
    TempDir dir;
    {
        ProjectLock lock(dir.path());
        ASSERT_TRUE(lock.held());
    }
    EXPECT_EQ(test::readFile(dir.file(ProjectLock::kFileName)), "");
    EXPECT_EQ(inChild([&] { return ProjectLock(dir.path()).held() ? 0 : 1; }), 0);
}

TEST(ProjectLock, AFolderThatCantTakeTheLockSaysWhy)
{
    TempDir dir;
    // The lock file's name taken by a folder: the file can't be opened for writing.
    ASSERT_TRUE(createFolder(dir.file(ProjectLock::kFileName)));
    ProjectLock lock(dir.path());
    EXPECT_FALSE(lock.held());
    EXPECT_EQ(lock.problem(), "an der Stelle der Sperrdatei QInventur.lck steht ein Ordner");
    EXPECT_EQ(lock.message(), "Das Projekt kann nicht zum Bearbeiten gesperrt werden (an der Stelle der Sperrdatei "
                              "QInventur.lck steht ein Ordner). Sie können es ansehen, aber nichts ändern.");
}
