#include "FileDigests.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace qi::test {

namespace fs = std::filesystem;

FileDigests digestFiles(const std::string& folder)
{
    FileDigests out;
    std::error_code ec;
    for (auto it = fs::recursive_directory_iterator(folder, ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec)) {
        if (!it->is_regular_file())
            continue;
        std::ifstream in(it->path(), std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        // FNV-1a over the bytes, with the length.
        std::uint64_t h = 1469598103934665603ull;
        for (unsigned char c : bytes) {
            h ^= c;
            h *= 1099511628211ull;
        }
        out[fs::relative(it->path(), folder).generic_string()] = std::to_string(bytes.size()) + ":" + std::to_string(h);
    }
    return out;
}

std::string changedFiles(const FileDigests& before, const FileDigests& after, const std::set<std::string>& expected)
{
    std::string out;
    for (const auto& [path, digest] : before) {
        if (expected.count(path))
            continue;
        const auto now = after.find(path);
        if (now == after.end())
            out += "weg: " + path + "\n";
        else if (now->second != digest)
            out += "geändert: " + path + "\n";
    }
    for (const auto& [path, digest] : after)
        if (!before.count(path) && !expected.count(path))
            out += "neu: " + path + "\n";
    return out;
}

} // namespace qi::test
