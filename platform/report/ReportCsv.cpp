#include "PlainTables.h"
#include "Report.h"
#include "ReportOutputFile.h"

namespace qi {

namespace {

/// A field of the file, in double quotes when it holds a separator, a quote or a line break.
std::string csvField(const std::string& value)
{
    if (value.find_first_of(";\"\r\n") == std::string::npos)
        return value;
    std::string out = "\"";
    for (char c : value) {
        if (c == '"')
            out += '"';
        out += c;
    }
    return out + "\"";
}

} // namespace

void Report::writeCsv(const std::string& path) const
{
    const ReportModel& m = model();
    const ReportDefinition& def = m.definition();
    ReportOutputFile file(path);

    std::string out = "\xEF\xBB\xBF";
    auto endLine = [&] {
        out.back() = '\r'; // every field ends in a separator; the last one's becomes the line end
        out += '\n';
        if (out.size() > (1 << 20)) {
            file.write(out);
            out.clear();
        }
    };
    for (const GroupDef& g : def.groups) {
        out += csvField(g.heading) + ';';
        for (const GroupFieldDef& e : g.extraFields)
            out += csvField(e.heading) + ';';
    }
    for (const ColumnDef& c : def.columns)
        out += csvField(c.heading) + ';';
    endLine();

    for (std::size_t r = 0; r < m.rowCount(); ++r) {
        for (std::size_t level = 0; level < def.groups.size(); ++level) {
            out += csvField(m.fieldText(r, m.groupField(level))) + ';';
            for (std::size_t e = 0; e < def.groups[level].extraFields.size(); ++e)
                out += csvField(m.fieldText(r, m.groupExtraField(level, e))) + ';';
        }
        for (std::size_t c = 0; c < def.columns.size(); ++c) {
            // Numbers without thousands separators, so that a spreadsheet reads them as numbers.
            if (m.cellIsNumber(r, c))
                out += formatNumber(m.cellNumber(r, c),
                                    def.columns[c].format.kind == ValueFormat::Kind::Number
                                        ? def.columns[c].format.decimals
                                        : -1,
                                    false);
            else
                out += csvField(m.cellText(r, c));
            out += ';';
        }
        endLine();
    }
    file.write(out);
    file.close();
}

void writePlainCsv(const std::string& path, const PlainTable& table)
{
    ReportOutputFile file(path);
    std::string out = "\xEF\xBB\xBF";
    auto line = [&](const std::vector<std::string>& cells) {
        for (std::size_t c = 0; c < cells.size(); ++c)
            out += (c ? ";" : "") + csvField(cells[c]);
        out += "\r\n";
        if (out.size() > (1 << 20)) {
            file.write(out);
            out.clear();
        }
    };
    line(table.headings);
    for (const auto& row : table.rows)
        line(row);
    file.write(out);
    file.close();
}

} // namespace qi
