#include "JetFile.h"

#include "DbError.h"
#include "FileSystem.h"
#include "JetDate.h"
#include "MirrorWriter.h"
#include "QuarnTables.h"

#include <mdbtools.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <memory>
#include <vector>

namespace qi {

namespace {

/// Days of 1.1.100 and of 31.12.9999 counted from 30.12.1899: Jet's date range.
constexpr double kFirstJetDay = -657434.0;
constexpr double kLastJetDay = 2958465.0;
/// Offsets inside a row are 13 bits; the upper bits flag deleted and lookup rows.
constexpr int kOffsetMask = 0x1fff;
/// What libmdb copies of an OLE value into its bound buffer at most in one go.
constexpr std::size_t kOleBuffer = MDB_BIND_SIZE * 64 + MDB_PGSIZE;
/// The text libmdb converts is at most three UTF-8 bytes for each stored byte.
constexpr std::size_t kUtf8PerByte = 3;

struct HandleCloser {
    void operator()(MdbHandle* h) const { mdb_close(h); }
};
struct TableFreer {
    void operator()(MdbTableDef* t) const { mdb_free_tabledef(t); }
};

MirrorType mirrorType(int colType)
{
    switch (colType) {
    case MDB_BOOL:
    case MDB_BYTE:
    case MDB_INT:
    case MDB_LONGINT:
    case MDB_COMPLEX: return MirrorType::Integer;
    case MDB_MONEY:
    case MDB_FLOAT:
    case MDB_DOUBLE:
    case MDB_NUMERIC: return MirrorType::Real;
    case MDB_DATETIME: return MirrorType::Date;
    case MDB_OLE:
    case MDB_BINARY: return MirrorType::Blob;
    default: return MirrorType::Text;
    }
}

/// Reads the table's rows into the mirror's current table.
class TableReader {
public:
    TableReader(MdbHandle* mdb, MdbTableDef* table, MirrorWriter& mirror)
        : mdb_(mdb), table_(table), mirror_(mirror), fields_(table->num_cols)
    {
        for (unsigned i = 0; i < table->num_cols; ++i) {
            auto* col = static_cast<MdbColumn*>(g_ptr_array_index(table->columns, i));
            if (col->col_type == MDB_OLE) {
                oleBuffers_.emplace_back(kOleBuffer);
                mdb_bind_column(table, int(i) + 1, oleBuffers_.back().data(), nullptr);
            }
        }
    }

    void readAll()
    {
        mdb_rewind_table(table_);
        while (mdb_fetch_row(table_))
            readRow();
    }

private:
    void readRow()
    {
        // The row just fetched, taken apart once more for the values as stored.
        int start = 0;
        std::size_t size = 0;
        if (table_->cur_row == 0 || mdb_find_row(mdb_, int(table_->cur_row) - 1, &start, &size) != 0)
            throw DbError(dberr::UnrecognizedFormat, "row");
        start &= kOffsetMask;
        const int count = mdb_crack_row(table_, start, size, fields_.data());
        if (count < 0 || unsigned(count) < table_->num_cols)
            throw DbError(dberr::UnrecognizedFormat, "row");
        for (unsigned i = 0; i < table_->num_cols; ++i) {
            const MdbField& f = fields_[i];
            if (f.colnum < 0 || unsigned(f.colnum) >= table_->num_cols)
                throw DbError(dberr::UnrecognizedFormat, "column");
            auto* col = static_cast<MdbColumn*>(g_ptr_array_index(table_->columns, f.colnum));
            value(f.colnum, *col, f);
        }
        mirror_.insertRow();
    }

    void value(int column, MdbColumn& col, const MdbField& f)
    {
        unsigned char* page = mdb_->pg_buf;
        // A Boolean keeps its value in the row's null mask: a set bit is True.
        if (col.col_type == MDB_BOOL) {
            mirror_.setInteger(column, f.is_null ? 0 : -1);
            return;
        }
        if (f.is_null) {
            mirror_.setNull(column);
            return;
        }
        if (f.start < 0 || f.siz < 0 || f.start + f.siz > int(mdb_->fmt->pg_size))
            throw DbError(dberr::UnrecognizedFormat, "field");
        switch (col.col_type) {
        case MDB_BYTE: mirror_.setInteger(column, mdb_get_byte(page, f.start)); break;
        case MDB_INT: mirror_.setInteger(column, std::int16_t(mdb_get_int16(page, f.start))); break;
        case MDB_LONGINT:
        case MDB_COMPLEX: mirror_.setInteger(column, std::int32_t(mdb_get_int32(page, f.start))); break;
        case MDB_FLOAT: mirror_.setReal(column, double(mdb_get_single(page, f.start))); break;
        case MDB_DOUBLE: mirror_.setReal(column, mdb_get_double(page, f.start)); break;
        case MDB_MONEY: {
            // A 64-bit whole number of ten-thousandths.
            std::int64_t scaled = 0;
            std::memcpy(&scaled, page + f.start, sizeof scaled);
            mirror_.setReal(column, double(scaled) / 10000.0);
            break;
        }
        case MDB_NUMERIC: {
            char* text = mdb_numeric_to_string(mdb_, f.start, col.col_scale, col.col_prec);
            mirror_.setReal(column, text ? std::strtod(text, nullptr) : 0.0);
            g_free(text);
            break;
        }
        case MDB_DATETIME: {
            const double serial = mdb_get_double(page, f.start);
            const std::string text = jetDateText(serial);
            if (text.empty())
                mirror_.setReal(column, serial);
            else
                mirror_.setText(column, text);
            break;
        }
        case MDB_TEXT: {
            std::vector<char> out(std::size_t(f.siz) * kUtf8PerByte + 16);
            mdb_unicode2ascii(mdb_, reinterpret_cast<const char*>(page + f.start), std::size_t(f.siz), out.data(),
                              out.size());
            mirror_.setText(column, std::string_view(out.data()));
            break;
        }
        case MDB_MEMO: {
            // libmdb converts a memo into a buffer of its bind size: make room for the whole text.
            std::size_t stored = 0;
            if (f.siz >= MDB_MEMO_OVERHEAD)
                stored = std::size_t(mdb_get_int32(page, f.start)) & 0x00ffffffu;
            mdb_set_bind_size(mdb_, std::max<std::size_t>(MDB_BIND_SIZE, stored * kUtf8PerByte + 16));
            char* text = mdb_col_to_string(mdb_, page, f.start, MDB_MEMO, f.siz);
            mdb_set_bind_size(mdb_, MDB_BIND_SIZE);
            mirror_.setText(column, text ? std::string_view(text) : std::string_view());
            g_free(text);
            break;
        }
        case MDB_OLE: {
            std::size_t length = 0;
            void* data = col.cur_value_len > 0 ? mdb_ole_read_full(mdb_, &col, &length) : nullptr;
            mirror_.setBlob(column, data ? data : "", data ? length : 0);
            std::free(data);
            break;
        }
        case MDB_BINARY: mirror_.setBlob(column, page + f.start, std::size_t(f.siz)); break;
        case MDB_REPID: {
            char* text = mdb_uuid_to_string(page, f.start);
            mirror_.setText(column, text ? std::string_view(text) : std::string_view());
            g_free(text);
            break;
        }
        default: mirror_.setNull(column); break;
        }
    }

    MdbHandle* mdb_;
    MdbTableDef* table_;
    MirrorWriter& mirror_;
    std::vector<MdbField> fields_;
    std::vector<std::vector<char>> oleBuffers_;
};

} // namespace

int jetFileVersion(const std::string& path)
{
    std::ifstream in(nativePath(path), std::ios::binary);
    unsigned char head[0x15] = {};
    if (!in.read(reinterpret_cast<char*>(head), sizeof head))
        return 0;
    static const unsigned char magic[4] = {0x00, 0x01, 0x00, 0x00};
    if (std::memcmp(head, magic, 4) != 0)
        return 0;
    const std::string_view engine(reinterpret_cast<const char*>(head + 4), 16);
    if (engine != std::string_view("Standard Jet DB\0", 16) && engine != std::string_view("Standard ACE DB\0", 16))
        return 0;
    return head[0x14] == 0 ? 3 : 4;
}

std::string jetUnreadableMessage(const std::string& path)
{
    return "Die Jet-Datenbank '" + displayPath(path) + "' kann nicht gelesen werden. Sie ist beschädigt oder hat ein unbekanntes "
                                          "Format.";
}

std::string jetDateText(double serial)
{
    if (!std::isfinite(serial) || serial < kFirstJetDay || serial >= kLastJetDay + 1.0)
        return {};
    // Before 30.12.1899 the whole part counts back, the fraction is still the time of day.
    const double day = std::trunc(serial);
    return JetDate{day + std::fabs(serial - day)}.toStorageText();
}

void readJetFile(const std::string& path, MirrorWriter& mirror,
                 const std::function<bool(const std::string& table)>& wanted)
{
    const DbError unreadable(dberr::UnrecognizedFormat, jetUnreadableMessage(path));
    if (jetFileVersion(path) == 0)
        throw unreadable;
    std::unique_ptr<MdbHandle, HandleCloser> mdb(mdb_open(nativePath(path).c_str(), MDB_NOFLAGS));
    if (!mdb || !mdb_read_catalog(mdb.get(), MDB_TABLE))
        throw unreadable;
    try {
        for (unsigned i = 0; i < mdb->num_catalog; ++i) {
            auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(mdb->catalog, i));
            if (entry->object_type != MDB_TABLE || mdb_is_system_table(entry))
                continue;
            std::string name = entry->object_name;
            if (wanted && !wanted(name))
                continue;
            if (const QuarnTable* quarn = findQuarnTable(name))
                name = quarn->name;
            std::unique_ptr<MdbTableDef, TableFreer> table(mdb_read_table(entry));
            if (!table || !mdb_read_columns(table.get()))
                throw unreadable;
            std::vector<MirrorColumn> columns;
            for (unsigned c = 0; c < table->num_cols; ++c) {
                auto* col = static_cast<MdbColumn*>(g_ptr_array_index(table->columns, c));
                columns.push_back({quarnColumnName(col->name), mirrorType(col->col_type)});
            }
            mirror.beginTable(name, columns);
            TableReader(mdb.get(), table.get(), mirror).readAll();
            mirror.endTable();
        }
    } catch (const DbError& e) {
        if (e.number() == dberr::UnrecognizedFormat)
            throw unreadable;
        throw;
    }
}

} // namespace qi
