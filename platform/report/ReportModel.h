#pragma once
// A report's content before it is laid out on pages: the definition, the rows
// read from the report database in report order, the groups they form, and the
// texts of every cell, group header and footer, sum and summary line.

#include "ReportDefinition.h"
#include "ReportTable.h"

#include <string>
#include <vector>

namespace qi {

class Database;

/// What the page header and footer tell about the report besides its rows.
struct ReportContext {
    std::string orderName;     ///< {Auftrag}
    std::string projectFolder; ///< {Projekt}
    std::string printDate;     ///< {Druckdatum}
    std::string reportFile;    ///< {Berichtsdatei}: the file's name
};

/// A run of rows: one group, or the whole report.
struct RowRange {
    std::size_t first = 0;
    std::size_t count = 0;
};

/// One line of a breakdown in the summary: a value and its count or sum.
struct BreakdownLine {
    std::string value;
    std::string amount; ///< as shown
    double number = 0;  ///< as a number
};

class ReportModel {
public:
    ReportModel(ReportDefinition definition, ReportTable table, ReportContext context);

    const ReportDefinition& definition() const { return def_; }
    const ReportTable& table() const { return table_; }
    const ReportContext& context() const { return ctx_; }
    std::size_t rowCount() const { return table_.rowCount(); }
    RowRange all() const { return {0, rowCount()}; }

    /// The text a cell shows: the value in its column's format.
    std::string cellText(std::size_t row, std::size_t column) const;
    /// Whether the column's value in a row goes into the exports as a number.
    bool cellIsNumber(std::size_t row, std::size_t column) const;
    double cellNumber(std::size_t row, std::size_t column) const;
    /// The group field's (or an extra field's) value of a row as text.
    std::string fieldText(std::size_t row, int field) const;
    int columnField(std::size_t column) const { return columnFields_[column]; }
    int groupField(std::size_t level) const { return groupFields_[level]; }
    int groupExtraField(std::size_t level, std::size_t extra) const { return groupExtraFields_[level][extra]; }

    /// The groups of a level (0 = outermost), in row order.
    const std::vector<RowRange>& groups(std::size_t level) const { return groups_[level]; }
    std::size_t groupLevels() const { return groups_.size(); }

    /// A text of the definition with its placeholders filled from the rows of `scope`
    /// (fields from its first row); {Seite} and {Seiten} stay empty when `pages` is 0.
    std::string evaluate(const TextTemplate& text, RowRange scope, int page = 0, int pages = 0) const;
    /// The sum of a column over a run of rows, in the column's format.
    std::string columnSum(std::size_t column, RowRange scope) const;
    double columnSumValue(std::size_t column, RowRange scope) const;
    /// The lines of each breakdown of the summary, values in the comparison's order.
    const std::vector<std::vector<BreakdownLine>>& breakdowns() const { return breakdowns_; }

private:
    std::string format(std::size_t row, int field, const ValueFormat& format) const;
    const ValueFormat& formatOfField(int field) const;
    double sum(int field, RowRange scope) const;
    void makeGroups();
    void makeBreakdowns();

    ReportDefinition def_;
    ReportTable table_;
    ReportContext ctx_;
    std::vector<int> columnFields_;
    std::vector<int> groupFields_;
    std::vector<std::vector<int>> groupExtraFields_;
    std::vector<std::vector<RowRange>> groups_;
    std::vector<std::vector<BreakdownLine>> breakdowns_;
};

/// Reads the rows of a definition from the report database connection `statements`
/// (its links resolved, its stored queries as views): the fields the definition names,
/// sorted by the group fields and then the sort keys. Optional columns whose field the
/// source lacks are taken out of the definition. ReportError naming the file and the
/// line for an unknown data source, an unknown field or a statement that fails.
ReportTable readReportRows(ReportDefinition& definition, Database& statements);

/// Numbers as a German reader writes them: "1.234", "1.234,50" (`decimals` -1: as many as needed).
std::string formatNumber(double value, int decimals, bool grouping = true);
/// A date given as text ("14.03.2025", "2025-03-14 10:00:00") or as a day number in the
/// pattern; anything else as it stands.
std::string formatDate(std::string_view text, bool isNumber, double number, const std::string& pattern);

} // namespace qi
