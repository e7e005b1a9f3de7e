#pragma once
// How the fields of a record class travel to and from the columns of its table:
// one list for writing (record → row, without lID) and one for reading
// (row → record), each in the order in which the columns are named.

#include "Records.h"
#include "TableRecordset.h"

#include <span>
#include <vector>
#include <variant>

namespace qi {

template <class Rec>
struct FieldMap {
    const char* column;
    std::variant<std::string Rec::*, std::int32_t Rec::*, std::int16_t Rec::*, JetDate Rec::*> member;
    /// Null reads as an empty text instead of failing the read.
    bool nullAsEmpty = false;
};

/// The table of a record class and its two field lists.
template <class Rec>
struct RecordTable;

namespace detail {
[[noreturn]] inline void invalidUseOfNull(const char* column)
{
    throw DbError(94, std::string("Unzulässige Verwendung von Null (") + column + ").");
}
} // namespace detail

/// The column position of each field of a list in the recordset's table (-1 for a
/// column the table lacks), found once per table.
template <class Rec>
const std::vector<int>& columnPositions(const TableRecordset& rs, std::span<const FieldMap<Rec>> fields)
{
    std::vector<int>& positions = rs.info().listPositions[fields.data()];
    if (positions.size() != fields.size()) {
        positions.clear();
        for (const auto& f : fields)
            positions.push_back(rs.info().column(f.column));
    }
    return positions;
}

/// Record → current row, column by column.
template <class Rec>
void writeFields(TableRecordset& rs, const Rec& rec, std::span<const FieldMap<Rec>> fields)
{
    const std::vector<int>& positions = columnPositions(rs, fields);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto& f = fields[i];
        // A column the table lacks raises its error here.
        const int at = positions[i] >= 0 ? positions[i] : rs.columnIndex(f.column);
        std::visit(
            [&](auto member) {
                using T = std::remove_cvref_t<decltype(rec.*member)>;
                if constexpr (std::is_same_v<T, std::string>)
                    rs.setField(at, rec.*member);
                else if constexpr (std::is_same_v<T, JetDate>)
                    rs.setField(at, (rec.*member).toStorageText());
                else
                    rs.setField(at, std::int64_t{rec.*member});
            },
            f.member);
    }
}

namespace detail {
/// One value → the record's field, converted to the field's type.
template <class Rec>
void readField(const Value& v, Rec& rec, const FieldMap<Rec>& f)
{
    std::visit(
        [&](auto member) {
            using T = std::remove_cvref_t<decltype(rec.*member)>;
            if (isNull(v)) {
                if constexpr (std::is_same_v<T, std::string>) {
                    if (f.nullAsEmpty) {
                        (rec.*member).clear();
                        return;
                    }
                }
                invalidUseOfNull(f.column);
            }
            if constexpr (std::is_same_v<T, std::string>)
                rec.*member = toText(v);
            else if constexpr (std::is_same_v<T, JetDate>)
                rec.*member = JetDate::fromStorageText(toText(v));
            else if constexpr (std::is_same_v<T, std::int16_t>)
                rec.*member = toInt16(v);
            else
                rec.*member = toInt32(v);
        },
        f.member);
}
} // namespace detail

/// Current row → record, converting each value to the field's type.
template <class Rec, class Row>
void readFields(const Row& row, Rec& rec, std::span<const FieldMap<Rec>> fields)
{
    for (const auto& f : fields)
        detail::readField(row.field(f.column), rec, f);
}

/// The same from a table recordset, whose column positions are known.
template <class Rec>
void readFields(const TableRecordset& rs, Rec& rec, std::span<const FieldMap<Rec>> fields)
{
    const std::vector<int>& positions = columnPositions(rs, fields);
    for (std::size_t i = 0; i < fields.size(); ++i)
        detail::readField(rs.field(positions[i] >= 0 ? positions[i] : rs.columnIndex(fields[i].column)), rec,
                          fields[i]);
}

} // namespace qi
