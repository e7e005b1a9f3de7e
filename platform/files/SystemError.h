#pragma once
// The failures the operating system reports (errno, std::error_code) in German words, as the
// program shows them. The system's own English text never reaches a person.

#include <string>
#include <system_error>

namespace qi {

/// What a path is meant to name, so that a missing one is called by its kind.
enum class PathKind { Any, File, Folder };

/// The failure with the system's error number `error` as a short German phrase without a
/// final period, to follow a colon ("Kein Platz mehr auf dem Datenträger", "Zugriff verweigert");
/// "Fehler <n> des Betriebssystems" for a number without a text of its own.
std::string systemErrorReason(int error);
/// As above for an error code; codes outside the system's numbering are named by their number.
std::string systemErrorReason(const std::error_code& error);

/// The failure with the system's error number `error` on `path` as a German sentence naming
/// the path ("Der Ordner '…' existiert nicht.", "'…' ist ein Ordner, keine Datei.").
std::string systemErrorMessage(int error, const std::string& path, PathKind kind = PathKind::Any);
/// As above for an error code.
std::string systemErrorMessage(const std::error_code& error, const std::string& path, PathKind kind = PathKind::Any);

/// "'…' ist ein Ordner, keine Datei." for a folder, "'…' ist keine Datei." for anything else
/// that is there but is no regular file (a pipe, a device), "" for a regular file or a path
/// that is not there.
std::string notAFileMessage(const std::string& path);
/// The text above for a path known to be a folder (`folder`) or some other thing that is no file.
std::string notAFileMessage(const std::string& path, bool folder);
/// "Die Datei '…' ist leer."
std::string emptyFileMessage(const std::string& path);

} // namespace qi
