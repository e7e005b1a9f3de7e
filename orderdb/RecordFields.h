#pragma once
// How the fields of a record class travel to and from the columns of its table:
// one list for writing (record → row, without lID) and one for reading
// (row → record), each in the order in which the columns are named.

#include "Records.h"
#include "TableRecordset.h"

#include <span>
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

/// Record → current row, column by column.
template <class Rec>
void writeFields(TableRecordset& rs, const Rec& rec, std::span<const FieldMap<Rec>> fields)
{
    for (const auto& f : fields) {
        std::visit(
            [&](auto member) {
                using T = std::remove_cvref_t<decltype(rec.*member)>;
                if constexpr (std::is_same_v<T, std::string>)
                    rs.setField(f.column, rec.*member);
                else if constexpr (std::is_same_v<T, JetDate>)
                    rs.setField(f.column, (rec.*member).toStorageText());
                else
                    rs.setField(f.column, std::int64_t{rec.*member});
            },
            f.member);
    }
}

/// Current row → record, converting each value to the field's type.
template <class Rec, class Row>
void readFields(const Row& row, Rec& rec, std::span<const FieldMap<Rec>> fields)
{
    for (const auto& f : fields) {
        const Value& v = row.field(f.column);
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
                    detail::invalidUseOfNull(f.column);
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
}

} // namespace qi
