#include "ProjectLock.h"

#include "FileSystem.h"

#include <QDateTime>
#include <QSysInfo>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <mutex>
#include <pwd.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace qi {

namespace {

/// A whole-file write lock on `fd` (POSIX record locks, which network file systems carry
/// to the server); true when taken.
bool lockWhole(int fd)
{
    struct flock fl {};
    fl.l_type = F_WRLCK;
    fl.l_whence = SEEK_SET;
    return fcntl(fd, F_SETLK, &fl) == 0;
}

/// True when another process holds a lock on the file.
bool lockedByOther(int fd)
{
    struct flock fl {};
    fl.l_type = F_WRLCK;
    fl.l_whence = SEEK_SET;
    return fcntl(fd, F_GETLK, &fl) == 0 && fl.l_type != F_UNLCK;
}

std::string readAll(int fd)
{
    std::string out;
    char buf[512];
    lseek(fd, 0, SEEK_SET);
    for (ssize_t n; (n = read(fd, buf, sizeof buf)) > 0 && out.size() < 4096;)
        out.append(buf, std::size_t(n));
    return out;
}

/// Why the lock file can't be opened for writing, for the user.
std::string reasonFor(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return "im Projektordner darf nicht geschrieben werden";
    case EROFS:
        return "der Projektordner liegt auf einem schreibgeschützten Laufwerk";
    case ENOENT:
    case ENOTDIR:
        return "der Projektordner ist nicht vorhanden";
    case ENOSPC:
    case EDQUOT:
        return "der Datenträger ist voll";
    case EISDIR:
        return std::string("an der Stelle der Sperrdatei ") + ProjectLock::kFileName + " steht ein Ordner";
    default:
        return "Systemfehler " + std::to_string(error);
    }
}

LockOwner parse(const std::string& text)
{
    LockOwner o;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        const auto eq = line.find('=');
        if (eq == std::string::npos)
            continue;
        const std::string key = line.substr(0, eq), value = line.substr(eq + 1);
        if (key == "Benutzer")
            o.user = value;
        else if (key == "Rechner")
            o.machine = value;
        else if (key == "Seit")
            o.since = value;
    }
    return o;
}

} // namespace

/// The open lock file of one project in this process. POSIX locks belong to the process
/// and closing any descriptor of the file releases them, so a process keeps one.
struct ProjectLock::Handle {
    int fd = -1;
    pid_t process = getpid(); ///< a child made by fork inherits the handle, not the lock
    ~Handle()
    {
        if (fd < 0 || process != getpid())
            return;
        // The next program finds an empty file and takes it over.
        if (ftruncate(fd, 0) != 0) {
            // Nothing to do: the lock goes with the descriptor all the same.
        }
        close(fd);
    }
};

namespace {
std::mutex registryMutex;
std::map<std::string, std::weak_ptr<ProjectLock::Handle>>& registry()
{
    static std::map<std::string, std::weak_ptr<ProjectLock::Handle>> r;
    return r;
}
} // namespace

ProjectLock::ProjectLock(const std::string& projectFolder)
{
    std::string folder = projectFolder;
    if (!folder.empty() && folder.back() != '\\' && folder.back() != '/')
        folder += '\\';
    const std::string path = nativePath(folder + kFileName);
    std::error_code ec;
    const std::string key = std::filesystem::weakly_canonical(std::filesystem::u8path(path), ec).string();

    const std::lock_guard<std::mutex> guard(registryMutex);
    if (auto shared = registry()[key].lock(); shared && shared->process == getpid()) {
        handle_ = std::move(shared);
        held_ = true;
        return;
    }

    int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0) {
        const int openError = errno;
        // A folder that can't be written: someone else may still hold the project.
        fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd >= 0 && lockedByOther(fd)) {
            owner_ = parse(readAll(fd));
            close(fd);
            return;
        }
        if (fd >= 0)
            close(fd);
        problem_ = reasonFor(openError);
        return;
    }
    if (!lockWhole(fd)) {
        owner_ = parse(readAll(fd));
        close(fd);
        return;
    }
    const LockOwner me = self();
    const std::string text = "Benutzer=" + me.user + "\nRechner=" + me.machine + "\nSeit=" + me.since +
                             "\nProzess=" + std::to_string(getpid()) + "\n";
    if (ftruncate(fd, 0) != 0 || pwrite(fd, text.data(), text.size(), 0) != ssize_t(text.size())) {
        // The lock holds all the same; only the name for others is missing.
    }
    fsync(fd);
    auto handle = std::make_shared<Handle>();
    handle->fd = fd;
    registry()[key] = handle;
    handle_ = std::move(handle);
    held_ = true;
}

ProjectLock::~ProjectLock()
{
    const std::lock_guard<std::mutex> guard(registryMutex);
    handle_.reset();
}

LockOwner ProjectLock::self()
{
    LockOwner me;
    if (const passwd* pw = getpwuid(getuid()); pw && pw->pw_name)
        me.user = pw->pw_name;
    else if (const char* user = std::getenv("USER"))
        me.user = user;
    me.machine = QSysInfo::machineHostName().toStdString();
    me.since = QDateTime::currentDateTime().toString(QStringLiteral("dd.MM.yyyy hh:mm")).toStdString();
    return me;
}

std::string ProjectLock::message() const
{
    constexpr const char* kLookOnly = " Sie können es ansehen, aber nichts ändern.";
    if (held_)
        return {};
    if (!problem_.empty())
        return "Das Projekt kann nicht zum Bearbeiten gesperrt werden (" + problem_ + ")." + kLookOnly;
    const std::string user = owner_.user.empty() ? "einem anderen Benutzer" : owner_.user;
    const std::string machine = owner_.machine.empty() ? "einem anderen Rechner" : "dem Rechner " + owner_.machine;
    const std::string since = owner_.since.empty() ? "" : " (seit " + owner_.since + ")";
    return "Das Projekt wird bereits von " + user + " auf " + machine + " bearbeitet" + since + "." + kLookOnly;
}

} // namespace qi
