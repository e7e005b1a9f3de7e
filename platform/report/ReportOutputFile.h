#pragma once
// An output file written as bytes, in pieces: a report's CSV and text forms. The file
// replaces an earlier one of its name only when it is complete (see AtomicFile.h).

#include "AtomicFile.h"

#include <memory>
#include <string>
#include <string_view>

namespace qi {

class ReportOutputFile {
public:
    /// Begins the file; ReportError naming it when it can't be created.
    explicit ReportOutputFile(const std::string& path);
    /// Not closed: the earlier file stays as it was.
    ~ReportOutputFile();
    ReportOutputFile(const ReportOutputFile&) = delete;
    ReportOutputFile& operator=(const ReportOutputFile&) = delete;

    /// Appends bytes; ReportError when they can't be written.
    void write(std::string_view bytes);
    /// Writes the rest and puts the file in place; ReportError when that fails.
    void close();

private:
    std::unique_ptr<AtomicFile> file_;
};

} // namespace qi
