#pragma once
// File-system functions on the system's own paths, which use backslashes
// ("Inventur\", "\QInventurRpt.mdb"). A backslash is mapped to the platform's
// separator when the file system is asked; stored paths keep their backslashes.

#include <cstdint>
#include <string>
#include <vector>

namespace qi {

/// The path as the file system wants it (backslashes become '/'; doubled separators are harmless).
std::string nativePath(const std::string& path);
/// The system's form of a native path (separators become backslashes).
std::string systemPath(const std::string& native);
/// A path as a person reads it: one kind of separator (the platform's), a doubled
/// separator inside the path written once.
std::string displayPath(const std::string& path);
/// A folder as a person reads it: as displayPath, without a separator at its end (a root
/// keeps its own).
std::string displayFolder(const std::string& folder);
/// True for a path that names its place from a root: a leading separator or a drive ("C:").
bool isAbsolutePath(const std::string& path);
/// `path` itself when absolute, otherwise `path` below `folder` (joined with a backslash).
std::string resolvePath(const std::string& folder, const std::string& path);

bool fileExists(const std::string& path);   ///< a regular file
bool folderExists(const std::string& path); ///< a directory
/// True when this program may write the file, or create and delete files in the folder: the
/// system's answer for this user (a read-only disk or share, a write-protected file answer false).
bool canWrite(const std::string& path);
/// Number of regular files directly in a folder; -1 when the folder can't be read.
int countFiles(const std::string& folder);
/// Creates one folder; false on failure.
bool createFolder(const std::string& path);
/// Copies a file, overwriting the target; false on failure.
bool copyFile(const std::string& from, const std::string& to);
/// Deletes a file; false when it was not there or could not be deleted.
bool removeFile(const std::string& path);
/// Gives a file another name in the same folder, replacing a file of that name in one step
/// (a process that dies finds either the old or the new file there), and writes the folder
/// to the disk. False on failure.
bool moveFile(const std::string& from, const std::string& to);
/// Gives a file a second name `to` in the same file system, beside its first, and writes the
/// new name's folder to the disk. False when `to` is taken or the file system can't do it.
bool linkFile(const std::string& from, const std::string& to);
/// A new, empty folder of this program's own below the system's temporary folder (readable by
/// this user alone); empty when none can be made (then kNoPrivateFolder tells why).
std::string newPrivateFolder();
inline constexpr const char* kNoPrivateFolder = "Im Ordner für temporäre Dateien kann kein Ordner angelegt werden.";
/// A database file's native name as an SQLite URI that opens it only for reading ("file:...?mode=ro").
std::string readOnlyUri(const std::string& native);
/// Everything after the last backslash (or slash).
std::string fileNamePart(const std::string& path);
/// Everything up to and including the last backslash (or slash); empty if there is none.
std::string folderPart(const std::string& path);
/// The program's own folder (without trailing separator).
std::string programFolder();

} // namespace qi
