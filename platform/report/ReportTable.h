#pragma once
// The rows of a report as read from the report database: only the fields the
// definition uses, in report order, kept compactly (the texts packed in large blocks,
// a value the row above holds in the same field kept once, eight bytes per cell), so
// that lists of a million rows stay small.

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qi {

class ReportTable {
public:
    enum class Kind : std::uint8_t { Null, Integer, Real, Text };

    explicit ReportTable(std::vector<std::string> fields = {});

    std::size_t rowCount() const { return fields_.empty() ? 0 : cells_.size() / fields_.size(); }
    std::size_t fieldCount() const { return fields_.size(); }
    const std::string& fieldName(std::size_t field) const { return fields_[field]; }
    /// Position of a field by name, letter case ignored; -1 when there is none.
    int fieldIndex(std::string_view name) const;

    Kind kind(std::size_t row, std::size_t field) const { return Kind(cell(row, field).kind); }
    /// The value as text: texts as they are, numbers in their decimal form, Null as "".
    std::string_view text(std::size_t row, std::size_t field) const { return textOf(cell(row, field)); }
    /// The value as a number: numbers as they are, texts that hold a number, else 0.
    double number(std::size_t row, std::size_t field) const;
    /// Whether the value is a number or a text that holds one.
    bool isNumeric(std::size_t row, std::size_t field) const;
    /// Whether two rows hold the same value in a field (texts compared as the database does).
    bool sameValue(std::size_t rowA, std::size_t rowB, std::size_t field) const;

    /// Appends a value to the row being built (fields in order).
    void append(Kind kind, std::string_view text);

private:
    struct Cell {
        std::uint32_t offset; ///< in the text's blocks, counted over all of them
        std::uint32_t size : 30;
        std::uint32_t kind : 2;
    };
    /// The texts lie in blocks of 1 MiB (a longer text in a run of them), so that the memory
    /// grows by a block at a time and is never copied while the rows are read.
    static constexpr unsigned kBlockBits = 20;
    static constexpr std::size_t kBlockSize = std::size_t(1) << kBlockBits;

    const Cell& cell(std::size_t row, std::size_t field) const { return cells_[row * fields_.size() + field]; }
    std::string_view textOf(const Cell& c) const
    {
        if (c.size == 0)
            return {};
        return {blocks_[c.offset >> kBlockBits] + (c.offset & (kBlockSize - 1)), c.size};
    }
    /// Where a text of `size` bytes goes: the rest of the last block, else new blocks.
    std::uint32_t place(std::size_t size);

    std::vector<std::string> fields_;
    std::deque<Cell> cells_;
    std::vector<std::unique_ptr<char[]>> memory_;
    std::vector<char*> blocks_; ///< per block: its first byte
    std::size_t used_ = 0;            ///< bytes up to the next free one, over all blocks
};

/// Parses a whole decimal number ("12", "-3.5", "1e3"); false when the text is none.
bool parseNumber(std::string_view text, double& value);

} // namespace qi
