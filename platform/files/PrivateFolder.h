#pragma once
// A folder of this program's own for files that no one else is to see or change (private
// copies of databases), removed with what it holds when its work is done.

#include <string>

namespace qi {

/// A new private folder (newPrivateFolder) that goes, with all it holds, with the object.
class PrivateFolder {
public:
    /// std::runtime_error with kNoPrivateFolder when none can be made.
    PrivateFolder();
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    const std::string& path() const { return path_; }
    /// The path of a file named `name` in the folder.
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

} // namespace qi
