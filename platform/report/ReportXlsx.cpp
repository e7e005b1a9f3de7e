#include "AtomicFile.h"
#include "FileSystem.h"
#include "PlainTables.h"
#include "Report.h"
#include "ReportError.h"
#include "SystemError.h"

#include <QString>

#include <xlsxwriter.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace qi {

namespace {

constexpr lxw_row_t kMaxRows = 1048576;

/// Text as the sheet may hold it: valid UTF-8 without control characters other than line breaks and tabs.
std::string cellString(const std::string& s)
{
    QString q = QString::fromUtf8(s.data(), qsizetype(s.size()));
    for (QChar& c : q)
        if (c.unicode() < 0x20 && c != QLatin1Char('\n') && c != QLatin1Char('\t'))
            c = QLatin1Char(' ');
    return q.toStdString();
}

/// A header or footer text of the printed sheet ("&" is its escape character).
std::string printText(const std::string& s)
{
    std::string out;
    for (char c : cellString(s)) {
        if (c == '&')
            out += '&';
        out += c;
    }
    return out;
}

std::string sheetName(const std::string& title)
{
    QString name = QString::fromStdString(title);
    for (const QChar c : {QLatin1Char('['), QLatin1Char(']'), QLatin1Char(':'), QLatin1Char('*'), QLatin1Char('?'),
                          QLatin1Char('/'), QLatin1Char('\\')})
        name.remove(c);
    name = name.trimmed().left(31);
    if (name.startsWith(QLatin1Char('\'')))
        name.remove(0, 1);
    return name.isEmpty() ? std::string("Bericht") : name.toStdString();
}

std::string numberFormat(int decimals)
{
    if (decimals < 0)
        return {};
    return decimals == 0 ? "#,##0" : "#,##0." + std::string(std::size_t(decimals), '0');
}

/// Keeps the library's own notes (English, on standard error) from the program's standard error
/// while it lives; a failure is told by the program itself.
class QuietStandardError {
public:
    QuietStandardError()
    {
        std::fflush(stderr);
        saved_ = ::dup(STDERR_FILENO);
        const int null = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (saved_ >= 0 && null >= 0)
            ::dup2(null, STDERR_FILENO);
        if (null >= 0)
            ::close(null);
    }
    ~QuietStandardError()
    {
        std::fflush(stderr);
        if (saved_ >= 0) {
            ::dup2(saved_, STDERR_FILENO);
            ::close(saved_);
        }
    }
    QuietStandardError(const QuietStandardError&) = delete;
    QuietStandardError& operator=(const QuietStandardError&) = delete;

private:
    int saved_ = -1;
};

/// The sheet being written, row by row (the workbook keeps only the current row in memory),
/// into the new content of the output file, which replaces the earlier file once it is complete.
class SheetWriter {
public:
    SheetWriter(const std::string& path) : path_(path)
    {
        try {
            file_ = std::make_unique<AtomicFile>(path);
        } catch (const FileError& e) {
            throw ReportError(e.what());
        }
        lxw_workbook_options options{};
        options.constant_memory = LXW_TRUE;
        options.use_zip64 = LXW_TRUE;
        const std::string into = file_->writePath();
        wb_ = workbook_new_opt(into.c_str(), &options);
        if (!wb_)
            fail();
    }
    ~SheetWriter()
    {
        if (wb_) {
            const QuietStandardError quiet;
            workbook_close(wb_);
        }
    }
    SheetWriter(const SheetWriter&) = delete;
    SheetWriter& operator=(const SheetWriter&) = delete;

    lxw_workbook* wb() { return wb_; }
    [[noreturn]] void fail(const std::string& why = {}) const
    {
        throw cannotWrite(path_, why);
    }
    void close()
    {
        lxw_error rc = LXW_NO_ERROR;
        int error = 0;
        {
            const QuietStandardError quiet;
            errno = 0;
            rc = workbook_close(wb_);
            error = errno;
        }
        wb_ = nullptr;
        if (rc != LXW_NO_ERROR)
            fail(systemErrorReason(error != 0 ? error : EIO));
        try {
            file_->commit();
        } catch (const FileError& e) {
            throw ReportError(e.what());
        }
    }

private:
    std::string path_;
    std::unique_ptr<AtomicFile> file_;
    lxw_workbook* wb_ = nullptr;
};

} // namespace

void Report::writeXlsx(const std::string& path) const
{
    const ReportModel& m = model();
    const ReportDefinition& def = m.definition();

    // The sheet's columns: the group fields, then the report's columns.
    struct SheetColumn {
        double widthMm;
        int column = -1; ///< report column, or -1 for a group field
        std::size_t level = 0;
        int extra = -1; ///< extra field of the group, or -1 for the group field itself
    };
    std::vector<SheetColumn> sheetColumns;
    for (std::size_t level = 0; level < def.groups.size(); ++level) {
        sheetColumns.push_back({28, -1, level, -1});
        for (std::size_t e = 0; e < def.groups[level].extraFields.size(); ++e)
            sheetColumns.push_back({40, -1, level, int(e)});
    }
    for (std::size_t c = 0; c < def.columns.size(); ++c)
        sheetColumns.push_back({def.columns[c].widthMm > 0 ? def.columns[c].widthMm : 70, int(c)});
    const auto lastColumn = lxw_col_t(sheetColumns.size() - 1);

    std::size_t rowsNeeded = 6 + m.rowCount() + def.summary.size();
    for (std::size_t level = 0; level < m.groupLevels(); ++level)
        rowsNeeded += m.groups(level).size() * 2;
    for (const auto& lines : m.breakdowns())
        rowsNeeded += lines.size() + 2;
    if (rowsNeeded > kMaxRows)
        throw ReportError("Der Bericht hat zu viele Zeilen für eine Excel-Tabelle (höchstens 1.048.576).");

    SheetWriter sheet(path);
    lxw_workbook* wb = sheet.wb();
    const std::string name = sheetName(def.title);
    lxw_worksheet* ws = workbook_add_worksheet(wb, name.c_str());
    if (!ws)
        sheet.fail();
    std::string documentTitle = cellString(windowTitle().empty() ? def.title : windowTitle());
    lxw_doc_properties properties{};
    properties.title = documentTitle.data();
    workbook_set_properties(wb, &properties);

    auto format = [&](bool bold, bool italic, std::uint32_t fill, const std::string& numFormat, double size = 0) {
        lxw_format* f = workbook_add_format(wb);
        if (bold)
            format_set_bold(f);
        if (italic)
            format_set_italic(f);
        if (fill)
            format_set_bg_color(f, fill);
        if (!numFormat.empty())
            format_set_num_format(f, numFormat.c_str());
        if (size > 0)
            format_set_font_size(f, size);
        format_set_font_name(f, "Arial");
        if (size == 0)
            format_set_font_size(f, 10);
        return f;
    };
    lxw_format* titleFormat = format(true, false, 0, {}, 14);
    lxw_format* infoFormat = format(false, true, 0, {});
    lxw_format* headingFormat = format(true, false, 0xE1E7ED, {});
    format_set_bottom(headingFormat, LXW_BORDER_THIN);
    format_set_text_wrap(headingFormat);
    format_set_align(headingFormat, LXW_ALIGN_VERTICAL_BOTTOM);
    lxw_format* groupFormat = format(true, false, 0xEAEFF4, {});
    lxw_format* footerFormat = format(false, true, 0, {});
    lxw_format* textFormat = format(false, false, 0, {});
    std::vector<lxw_format*> numberFormats, sumFormats;
    for (const ColumnDef& c : def.columns) {
        const int decimals = c.format.kind == ValueFormat::Kind::Number ? c.format.decimals : -1;
        numberFormats.push_back(format(false, false, 0, numberFormat(decimals)));
        sumFormats.push_back(format(true, false, 0, numberFormat(decimals)));
    }

    for (lxw_col_t c = 0; c <= lastColumn; ++c)
        worksheet_set_column(ws, c, c, std::max(6.0, sheetColumns[c].widthMm / 1.9), nullptr);
    worksheet_set_paper(ws, 9);
    if (def.landscape)
        worksheet_set_landscape(ws);
    worksheet_fit_to_pages(ws, 1, 0);
    worksheet_set_header(ws, ("&L&\"Arial,Bold\"" + printText(def.title) + "&R" + printText(m.context().orderName))
                                 .c_str());
    worksheet_set_footer(ws, "&RSeite &P von &N");

    lxw_row_t row = 0;
    auto text = [&](lxw_col_t col, const std::string& value, lxw_format* f) {
        worksheet_write_string(ws, row, col, cellString(value).c_str(), f);
    };
    text(0, def.title, titleFormat);
    ++row;
    std::string info = "Auftrag: " + m.context().orderName + "    Projekt: " + m.context().projectFolder +
                       "    Gedruckt am " + m.context().printDate;
    text(0, info, infoFormat);
    row += 2;

    const lxw_row_t headingRow = row;
    for (lxw_col_t c = 0; c <= lastColumn; ++c) {
        const SheetColumn& sc = sheetColumns[c];
        const GroupDef* g = sc.column < 0 ? &def.groups[sc.level] : nullptr;
        text(c, g ? (sc.extra < 0 ? g->heading : g->extraFields[std::size_t(sc.extra)].heading)
                  : def.columns[std::size_t(sc.column)].heading,
             headingFormat);
    }
    worksheet_freeze_panes(ws, headingRow + 1, 0);
    worksheet_repeat_rows(ws, headingRow, headingRow);
    ++row;

    const std::size_t levels = m.groupLevels();
    std::vector<std::size_t> next(levels, 0);
    auto sumsRow = [&](const std::string& label, RowRange range, lxw_format* labelFormat) {
        text(0, label, labelFormat);
        for (lxw_col_t c = 0; c <= lastColumn; ++c) {
            const int col = sheetColumns[c].column;
            if (col >= 0 && def.columns[std::size_t(col)].sum)
                worksheet_write_number(ws, row, c, m.columnSumValue(std::size_t(col), range),
                                       sumFormats[std::size_t(col)]);
        }
        ++row;
    };
    for (std::size_t r = 0; r < m.rowCount(); ++r) {
        for (std::size_t level = 0; level < levels; ++level) {
            const RowRange& g = m.groups(level)[next[level]];
            if (g.first != r)
                continue;
            std::string header;
            for (const TextTemplate& t : def.groups[level].header)
                header += (header.empty() ? "" : " – ") + m.evaluate(t, g);
            if (header.empty())
                header = m.fieldText(r, m.groupField(level));
            text(0, header, groupFormat);
            for (lxw_col_t c = 1; c <= lastColumn; ++c)
                worksheet_write_blank(ws, row, c, groupFormat);
            ++row;
        }
        for (lxw_col_t c = 0; c <= lastColumn; ++c) {
            const SheetColumn& sc = sheetColumns[c];
            if (sc.column < 0) {
                const int field = sc.extra < 0 ? m.groupField(sc.level)
                                               : m.groupExtraField(sc.level, std::size_t(sc.extra));
                text(c, m.fieldText(r, field), textFormat);
                continue;
            }
            const auto col = std::size_t(sc.column);
            if (m.cellIsNumber(r, col))
                worksheet_write_number(ws, row, c, m.cellNumber(r, col), numberFormats[col]);
            else
                text(c, m.cellText(r, col), textFormat);
        }
        ++row;
        for (std::size_t level = levels; level-- > 0;) {
            const RowRange& g = m.groups(level)[next[level]];
            if (g.first + g.count - 1 != r)
                continue;
            std::string footer;
            for (const TextTemplate& t : def.groups[level].footer)
                footer += (footer.empty() ? "" : " – ") + m.evaluate(t, g);
            if (!footer.empty() || def.hasSums())
                sumsRow(footer.empty() ? "Summe" : footer, g, footerFormat);
            ++next[level];
        }
    }
    if (m.rowCount() == 0) {
        text(0, def.emptyText, infoFormat);
        ++row;
    }

    ++row;
    if (def.hasSums())
        sumsRow(def.totalsLabel, m.all(), headingFormat);
    for (const TextTemplate& t : def.summary) {
        text(0, m.evaluate(t, m.all()), textFormat);
        ++row;
    }
    for (std::size_t b = 0; b < def.breakdowns.size(); ++b) {
        ++row;
        text(0, def.breakdowns[b].heading, headingFormat);
        worksheet_write_blank(ws, row, 1, headingFormat);
        ++row;
        for (const BreakdownLine& line : m.breakdowns()[b]) {
            text(0, line.value, textFormat);
            worksheet_write_number(ws, row, 1, line.number, nullptr);
            ++row;
        }
    }
    sheet.close();
}

void writePlainWorkbook(const std::string& path, const std::string& title, const std::vector<PlainTable>& tables)
{
    for (const PlainTable& t : tables)
        if (t.rows.size() + 1 > kMaxRows)
            throw ReportError("Der Bericht hat zu viele Zeilen für eine Excel-Tabelle (höchstens 1.048.576).");
    SheetWriter sheet(path);
    lxw_workbook* wb = sheet.wb();
    std::string documentTitle = cellString(title);
    lxw_doc_properties properties{};
    properties.title = documentTitle.data();
    workbook_set_properties(wb, &properties);
    lxw_format* headingFormat = workbook_add_format(wb);
    format_set_bold(headingFormat);
    format_set_bg_color(headingFormat, 0xE1E7ED);
    format_set_bottom(headingFormat, LXW_BORDER_THIN);
    format_set_font_name(headingFormat, "Arial");
    format_set_font_size(headingFormat, 10);
    lxw_format* textFormat = workbook_add_format(wb);
    format_set_font_name(textFormat, "Arial");
    format_set_font_size(textFormat, 10);
    format_set_num_format(textFormat, "@");

    for (const PlainTable& t : tables) {
        const std::string name = sheetName(t.name);
        lxw_worksheet* ws = workbook_add_worksheet(wb, name.c_str());
        if (!ws)
            sheet.fail();
        // With constant memory the widths come before the rows: each column as wide as its longest text.
        for (std::size_t c = 0; c < t.headings.size(); ++c) {
            qsizetype width = QString::fromStdString(t.headings[c]).size();
            for (const auto& row : t.rows)
                if (c < row.size())
                    width = std::max(width, QString::fromStdString(row[c]).size());
            worksheet_set_column(ws, lxw_col_t(c), lxw_col_t(c), std::clamp(double(width) + 2, 8.0, 60.0), nullptr);
        }
        for (std::size_t c = 0; c < t.headings.size(); ++c)
            worksheet_write_string(ws, 0, lxw_col_t(c), cellString(t.headings[c]).c_str(), headingFormat);
        worksheet_freeze_panes(ws, 1, 0);
        for (std::size_t r = 0; r < t.rows.size(); ++r)
            for (std::size_t c = 0; c < t.rows[r].size(); ++c)
                worksheet_write_string(ws, lxw_row_t(r + 1), lxw_col_t(c), cellString(t.rows[r][c]).c_str(),
                                       textFormat);
    }
    sheet.close();
}

} // namespace qi
