#pragma once
// Text in the system's ANSI code page (Windows-1252), as scanners and profile
// files write it, converted to and from the UTF-8 that the program keeps.

#include <string>
#include <string_view>

namespace qi {

/// Windows-1252 bytes as UTF-8 (bytes the code page leaves undefined map to U+FFFD).
std::string ansiToUtf8(std::string_view ansi);
/// UTF-8 as Windows-1252; characters the code page lacks become '?'.
std::string utf8ToAnsi(std::string_view utf8);
/// True when the bytes are well-formed UTF-8 (plain ASCII included).
bool isValidUtf8(std::string_view bytes);

} // namespace qi
