#include "HoldingChild.h"

#include "ProjectLock.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace qi::test {

pid_t startHoldingChild(const std::function<void(const ChildReady& ready)>& take)
{
    int ready[2];
    if (pipe(ready) != 0)
        return -1;
    std::fflush(stdout);
    const pid_t pid = fork();
    if (pid == 0) {
        close(ready[0]);
        take([&](bool got) {
            const char answer = got ? 'y' : 'n';
            if (write(ready[1], &answer, 1) != 1)
                _exit(3);
            for (;;)
                pause();
        });
        _exit(3);
    }
    close(ready[1]);
    char answer = 0;
    const bool got = pid > 0 && read(ready[0], &answer, 1) == 1 && answer == 'y';
    close(ready[0]);
    if (!got) {
        if (pid > 0) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
        return -1;
    }
    return pid;
}

OtherProgram::OtherProgram(const std::string& project)
    : pid_(startHoldingChild([&](const ChildReady& ready) {
          ProjectLock lock(project);
          ready(lock.held());
      }))
{
}

OtherProgram::~OtherProgram()
{
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
}

} // namespace qi::test
