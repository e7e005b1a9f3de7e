#pragma once
// A file that is replaced whole or not at all. The new content goes to a temporary file in
// the target's folder; only when it is complete and on the disk does it take the target's
// name, in one step, and the folder is written to the disk. A process that dies or a write
// that fails (a full disk) leaves the earlier file exactly as it was and no partial file:
// where the file system allows it the temporary file has no name until it is complete, so
// that not even a killed process leaves it behind.

#include <stdexcept>
#include <string>
#include <string_view>

namespace qi {

/// "Die Datei '<path>' kann nicht geschrieben werden." with the reason when one is known
/// ("…: Kein Platz mehr auf dem Datenträger.").
std::string cannotWriteMessage(const std::string& path, const std::string& reason = {});

/// A file that could not be written or read: the system's error number and a German sentence
/// naming the file.
class FileError : public std::runtime_error {
public:
    FileError(int error, const std::string& message) : std::runtime_error(message), error_(error) {}
    /// The failure to write `path` (the sentence of cannotWriteMessage).
    static FileError writing(int error, const std::string& path);
    /// The failure to read `path` ("Die Datei '…' existiert nicht.").
    static FileError reading(int error, const std::string& path);
    /// The system's error number (errno).
    int error() const { return error_; }

private:
    int error_;
};

class AtomicFile {
public:
    /// Begins the new content of `target` (a path of the system's form). A target that is a
    /// symbolic link replaces the file the link names. A target that is there but is no
    /// regular file (a device, a pipe) can't be replaced and is written directly.
    /// FileError when the temporary file can't be made (a missing folder, no right to write).
    explicit AtomicFile(const std::string& target);
    /// Not committed: the new content is thrown away; the target stays as it was.
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// The target as given.
    const std::string& target() const { return target_; }
    /// The open descriptor of the new content, for writers that take one.
    int descriptor() const { return fd_; }
    /// A native path under which writers that want a file name (and open it anew, truncating it)
    /// write the new content. Not to be mixed with write().
    std::string writePath() const;

    /// Appends bytes; FileError when they can't be written.
    void write(std::string_view bytes);
    /// Appends the whole content of the file `source`; FileError naming the source when it
    /// can't be read, naming the target when it can't be written.
    void copyFrom(const std::string& source);
    /// Writes what is left to the disk and puts the new content in the target's place; the
    /// target's folder is written to the disk. FileError when any of it fails; the target
    /// then stays as it was.
    void commit();
    /// After a write that failed (a full disk): puts what reached the file until then in the
    /// target's place, as commit() does, for writers whose file keeps what was written before a
    /// failure. FileError when that fails too; the target then stays as it was.
    void commitWritten();
    /// True once commit() succeeded.
    bool committed() const { return committed_; }

private:
    [[noreturn]] void fail(int error);
    void flushBuffer();
    void place();
    void discard();

    std::string target_; ///< as given
    std::string native_; ///< the file that is replaced
    std::string folder_; ///< its folder
    std::string named_;  ///< the temporary file's name when it has one
    std::string buffer_;
    int fd_ = -1;
    bool inPlace_ = false;
    bool committed_ = false;
    bool failed_ = false; ///< a write or the commit failed; only commitWritten() may follow
};

/// Copies a file to `to` through an AtomicFile: `to` is the complete copy or as it was.
/// FileError when the source can't be read or the target can't be written.
void copyFileWhole(const std::string& from, const std::string& to);

} // namespace qi
