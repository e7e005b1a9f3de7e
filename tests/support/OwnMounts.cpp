#include "OwnMounts.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <string>
#include <vector>

namespace qi::test {

namespace {

bool writeProcFile(const char* path, const std::string& text)
{
    std::ofstream out(path);
    out << text;
    out.close();
    return bool(out);
}

/// A mount namespace of the calling (single-threaded) process, where it may mount.
bool ownMountNamespace()
{
    if (unshare(CLONE_NEWNS) != 0) {
        // Not the superuser: a user namespace of its own, in which this user is its superuser.
        const uid_t uid = getuid();
        const gid_t gid = getgid();
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
            return false;
        if (!writeProcFile("/proc/self/setgroups", "deny") ||
            !writeProcFile("/proc/self/uid_map", "0 " + std::to_string(uid) + " 1") ||
            !writeProcFile("/proc/self/gid_map", "0 " + std::to_string(gid) + " 1"))
            return false;
    }
    // Nothing mounted here is seen outside.
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// The flags of the mount that holds `path` which a new bind of it must keep.
unsigned long keptFlags(const std::string& path)
{
    struct statvfs st {};
    if (statvfs(path.c_str(), &st) != 0)
        return 0;
    unsigned long flags = 0;
    if (st.f_flag & ST_NOSUID)
        flags |= MS_NOSUID;
    if (st.f_flag & ST_NODEV)
        flags |= MS_NODEV;
    if (st.f_flag & ST_NOEXEC)
        flags |= MS_NOEXEC;
    if (st.f_flag & ST_NOATIME)
        flags |= MS_NOATIME;
    if (st.f_flag & ST_RELATIME)
        flags |= MS_RELATIME;
    return flags;
}

} // namespace

void inOwnMounts(const std::function<void()>& body)
{
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t pid = fork();
    ASSERT_GE(pid, 0) << std::strerror(errno);
    if (pid == 0) {
        if (!ownMountNamespace()) {
            std::fprintf(stderr, "no mount namespace of its own: %s\n", std::strerror(errno));
            std::fflush(stderr);
            _exit(3);
        }
        try {
            body();
        } catch (const std::exception& e) {
            ADD_FAILURE() << "the body threw: " << e.what();
        } catch (...) {
            ADD_FAILURE() << "the body threw";
        }
        std::fflush(stdout);
        std::fflush(stderr);
        _exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    ASSERT_TRUE(WIFEXITED(status)) << "the part with its own mounts ended abnormally (status " << status << ")";
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the part with its own mounts failed (see above)";
}

void mountRamDisk(const std::string& folder, std::size_t bytes)
{
    const std::string options = "size=" + std::to_string(bytes) + ",mode=0777";
    ASSERT_EQ(mount("tmpfs", folder.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, options.c_str()), 0)
        << folder << ": " << std::strerror(errno);
}

void mountReadOnly(const std::string& path)
{
    ASSERT_EQ(mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr), 0) << path << ": " << std::strerror(errno);
    ASSERT_EQ(mount(nullptr, path.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY | keptFlags(path), nullptr), 0)
        << path << ": " << std::strerror(errno);
}

void fillDisk(const std::string& folder, std::size_t bytesLeft)
{
    struct statvfs st {};
    ASSERT_EQ(statvfs(folder.c_str(), &st), 0);
    const std::size_t free = std::size_t(st.f_bavail) * st.f_frsize;
    ASSERT_GT(free, bytesLeft) << "the disk is fuller than asked already";
    std::ofstream out(folder + "/Füllung", std::ios::binary);
    const std::vector<char> block(4096, '\0');
    for (std::size_t written = 0; written + block.size() <= free - bytesLeft; written += block.size())
        out.write(block.data(), std::streamsize(block.size()));
    out.close();
    ASSERT_TRUE(bool(out));
}

} // namespace qi::test
