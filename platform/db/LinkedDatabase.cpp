#include "LinkedDatabase.h"

#include "ConnectionString.h"
#include "DatabaseStructure.h"
#include "FileSystem.h"
#include "SqlName.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <regex>

namespace qi {

namespace {

constexpr const char* kSchema =
    "CREATE TABLE QI_Links (stName TEXT COLLATE NOCASE PRIMARY KEY, stConnect TEXT NOT NULL DEFAULT '', "
    "stSourceTable TEXT NOT NULL DEFAULT '');\n"
    "CREATE TABLE QI_Queries (stName TEXT COLLATE NOCASE PRIMARY KEY, stJet TEXT NOT NULL DEFAULT '', "
    "stSqlite TEXT NOT NULL DEFAULT '');\n";

constexpr const char* kSelectLinks = "SELECT stName, stConnect, stSourceTable FROM QI_Links ORDER BY stName";
constexpr const char* kSelectLink = "SELECT stName, stConnect, stSourceTable FROM QI_Links WHERE stName = ?1";
constexpr const char* kUpdateConnect = "UPDATE QI_Links SET stConnect = ?2 WHERE stName = ?1";
constexpr const char* kInsertLink = "INSERT INTO QI_Links (stName, stConnect, stSourceTable) VALUES (?1, ?2, ?3)";
constexpr const char* kDeleteLink = "DELETE FROM QI_Links WHERE stName = ?1";
constexpr const char* kUpsertQuery =
    "INSERT INTO QI_Queries (stName, stJet, stSqlite) VALUES (?1, ?2, ?3) "
    "ON CONFLICT(stName) DO UPDATE SET stJet = excluded.stJet, stSqlite = excluded.stSqlite";
constexpr const char* kUpdateQuery = "UPDATE QI_Queries SET stJet = ?2, stSqlite = ?3 WHERE stName = ?1";
constexpr const char* kSelectQuery = "SELECT stJet, stSqlite FROM QI_Queries WHERE stName = ?1";
constexpr const char* kSelectQueries = "SELECT stName, stSqlite FROM QI_Queries ORDER BY stName";

std::string upper(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    return s;
}

DbError unknownItem(const std::string& name)
{
    return DbError(dberr::ItemNotFound, "Element in dieser Auflistung nicht gefunden (" + name + ").");
}

std::shared_ptr<LinkSourceResolver>& resolverSlot()
{
    static std::shared_ptr<LinkSourceResolver> resolver;
    return resolver;
}

/// The resolver's local file for the link, or empty when there is no resolver or it leaves the link alone.
std::string resolvedFile(const TableLink& link)
{
    const std::shared_ptr<LinkSourceResolver> resolver = resolverSlot();
    return resolver ? resolver->localFile(link) : std::string();
}

/// The DSN (or the whole string, its passwords masked) of an ODBC connect string, for messages.
std::string odbcSource(const std::string& connect)
{
    for (const ConnectionAttribute& a : connectionAttributes(connect))
        if (a.hasValue && upper(a.key) == "DSN")
            return a.value;
    return maskedConnectionString(connect);
}

/// A canonical form of a file path, so that one file is attached once.
std::string fileKey(const std::string& file)
{
    std::error_code ec;
    const auto p = std::filesystem::weakly_canonical(std::filesystem::u8path(nativePath(file)), ec);
    return ec ? nativePath(file) : p.string();
}

} // namespace

bool isOdbcConnect(const std::string& connect)
{
    return upper(connect).rfind("ODBC;", 0) == 0 || upper(connect) == "ODBC";
}

void setLinkSourceResolver(std::shared_ptr<LinkSourceResolver> resolver) { resolverSlot() = std::move(resolver); }

std::string connectDatabaseFile(const std::string& connect)
{
    if (isOdbcConnect(connect))
        return {};
    const std::string u = upper(connect);
    const auto p = u.find("DATABASE=");
    if (p == std::string::npos)
        return {};
    const auto start = p + 9;
    // A file or folder name may hold semicolons: the path ends only where a semicolon begins
    // the next "KEY=" of the connect string (letters, digits, blanks and '_' before an equals
    // sign), or ends the connect string.
    for (auto end = connect.find(';', start); end != std::string::npos; end = connect.find(';', end + 1)) {
        if (end + 1 == connect.size())
            return connect.substr(start, end - start);
        const auto eq = connect.find('=', end + 1);
        const auto next = connect.find(';', end + 1);
        if (eq == std::string::npos || (next != std::string::npos && next < eq))
            continue;
        const std::string key = connect.substr(end + 1, eq - end - 1);
        const bool isKey = key.find_first_not_of(' ') != std::string::npos &&
                           std::all_of(key.begin(), key.end(), [](unsigned char c) {
                               return std::isalnum(c) || c == ' ' || c == '_';
                           });
        if (isKey)
            return connect.substr(start, end - start);
    }
    return connect.substr(start);
}

void LinkedDatabase::createSchema(Database& db)
{
    Database::Transaction tx(db);
    db.executeScript(kSchema);
    tx.commit();
}

std::unique_ptr<LinkedDatabase> LinkedDatabase::open(const std::string& path)
{
    auto db = Database::open(path);
    static const Structure expected = structureMadeBy(createSchema);
    if (const std::string missing = missingStructure(*db, expected); !missing.empty())
        throw DbError(dberr::UnrecognizedFormat,
                      "Die Datei '" + displayPath(path) + "' ist keine Datenbank mit Tabellenverknüpfungen: " + missing + ".");
    return std::unique_ptr<LinkedDatabase>(new LinkedDatabase(std::move(db)));
}

std::vector<TableLink> LinkedDatabase::links()
{
    std::vector<TableLink> out;
    const Recordset rs = db_->query(kSelectLinks);
    for (const auto& row : rs.rows())
        out.push_back({toText(row[0]), toText(row[1]), toText(row[2])});
    return out;
}

bool LinkedDatabase::hasLink(const std::string& name) { return !db_->query(kSelectLink, {name}).empty(); }

std::string LinkedDatabase::connect(const std::string& name)
{
    Recordset rs = db_->query(kSelectLink, {name});
    if (rs.empty())
        throw unknownItem(name);
    return toText(rs.field(1));
}

void LinkedDatabase::setConnect(const std::string& name, const std::string& connect)
{
    Recordset rs = db_->query(kSelectLink, {name});
    if (rs.empty())
        throw unknownItem(name);
    for (auto& p : pending_)
        if (sameName(p.name, name)) {
            p.connect = connect;
            return;
        }
    pending_.push_back({toText(rs.field(0)), connect, toText(rs.field(2))});
}

void LinkedDatabase::checkSource(const TableLink& link)
{
    const std::string local = resolvedFile(link);
    if (local.empty() && isOdbcConnect(link.connect))
        throw DbError(linkerr::OdbcFailed, "ODBC-Verbindung zu '" + odbcSource(link.connect) + "' fehlgeschlagen.");
    const std::string file = connectDatabaseFile(link.connect);
    if (local.empty() && file.empty())
        throw DbError(linkerr::IsamNotFound, "Installierbares ISAM nicht gefunden.");
    auto source = Database::open(local.empty() ? file : local, true);
    if (!source->tableExists(link.sourceTable))
        throw DbError(linkerr::ObjectNotFound,
                      "Das Objekt '" + link.sourceTable + "' wurde in der Datenbank '" +
                          (file.empty() ? odbcSource(link.connect) : displayPath(file)) +
                          "' nicht gefunden. Stellen Sie sicher, dass das Objekt existiert und dass Sie den Namen "
                          "richtig geschrieben haben.");
}

std::string LinkedDatabase::attachedFile(const TableLink& link)
{
    std::string file = resolvedFile(link);
    if (file.empty())
        file = connectDatabaseFile(link.connect);
    return file.empty() || !fileExists(file) ? std::string() : file;
}

void LinkedDatabase::refreshLink(const std::string& name)
{
    Recordset rs = db_->query(kSelectLink, {name});
    if (rs.empty())
        throw unknownItem(name);
    TableLink link{toText(rs.field(0)), toText(rs.field(1)), toText(rs.field(2))};
    auto it = std::find_if(pending_.begin(), pending_.end(), [&](const TableLink& p) { return sameName(p.name, name); });
    if (it != pending_.end())
        link.connect = it->connect;
    checkSource(link);
    db_->execute(kUpdateConnect, {link.name, link.connect});
    if (it != pending_.end())
        pending_.erase(it);
}

void LinkedDatabase::appendLink(const TableLink& link)
{
    if (hasLink(link.name))
        throw DbError(linkerr::ObjectExists, "Objekt '" + link.name + "' existiert bereits.");
    checkSource(link);
    storeLink(link);
}

void LinkedDatabase::storeLink(const TableLink& link)
{
    db_->execute(kDeleteLink, {link.name});
    db_->execute(kInsertLink, {link.name, link.connect, link.sourceTable});
}

void LinkedDatabase::execute(const std::string& sql)
{
    static const std::regex dropTable(R"re(^\s*DROP\s+TABLE\s+(?:\[([^\]]+)\]|"([^"]+)"|([^\s;]+))\s*;?\s*$)re",
                                      std::regex::icase);
    std::smatch m;
    if (std::regex_match(sql, m, dropTable)) {
        const std::string name = m[1].matched ? m[1].str() : m[2].matched ? m[2].str() : m[3].str();
        if (!hasLink(name))
            throw DbError(linkerr::TableNotExist, "Tabelle '" + name + "' existiert nicht.");
        db_->execute(kDeleteLink, {name});
        pending_.erase(std::remove_if(pending_.begin(), pending_.end(),
                                      [&](const TableLink& p) { return sameName(p.name, name); }),
                       pending_.end());
        return;
    }
    db_->execute(sql);
}

void LinkedDatabase::storeQuery(const std::string& name, const JetSql& sql)
{
    db_->execute(kUpsertQuery, {name, std::string(sql.jet), std::string(sql.sqlite)});
}

void LinkedDatabase::setQuerySql(const std::string& name, const JetSql& sql)
{
    if (db_->execute(kUpdateQuery, {name, std::string(sql.jet), std::string(sql.sqlite)}) == 0)
        throw unknownItem(name);
}

std::string LinkedDatabase::queryJet(const std::string& name)
{
    Recordset rs = db_->query(kSelectQuery, {name});
    if (rs.empty())
        throw unknownItem(name);
    return toText(rs.field(0));
}

std::string LinkedDatabase::querySqlite(const std::string& name)
{
    Recordset rs = db_->query(kSelectQuery, {name});
    if (rs.empty())
        throw unknownItem(name);
    return toText(rs.field(1));
}

LinkAttachment::~LinkAttachment()
{
    // Nothing here may fail the caller: what can't be undone goes with the connection.
    for (const std::string& view : views_) {
        try {
            conn_.executeScript("DROP VIEW IF EXISTS temp." + sqlName(view));
        } catch (const DbError&) {
        }
    }
    for (const std::string& schema : schemas_) {
        try {
            conn_.execute("DETACH DATABASE " + sqlName(schema));
        } catch (const DbError&) {
        }
    }
}

void LinkedDatabase::attachLinks(Database& conn, bool ownTablesFirst, LinkAttachment* into)
{
    const std::vector<TableLink> all = links();
    const std::string ownFile = fileKey(conn.path());

    // Attach every existing source file once, in the order the links name them; the
    // connection's own file is its main schema.
    std::vector<std::string> keys;     // canonical file per attached alias
    std::vector<std::string> aliasOf;  // alias per link ("" = unresolved)
    std::vector<std::string> aliases;  // attached aliases in attach order
    for (const TableLink& link : all) {
        const std::string file = attachedFile(link);
        if (file.empty()) {
            aliasOf.emplace_back();
            continue;
        }
        const std::string key = fileKey(file);
        if (key == ownFile) {
            aliasOf.emplace_back("main");
            continue;
        }
        auto it = std::find(keys.begin(), keys.end(), key);
        if (it == keys.end()) {
            // A name no schema of the connection has yet (an attachment of its own may be there).
            std::string alias;
            int n = int(keys.size());
            do
                alias = "src" + std::to_string(++n);
            while (!isNull(conn.scalar("SELECT 1 FROM pragma_database_list WHERE name = ?1", {alias})));
            conn.execute("ATTACH DATABASE ?1 AS " + sqlName(alias), {nativePath(file)});
            if (into)
                into->schemas_.push_back(alias);
            keys.push_back(key);
            aliases.push_back(alias);
            it = keys.end() - 1;
        }
        aliasOf.push_back(aliases[std::size_t(it - keys.begin())]);
    }

    // A table name without schema is looked up in temp, main, then the attached files
    // in attach order. A link whose source table is found so under its own name needs
    // nothing more; any other gets a view in temp that shadows the rest.
    for (std::size_t i = 0; i < all.size(); ++i) {
        const TableLink& link = all[i];
        const std::string& alias = aliasOf[i];
        if (alias.empty() || !conn.tableExists(link.sourceTable, alias))
            continue;
        if (ownTablesFirst && conn.tableExists(link.name, "main"))
            continue;
        bool direct = sameName(link.name, link.sourceTable) && (alias == "main" || !conn.tableExists(link.name, "main"));
        for (std::size_t a = 0; direct && alias != "main" && aliases[a] != alias; ++a)
            if (conn.tableExists(link.name, aliases[a]))
                direct = false;
        if (direct)
            continue;
        conn.executeScript("CREATE TEMP VIEW " + sqlName(link.name) + " AS SELECT * FROM " + sqlName(alias) + "." +
                           sqlName(link.sourceTable));
        if (into)
            into->views_.push_back(link.name);
    }
}

std::unique_ptr<Database> LinkedDatabase::openForStatements()
{
    auto conn = Database::open(db_->path());
    attachLinks(*conn, false, nullptr);
    const Recordset queries = db_->query(kSelectQueries);
    for (const auto& row : queries.rows())
        conn->executeScript("CREATE TEMP VIEW " + sqlName(toText(row[0])) + " AS " + toText(row[1]));
    return conn;
}

std::unique_ptr<LinkAttachment> LinkedDatabase::attachTo(Database& conn)
{
    std::unique_ptr<LinkAttachment> attachment(new LinkAttachment(conn));
    attachLinks(conn, true, attachment.get());
    return attachment;
}

} // namespace qi
