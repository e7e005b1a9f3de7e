#include "DatabaseStructure.h"

namespace qi {

Structure structureMadeBy(const std::function<void(Database&)>& makeSchema)
{
    auto db = Database::inMemory();
    makeSchema(*db);
    Structure out;
    const Recordset tables =
        db->query("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' "
                  "ORDER BY rowid");
    for (const auto& t : tables.rows()) {
        TableStructure table{toText(t[0]), {}};
        const Recordset columns = db->query("SELECT name FROM pragma_table_info(?1)", {table.name});
        for (const auto& c : columns.rows())
            table.columns.push_back(toText(c[0]));
        out.push_back(std::move(table));
    }
    return out;
}

std::string missingStructure(Database& db, const Structure& expected)
{
    for (const TableStructure& table : expected) {
        if (!db.tableExists(table.name))
            return "die Tabelle " + table.name + " fehlt";
        const Recordset present = db.query("SELECT name FROM pragma_table_info(?1)", {table.name});
        for (const std::string& column : table.columns) {
            bool found = false;
            for (const auto& row : present.rows())
                found = found || sameName(toText(row[0]), column);
            if (!found)
                return "in der Tabelle " + table.name + " fehlt die Spalte " + column;
        }
    }
    return {};
}

} // namespace qi
