#include "SystemError.h"

#include "FileSystem.h"

#include <cerrno>
#include <filesystem>

namespace qi {

namespace {

std::string quoted(const std::string& path)
{
    return "'" + displayPath(path) + "'";
}

/// The system's numbering for codes of the generic and the system category, -1 otherwise.
int systemNumber(const std::error_code& error)
{
    if (error.category() == std::generic_category() || error.category() == std::system_category())
        return error.value();
    return -1;
}

} // namespace

std::string systemErrorReason(int error)
{
    switch (error) {
    case ENOENT:
        return "Die Datei oder der Ordner existiert nicht";
    case ENOTDIR:
        return "Ein Teil des Pfades ist kein Ordner";
    case EISDIR:
        return "Der Pfad ist ein Ordner, keine Datei";
    case ENOSPC:
    case EDQUOT:
        return "Kein Platz mehr auf dem Datenträger";
    case EACCES:
    case EPERM:
        return "Zugriff verweigert";
    case EROFS:
        return "Der Datenträger ist schreibgeschützt";
    case EIO:
        return "Datenträger- oder Netzwerkfehler";
    case ENAMETOOLONG:
        return "Der Pfad ist zu lang";
    case EMFILE:
    case ENFILE:
        return "Zu viele Dateien geöffnet";
    case EEXIST:
        return "Die Datei existiert bereits";
    case ENOTEMPTY:
        return "Der Ordner ist nicht leer";
    case EBUSY:
    case ETXTBSY:
        return "Die Datei ist in Verwendung";
    case EXDEV:
        return "Die Datei liegt auf einem anderen Datenträger";
    case EFBIG:
        return "Die Datei ist zu groß";
    case ELOOP:
        return "Zu viele Verknüpfungen im Pfad";
    case ENOMEM:
        return "Nicht genügend Arbeitsspeicher";
    case ENXIO:
    case ENODEV:
        return "Das Gerät ist nicht bereit";
    case ESTALE:
    case ENETDOWN:
    case ENETUNREACH:
    case EHOSTUNREACH:
    case ETIMEDOUT:
    case ECONNRESET:
        return "Die Netzwerkverbindung ist unterbrochen";
    default:
        return "Fehler " + std::to_string(error) + " des Betriebssystems";
    }
}

std::string systemErrorReason(const std::error_code& error)
{
    const int number = systemNumber(error);
    return systemErrorReason(number >= 0 ? number : error.value());
}

std::string systemErrorMessage(int error, const std::string& path, PathKind kind)
{
    const std::string name = quoted(path);
    switch (error) {
    case ENOENT:
        if (kind == PathKind::Folder)
            return "Der Ordner " + name + " existiert nicht.";
        if (kind == PathKind::File)
            return "Die Datei " + name + " existiert nicht.";
        return "Die Datei oder der Ordner " + name + " existiert nicht.";
    case ENOTDIR:
        if (kind == PathKind::Folder)
            return name + " ist kein Ordner.";
        return "Ein Teil des Pfades " + name + " ist kein Ordner.";
    case EISDIR:
        return name + " ist ein Ordner, keine Datei.";
    case EACCES:
    case EPERM:
        return "Zugriff auf " + name + " verweigert.";
    case ENAMETOOLONG:
        return "Der Pfad " + name + " ist zu lang.";
    default:
        return name + ": " + systemErrorReason(error) + ".";
    }
}

std::string systemErrorMessage(const std::error_code& error, const std::string& path, PathKind kind)
{
    const int number = systemNumber(error);
    if (number < 0)
        return quoted(path) + ": " + systemErrorReason(error) + ".";
    return systemErrorMessage(number, path, kind);
}

std::string notAFileMessage(const std::string& path)
{
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::file_status status = fs::status(fs::u8path(nativePath(path)), ec);
    if (ec || status.type() == fs::file_type::not_found || status.type() == fs::file_type::regular)
        return {};
    return notAFileMessage(path, status.type() == fs::file_type::directory);
}

std::string notAFileMessage(const std::string& path, bool folder)
{
    return quoted(path) + (folder ? " ist ein Ordner, keine Datei." : " ist keine Datei.");
}

std::string emptyFileMessage(const std::string& path)
{
    return "Die Datei " + quoted(path) + " ist leer.";
}

} // namespace qi
