#pragma once
// A PostgreSQL server of its own for tests and benchmarks: a new cluster in a
// temporary folder, listening on 127.0.0.1 only, started on construction and
// stopped and removed on destruction, with the psqlODBC driver registered for
// this process in a temporary odbcinst.ini. Run as root, the server runs as the
// user "nobody" (the server refuses to run as root). Quarn's tables of a demo
// installation can be loaded into one of its databases, with the names in
// Quarn's spelling (quoted, so that the server keeps their letter case).

#include "DemoInstallation.h"

#include <string>

namespace qi::demo {

class PostgresCluster {
public:
    /// Name under which psqlODBC is registered.
    static constexpr const char* kDriverName = "QInventur PostgreSQL";

    /// Makes and starts the cluster; throws std::runtime_error saying what failed
    /// (no PostgreSQL installed, no psqlODBC, the server does not start ...).
    PostgresCluster();
    ~PostgresCluster();
    PostgresCluster(const PostgresCluster&) = delete;
    PostgresCluster& operator=(const PostgresCluster&) = delete;

    int port() const { return port_; }
    /// Creates a database; throws std::runtime_error when psql fails.
    void createDatabase(const std::string& name);
    /// Runs an SQL script in a database through psql (stops at the first error, which is thrown).
    void runSql(const std::string& database, const std::string& script);
    /// Creates Quarn's tables of the installation in the database and loads their rows.
    void loadInstallation(const Installation& inst, const std::string& database);
    /// The ODBC connection string of a database, as "Projekt.ini" holds it ("ODBC;DRIVER=...").
    std::string connectionString(const std::string& database) const;

private:
    /// Runs a command line; throws with `what` and the command's output when it fails.
    void run(const std::string& command, const std::string& what) const;
    std::string folder_;
    std::string bin_;
    int port_ = 0;
    bool started_ = false;
};

} // namespace qi::demo
