#include "IndexesSetAside.h"

#include "SqlName.h"

namespace qi {

IndexesSetAside::IndexesSetAside(Database& db, const std::string& table) : db_(db)
{
    tx_.emplace(db_);
    const Recordset indexes = db_.query("SELECT name, sql FROM main.sqlite_master WHERE type = 'index' "
                                        "AND tbl_name = ?1 COLLATE NOCASE AND sql IS NOT NULL ORDER BY rowid",
                                        {table});
    for (const auto& index : indexes.rows()) {
        definitions_.push_back(toText(index[1]));
        db_.execute("DROP INDEX main." + sqlName(toText(index[0])));
    }
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
