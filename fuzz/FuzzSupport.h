#pragma once
// What the fuzz targets share: a scratch folder of the fuzzing process, the
// input written to a file, and a check that ends the process on a broken promise.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qi::fuzz {

/// The input as bytes.
inline std::string_view bytesOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// A path in the process's own scratch folder (made on first use, removed at a normal exit).
std::string scratchFile(const std::string& name);

/// Writes the bytes to `path`, replacing the file; aborts when that fails.
void writeBytes(const std::string& path, std::string_view bytes);

/// Copies a file over another; aborts with the system's reason when that fails.
void copyFileOver(const std::string& from, const std::string& to);

/// Ends the process with the text when `ok` is false, so that libFuzzer records the input.
void require(bool ok, const char* what);

} // namespace qi::fuzz
