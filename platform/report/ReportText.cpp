#include "Report.h"

namespace qi {

namespace {

std::string joinCells(const std::vector<std::string>& cells)
{
    std::string out;
    for (std::size_t i = 0; i < cells.size(); ++i)
        out += (i ? " | " : "") + cells[i];
    return out;
}

/// Line breaks inside a value shown as " / ", so that every band stays one line of text.
std::string flat(std::string s)
{
    for (std::size_t p = s.find_first_of("\r\n"); p != std::string::npos; p = s.find_first_of("\r\n", p)) {
        const std::size_t end = s.find_first_not_of("\r\n", p);
        s.replace(p, (end == std::string::npos ? s.size() : end) - p, " / ");
        p += 3;
    }
    return s;
}

} // namespace

std::string Report::text() const
{
    const ReportLayout& l = layout();
    const ReportModel& m = model();
    const ReportDefinition& def = m.definition();
    const int pages = l.pageCount();
    const RowRange all = m.all();
    std::string out;
    auto line = [&](const std::string& s) { out += s + "\n"; };

    for (int page = 0; page < pages; ++page) {
        const int number = page + 1;
        line("=== Seite " + std::to_string(number) + " von " + std::to_string(pages) + " ===");
        std::vector<std::string> head{m.evaluate(def.pageTitle, all, number, pages)};
        for (const TextTemplate& t : def.pageHeaderLeft)
            head.push_back(m.evaluate(t, all, number, pages));
        for (const TextTemplate& t : def.pageHeaderRight)
            head.push_back(m.evaluate(t, all, number, pages));
        line(joinCells(head));
        for (const Band& b : l.bands(page)) {
            switch (b.kind) {
            case Band::Kind::ReportHeader:
                line(m.evaluate(def.reportHeader[b.index], all, number, pages));
                break;
            case Band::Kind::ColumnHeadings: {
                std::vector<std::string> cells;
                for (const ColumnDef& c : def.columns)
                    cells.push_back(c.heading);
                line("[" + joinCells(cells) + "]");
                break;
            }
            case Band::Kind::GroupHeader: {
                const RowRange& g = m.groups(b.level)[b.index];
                std::vector<std::string> lines;
                for (const TextTemplate& t : def.groups[b.level].header)
                    lines.push_back(m.evaluate(t, g, number, pages));
                if (lines.empty())
                    lines.push_back(m.fieldText(g.first, m.groupField(b.level)));
                if (b.continued)
                    lines = {lines.front() + " (Fortsetzung)"};
                line(std::string(b.level + 1, '#') + " " + joinCells(lines));
                break;
            }
            case Band::Kind::Row: {
                std::vector<std::string> cells;
                for (std::size_t c = 0; c < def.columns.size(); ++c)
                    cells.push_back(flat(m.cellText(b.index, c)));
                line("  " + joinCells(cells));
                break;
            }
            case Band::Kind::GroupFooter: {
                const RowRange& g = m.groups(b.level)[b.index];
                std::vector<std::string> cells;
                for (const TextTemplate& t : def.groups[b.level].footer)
                    cells.push_back(m.evaluate(t, g, number, pages));
                for (std::size_t c = 0; c < def.columns.size(); ++c)
                    if (def.columns[c].sum)
                        cells.push_back(def.columns[c].heading + ": " + m.columnSum(c, g));
                line("  = " + joinCells(cells));
                break;
            }
            case Band::Kind::Totals: {
                std::vector<std::string> cells{def.totalsLabel};
                for (std::size_t c = 0; c < def.columns.size(); ++c)
                    if (def.columns[c].sum)
                        cells.push_back(def.columns[c].heading + ": " + m.columnSum(c, all));
                line("== " + joinCells(cells));
                break;
            }
            case Band::Kind::SummaryLine:
                line(m.evaluate(def.summary[b.index], all, number, pages));
                break;
            case Band::Kind::BreakdownHeading:
                line(def.breakdowns[b.index].heading + ":");
                break;
            case Band::Kind::BreakdownLine: {
                const BreakdownLine& bl = m.breakdowns()[b.level][b.index];
                line("  " + bl.value + ": " + bl.amount);
                break;
            }
            case Band::Kind::Empty:
                line(def.emptyText);
                break;
            }
        }
        std::vector<std::string> foot;
        for (const TextTemplate& t : def.pageFooterLeft)
            foot.push_back(m.evaluate(t, all, number, pages));
        for (const TextTemplate& t : def.pageFooterRight)
            foot.push_back(m.evaluate(t, all, number, pages));
        line("--- " + joinCells(foot));
    }
    return out;
}

} // namespace qi
