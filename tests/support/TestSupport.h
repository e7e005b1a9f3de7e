#pragma once
// Shared helpers of the tests: a temporary folder per test and fresh databases.

#include "CAuftragDb.h"
#include "ScriptedUserInteraction.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

class QApplication;

namespace qi::test {

/// The one application object of a test program that shows widgets (offscreen).
/// It is never destroyed: Qt's own statics must not go before it at exit.
QApplication& qtApplication();

/// A fresh, empty folder that is removed with the object.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    /// The folder, without trailing separator.
    const std::string& path() const { return path_; }
    /// A path inside the folder.
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

/// Creates an empty order database file at `path`.
void makeOrderDatabase(const std::string& path);
/// Creates an empty order register file at `path`.
void makeRegisterDatabase(const std::string& path);
/// Writes a text file as it stands (bytes).
void writeFile(const std::string& path, const std::string& bytes);
/// Reads a whole file as bytes.
std::string readFile(const std::string& path);
/// What a shell command prints on its standard output (empty when it cannot be run).
std::string commandOutput(const std::string& command);

/// The names of the entries of `folder`, sorted; none when it is missing.
std::vector<std::string> sortedNames(const std::string& folder);

/// Every file below `folder` (path relative to it) with its size and a digest of its bytes:
/// two snapshots are equal when no file was added, removed or changed. Project lock files
/// do not count.
std::map<std::string, std::string> treeDigest(const std::string& folder);

/// A digest of every row of every table of a database file (key order): equal for two files
/// of the same content, whatever else of the file differs. The file must not be open elsewhere
/// in this process.
std::string contentDigest(const std::string& databaseFile);
/// Whether the file passes the engine's integrity check.
bool integrityOk(const std::string& databaseFile);

/// Leaves a failure text in the database object's LastError (reading a key that is not
/// there), so that a test can tell an operation that clears or keeps it.
std::string leaveLastError(CAuftragDb& db);

/// A test with a temporary folder, a scripted user and an open, empty order database.
class OrderDbTest : public ::testing::Test {
protected:
    void SetUp() override;
    TempDir dir;
    ScriptedUserInteraction ui;
    CAuftragDb db{ui};
    std::string dbFile;
};

} // namespace qi::test
