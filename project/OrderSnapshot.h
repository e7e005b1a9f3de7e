#pragma once
// A private copy of an open order database as it stood at one moment, for work that only
// reads the order and may take its time (the project overview reads every order while their
// windows go on working in them). The order's file is read under one lock only while it is
// copied, so a window that saves meanwhile waits a moment at most. The order's own file is
// not written.

#include "PrivateFolder.h"

#include <string>

namespace qi {

class Database;

class OrderSnapshot {
public:
    /// Copies `order` into a new private folder as `fileName`; the folder goes with the object.
    /// DbError or std::exception with a German text when that fails (nothing is left then).
    OrderSnapshot(Database& order, const std::string& fileName);

    const std::string& path() const { return path_; }

private:
    PrivateFolder folder_;
    std::string path_;
};

} // namespace qi
