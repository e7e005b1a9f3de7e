#pragma once
// A database file whose tables are links to tables of other database files, as
// the report database uses them. The links live in the table QI_Links (name,
// connect string, source table); stored queries keep their Jet text beside the
// SQLite text that is run (table QI_Queries).
//
// Managing the links works on the file itself: read and set a link's connect
// string, refresh it (the source file and table must exist), drop it with
// "DROP TABLE <link>" and append a new one. For statements and reports the file
// is opened with openForStatements(): every link's source file is attached, so
// that each link's table is read and written under the link's name, and every
// stored query is there as a view of its name.

#include "Database.h"
#include "JetSql.h"

#include <memory>
#include <string>
#include <vector>

namespace qi {

/// Error numbers of the link operations, in the engine's numbering.
namespace linkerr {
inline constexpr int ObjectNotFound = 3011;   ///< source table missing in its database
inline constexpr int ObjectExists = 3012;     ///< a link of that name exists already
inline constexpr int OdbcFailed = 3151;       ///< an ODBC source cannot be reached
inline constexpr int IsamNotFound = 3170;     ///< connect string of an unknown kind
inline constexpr int TableNotExist = 3376;    ///< DROP TABLE of a table that is not there
} // namespace linkerr

/// One link: the name it is known by, where its data live and the table there.
struct TableLink {
    std::string name;
    std::string connect;     ///< ";DATABASE=<file>" or an ODBC connection string
    std::string sourceTable;
};

/// The Jet file that a connect string names (";DATABASE=<file>"), or empty
/// for ODBC and other connect strings. The file's path may hold semicolons; it ends
/// where a semicolon begins the next "KEY=" (";DATABASE=a;b.mdb;PWD=x" names "a;b.mdb").
std::string connectDatabaseFile(const std::string& connect);
/// True for an ODBC connect string ("ODBC;DSN=..." or "ODBC;DRIVER=...").
bool isOdbcConnect(const std::string& connect);

/// Reads the sources of links that can't be attached as they stand (another engine's files,
/// ODBC sources) through SQLite files of their own. Without one, a link's ";DATABASE=" file
/// is attached as it stands and an ODBC source can't be read.
class LinkSourceResolver {
public:
    virtual ~LinkSourceResolver() = default;
    /// The SQLite file that holds the link's source table under its name: a local copy of the
    /// source, or empty when the link is left to the default rules. Throws DbError when the
    /// source can't be read.
    virtual std::string localFile(const TableLink& link) = 0;
};

/// Sets the resolver that every linked database of the program uses from now on, as the
/// engine's drivers for other kinds of sources are set once for the program (null: none).
void setLinkSourceResolver(std::shared_ptr<LinkSourceResolver> resolver);

/// The links of a linked database made usable on another connection for a while
/// (see LinkedDatabase::attachTo); releasing it drops the views and detaches the files.
class LinkAttachment {
public:
    ~LinkAttachment();
    LinkAttachment(const LinkAttachment&) = delete;
    LinkAttachment& operator=(const LinkAttachment&) = delete;

private:
    friend class LinkedDatabase;
    explicit LinkAttachment(Database& conn) : conn_(conn) {}
    Database& conn_;
    std::vector<std::string> schemas_;
    std::vector<std::string> views_;
};

class LinkedDatabase {
public:
    /// Creates the tables that hold the links and stored queries in a new database.
    static void createSchema(Database& db);
    /// Opens an existing linked database; DbError 3024 when the file is missing, 3343 when it is no
    /// database or lacks the tables of the links and queries (the message names what is missing).
    static std::unique_ptr<LinkedDatabase> open(const std::string& path);

    const std::string& path() const { return db_->path(); }
    /// The file's own connection (links not resolved).
    Database& database() { return *db_; }

    /// All links in name order.
    std::vector<TableLink> links();
    bool hasLink(const std::string& name);
    /// The link's connect string as stored; DbError 3265 for an unknown link.
    std::string connect(const std::string& name);
    /// Gives the link a new connect string, which takes effect with refreshLink.
    /// DbError 3265 for an unknown link.
    void setConnect(const std::string& name, const std::string& connect);
    /// Checks that the source file and table of the link (with a connect string
    /// set before) exist and stores the link. DbError 3024 (file), 3011 (table),
    /// 3151 (ODBC source not readable), 3170 (unknown connect), 3265 (unknown link) or the
    /// resolver's error; the stored link is then unchanged.
    void refreshLink(const std::string& name);
    /// Appends a new link after checking its source like refreshLink; DbError 3012
    /// when the name is taken.
    void appendLink(const TableLink& link);
    /// Stores a link without checking its source (setting up a new file).
    void storeLink(const TableLink& link);
    /// Runs a statement on the file. "DROP TABLE <name>" drops the link of that
    /// name (DbError 3376 when there is none); anything else runs as it stands.
    void execute(const std::string& sql);

    /// Creates or replaces a stored query (setting up a new file).
    void storeQuery(const std::string& name, const JetSql& sql);
    /// Replaces the text of an existing stored query; DbError 3265 when unknown.
    void setQuerySql(const std::string& name, const JetSql& sql);
    /// The Jet text of a stored query; DbError 3265 when unknown.
    std::string queryJet(const std::string& name);
    /// The SQLite text of a stored query; DbError 3265 when unknown.
    std::string querySqlite(const std::string& name);

    /// A new connection to the file for statements and reports: the source files
    /// of the Jet links are attached (or the local files the link source resolver
    /// answers for them), every link's table is reachable under the
    /// link's name (read and write when the link's name is its source table's,
    /// read-only otherwise), and every stored query is a view of its name.
    /// Links whose source is missing or not a Jet file stay unresolved: a
    /// statement that uses them fails with DbError 3078. The resolver's errors are raised.
    std::unique_ptr<Database> openForStatements();
    /// Makes the links usable on `conn`, another database's connection, as openForStatements
    /// does on a connection of its own: the link sources are attached (a source that is `conn`'s
    /// own file is not attached again) and renamed links are views. Tables of `conn` itself come
    /// first: a link whose name is one of them is left out, so statements on `conn` read and write
    /// its own tables and reach the others through the links. Stored queries are not made.
    /// Call it outside a transaction; releasing the result undoes it.
    std::unique_ptr<LinkAttachment> attachTo(Database& conn);

private:
    /// Attaches the link sources to `conn` and makes the views of renamed links; attached
    /// schemas and views are noted in `into` when given. Links named like a table of `conn`'s
    /// main schema are left out when `ownTablesFirst`.
    void attachLinks(Database& conn, bool ownTablesFirst, LinkAttachment* into);
    explicit LinkedDatabase(std::unique_ptr<Database> db) : db_(std::move(db)) {}
    /// Raises the error for a link source that can't be used.
    static void checkSource(const TableLink& link);
    /// The SQLite file to attach for a link: the resolver's local file, else the link's Jet
    /// file when it exists; empty when the link stays unresolved.
    static std::string attachedFile(const TableLink& link);
    std::unique_ptr<Database> db_;
    /// Connect strings set but not yet refreshed, by lower-case link name.
    std::vector<TableLink> pending_;
};

} // namespace qi
