#include "PrivateFolder.h"

#include "FileSystem.h"

#include <filesystem>
#include <stdexcept>

namespace qi {

PrivateFolder::PrivateFolder() : path_(newPrivateFolder())
{
    if (path_.empty())
        throw std::runtime_error(kNoPrivateFolder);
}

PrivateFolder::~PrivateFolder()
{
    std::error_code ec;
    std::filesystem::remove_all(std::filesystem::u8path(path_), ec);
}

} // namespace qi
