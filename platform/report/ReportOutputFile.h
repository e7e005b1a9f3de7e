#pragma once
// An output file written as bytes, in pieces: a report's CSV and text forms.

#include <cstdio>
#include <string>
#include <string_view>

namespace qi {

class ReportOutputFile {
public:
    /// Creates (or replaces) the file; ReportError naming it when it can't be created.
    explicit ReportOutputFile(const std::string& path);
    ~ReportOutputFile();
    ReportOutputFile(const ReportOutputFile&) = delete;
    ReportOutputFile& operator=(const ReportOutputFile&) = delete;

    /// Appends bytes; ReportError when they can't be written.
    void write(std::string_view bytes);
    /// Flushes and closes; ReportError when that fails.
    void close();

private:
    std::string path_;
    std::FILE* file_ = nullptr;
};

} // namespace qi
