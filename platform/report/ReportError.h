#pragma once
// Why a report can't be shown: its file is missing or unreadable, its definition
// has an error (the message names the file and the line), or its data can't be read.

#include <stdexcept>
#include <string>

namespace qi {

class ReportError : public std::runtime_error {
public:
    explicit ReportError(const std::string& message) : std::runtime_error(message) {}
};

/// "Fehler in der Berichtsdatei '<file>', Zeile <line>: <what>".
ReportError definitionError(const std::string& file, int line, const std::string& what);

/// A file path as a person reads it: one kind of separator throughout.
std::string displayPath(const std::string& path);

} // namespace qi
