#pragma once
// Tables of plain texts written for a data import: an Excel workbook with one sheet per
// table and CSV files, in the same forms as the reports' Excel and CSV files (headings in
// the first row; semicolons, UTF-8 with byte-order mark). Every cell is text, so that
// numbers such as inventory numbers keep their leading zeros. A file replaces an earlier
// one of its name only when it is complete.

#include <string>
#include <vector>

namespace qi {

/// One table: its name (the sheet's), its headings and its rows (as many cells as headings).
struct PlainTable {
    std::string name;
    std::vector<std::string> headings;
    std::vector<std::vector<std::string>> rows;
};

/// Writes a workbook of one sheet per table (headings bold and frozen, each column as wide as
/// its longest text allows), `title` as its document title. ReportError naming the file when
/// it can't be written; the earlier file then stays as it was.
void writePlainWorkbook(const std::string& path, const std::string& title, const std::vector<PlainTable>& tables);

/// Writes one table as a CSV file: a line of headings, then a line per row. ReportError naming
/// the file when it can't be written; the earlier file then stays as it was.
void writePlainCsv(const std::string& path, const PlainTable& table);

} // namespace qi
