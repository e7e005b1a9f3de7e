#pragma once
// An order database that a program left in the middle of a change: the rollback journal
// beside it still holds what the file was before. Only a program that may write the file
// puts it back; a command that only reads the order reads a private copy of the file and
// its journal instead, put back in a folder of this program's own. The order's own file and
// journal are not touched.

#include "PrivateFolder.h"

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
    /// with a German text when that fails (nothing is left then). The folder goes with the object.
    explicit RolledBackCopy(const std::string& databaseFile);

    /// The copy, put back, with no journal beside it.
    const std::string& path() const { return path_; }

private:
    PrivateFolder folder_;
    std::string path_;
};

} // namespace qi
