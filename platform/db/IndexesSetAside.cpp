#include "IndexesSetAside.h"

#include "SqlName.h"

namespace qi {

std::vector<std::string> dropMadeIndexes(Database& db, const std::string& table)
{
    const Recordset indexes = db.query("SELECT name, sql FROM main.sqlite_master WHERE type = 'index' "
                                       "AND (?1 = '' OR tbl_name = ?1 COLLATE NOCASE) AND sql IS NOT NULL "
                                       "ORDER BY rowid",
                                       {table});
    std::vector<std::string> definitions;
    for (const auto& index : indexes.rows()) {
        definitions.push_back(toText(index[1]));
        db.execute("DROP INDEX main." + sqlName(toText(index[0])));
    }
    return definitions;
}

IndexesSetAside::IndexesSetAside(Database& db, const std::string& table) : db_(db)
{
    tx_.emplace(db_);
    definitions_ = dropMadeIndexes(db_, table);
}

IndexesSetAside::~IndexesSetAside()
{
    try {
        restore();
    } catch (...) {
        // restore undid the rows written meanwhile: the table keeps its indexes.
    }
}

void IndexesSetAside::restore()
{
    if (!tx_)
        return;
    try {
        for (const std::string& definition : definitions_)
            db_.execute(definition);
        tx_->commit();
        tx_.reset();
    } catch (...) {
        tx_->rollback();
        tx_.reset();
        throw;
    }
}

} // namespace qi
