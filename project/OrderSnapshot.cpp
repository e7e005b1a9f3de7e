#include "OrderSnapshot.h"

#include "Database.h"
#include "FileSystem.h"

#include <filesystem>
#include <stdexcept>

namespace qi {

OrderSnapshot::OrderSnapshot(Database& order, const std::string& fileName)
{
    folder_ = newPrivateFolder();
    if (folder_.empty())
        throw std::runtime_error(kNoPrivateFolder);
    path_ = folder_ + "/" + fileName;
    try {
        order.copyTo(path_);
    } catch (...) {
        removeFolder();
        throw;
    }
}

OrderSnapshot::~OrderSnapshot() { removeFolder(); }

void OrderSnapshot::removeFolder()
{
    std::error_code ec;
    std::filesystem::remove_all(std::filesystem::u8path(folder_), ec);
}

} // namespace qi
