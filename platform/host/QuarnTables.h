#pragma once
// The tables of Quarn that the system reads, as the local mirror keeps them:
// their names and the columns that statements and reports join or search on,
// which the mirror indexes.

#include <string>
#include <string_view>
#include <vector>

namespace qi {

struct QuarnTable {
    const char* name;
    /// Columns that get an index of their own in the mirror.
    std::vector<const char*> indexed;
};

/// T_Gebstru, T_Raumkern, the object and article tables of the three modules,
/// T_AnsprechPartner and T_KST.
const std::vector<QuarnTable>& quarnTables();

/// The table of that name (letter case ignored), or null when it is none of Quarn's tables the system reads.
const QuarnTable* findQuarnTable(std::string_view name);

/// The spelling of a column as the system writes it ("lId" for "LID"), or `column` itself
/// when it is no column of Quarn's tables that the system reads.
std::string quarnColumnName(const std::string& column);

} // namespace qi
