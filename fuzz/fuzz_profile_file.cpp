// The profile file reader on any file. The input up to its first NUL byte is the
// file; when NUL bytes follow, the next two parts are one more section and key to
// look up, besides those the program reads. A value found is well-formed UTF-8 and
// one line; a lookup that finds nothing answers the default.

#include "FuzzSupport.h"

#include "ProfileFile.h"
#include "TextFile.h"

#include <utility>
#include <vector>

using namespace qi;

namespace {

const char* const kDefault = "\x01" "default";

void lookUp(const std::string& file, const std::string& section, const std::string& key)
{
    const std::string value = readProfileValue(file, section, key, kDefault);
    if (value == kDefault)
        return;
    fuzz::require(isUtf8(value), "a value is well-formed UTF-8");
    fuzz::require(value.find('\n') == std::string::npos, "a value is one line");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view in = fuzz::bytesOf(data, size);
    const std::size_t end = in.find('\0');
    const std::string file = fuzz::scratchFile("Projekt.ini");
    fuzz::writeBytes(file, in.substr(0, end));

    static const std::vector<std::pair<std::string, std::string>> programLookups{
        {"Quarn", "Projekt"}, {"ODBC", "Projekttyp"}, {"ODBC", "ConnectionString"}, {"Inventur", "Modul"},
        {" inventur ", "MODUL"}, {"", ""}};
    for (const auto& [section, key] : programLookups)
        lookUp(file, section, key);

    if (end != std::string_view::npos) {
        const std::string_view rest = in.substr(end + 1);
        const std::size_t split = rest.find('\0');
        lookUp(file, std::string(rest.substr(0, split)),
               split == std::string_view::npos ? std::string() : std::string(rest.substr(split + 1)));
    }
    return 0;
}
