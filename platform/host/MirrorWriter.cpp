#include "MirrorWriter.h"

#include "DbError.h"
#include "FileSystem.h"
#include "JetCollation.h"
#include "QuarnTables.h"
#include "SqlName.h"
#include "SystemError.h"

#include <sqlite3.h>

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qi {

namespace {

constexpr const char* kMetaTable = "QI_Mirror";

const char* declaredType(MirrorType type)
{
    switch (type) {
    case MirrorType::Text: return "TEXT COLLATE JET";
    case MirrorType::Integer: return "INTEGER";
    case MirrorType::Real: return "DOUBLE";
    case MirrorType::Date: return "DATETIME";
    case MirrorType::Blob: return "BLOB";
    }
    return "TEXT COLLATE JET";
}

} // namespace

MirrorWriter::MirrorWriter(const std::string& path) : path_(path)
{
    removeFile(path);
    // The file is readable by its user alone from its first byte on: it holds Quarn's data.
    const int fd = ::open(nativePath(path).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd >= 0) {
        ::fchmod(fd, 0600);
        ::close(fd);
    }
    const int rc = sqlite3_open_v2(nativePath(path).c_str(), &db_,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX,
                                   nullptr);
    if (rc != SQLITE_OK)
        throw DbError(dberr::FileNotFound, "Die Datei '" + path + "' konnte nicht angelegt werden.");
    registerJetCollation(db_);
    // The file is only used once it is finished and renamed: nothing to protect while it is written.
    exec("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA cache_size = -65536;");
    exec(std::string("CREATE TABLE ") + kMetaTable + " (stIdentity TEXT NOT NULL);");
}

MirrorWriter::~MirrorWriter()
{
    if (insert_)
        sqlite3_finalize(insert_);
    sqlite3_close_v2(db_);
}

std::string MirrorWriter::failure(int rc) const
{
    // The engine's own words are English: the system's failure behind a failure of the file,
    // or the engine's number.
    const int primary = rc & 0xff;
    if (primary == SQLITE_IOERR || primary == SQLITE_FULL || primary == SQLITE_CANTOPEN)
        if (const int error = sqlite3_system_errno(db_); error != 0)
            return systemErrorReason(error) + ".";
    return "Fehler " + std::to_string(rc) + " des Datenbankmoduls.";
}

void MirrorWriter::check(int rc)
{
    if (rc != SQLITE_OK && rc != SQLITE_DONE && rc != SQLITE_ROW)
        throw DbError(dberr::General, "Der Spiegel '" + path_ + "' kann nicht geschrieben werden.\r\n" + failure(rc));
}

void MirrorWriter::exec(const std::string& sql) { check(sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr)); }

void MirrorWriter::attachReadOnly(const std::string& path, const std::string& alias)
{
    sqlite3_stmt* attach = nullptr;
    check(sqlite3_prepare_v2(db_, ("ATTACH DATABASE ?1 AS " + sqlName(alias)).c_str(), -1, &attach, nullptr));
    const std::string uri = readOnlyUri(nativePath(path));
    sqlite3_bind_text(attach, 1, uri.c_str(), -1, SQLITE_TRANSIENT);
    const int rc = sqlite3_step(attach);
    sqlite3_finalize(attach);
    check(rc);
}

void MirrorWriter::beginTable(const std::string& name, const std::vector<MirrorColumn>& columns)
{
    if (insert_) {
        sqlite3_finalize(insert_);
        insert_ = nullptr;
    }
    if (!inTransaction_) {
        exec("BEGIN");
        inTransaction_ = true;
    }
    table_ = name;
    columns_ = columns;
    rows_ = 0;
    std::string create = "CREATE TABLE main." + sqlName(name) + " (";
    std::string insert = "INSERT INTO main." + sqlName(name) + " VALUES (";
    for (std::size_t i = 0; i < columns.size(); ++i) {
        create += (i ? ", " : "") + sqlName(columns[i].name) + " " + declaredType(columns[i].type);
        insert += (i ? ", ?" : "?") + std::to_string(i + 1);
    }
    exec(create + ")");
    check(sqlite3_prepare_v2(db_, (insert + ")").c_str(), -1, &insert_, nullptr));
}

void MirrorWriter::setNull(int column) { check(sqlite3_bind_null(insert_, column + 1)); }

void MirrorWriter::setInteger(int column, std::int64_t value)
{
    check(sqlite3_bind_int64(insert_, column + 1, value));
}

void MirrorWriter::setReal(int column, double value) { check(sqlite3_bind_double(insert_, column + 1, value)); }

void MirrorWriter::setText(int column, std::string_view value)
{
    check(sqlite3_bind_text64(insert_, column + 1, value.data(), value.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
}

void MirrorWriter::setBlob(int column, const void* data, std::size_t size)
{
    check(sqlite3_bind_blob64(insert_, column + 1, data, size, SQLITE_TRANSIENT));
}

void MirrorWriter::insertRow()
{
    check(sqlite3_step(insert_));
    check(sqlite3_reset(insert_));
    check(sqlite3_clear_bindings(insert_));
    ++rows_;
}

void MirrorWriter::copyRows(const std::string& alias, const std::string& table)
{
    exec("INSERT INTO main." + sqlName(table_) + " SELECT * FROM " + sqlName(alias) + "." + sqlName(table));
    rows_ += sqlite3_changes64(db_);
}

void MirrorWriter::endTable()
{
    if (insert_) {
        sqlite3_finalize(insert_);
        insert_ = nullptr;
    }
    const QuarnTable* quarn = findQuarnTable(table_);
    if (!quarn)
        return;
    for (const char* column : quarn->indexed) {
        const auto it = std::find_if(columns_.begin(), columns_.end(),
                                     [&](const MirrorColumn& c) { return quarnColumnName(c.name) == column; });
        if (it != columns_.end())
            exec("CREATE INDEX main." + sqlName(table_ + "_" + column) + " ON " + sqlName(table_) + " (" +
                 sqlName(it->name) + ")");
    }
}

void MirrorWriter::finish(const std::string& identity)
{
    if (!inTransaction_) {
        exec("BEGIN");
        inTransaction_ = true;
    }
    sqlite3_stmt* note = nullptr;
    check(sqlite3_prepare_v2(db_, (std::string("INSERT INTO main.") + kMetaTable + " VALUES (?1)").c_str(), -1, &note,
                             nullptr));
    sqlite3_bind_text(note, 1, identity.c_str(), -1, SQLITE_TRANSIENT);
    const int rc = sqlite3_step(note);
    sqlite3_finalize(note);
    check(rc);
    exec("COMMIT");
    inTransaction_ = false;
}

std::string MirrorWriter::identityOf(const std::string& path)
{
    if (!fileExists(path))
        return {};
    sqlite3* db = nullptr;
    std::string identity;
    if (sqlite3_open_v2(nativePath(path).c_str(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr) ==
        SQLITE_OK) {
        sqlite3_stmt* st = nullptr;
        if (sqlite3_prepare_v2(db, (std::string("SELECT stIdentity FROM ") + kMetaTable).c_str(), -1, &st, nullptr) ==
                SQLITE_OK &&
            sqlite3_step(st) == SQLITE_ROW) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(st, 0));
            identity = text ? text : "";
        }
        sqlite3_finalize(st);
    }
    sqlite3_close_v2(db);
    return identity;
}

} // namespace qi
