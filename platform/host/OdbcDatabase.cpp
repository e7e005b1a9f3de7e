#include "OdbcDatabase.h"

#include "ConnectionString.h"
#include "HostSource.h"
#include "LinkedDatabase.h"
#include "MirrorWriter.h"
#include "QuarnTables.h"

#include <sql.h>
#include <sqlext.h>

#include <cstdio>
#include <vector>

namespace qi {

namespace {

/// Seconds to wait for a server before giving up.
constexpr SQLULEN kLoginTimeout = 10;
/// Characters of a long text read with one call.
constexpr SQLLEN kChunk = 4096;

/// UTF-16 as the driver manager hands it (SQLWCHAR) to UTF-8.
void appendUtf8(std::string& out, const SQLWCHAR* s, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i) {
        char32_t c = s[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < n && s[i + 1] >= 0xDC00 && s[i + 1] < 0xE000)
            c = 0x10000 + ((c - 0xD800) << 10) + (s[++i] - 0xDC00);
        if (c < 0x80) {
            out += char(c);
        } else if (c < 0x800) {
            out += char(0xC0 | (c >> 6));
            out += char(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += char(0xE0 | (c >> 12));
            out += char(0x80 | ((c >> 6) & 0x3F));
            out += char(0x80 | (c & 0x3F));
        } else {
            out += char(0xF0 | (c >> 18));
            out += char(0x80 | ((c >> 12) & 0x3F));
            out += char(0x80 | ((c >> 6) & 0x3F));
            out += char(0x80 | (c & 0x3F));
        }
    }
}

/// The driver's description of the last failure on a handle.
std::string diagnostics(SQLSMALLINT type, SQLHANDLE handle)
{
    std::string text;
    SQLCHAR state[6] = {};
    SQLCHAR message[1024] = {};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    for (SQLSMALLINT i = 1; SQLGetDiagRec(type, handle, i, state, &native, message, sizeof message, &length) ==
                            SQL_SUCCESS;
         ++i) {
        if (!text.empty())
            text += "\r\n";
        text += std::string(reinterpret_cast<char*>(message));
    }
    return text.empty() ? "ODBC-Aufruf fehlgeschlagen." : text;
}

bool ok(SQLRETURN rc) { return rc == SQL_SUCCESS || rc == SQL_SUCCESS_WITH_INFO; }

/// Owns one ODBC handle.
class Handle {
public:
    Handle(SQLSMALLINT type, SQLHANDLE parent) : type_(type)
    {
        if (!ok(SQLAllocHandle(type, parent, &handle_)))
            handle_ = SQL_NULL_HANDLE;
    }
    ~Handle()
    {
        if (handle_ != SQL_NULL_HANDLE)
            SQLFreeHandle(type_, handle_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    SQLHANDLE get() const { return handle_; }
    explicit operator bool() const { return handle_ != SQL_NULL_HANDLE; }
    std::string error() const { return handle_ ? diagnostics(type_, handle_) : "ODBC-Aufruf fehlgeschlagen."; }

private:
    SQLSMALLINT type_;
    SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

/// Disconnects when the connection was made.
struct Connection {
    SQLHDBC dbc = SQL_NULL_HDBC;
    bool connected = false;
    ~Connection()
    {
        if (connected)
            SQLDisconnect(dbc);
    }
};

std::string textColumn(SQLHSTMT stmt, SQLUSMALLINT column)
{
    SQLCHAR buffer[512] = {};
    SQLLEN length = 0;
    if (!ok(SQLGetData(stmt, column, SQL_C_CHAR, buffer, sizeof buffer, &length)) || length == SQL_NULL_DATA)
        return {};
    return reinterpret_cast<char*>(buffer);
}

MirrorType mirrorType(SQLSMALLINT sqlType, SQLSMALLINT digits)
{
    switch (sqlType) {
    case SQL_BIT:
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT: return MirrorType::Integer;
    case SQL_NUMERIC:
    case SQL_DECIMAL: return digits == 0 ? MirrorType::Integer : MirrorType::Real;
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE: return MirrorType::Real;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIME:
    case SQL_TYPE_TIMESTAMP:
    case SQL_DATE:
    case SQL_TIME:
    case SQL_TIMESTAMP: return MirrorType::Date;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY: return MirrorType::Blob;
    default: return MirrorType::Text;
    }
}

/// Whether a column keeps text at a fixed length, padded with blanks (char(n), nchar(n)).
bool isFixedLength(SQLSMALLINT sqlType) { return sqlType == SQL_CHAR || sqlType == SQL_WCHAR; }

/// A fixed-length column's value without the blanks that pad it: the value as Quarn's files keep it.
void dropPadding(std::string& text)
{
    const std::size_t end = text.find_last_not_of(' ');
    text.erase(end == std::string::npos ? 0 : end + 1);
}

std::string quoted(const std::string& name, const std::string& quote)
{
    if (quote.empty() || quote == " ")
        return name;
    std::string r = quote;
    for (char c : name) {
        if (std::string(1, c) == quote)
            r += quote;
        r += c;
    }
    return r + quote;
}

/// Reads the result of SELECT * of one table into the mirror's current table.
class TableCopy {
public:
    TableCopy(SQLHSTMT stmt, MirrorWriter& mirror, const std::vector<MirrorColumn>& columns,
              std::vector<SQLSMALLINT> sqlTypes)
        : stmt_(stmt), mirror_(mirror), columns_(columns), sqlTypes_(std::move(sqlTypes))
    {
    }

    /// False when the driver failed; the statement handle holds its description then.
    bool run()
    {
        for (;;) {
            const SQLRETURN rc = SQLFetch(stmt_);
            if (rc == SQL_NO_DATA)
                return true;
            if (!ok(rc))
                return false;
            for (std::size_t i = 0; i < columns_.size(); ++i)
                if (!value(int(i)))
                    return false;
            mirror_.insertRow();
        }
    }

private:
    bool value(int i)
    {
        const auto column = SQLUSMALLINT(i + 1);
        SQLLEN indicator = 0;
        switch (columns_[std::size_t(i)].type) {
        case MirrorType::Integer: {
            SQLBIGINT v = 0;
            if (!ok(SQLGetData(stmt_, column, SQL_C_SBIGINT, &v, 0, &indicator)))
                return false;
            if (indicator == SQL_NULL_DATA)
                mirror_.setNull(i);
            else
                mirror_.setInteger(i, sqlTypes_[std::size_t(i)] == SQL_BIT && v ? -1 : std::int64_t(v));
            return true;
        }
        case MirrorType::Real: {
            double v = 0;
            if (!ok(SQLGetData(stmt_, column, SQL_C_DOUBLE, &v, 0, &indicator)))
                return false;
            if (indicator == SQL_NULL_DATA)
                mirror_.setNull(i);
            else
                mirror_.setReal(i, v);
            return true;
        }
        case MirrorType::Date: {
            SQL_TIMESTAMP_STRUCT v{};
            if (!ok(SQLGetData(stmt_, column, SQL_C_TYPE_TIMESTAMP, &v, sizeof v, &indicator)))
                return false;
            if (indicator == SQL_NULL_DATA) {
                mirror_.setNull(i);
            } else {
                char text[64];
                std::snprintf(text, sizeof text, "%04d-%02u-%02u %02u:%02u:%02u", int(v.year), unsigned(v.month),
                              unsigned(v.day), unsigned(v.hour), unsigned(v.minute), unsigned(v.second));
                mirror_.setText(i, text);
            }
            return true;
        }
        case MirrorType::Blob: {
            std::vector<unsigned char> data;
            unsigned char chunk[kChunk];
            for (;;) {
                const SQLRETURN rc = SQLGetData(stmt_, column, SQL_C_BINARY, chunk, sizeof chunk, &indicator);
                if (rc == SQL_NO_DATA)
                    break;
                if (!ok(rc))
                    return false;
                if (indicator == SQL_NULL_DATA) {
                    mirror_.setNull(i);
                    return true;
                }
                const SQLLEN got = (indicator == SQL_NO_TOTAL || indicator > SQLLEN(sizeof chunk)) ? SQLLEN(sizeof chunk)
                                                                                                   : indicator;
                data.insert(data.end(), chunk, chunk + got);
                if (rc == SQL_SUCCESS)
                    break;
            }
            mirror_.setBlob(i, data.data(), data.size());
            return true;
        }
        case MirrorType::Text: {
            text_.clear();
            SQLWCHAR chunk[kChunk + 1];
            for (;;) {
                const SQLRETURN rc = SQLGetData(stmt_, column, SQL_C_WCHAR, chunk, sizeof chunk, &indicator);
                if (rc == SQL_NO_DATA)
                    break;
                if (!ok(rc))
                    return false;
                if (indicator == SQL_NULL_DATA) {
                    mirror_.setNull(i);
                    return true;
                }
                const SQLLEN bytes = (indicator == SQL_NO_TOTAL || indicator >= SQLLEN(sizeof chunk))
                                         ? SQLLEN(kChunk * sizeof(SQLWCHAR))
                                         : indicator;
                appendUtf8(text_, chunk, std::size_t(bytes) / sizeof(SQLWCHAR));
                if (rc == SQL_SUCCESS)
                    break;
            }
            if (isFixedLength(sqlTypes_[std::size_t(i)]))
                dropPadding(text_);
            mirror_.setText(i, text_);
            return true;
        }
        }
        return true;
    }

    SQLHSTMT stmt_;
    MirrorWriter& mirror_;
    const std::vector<MirrorColumn>& columns_;
    std::vector<SQLSMALLINT> sqlTypes_;
    std::string text_;
};

struct ServerTable {
    std::string schema;
    std::string name;
};

} // namespace

std::string odbcUnreachableMessage(const std::string& connection, const std::string& detail)
{
    return odbcUnreachableHeadline(connection) + "\r\n" + withoutPasswordsOf(connection, detail);
}

std::string odbcUnreachableHeadline(const std::string& connection)
{
    return "Die Quarn-Datenbank auf dem Server ist nicht erreichbar (" + maskedConnectionString(connection) + ").";
}

void readOdbcDatabase(const std::string& connection, MirrorWriter& mirror,
                      const std::function<bool(const std::string& table)>& wanted)
{
    Handle env(SQL_HANDLE_ENV, SQL_NULL_HANDLE);
    if (!env)
        throw DbError(linkerr::OdbcFailed, odbcUnreachableMessage(connection, "Kein ODBC-Treiber-Manager."));
    SQLSetEnvAttr(env.get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    Handle dbc(SQL_HANDLE_DBC, env.get());
    if (!dbc)
        throw DbError(linkerr::OdbcFailed, odbcUnreachableMessage(connection, env.error()));
    SQLSetConnectAttr(dbc.get(), SQL_ATTR_LOGIN_TIMEOUT, reinterpret_cast<SQLPOINTER>(kLoginTimeout), 0);
    SQLSetConnectAttr(dbc.get(), SQL_ATTR_ACCESS_MODE, reinterpret_cast<SQLPOINTER>(SQL_MODE_READ_ONLY), 0);

    std::string driverString = odbcDriverConnectString(connection);
    SQLCHAR out[1024];
    SQLSMALLINT outLength = 0;
    Connection conn{dbc.get()};
    if (!ok(SQLDriverConnect(dbc.get(), nullptr, reinterpret_cast<SQLCHAR*>(driverString.data()), SQL_NTS, out,
                             sizeof out, &outLength, SQL_DRIVER_NOPROMPT)))
        throw DbError(linkerr::OdbcFailed, odbcUnreachableMessage(connection, dbc.error()));
    conn.connected = true;

    SQLCHAR quoteChar[8] = {};
    SQLSMALLINT quoteLength = 0;
    SQLGetInfo(dbc.get(), SQL_IDENTIFIER_QUOTE_CHAR, quoteChar, sizeof quoteChar, &quoteLength);
    const std::string quote = reinterpret_cast<char*>(quoteChar);

    // The server's tables whose names the caller wants, once each.
    std::vector<ServerTable> tables;
    {
        Handle stmt(SQL_HANDLE_STMT, dbc.get());
        char types[] = "TABLE,VIEW";
        if (!stmt || !ok(SQLTables(stmt.get(), nullptr, 0, nullptr, 0, nullptr, 0,
                                   reinterpret_cast<SQLCHAR*>(types), SQL_NTS)))
            throw DbError(linkerr::OdbcFailed, odbcUnreachableMessage(connection, stmt.error()));
        while (ok(SQLFetch(stmt.get()))) {
            ServerTable t{textColumn(stmt.get(), 2), textColumn(stmt.get(), 3)};
            if (!wanted(t.name))
                continue;
            const QuarnTable* quarn = findQuarnTable(t.name);
            const std::string key = quarn ? std::string(quarn->name) : t.name;
            bool seen = false;
            for (const ServerTable& s : tables) {
                const QuarnTable* other = findQuarnTable(s.name);
                seen |= (other ? std::string(other->name) : s.name) == key;
            }
            if (!seen)
                tables.push_back(t);
        }
    }

    for (const ServerTable& t : tables) {
        const QuarnTable* quarn = findQuarnTable(t.name);
        const std::string name = quarn ? std::string(quarn->name) : t.name;
        const std::string failed = "Die Tabelle '" + name + "' der Quarn-Datenbank auf dem Server (" +
                                   maskedConnectionString(connection) + ") kann nicht gelesen werden.\r\n";
        Handle stmt(SQL_HANDLE_STMT, dbc.get());
        std::string sql = "SELECT * FROM " + (t.schema.empty() ? "" : quoted(t.schema, quote) + ".") +
                          quoted(t.name, quote);
        if (!stmt || !ok(SQLExecDirect(stmt.get(), reinterpret_cast<SQLCHAR*>(sql.data()), SQL_NTS)))
            throw DbError(linkerr::OdbcFailed, failed + withoutPasswordsOf(connection, stmt.error()));
        SQLSMALLINT count = 0;
        SQLNumResultCols(stmt.get(), &count);
        std::vector<MirrorColumn> columns;
        std::vector<SQLSMALLINT> sqlTypes;
        for (SQLUSMALLINT c = 1; c <= SQLUSMALLINT(count); ++c) {
            SQLCHAR columnName[256] = {};
            SQLSMALLINT nameLength = 0, type = 0, digits = 0, nullable = 0;
            SQLULEN size = 0;
            if (!ok(SQLDescribeCol(stmt.get(), c, columnName, sizeof columnName, &nameLength, &type, &size, &digits,
                                   &nullable)))
                throw DbError(linkerr::OdbcFailed, failed + withoutPasswordsOf(connection, stmt.error()));
            columns.push_back({quarnColumnName(reinterpret_cast<char*>(columnName)), mirrorType(type, digits)});
            sqlTypes.push_back(type);
        }
        mirror.beginTable(name, columns);
        if (!TableCopy(stmt.get(), mirror, columns, sqlTypes).run())
            throw DbError(linkerr::OdbcFailed, failed + withoutPasswordsOf(connection, stmt.error()));
        mirror.endTable();
    }
}

} // namespace qi
