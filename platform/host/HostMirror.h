#pragma once
// The local read-only mirror of Quarn's data. Quarn's databases are not ours:
// Jet files that SQLite can't read, databases on a server, or SQLite files
// without our text comparison and without the indexes our joins need. Whatever
// the source, the system reads one SQLite copy of the tables it uses (see
// QuarnTables.h), with the Jet comparison on every text column and indexes on
// the joined columns, kept in the user's cache folder.
//
// A file's mirror is known by the file's path, size and time of change and is
// made anew when one of them changes. A server's mirror is known by its
// connection string (noted without its password, with a SHA-256 hash of the
// whole string) and is made anew only when asked (refresh): at start-up and
// each time an order is opened. A new mirror is written beside the old one and
// takes its place only when complete, so a failed reading leaves the last good
// copy. The cache folder and the mirrors are readable by their user alone
// (0700, 0600). Quarn's data are only ever read.

#include "HostSource.h"
#include "LinkedDatabase.h"

#include <string>

namespace qi {

/// Name of the program, beside the main program, that reads Jet files into a mirror.
inline constexpr const char* kJetMirrorProgram = "qi_jetmirror";

class HostMirror {
public:
    /// Mirrors kept in `cacheFolder` (created when needed); Jet files are read by the program
    /// kJetMirrorProgram in `programFolder`.
    HostMirror(std::string cacheFolder, std::string programFolder);

    /// The user's cache folder for the mirrors (QStandardPaths' CacheLocation, then "Quarn").
    static std::string defaultCacheFolder();

    /// Mirror every table of a source instead of only Quarn's tables (for reading whole files).
    void setAllTables(bool all) { allTables_ = all; }

    /// The file of a current mirror of the source, made (anew) when there is none or the file changed.
    /// Throws DbError with a message for the user when the source can't be read: a missing file (3024),
    /// a file that is no database (3343), a Jet file libmdb can't read (3343, naming the file), a
    /// server that can't be reached (3151).
    std::string mirrorFor(const HostSource& source);
    /// Makes the mirror anew whatever it holds (servers: at start-up and when an order is opened).
    /// On failure the last good mirror stays and DbError is thrown as by mirrorFor.
    std::string refresh(const HostSource& source);

    /// The file that holds the mirror of a source (it need not exist yet).
    std::string mirrorPath(const HostSource& source) const;
    /// When the finished mirror of the source was made, as "TT.MM.JJJJ hh:mm" in local time; empty when
    /// there is none.
    std::string madeAt(const HostSource& source) const;
    /// Mirrors this object has written so far.
    int builds() const { return builds_; }

private:
    std::string identity(const HostSource& source) const;
    void build(const HostSource& source, const std::string& target, const std::string& identity);
    void buildFromJet(const std::string& file, const std::string& target, const std::string& identity);
    void buildFromSqlite(const std::string& file, const std::string& target, const std::string& identity);
    void buildFromServer(const std::string& connection, const std::string& target, const std::string& identity);
    /// Removes mirrors of servers whose identity notes the whole connection string (an earlier version's).
    void removeMirrorsNotingPasswords() const;

    std::string cacheFolder_;
    std::string programFolder_;
    bool allTables_ = false;
    int builds_ = 0;
};

/// The link sources of the report database read through the mirror: every link to one of
/// Quarn's tables, whether it names a file (";DATABASE=...") or an ODBC source, reads the
/// source's mirror. Other links (the open order's tables) are left to the default rules.
class HostLinkSources : public LinkSourceResolver {
public:
    explicit HostLinkSources(HostMirror mirror) : mirror_(std::move(mirror)) {}
    std::string localFile(const TableLink& link) override;
    HostMirror& mirror() { return mirror_; }

private:
    HostMirror mirror_;
};

/// Makes every linked database of the program read Quarn's tables through mirrors in the user's
/// cache folder, with Jet files read by the program in `programFolder`; answers the resolver.
std::shared_ptr<HostLinkSources> useHostMirrorForLinks(const std::string& programFolder);

} // namespace qi
