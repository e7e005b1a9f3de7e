#include "FileSystem.h"
#include "Report.h"
#include "ReportError.h"

#include <cstdio>
#include <memory>

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
    std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(nativePath(path).c_str(), "wb"), &std::fclose);
    if (!file)
        throw ReportError("Die Datei '" + displayPath(path) + "' kann nicht geschrieben werden.");

    std::string out = "\xEF\xBB\xBF";
    auto endLine = [&] {
        out.back() = '\r'; // every field ends in a separator; the last one's becomes the line end
        out += '\n';
        if (out.size() > (1 << 20)) {
            if (std::fwrite(out.data(), 1, out.size(), file.get()) != out.size())
                throw ReportError("Die Datei '" + displayPath(path) + "' kann nicht geschrieben werden.");
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
            if (m.cellIsNumber(r, c) && def.columns[c].format.kind == ValueFormat::Kind::Number)
                out += formatNumber(m.cellNumber(r, c), def.columns[c].format.decimals, false);
            else if (m.cellIsNumber(r, c))
                out += formatNumber(m.cellNumber(r, c), -1, false);
            else
                out += csvField(m.cellText(r, c));
            out += ';';
        }
        endLine();
    }
    if (std::fwrite(out.data(), 1, out.size(), file.get()) != out.size() || std::fflush(file.get()) != 0)
        throw ReportError("Die Datei '" + displayPath(path) + "' kann nicht geschrieben werden.");
}

} // namespace qi
