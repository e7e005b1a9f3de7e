#include "TableRecordset.h"

#include "JetCollation.h"
#include "SqlName.h"
#include "Value.h"

namespace qi {

namespace {

[[noreturn]] void noCurrentRecord() { throw DbError(dberr::NoCurrentRecord, "Kein aktueller Datensatz."); }

} // namespace

TableRecordset::TableRecordset(Database& db, std::string_view table) : db_(db), info_(db.tableInfo(table))
{
    if (info_.keyColumn < 0)
        throw DbError(dberr::ItemNotFound, "Die Tabelle '" + info_.name + "' hat keinen Primärschlüssel.");
}

TableRecordset::~TableRecordset()
{
    try {
        abandonNew();
    } catch (...) {
        // The key may be handed out again only if the whole transaction is undone.
    }
}

void TableRecordset::abandonNew()
{
    if (mode_ != Mode::Add)
        return;
    mode_ = Mode::None;
    hasCurrent_ = false;
    db_.consumeAutoNumber(info_, toLong(current_[std::size_t(info_.keyColumn)]));
}

void TableRecordset::setIndex(std::string_view name)
{
    if (!jetEqual(name, "PrimaryKey"))
        throw DbError(dberr::ItemNotFound, "'" + std::string(name) + "' ist kein Index dieser Tabelle.");
}

bool TableRecordset::seek(std::int64_t key)
{
    if (mode_ != Mode::None)
        cancelUpdate();
    Statement& st = db_.prepare(info_.selectByKeySql);
    st.bindAll({key});
    noMatch_ = !st.step();
    if (!noMatch_) {
        current_.resize(info_.columns.size());
        for (std::size_t i = 0; i < info_.columns.size(); ++i)
            current_[i] = st.column(int(i));
    }
    st.reset();
    hasCurrent_ = !noMatch_;
    return hasCurrent_;
}

std::size_t TableRecordset::recordCount()
{
    return std::size_t(toLong(db_.scalar("SELECT count(*) FROM " + sqlName(info_.name))));
}

void TableRecordset::takeWalkRow()
{
    hasCurrent_ = onRow_;
    if (!onRow_)
        return;
    current_.resize(info_.columns.size());
    for (std::size_t i = 0; i < info_.columns.size(); ++i)
        current_[i] = walk_->column(int(i));
}

bool TableRecordset::moveFirst()
{
    if (mode_ != Mode::None)
        cancelUpdate();
    if (!walk_)
        walk_ = db_.prepareOwn("SELECT * FROM " + sqlName(info_.name) + " ORDER BY rowid");
    walk_->reset();
    onRow_ = walk_->step();
    takeWalkRow();
    return onRow_;
}

void TableRecordset::moveNext()
{
    if (!onRow_)
        return;
    onRow_ = walk_->step();
    takeWalkRow();
}

std::int64_t TableRecordset::addNew()
{
    if (mode_ != Mode::None)
        cancelUpdate();
    current_.assign(info_.columns.size(), Value{});
    for (std::size_t i = 0; i < info_.columns.size(); ++i)
        current_[i] = info_.columns[i].defaultValue;
    const std::int64_t key = db_.reserveAutoNumber(info_);
    current_[std::size_t(info_.keyColumn)] = key;
    mode_ = Mode::Add;
    hasCurrent_ = true;
    return key;
}

void TableRecordset::edit()
{
    if (!hasCurrent_)
        noCurrentRecord();
    mode_ = Mode::Edit;
}

void TableRecordset::update()
{
    if (mode_ == Mode::None)
        throw DbError(dberr::UpdateWithoutEdit, "Aktualisieren ohne AddNew oder Edit.");
    if (mode_ == Mode::Add) {
        Statement& st = db_.prepare(info_.insertSql);
        st.bindAll(current_);
        st.step();
        st.reset();
    } else {
        Statement& st = db_.prepare(info_.updateSql);
        st.bindAll(current_);
        st.bind(int(info_.columns.size() + 1), current_[std::size_t(info_.keyColumn)]);
        st.step();
        st.reset();
    }
    mode_ = Mode::None;
}

void TableRecordset::cancelUpdate()
{
    if (mode_ == Mode::Add)
        abandonNew();
    mode_ = Mode::None;
}

void TableRecordset::remove()
{
    if (!hasCurrent_ || mode_ == Mode::Add)
        noCurrentRecord();
    db_.execute(info_.deleteSql, {current_[std::size_t(info_.keyColumn)]});
    hasCurrent_ = false;
    mode_ = Mode::None;
}

int TableRecordset::columnIndex(std::string_view column) const
{
    const int i = info_.column(column);
    if (i < 0)
        throw DbError(dberr::ItemNotFound, "Element in dieser Auflistung nicht gefunden (" + std::string(column) + ").");
    return i;
}

const Value& TableRecordset::field(std::string_view column) const { return field(columnIndex(column)); }

const Value& TableRecordset::field(int position) const
{
    if (!hasCurrent_)
        noCurrentRecord();
    return current_[std::size_t(position)];
}

void TableRecordset::setField(std::string_view column, Value value) { setField(columnIndex(column), std::move(value)); }

void TableRecordset::setField(int i, Value value)
{
    if (mode_ == Mode::None)
        throw DbError(dberr::UpdateWithoutEdit, "Aktualisieren ohne AddNew oder Edit.");
    if (i == info_.keyColumn)
        throw DbError(dberr::General, "Das Feld '" + info_.columns[std::size_t(i)].name + "' kann nicht aktualisiert werden.");
    if (info_.columns[std::size_t(i)].isInteger16 && !isNull(value)) {
        const std::int64_t n = toLong(value);
        if (n < -32768 || n > 32767)
            throw DbError(dberr::NumericOverflow, "Numerischer Feldüberlauf.");
        value = n;
    }
    if (const std::size_t size = info_.columns[std::size_t(i)].textSize; size > 0 && db_.limitsText())
        if (const auto* text = std::get_if<std::string>(&value))
            if (const std::size_t length = characterCount(*text); length > size)
                throw DbError(dberr::FieldTooSmall, "Der Wert für das Feld '" + info_.columns[std::size_t(i)].name +
                                                        "' der Tabelle '" + info_.name + "' ist " +
                                                        std::to_string(length) + " Zeichen lang; das Feld nimmt höchstens " +
                                                        std::to_string(size) + " Zeichen auf.");
    current_[std::size_t(i)] = std::move(value);
}

} // namespace qi
