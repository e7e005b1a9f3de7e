#include "ReportTable.h"

#include "JetCollation.h"
#include "ReportError.h"

#include <QString>

#include <charconv>
#include <cstring>
#include <limits>

namespace qi {

bool parseNumber(std::string_view text, double& value)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    if (text.empty())
        return false;
    const auto [p, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    return ec == std::errc() && p == text.data() + text.size();
}

ReportTable::ReportTable(std::vector<std::string> fields) : fields_(std::move(fields)) {}

int ReportTable::fieldIndex(std::string_view name) const
{
    const QString wanted = QString::fromUtf8(name.data(), qsizetype(name.size()));
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (QString::fromStdString(fields_[i]).compare(wanted, Qt::CaseInsensitive) == 0)
            return int(i);
    return -1;
}

double ReportTable::number(std::size_t row, std::size_t field) const
{
    if (kind(row, field) == Kind::Null)
        return 0;
    double v = 0;
    return parseNumber(text(row, field), v) ? v : 0;
}

bool ReportTable::isNumeric(std::size_t row, std::size_t field) const
{
    switch (kind(row, field)) {
    case Kind::Integer:
    case Kind::Real:
        return true;
    case Kind::Text: {
        double v = 0;
        return parseNumber(text(row, field), v);
    }
    default:
        return false;
    }
}

bool ReportTable::sameValue(std::size_t rowA, std::size_t rowB, std::size_t field) const
{
    const Kind a = kind(rowA, field), b = kind(rowB, field);
    if (a == Kind::Null || b == Kind::Null)
        return a == b;
    if (a == Kind::Text || b == Kind::Text)
        return a == b && jetEqual(text(rowA, field), text(rowB, field));
    return number(rowA, field) == number(rowB, field);
}

void ReportTable::append(Kind kind, std::string_view text)
{
    constexpr std::size_t kMaxCell = (1u << 30) - 1;
    if (text.size() > kMaxCell)
        text = text.substr(0, kMaxCell);
    Cell c;
    c.size = std::uint32_t(text.size());
    c.kind = std::uint32_t(kind);
    // Rows come sorted by their groups: a value is most often the one the row before holds
    // in the same field (the room, its name, the category's long text), and is kept once.
    if (!fields_.empty() && cells_.size() >= fields_.size()) {
        const Cell& above = cells_[cells_.size() - fields_.size()];
        if (above.kind == c.kind && textOf(above) == text) {
            c.offset = above.offset;
            cells_.push_back(c);
            return;
        }
    }
    c.offset = text.empty() ? 0 : place(text.size());
    if (!text.empty())
        std::memcpy(blocks_[c.offset >> kBlockBits] + (c.offset & (kBlockSize - 1)), text.data(), text.size());
    cells_.push_back(c);
}

std::uint32_t ReportTable::place(std::size_t size)
{
    std::size_t at = used_;
    if (at + size > blocks_.size() * kBlockSize) {
        // The rest of the last block stays empty; the text begins a run of new blocks.
        at = blocks_.size() * kBlockSize;
        const std::size_t count = (size + kBlockSize - 1) / kBlockSize;
        if (at + count * kBlockSize > std::size_t(std::numeric_limits<std::uint32_t>::max()) + 1)
            throw ReportError("Der Bericht ist zu groß: seine Werte fassen mehr als 4 GB.");
        memory_.push_back(std::make_unique_for_overwrite<char[]>(count * kBlockSize));
        for (std::size_t b = 0; b < count; ++b)
            blocks_.push_back(memory_.back().get() + b * kBlockSize);
    }
    used_ = at + size;
    return std::uint32_t(at);
}

} // namespace qi
