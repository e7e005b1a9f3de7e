#include "FileSystem.h"

#include <QCoreApplication>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <unistd.h>

#include <fcntl.h>
#include <unistd.h>

namespace qi {

namespace fs = std::filesystem;

std::string nativePath(const std::string& path)
{
    std::string r = path;
    for (char& c : r)
        if (c == '\\')
            c = '/';
    return r;
}

std::string systemPath(const std::string& native)
{
    std::string r = native;
    for (char& c : r)
        if (c == '/')
            c = '\\';
    return r;
}

std::string displayPath(const std::string& path)
{
#ifdef _WIN32
    constexpr char sep = '\\';
#else
    constexpr char sep = '/';
#endif
    std::string r;
    r.reserve(path.size());
    for (std::size_t i = 0; i < path.size(); ++i) {
        const char c = path[i];
        if (c != '\\' && c != '/') {
            r += c;
            continue;
        }
        // A network path keeps its two leading separators.
        if (i > 1 && !r.empty() && r.back() == sep)
            continue;
        r += sep;
    }
    return r;
}

std::string displayFolder(const std::string& folder)
{
    std::string r = displayPath(folder);
    while (r.size() > 1 && (r.back() == '/' || r.back() == '\\') && !(r.size() == 3 && r[1] == ':'))
        r.pop_back();
    return r;
}

bool isAbsolutePath(const std::string& path)
{
    if (path.empty())
        return false;
    if (path[0] == '\\' || path[0] == '/')
        return true;
    const unsigned char drive = static_cast<unsigned char>(path[0]);
    return path.size() >= 2 && path[1] == ':' && ((drive >= 'A' && drive <= 'Z') || (drive >= 'a' && drive <= 'z'));
}

std::string resolvePath(const std::string& folder, const std::string& path)
{
    if (path.empty() || isAbsolutePath(path) || folder.empty())
        return path;
    const char last = folder.back();
    return folder + (last == '\\' || last == '/' ? "" : "\\") + path;
}

bool fileExists(const std::string& path)
{
    std::error_code ec;
    return !path.empty() && fs::is_regular_file(fs::u8path(nativePath(path)), ec);
}

bool folderExists(const std::string& path)
{
    std::error_code ec;
    return !path.empty() && fs::is_directory(fs::u8path(nativePath(path)), ec);
}

bool canWrite(const std::string& path)
{
    return !path.empty() && access(nativePath(path).c_str(), W_OK) == 0;
}

int countFiles(const std::string& folder)
{
    std::error_code ec;
    fs::directory_iterator it(fs::u8path(nativePath(folder)), ec);
    if (ec)
        return -1;
    int n = 0;
    for (; it != fs::directory_iterator(); it.increment(ec)) {
        if (ec)
            return -1;
        std::error_code fe;
        if (it->is_regular_file(fe))
            ++n;
    }
    return n;
}

bool createFolder(const std::string& path)
{
    std::error_code ec;
    return fs::create_directory(fs::u8path(nativePath(path)), ec) && !ec;
}

bool copyFile(const std::string& from, const std::string& to)
{
    std::error_code ec;
    fs::copy_file(fs::u8path(nativePath(from)), fs::u8path(nativePath(to)), fs::copy_options::overwrite_existing, ec);
    return !ec;
}

bool removeFile(const std::string& path)
{
    std::error_code ec;
    return fs::remove(fs::u8path(nativePath(path)), ec) && !ec;
}

namespace {

/// Writes the folder that holds `file` to the disk: a new name in it is there once the folder is.
void syncFolderOf(const fs::path& file)
{
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

} // namespace

bool moveFile(const std::string& from, const std::string& to)
{
    std::error_code ec;
    const fs::path target = fs::u8path(nativePath(to));
    fs::rename(fs::u8path(nativePath(from)), target, ec);
    if (ec)
        return false;
    syncFolderOf(target);
    return true;
}

bool linkFile(const std::string& from, const std::string& to)
{
    std::error_code ec;
    const fs::path target = fs::u8path(nativePath(to));
    fs::create_hard_link(fs::u8path(nativePath(from)), target, ec);
    if (ec)
        return false;
    syncFolderOf(target);
    return true;
}

std::string newPrivateFolder()
{
    std::error_code ec;
    std::string pattern = (fs::temp_directory_path(ec) / "QInventur-XXXXXX").string();
    if (ec || !::mkdtemp(pattern.data()))
        return {};
    return pattern;
}

std::string readOnlyUri(const std::string& native)
{
    std::string uri = "file:";
    for (unsigned char c : native) {
        if (c == '%' || c == '?' || c == '#') {
            static const char* hex = "0123456789ABCDEF";
            uri += '%';
            uri += hex[c >> 4];
            uri += hex[c & 15];
        } else {
            uri += char(c);
        }
    }
    return uri + "?mode=ro";
}

std::string fileNamePart(const std::string& path)
{
    const auto pos = path.find_last_of("\\/");
    return pos == std::string::npos ? path : path.substr(pos + 1);
}

std::string folderPart(const std::string& path)
{
    const auto pos = path.find_last_of("\\/");
    return pos == std::string::npos ? std::string() : path.substr(0, pos + 1);
}

std::string programFolder()
{
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath().toStdString();
    std::error_code ec;
    const auto exe = fs::read_symlink("/proc/self/exe", ec);
    return ec ? std::string(".") : exe.parent_path().string();
}

} // namespace qi
