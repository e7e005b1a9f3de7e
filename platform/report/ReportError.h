#pragma once
// Why a report can't be shown or written: its file is missing or unreadable, its
// definition has an error (the message names the file and the line), its data
// can't be read, or an output file can't be written.

#include <stdexcept>
#include <string>

namespace qi {

class ReportError : public std::runtime_error {
public:
    explicit ReportError(const std::string& message) : std::runtime_error(message) {}
};

/// "Fehler in der Berichtsdatei '<file>', Zeile <line>: <what>" (without the line when it is 0).
ReportError definitionError(const std::string& file, int line, const std::string& what);

/// "Die Datei '<path>' kann nicht geschrieben werden." with the reason when one is known.
ReportError cannotWrite(const std::string& path, const std::string& reason = {});

} // namespace qi
