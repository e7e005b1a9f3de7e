#pragma once
// An order database that a program left in the middle of a change: the rollback journal
// beside it still holds what the file was before. Only a program that may write the file
// puts it back; a command that only reads the order reads a private copy of the file and
// its journal instead, put back in a folder of this program's own. The order's own file and
// journal are not touched.

#include <string>

namespace qi {

/// The journal that lies beside a database file while it is changed, and after a change was cut off.
std::string journalOf(const std::string& databaseFile);

/// True when a journal lies beside the database file.
bool hasJournal(const std::string& databaseFile);

class RolledBackCopy {
public:
    /// Copies `databaseFile` and its journal into a new private folder and opens the copy for
    /// changes once, which puts it back to its state before the cut-off change. std::exception
    /// with a German text when that fails (nothing is left then).
    explicit RolledBackCopy(const std::string& databaseFile);
    /// Removes the private folder with the copy.
    ~RolledBackCopy();
    RolledBackCopy(const RolledBackCopy&) = delete;
    RolledBackCopy& operator=(const RolledBackCopy&) = delete;

    /// The copy, put back, with no journal beside it.
    const std::string& path() const { return path_; }

private:
    void removeFolder();
    std::string folder_;
    std::string path_;
};

} // namespace qi
