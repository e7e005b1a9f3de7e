#include "FuzzSupport.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fcntl.h>
#include <unistd.h>

namespace qi::fuzz {

namespace fs = std::filesystem;

namespace {

struct ScratchFolder {
    ScratchFolder()
    {
        // Memory rather than the disk where there is some: the order database syncs every commit.
        const fs::path shm("/dev/shm");
        const fs::path base = fs::is_directory(shm) ? shm : fs::temp_directory_path();
        path = (base / ("qinventur-fuzz-" + std::to_string(::getpid()))).string();
        fs::create_directories(path);
    }
    ~ScratchFolder()
    {
        std::error_code ec;
        fs::remove_all(path, ec);
    }
    std::string path;
};

} // namespace

std::string scratchFile(const std::string& name)
{
    static const ScratchFolder folder;
    return folder.path + "/" + name;
}

// libFuzzer's timer signal for hanging inputs interrupts system calls now and then;
// the scratch files are written again then instead of failing the input.

void writeBytes(const std::string& path, std::string_view bytes)
{
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    require(fd >= 0, "the input could not be written to the scratch folder");
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        require(n > 0, "the input could not be written to the scratch folder");
        done += std::size_t(n);
    }
    ::close(fd);
}

void copyFileOver(const std::string& from, const std::string& to)
{
    std::error_code ec;
    do
        fs::copy_file(from, to, fs::copy_options::overwrite_existing, ec);
    while (ec == std::errc::interrupted);
    if (ec) {
        std::fprintf(stderr, "copying %s to %s: %s\n", from.c_str(), to.c_str(), ec.message().c_str());
        std::abort();
    }
}

void require(bool ok, const char* what)
{
    if (ok)
        return;
    std::fprintf(stderr, "fuzz check failed: %s\n", what);
    std::abort();
}

} // namespace qi::fuzz
