#pragma once
// Where each number of the project result occurs: the scans (P_Scan) and difference rows
// (P_Diff) that the lists across orders work on, noted while the orders' rows are written or
// found afterwards by one walk over each table. Numbers and orders are told apart as the order
// database compares them (letter case and trailing blanks ignored).

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qi {

class Database;

class NumberSightings {
public:
    /// A scan of `number` by `order`, the row `rowid` of P_Scan.
    void noteScan(std::int64_t rowid, std::string_view number, std::string_view order);
    /// The row `rowid` of P_Diff with its type and numbers.
    void noteListRow(std::int64_t rowid, std::string_view typ, std::string_view soll, std::string_view ist);
    /// Notes every row of P_Scan and P_Diff of `result`.
    void noteAll(Database& result);

    /// Fills the temporary tables Diff and Scan of `result` with the rows the lists ask for, each
    /// with its rowid: the difference rows of a missing ("3b"), surplus ("2b") or unknown ("2c")
    /// object, the rows that expect a surplus number, and every scan of a number that one of
    /// these rows names or that more than one order scanned. A few more rows may come along;
    /// the lists ask the rows themselves.
    void writeListRows(Database& result) const;

private:
    /// What a row is to its number.
    enum class Role : std::uint8_t { Scan, Missing, Unknown, Surplus, Expecting };

    /// A row of P_Scan or P_Diff by the hash of its folded number: rows of numbers that compare
    /// equal have the same hash; rows of a few other numbers may share it, and are taken along.
    struct Sighting {
        std::uint64_t number;
        std::int64_t rowid;
        std::int32_t order;
        Role role;
    };

    /// The role of a difference row of type `typ` as the row of its number; none for the other types.
    static std::optional<Role> roleOf(std::string_view typ);
    int orderId(std::string_view order);

    std::vector<Sighting> sightings_;
    std::unordered_map<std::string, int> orders_;
    std::string lastOrder_;
    int lastOrderId_ = -1;
    std::string lastTyp_;
    std::optional<Role> lastRole_;
};

} // namespace qi
