#include "MirrorTestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

namespace qi::test {

std::string jetTestDataFolder()
{
    const std::filesystem::path folder =
        std::filesystem::path(QI_SOURCE_DIR).parent_path() / "shared" / "testdata" / "jet";
    EXPECT_TRUE(std::filesystem::exists(folder / "nwind.mdb")) << "missing: " << folder;
    return folder.string();
}

std::string shellWord(const std::string& text)
{
    std::string r = "'";
    for (char c : text)
        r += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return r + "'";
}

std::string successfulCommandOutput(const std::string& command)
{
    std::string out;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) {
        ADD_FAILURE() << "cannot run: " << command;
        return out;
    }
    char buffer[65536];
    std::size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        out.append(buffer, n);
    const int status = ::pclose(pipe);
    EXPECT_EQ(status, 0) << "failed: " << command;
    return out;
}

} // namespace qi::test
