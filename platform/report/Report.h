#pragma once
// A report ready to be shown, printed or written: its definition file found and
// read, its rows read from the report database, laid out on pages when first
// needed. renderReport writes one straight to a file (PDF, Excel, CSV or plain
// text), for the command line and the tests; the preview window shows the same
// pages and offers the same files.

#include "ReportLayout.h"
#include "ReportModel.h"

#include <memory>
#include <string>

namespace qi {

enum class ReportFormat {
    Pdf,  ///< the printed pages
    Xlsx, ///< one sheet: headings bold, numbers as numbers, group headers and footers as rows
    Csv,  ///< semicolons, UTF-8 with byte-order mark, one line per row with its group fields
    Text  ///< the pages as plain text, line by line (for comparing and reading)
};

struct ReportOptions {
    /// {Druckdatum}; empty: the current date and time.
    std::string printDate;
};

class Report {
public:
    /// Finds the report file (letter case ignored, the template folder's copy when the project
    /// has none), reads its definition and its rows from the report database `dataFile`.
    /// ReportError for a missing or unreadable file, a definition error (naming the file and
    /// the line) or a data source that can't be read.
    static std::unique_ptr<Report> open(const std::string& reportFile, const std::string& dataFile,
                                        const std::string& windowTitle, const ReportOptions& options = {});

    /// The title of the report's window.
    const std::string& windowTitle() const { return windowTitle_; }
    /// The definition file that was read.
    const std::string& file() const { return file_; }
    const ReportModel& model() const { return *model_; }
    /// The pages (laid out on first use; needs a QGuiApplication, made offscreen when there is no application).
    const ReportLayout& layout() const;
    int pageCount() const { return layout().pageCount(); }

    /// Writes the report; ReportError naming the file when it can't be written.
    void write(ReportFormat format, const std::string& path) const;
    void writePdf(const std::string& path) const;
    void writeXlsx(const std::string& path) const;
    void writeCsv(const std::string& path) const;
    /// The pages as plain text.
    std::string text() const;

private:
    Report() = default;
    std::string windowTitle_;
    std::string file_;
    std::unique_ptr<ReportModel> model_;
    mutable std::unique_ptr<ReportLayout> layout_;
};

/// Opens the report and writes it to `outputPath` in `format`; ReportError on failure.
void renderReport(const std::string& reportFile, const std::string& dataFile, const std::string& title,
                  ReportFormat format, const std::string& outputPath, const ReportOptions& options = {});

/// File name extension of a format, without the dot ("pdf", "xlsx", "csv", "txt").
const char* reportFormatExtension(ReportFormat format);

} // namespace qi
