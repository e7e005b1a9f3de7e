#include "AtomicFile.h"

#include "FileSystem.h"
#include "SystemError.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qi {

namespace fs = std::filesystem;

namespace {

/// Bytes kept before they are written.
constexpr std::size_t kBufferSize = 1 << 20;

/// The path through which this process reaches an open descriptor by name.
std::string descriptorPath(int fd)
{
    return "/proc/self/fd/" + std::to_string(fd);
}

/// Writes all bytes to the descriptor; the system's error number, 0 when all went.
int writeAll(int fd, const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        if (n == 0)
            return ENOSPC;
        data += n;
        size -= std::size_t(n);
    }
    return 0;
}

/// Writes the folder's entries to the disk.
void syncFolder(const std::string& folder)
{
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

} // namespace

std::string cannotWriteMessage(const std::string& path, const std::string& reason)
{
    return "Die Datei '" + displayPath(path) + "' kann nicht geschrieben werden" +
           (reason.empty() ? "." : ": " + reason + ".");
}

FileError FileError::writing(int error, const std::string& path)
{
    return FileError(error, cannotWriteMessage(path, systemErrorReason(error)));
}

FileError FileError::reading(int error, const std::string& path)
{
    return FileError(error, systemErrorMessage(error, path, PathKind::File));
}

AtomicFile::AtomicFile(const std::string& target) : target_(target)
{
    fs::path file = fs::u8path(nativePath(target));
    std::error_code ec;
    // A link is kept; the file it names gets the new content.
    if (fs::is_symlink(file, ec)) {
        const fs::path linked = fs::canonical(file, ec);
        if (!ec)
            file = linked;
    }
    native_ = file.string();
    folder_ = file.has_parent_path() ? file.parent_path().string() : std::string(".");

    struct stat existing {};
    const bool exists = ::stat(native_.c_str(), &existing) == 0;
    if (exists && S_ISDIR(existing.st_mode))
        fail(EISDIR);
    if (exists && !S_ISREG(existing.st_mode)) {
        // A device or a pipe has no content to keep.
        inPlace_ = true;
        fd_ = ::open(native_.c_str(), O_WRONLY | O_CLOEXEC);
        if (fd_ < 0)
            fail(errno);
        return;
    }
    fd_ = ::open(folder_.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
    if (fd_ < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL)) {
        // A file system without nameless files: a hidden name of this process's own.
        named_ = (fs::path(folder_) / ("~" + file.filename().string() + "." + std::to_string(::getpid()) + ".neu"))
                     .string();
        fd_ = ::open(named_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        if (fd_ < 0)
            named_.clear();
    }
    if (fd_ < 0)
        fail(errno);
    // The new file may be read and written by whoever could the earlier one.
    if (exists)
        ::fchmod(fd_, existing.st_mode & 07777);
}

AtomicFile::~AtomicFile()
{
    if (!committed_)
        discard();
}

void AtomicFile::discard()
{
    if (fd_ >= 0)
        ::close(fd_);
    fd_ = -1;
    if (!named_.empty())
        ::unlink(named_.c_str());
    named_.clear();
}

void AtomicFile::fail(int error)
{
    // The content written so far stays until the writer decides: thrown away with the object,
    // or put in place by commitWritten().
    failed_ = true;
    throw FileError::writing(error, target_);
}

std::string AtomicFile::writePath() const
{
    if (inPlace_)
        return native_;
    if (!named_.empty())
        return named_;
    return descriptorPath(fd_);
}

void AtomicFile::flushBuffer()
{
    if (buffer_.empty())
        return;
    const int error = writeAll(fd_, buffer_.data(), buffer_.size());
    buffer_.clear();
    if (error != 0)
        fail(error);
}

void AtomicFile::write(std::string_view bytes)
{
    if (fd_ < 0 || committed_ || failed_)
        fail(EBADF);
    buffer_.append(bytes);
    if (buffer_.size() >= kBufferSize)
        flushBuffer();
}

void AtomicFile::copyFrom(const std::string& source)
{
    const int in = ::open(nativePath(source).c_str(), O_RDONLY | O_CLOEXEC);
    if (in < 0) {
        const int error = errno;
        discard();
        throw FileError::reading(error, source);
    }
    std::string chunk(1 << 16, '\0');
    for (;;) {
        const ssize_t n = ::read(in, chunk.data(), chunk.size());
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            const int error = errno;
            ::close(in);
            discard();
            throw FileError::reading(error, source);
        }
        if (n == 0)
            break;
        try {
            write(std::string_view(chunk.data(), std::size_t(n)));
        } catch (...) {
            ::close(in);
            throw;
        }
    }
    ::close(in);
}

void AtomicFile::commit()
{
    if (fd_ < 0 || committed_ || failed_)
        fail(EBADF);
    flushBuffer();
    place();
}

void AtomicFile::commitWritten()
{
    if (fd_ < 0 || committed_)
        fail(EBADF);
    // What a failed write left in the buffer never reached the file.
    buffer_.clear();
    failed_ = false;
    place();
}

void AtomicFile::place()
{
    if (::fsync(fd_) != 0 && !(inPlace_ && (errno == EINVAL || errno == EROFS)))
        fail(errno);
    if (inPlace_) {
        if (::close(fd_) != 0) {
            fd_ = -1;
            fail(errno);
        }
        fd_ = -1;
        committed_ = true;
        return;
    }
    if (named_.empty()) {
        // The nameless file gets a hidden name first, which then replaces the target.
        named_ = (fs::path(folder_) / ("~" + fs::path(native_).filename().string() + ".neu")).string();
        ::unlink(named_.c_str()); // what a process that died in this step left
        if (::linkat(AT_FDCWD, descriptorPath(fd_).c_str(), AT_FDCWD, named_.c_str(), AT_SYMLINK_FOLLOW) != 0) {
            const int error = errno;
            named_.clear();
            fail(error);
        }
    }
    const int closed = ::close(fd_);
    fd_ = -1;
    if (closed != 0)
        fail(errno);
    if (::rename(named_.c_str(), native_.c_str()) != 0)
        fail(errno);
    named_.clear();
    committed_ = true;
    syncFolder(folder_);
}

void copyFileWhole(const std::string& from, const std::string& to)
{
    AtomicFile file(to);
    file.copyFrom(from);
    file.commit();
}

} // namespace qi
