#pragma once
// A report ready to be shown, printed or written: its definition file found and
// read, its rows read from the report database, laid out on pages when first
// needed. writeReportFile writes one straight to a file (PDF, Excel, CSV or plain
// text), for the command line and batch use; the preview window shows the same
// pages and offers the same files.

#include "PagedDocument.h"
#include "ReportLayout.h"
#include "ReportModel.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qi {

class Database;

enum class ReportFormat {
    Pdf,  ///< the printed pages
    Xlsx, ///< one sheet: headings bold, numbers as numbers, group headers and footers as rows
    Csv,  ///< semicolons, UTF-8 with byte-order mark, one line per row with its group fields
    Text  ///< the pages as plain text, line by line (for comparing and reading)
};

/// What the page header tells besides the report's own rows. Empty texts are filled in:
/// the print date with the current date and time, the order's name and the project folder
/// from the report database's link to the order database.
struct ReportOptions {
    std::string printDate;     ///< {Druckdatum}
    std::string orderName;     ///< {Auftrag}
    std::string projectFolder; ///< {Projekt}
};

class Report : public PagedDocument {
public:
    /// Finds the report file (letter case ignored, the template folder's copy when the project
    /// has none), reads its definition and its rows from the report database `dataFile`.
    /// ReportError for a missing or unreadable file, a definition error (naming the file and
    /// the line) or a data source that can't be read.
    static std::unique_ptr<Report> open(const std::string& reportFile, const std::string& dataFile,
                                        const std::string& windowTitle, const ReportOptions& options = {});

    /// A report over a database of the caller's own instead of the report database (the
    /// project result of the whole stocktake): `reportFile` as it is found (letter case
    /// ignored), its rows read from `data`, which the report's statement can't change. The
    /// page header tells what `options` say (the print date filled in when empty). ReportError
    /// for a missing or unreadable file, a definition error or a data source that can't be read.
    static std::unique_ptr<Report> over(const std::string& reportFile, Database& data, const std::string& windowTitle,
                                        const ReportOptions& options);

    /// The title of the report's window; the files written carry it as their document title.
    const std::string& windowTitle() const { return windowTitle_; }
    /// The definition file that was read.
    const std::string& file() const { return file_; }
    const ReportModel& model() const { return *model_; }
    /// The pages, laid out on first use. Measuring type needs a QGuiApplication: a program
    /// without any application gets an offscreen one; ReportError in a program that has a
    /// QCoreApplication only.
    const ReportLayout& layout() const;
    int pageCount() const override { return layout().pageCount(); }

    // The pages as a paged document: A4 in the definition's orientation, titled with the
    // window title (the definition's title when there is none).
    double pageWidth() const override { return layout().pageWidth(); }
    double pageHeight() const override { return layout().pageHeight(); }
    QPageLayout pageLayout() const override;
    std::string documentTitle() const override;
    std::string cannotPrintText(const std::string& printer) const override;
    std::unique_ptr<PagePainting> pagePainter(double dpi, double unitsPerPoint, bool hinted) const override;

    /// Writes the report; ReportError naming the file when it can't be written.
    void write(ReportFormat format, const std::string& path) const;
    void writePdf(const std::string& path) const;
    /// Told after each page a PDF got, with the number of pages, so that a long write can
    /// show how far it is.
    void setPageProgress(std::function<void(int page, int pages)> progress) { pageProgress_ = std::move(progress); }
    void writeXlsx(const std::string& path) const;
    void writeCsv(const std::string& path) const;
    /// The pages as plain text: one line per band, cells separated by " | ".
    std::string text() const;

private:
    Report() = default;
    std::string windowTitle_;
    std::string file_;
    std::unique_ptr<ReportModel> model_;
    mutable std::unique_ptr<ReportLayout> layout_;
    std::function<void(int page, int pages)> pageProgress_;
};

/// Writes a report straight to a file, for the command line and batch use: finds and reads
/// `reportFile` (as Report::open does), reads its rows from the report database `dataFile`
/// and writes `format` to `outputPath`. `title` is the document title of the file;
/// `orderName` and `projectFolder` fill the page header (empty: taken from the report
/// database's link to the order database). Returns the empty text when the file was
/// written, else the error message (naming the file, and the line of a definition error).
/// `pageProgress` is told each page written (see Report::setPageProgress).
std::string writeReportFile(const std::string& reportFile, const std::string& dataFile, const std::string& title,
                            const std::string& orderName, const std::string& projectFolder, ReportFormat format,
                            const std::string& outputPath,
                            const std::function<void(int page, int pages)>& pageProgress = {});

/// File name extension of a format, without the dot ("pdf", "xlsx", "csv", "txt").
const char* reportFormatExtension(ReportFormat format);
/// The format of an extension ("pdf", "xlsx", "csv", "txt"; letter case ignored), or nothing.
std::optional<ReportFormat> reportFormatNamed(std::string_view name);

} // namespace qi
