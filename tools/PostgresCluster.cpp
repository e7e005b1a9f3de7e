#include "PostgresCluster.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace qi::demo {

namespace {

namespace fs = std::filesystem;

constexpr const char* kUser = "quarn";

std::string shellQuoted(const std::string& s)
{
    std::string r = "'";
    for (char c : s) {
        if (c == '\'')
            r += "'\\''";
        else
            r += c;
    }
    return r + "'";
}

/// The newest installed server's programs ("/usr/lib/postgresql/<version>/bin").
std::string serverPrograms()
{
    std::string best;
    int bestVersion = -1;
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator("/usr/lib/postgresql", ec)) {
        const std::string name = entry.path().filename().string();
        const int version = std::atoi(name.c_str());
        if (version > bestVersion && fs::exists(entry.path() / "bin" / "initdb") &&
            fs::exists(entry.path() / "bin" / "pg_ctl")) {
            bestVersion = version;
            best = (entry.path() / "bin").string();
        }
    }
    if (best.empty())
        throw std::runtime_error("PostgreSQL-Server nicht installiert (kein /usr/lib/postgresql/*/bin/initdb); "
                                 "scripts/setup.sh installiert ihn.");
    return best;
}

std::string odbcDriver()
{
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator("/usr/lib", ec)) {
        const fs::path driver = entry.path() / "odbc" / "psqlodbcw.so";
        if (fs::exists(driver))
            return driver.string();
    }
    throw std::runtime_error("psqlODBC nicht installiert (psqlodbcw.so fehlt); scripts/setup.sh installiert es.");
}

int freePort()
{
    const int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof addr;
    if (s < 0 || ::bind(s, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 ||
        ::getsockname(s, reinterpret_cast<sockaddr*>(&addr), &length) != 0) {
        if (s >= 0)
            ::close(s);
        throw std::runtime_error("Kein freier Port auf 127.0.0.1.");
    }
    ::close(s);
    return ntohs(addr.sin_port);
}

/// A text as a COPY field: backslash, tab and line breaks escaped.
std::string copyText(const std::string& s)
{
    std::string r;
    for (char c : s) {
        switch (c) {
        case '\\': r += "\\\\"; break;
        case '\t': r += "\\t"; break;
        case '\n': r += "\\n"; break;
        case '\r': r += "\\r"; break;
        default: r += c;
        }
    }
    return r;
}

} // namespace

PostgresCluster::PostgresCluster()
{
    bin_ = serverPrograms();
    const std::string driver = odbcDriver();
    std::string templ = (fs::temp_directory_path() / "qi-pg-XXXXXX").string();
    if (!::mkdtemp(templ.data()))
        throw std::runtime_error("Kein temporärer Ordner für den PostgreSQL-Server.");
    folder_ = templ;
    fs::permissions(folder_, fs::perms::all, fs::perm_options::replace);

    // The driver, registered for this process only.
    {
        std::ofstream ini(folder_ + "/odbcinst.ini");
        ini << "[" << kDriverName << "]\nDescription=psqlODBC\nDriver=" << driver << "\n";
    }
    ::setenv("ODBCSYSINI", folder_.c_str(), 1);
    ::setenv("ODBCINSTINI", "odbcinst.ini", 1);

    const bool root = ::geteuid() == 0;
    const std::string data = folder_ + "/data";
    const std::string as = root ? "runuser -u nobody -- " : "";
    if (root)
        run("chown nobody " + shellQuoted(folder_), "Der Ordner des Servers kann nicht übergeben werden");
    run(as + shellQuoted(bin_ + "/initdb") + " -D " + shellQuoted(data) + " -U " + kUser +
            " --auth=trust --encoding=UTF8 --locale=C.UTF-8 --no-sync",
        "initdb ist fehlgeschlagen");
    // A port that was free a moment ago may be taken by now: try a few.
    for (int attempt = 0; attempt < 5 && !started_; ++attempt) {
        port_ = freePort();
        const std::string options = "-c listen_addresses=127.0.0.1 -p " + std::to_string(port_) + " -k " +
                                    shellQuoted(folder_) + " -c fsync=off -c full_page_writes=off";
        const std::string command = as + shellQuoted(bin_ + "/pg_ctl") + " -D " + shellQuoted(data) + " -l " +
                                    shellQuoted(folder_ + "/server.log") + " -w -t 60 -o " + shellQuoted(options) +
                                    " start >/dev/null 2>&1";
        started_ = std::system(command.c_str()) == 0;
    }
    if (!started_) {
        std::ifstream log(folder_ + "/server.log");
        const std::string text((std::istreambuf_iterator<char>(log)), std::istreambuf_iterator<char>());
        std::error_code ec;
        fs::remove_all(folder_, ec);
        throw std::runtime_error("Der PostgreSQL-Server startet nicht:\n" + text);
    }
}

PostgresCluster::~PostgresCluster()
{
    if (started_) {
        const std::string as = ::geteuid() == 0 ? "runuser -u nobody -- " : "";
        const std::string command = as + shellQuoted(bin_ + "/pg_ctl") + " -D " + shellQuoted(folder_ + "/data") +
                                    " -m immediate -w stop >/dev/null 2>&1";
        [[maybe_unused]] const int rc = std::system(command.c_str());
    }
    std::error_code ec;
    fs::remove_all(folder_, ec);
}

void PostgresCluster::run(const std::string& command, const std::string& what) const
{
    const std::string output = folder_ + "/command.log";
    if (std::system((command + " >" + shellQuoted(output) + " 2>&1").c_str()) != 0) {
        std::ifstream log(output);
        const std::string text((std::istreambuf_iterator<char>(log)), std::istreambuf_iterator<char>());
        throw std::runtime_error(what + ":\n" + command + "\n" + text);
    }
}

void PostgresCluster::createDatabase(const std::string& name)
{
    runSql("postgres", "CREATE DATABASE \"" + name + "\" ENCODING 'UTF8' TEMPLATE template0;\n");
}

void PostgresCluster::runSql(const std::string& database, const std::string& script)
{
    const std::string file = folder_ + "/script.sql";
    {
        std::ofstream out(file, std::ios::binary);
        out << script;
    }
    run("psql -X -q -v ON_ERROR_STOP=1 -h 127.0.0.1 -p " + std::to_string(port_) + " -U " + kUser + " -d " +
            shellQuoted(database) + " -f " + shellQuoted(file),
        "psql ist fehlgeschlagen");
}

void PostgresCluster::loadInstallation(const Installation& inst, const std::string& database)
{
    std::string sql = "SET client_encoding = 'UTF8';\n";
    const auto copy = [&sql](const std::string& table, const std::string& columns) {
        sql += "COPY \"" + table + "\" (" + columns + ") FROM STDIN;\n";
    };
    sql += "CREATE TABLE \"T_Gebstru\" (\"lId\" integer PRIMARY KEY, \"lParentId\" integer, \"byTyp\" smallint, "
           "\"stNr\" varchar(50), \"stBezeichnung\" varchar(255));\n";
    copy("T_Gebstru", "\"lId\", \"lParentId\", \"byTyp\", \"stNr\", \"stBezeichnung\"");
    for (const Node& n : inst.nodes)
        sql += std::to_string(n.id) + "\t" + std::to_string(n.parentId) + "\t" + std::to_string(n.typ) + "\t" +
               copyText(n.nr) + "\t" + copyText(n.name) + "\n";
    sql += "\\.\n";
    sql += "CREATE TABLE \"T_Raumkern\" (\"lId\" integer PRIMARY KEY, \"stRaumNr\" varchar(50), "
           "\"stBezeichnung\" varchar(255), \"lRaumverantwId\" integer);\n";
    copy("T_Raumkern", "\"lId\", \"stRaumNr\", \"stBezeichnung\", \"lRaumverantwId\"");
    for (const Room& r : inst.rooms)
        sql += std::to_string(r.id) + "\t" + copyText(r.nr) + "\t" + copyText(r.name) + "\t" +
               std::to_string(r.responsibleId) + "\n";
    sql += "\\.\n";
    for (const Module& m : inst.modules) {
        const std::string objekt = m.prefix + "Objekt";
        const std::string artikel = m.prefix + "Artikel";
        sql += "CREATE TABLE \"" + artikel +
               "\" (\"lId\" integer PRIMARY KEY, \"stArtNr\" varchar(50), \"stName\" varchar(255));\n";
        copy(artikel, "\"lId\", \"stArtNr\", \"stName\"");
        for (const Article& a : m.articles)
            sql += std::to_string(a.id) + "\t" + copyText(a.artNr) + "\t" + copyText(a.name) + "\n";
        sql += "\\.\n";
        sql += "CREATE TABLE \"" + objekt +
               "\" (\"lId\" integer PRIMARY KEY, \"stName\" varchar(50), \"stBeschreibung\" varchar(255), "
               "\"lArtikelId\" integer, \"stOrt\" varchar(50), \"lGebstruId\" integer, \"byGebstruTyp\" smallint, "
               "\"stBemerkung\" varchar(255), \"iVariante\" smallint, \"lKstId\" integer);\n";
        copy(objekt, "\"lId\", \"stName\", \"stBeschreibung\", \"lArtikelId\", \"stOrt\", \"lGebstruId\", "
                     "\"byGebstruTyp\", \"stBemerkung\", \"iVariante\", \"lKstId\"");
        for (const Object& o : m.objects)
            sql += std::to_string(o.id) + "\t" + copyText(o.name) + "\t" + copyText(o.beschreibung) + "\t" +
                   std::to_string(o.articleId) + "\t" + copyText(o.ort) + "\t" + std::to_string(o.gebstruId) + "\t" +
                   std::to_string(o.gebstruTyp) + "\t" + copyText(o.bemerkung) + "\t" + std::to_string(o.variante) +
                   "\t" + std::to_string(o.kstId) + "\n";
        sql += "\\.\n";
    }
    sql += "CREATE TABLE \"T_AnsprechPartner\" (\"lId\" integer PRIMARY KEY, \"stName\" varchar(255), "
           "\"stVorname\" varchar(255));\n";
    copy("T_AnsprechPartner", "\"lId\", \"stName\", \"stVorname\"");
    for (const Person& p : inst.persons)
        sql += std::to_string(p.id) + "\t" + copyText(p.name) + "\t" + copyText(p.vorname) + "\n";
    sql += "\\.\n";
    sql += "CREATE TABLE \"T_KST\" (\"lId\" integer PRIMARY KEY, \"stKST\" varchar(50), "
           "\"stBezeichnung\" varchar(255));\n";
    copy("T_KST", "\"lId\", \"stKST\", \"stBezeichnung\"");
    for (const CostCentre& k : inst.costCentres)
        sql += std::to_string(k.id) + "\t" + copyText(k.nr) + "\t" + copyText(k.name) + "\n";
    sql += "\\.\n";
    runSql(database, sql);
}

std::string PostgresCluster::connectionString(const std::string& database) const
{
    return std::string("ODBC;DRIVER={") + kDriverName + "};SERVER=127.0.0.1;PORT=" + std::to_string(port_) +
           ";DATABASE=" + database + ";UID=" + kUser + ";PWD=;";
}

} // namespace qi::demo
