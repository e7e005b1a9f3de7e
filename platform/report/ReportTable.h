#pragma once
// The rows of a report as read from the report database: only the fields the
// definition uses, in report order, kept compactly (one block of text for all
// values, eight bytes per cell), so that lists of a hundred thousand rows stay small.

#include <cstdint>
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
    std::string_view text(std::size_t row, std::size_t field) const
    {
        const Cell& c = cell(row, field);
        return std::string_view(arena_).substr(c.offset, c.size);
    }
    /// The value as a number: numbers as they are, texts that hold a number, else 0.
    double number(std::size_t row, std::size_t field) const;
    /// Whether the value is a number or a text that holds one.
    bool isNumeric(std::size_t row, std::size_t field) const;
    /// Whether two rows hold the same value in a field (texts compared as the database does).
    bool sameValue(std::size_t rowA, std::size_t rowB, std::size_t field) const;

    /// Appends a value to the row being built (fields in order).
    void append(Kind kind, std::string_view text);
    /// Bytes held by the rows.
    std::size_t memoryBytes() const { return arena_.capacity() + cells_.capacity() * sizeof(Cell); }

private:
    struct Cell {
        std::uint32_t offset;
        std::uint32_t size : 30;
        std::uint32_t kind : 2;
    };
    const Cell& cell(std::size_t row, std::size_t field) const { return cells_[row * fields_.size() + field]; }
    std::vector<std::string> fields_;
    std::vector<Cell> cells_;
    std::string arena_;
};

/// Parses a whole decimal number ("12", "-3.5", "1e3"); false when the text is none.
bool parseNumber(std::string_view text, double& value);

} // namespace qi
