#pragma once
// A small report database of the tests' own: a file with the report database's
// schema and plain tables filled by the test, report definition files written
// beside it, and reports opened on them with a fixed print date.

#include "Database.h"
#include "Report.h"
#include "TestSupport.h"

#include <memory>
#include <string>

namespace qi::test {

/// The print date of every report rendered by the tests.
inline constexpr const char* kTestPrintDate = "01.04.2025, 10:00 Uhr";

class ReportFixture : public ::testing::Test {
protected:
    void SetUp() override;

    /// Runs statements on the report database (tables and rows).
    void sql(const std::string& script);
    /// Writes a definition file "<name>" into the folder and returns its path.
    std::string definition(const std::string& name, const std::string& text);
    /// Opens a report file over the report database, order "Auftrag 1", project "Projekt".
    std::unique_ptr<Report> open(const std::string& file, const std::string& title = "Titel");
    /// The error message of opening a report file (empty when it opens).
    std::string openError(const std::string& file);

    TempDir dir;
    std::string dataFile;
};

/// Text of a PDF file through pdftotext (layout kept); empty when it can't be read.
std::string pdfText(const std::string& pdf);
/// A file inside an XLSX (zip) file through unzip.
std::string zipEntry(const std::string& zip, const std::string& entry);
/// The texts of the cells of one row of the first sheet of an XLSX file, in column order.
std::vector<std::string> xlsxRow(const std::string& xlsx, int row);
/// Number of rows of the first sheet of an XLSX file.
int xlsxRowCount(const std::string& xlsx);
/// Whether a cell (e.g. "C7") of the first sheet holds a number (not a text).
bool xlsxCellIsNumber(const std::string& xlsx, const std::string& cell);

} // namespace qi::test
