#include "CutOffChange.h"

#include "Database.h"
#include "RolledBackCopy.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace qi::test {

void cutOffChange(const std::string& file)
{
    const pid_t pid = fork();
    if (pid == 0) {
        try {
            auto db = Database::open(file);
            db->execute("PRAGMA cache_size = 2");
            Database::Transaction tx(*db);
            db->execute("DELETE FROM T_DatInventur");
            for (int i = 0; i < 400; ++i)
                db->execute("INSERT INTO T_Dateien (stName) VALUES (?1)", {std::to_string(i) + std::string(500, 'x')});
            std::raise(SIGKILL);
        } catch (...) {
        }
        _exit(3);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
    ASSERT_TRUE(hasJournal(file));
}

} // namespace qi::test
