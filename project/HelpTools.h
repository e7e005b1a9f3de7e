#pragma once
// The help call of the program, shaped like the system's help function: a help
// file, a command and its data. Only the contents command is known.

#include "UserInteraction.h"

#include <cstdint>
#include <string>

namespace qi {

/// Help command: show the contents page of the help file.
inline constexpr std::uint32_t HELP_CONTENTS = 3;

/// Shows help from `helpFile` for `wCommand`. The contents command (3) opens the help
/// window through the user interaction and answers true; any other command does nothing
/// and answers false, as does an empty file name.
bool WinHelpA(UserInteraction& ui, const std::string& helpFile, std::uint32_t wCommand, std::uint32_t dwData);

} // namespace qi
