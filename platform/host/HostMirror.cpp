#include "HostMirror.h"

#include "ConnectionString.h"
#include "Database.h"
#include "FileSystem.h"
#include "JetFile.h"
#include "MirrorWriter.h"
#include "OdbcDatabase.h"
#include "QuarnTables.h"
#include "SystemError.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QDateTime>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace qi {

namespace {

namespace fs = std::filesystem;

/// How long reading a Jet file may take: a minute and ten seconds per megabyte.
std::chrono::seconds jetTimeLimit(std::uintmax_t bytes)
{
    return std::chrono::seconds(60 + 10 * std::int64_t(bytes / (1024 * 1024)));
}

std::string upper(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    return s;
}

/// The SHA-256 of a text in hexadecimal digits.
std::string sha256(const std::string& text)
{
    return QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha256).toHex().toStdString();
}

/// The key of a source: what names it, without what changes with its content. A server's key holds
/// its connection string without the password and a hash of the whole string, so that a mirror file
/// tells its source from others without keeping the password.
std::string sourceKey(const HostSource& source, bool allTables)
{
    std::string key;
    if (source.isOdbc()) {
        const std::string connection = odbcDriverConnectString(source.location);
        key = "odbc:" + connectionStringWithoutPassword(connection) + "|sha256:" + sha256(connection);
    } else {
        std::error_code ec;
        const fs::path canonical = fs::weakly_canonical(fs::u8path(nativePath(source.location)), ec);
        key = "file:" + (ec ? nativePath(source.location) : canonical.string());
    }
    return allTables ? key + ":alle" : key;
}

/// Whether a mirror's identity notes a server's connection string as a whole (mirrors of an earlier
/// version did, password and all).
bool notesWholeConnectionString(const std::string& identity)
{
    return identity.rfind("odbc:", 0) == 0 && identity.find("|sha256:") == std::string::npos;
}

/// The cache folder, readable by its user alone: the mirrors hold Quarn's data.
void makePrivateFolder(const std::string& folder)
{
    std::error_code ec;
    fs::create_directories(fs::u8path(folder), ec);
    fs::permissions(fs::u8path(folder), fs::perms::owner_all, fs::perm_options::replace, ec);
}

bool isSqliteFile(const std::string& file)
{
    std::ifstream in(nativePath(file), std::ios::binary);
    char head[16] = {};
    return in.read(head, sizeof head) && std::memcmp(head, "SQLite format 3", 16) == 0;
}

MirrorType sqliteColumnType(const std::string& declared)
{
    const std::string t = upper(declared);
    const auto has = [&](const char* part) { return t.find(part) != std::string::npos; };
    if (has("INT") || has("BOOL"))
        return MirrorType::Integer;
    if (has("CHAR") || has("CLOB") || has("TEXT") || t.empty())
        return MirrorType::Text;
    if (has("BLOB"))
        return MirrorType::Blob;
    if (has("DATE") || has("TIME"))
        return MirrorType::Date;
    return MirrorType::Real;
}

/// A name for a file being written that no other writer (thread or process) uses.
std::string temporaryName(const std::string& target)
{
    static std::atomic<int> counter{0};
    return target + "." + std::to_string(::getpid()) + "." + std::to_string(++counter) + ".tmp";
}

/// Runs a program with its output discarded and waits for it at most `limit`; true when it ended with 0.
bool runProgram(const std::string& program, const std::vector<std::string>& args, std::chrono::seconds limit)
{
    std::vector<char*> argv;
    std::vector<std::string> all{program};
    all.insert(all.end(), args.begin(), args.end());
    for (std::string& a : all)
        argv.push_back(a.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int rc = posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0)
        return false;

    const auto deadline = std::chrono::steady_clock::now() + limit;
    auto pause = std::chrono::milliseconds(1);
    int status = 0;
    for (;;) {
        const pid_t done = ::waitpid(pid, &status, WNOHANG);
        if (done == pid)
            break;
        if (done < 0)
            return false;
        if (std::chrono::steady_clock::now() > deadline) {
            ::kill(pid, SIGKILL);
            ::waitpid(pid, &status, 0);
            return false;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, std::chrono::milliseconds(50));
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

HostMirror::HostMirror(std::string cacheFolder, std::string programFolder)
    : cacheFolder_(std::move(cacheFolder)), programFolder_(std::move(programFolder))
{
}

std::string HostMirror::defaultCacheFolder()
{
    std::string base = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation).toStdString();
    if (base.empty())
        base = fs::temp_directory_path().string();
    return base + "/QInventur/Quarn";
}

std::string HostMirror::mirrorPath(const HostSource& source) const
{
    return cacheFolder_ + "/quarn-" + sha256(sourceKey(source, allTables_)).substr(0, 32) + ".sqlite";
}

std::string HostMirror::madeAt(const HostSource& source) const
{
    const std::string path = mirrorPath(source);
    if (MirrorWriter::identityOf(path).empty())
        return {};
    return QFileInfo(QString::fromStdString(nativePath(path))).lastModified().toString("dd.MM.yyyy hh:mm").toStdString();
}

std::string HostMirror::identity(const HostSource& source) const
{
    const std::string key = sourceKey(source, allTables_);
    if (source.isOdbc())
        return key;
    std::error_code ec;
    const fs::path file = fs::u8path(nativePath(source.location));
    const auto size = fs::file_size(file, ec);
    const auto changed = fs::last_write_time(file, ec);
    if (ec || !fileExists(source.location))
        throw DbError(dberr::FileNotFound, "Die Datei '" + displayPath(source.location) + "' konnte nicht gefunden werden.");
    return key + "|" + std::to_string(size) + "|" + std::to_string(changed.time_since_epoch().count());
}

std::string HostMirror::mirrorFor(const HostSource& source)
{
    const std::string target = mirrorPath(source);
    const std::string id = identity(source);
    if (MirrorWriter::identityOf(target) != id)
        build(source, target, id);
    return target;
}

std::string HostMirror::refresh(const HostSource& source)
{
    const std::string target = mirrorPath(source);
    build(source, target, identity(source));
    return target;
}

void HostMirror::build(const HostSource& source, const std::string& target, const std::string& id)
{
    makePrivateFolder(cacheFolder_);
    if (source.isOdbc())
        removeMirrorsNotingPasswords();
    std::error_code ec;
    const std::string temporary = temporaryName(target);
    try {
        if (source.isOdbc())
            buildFromServer(source.location, temporary, id);
        else if (jetFileVersion(source.location) != 0)
            buildFromJet(source.location, temporary, id);
        else if (isSqliteFile(source.location))
            buildFromSqlite(source.location, temporary, id);
        else if (std::error_code none; fs::file_size(fs::u8path(nativePath(source.location)), none) == 0 && !none)
            throw DbError(dberr::UnrecognizedFormat, "Die Datei '" + displayPath(source.location) + "' ist leer.");
        else
            throw DbError(dberr::UnrecognizedFormat,
                          "Nicht erkanntes Datenbankformat '" + displayPath(source.location) + "'.");
        fs::rename(fs::u8path(temporary), fs::u8path(target), ec);
        if (ec)
            throw DbError(dberr::General, "Der Spiegel '" + target + "' kann nicht geschrieben werden.\r\n" +
                                              systemErrorReason(ec) + ".");
        ++builds_;
    } catch (...) {
        removeFile(temporary);
        throw;
    }
}

void HostMirror::removeMirrorsNotingPasswords() const
{
    std::error_code ec;
    for (fs::directory_iterator it(fs::u8path(cacheFolder_), ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        if (name.rfind("quarn-", 0) == 0 && it->path().extension() == ".sqlite" &&
            notesWholeConnectionString(MirrorWriter::identityOf(it->path().string())))
            removeFile(it->path().string());
    }
}

void HostMirror::buildFromJet(const std::string& file, const std::string& target, const std::string& id)
{
    const std::string program = programFolder_ + "/" + kJetMirrorProgram;
    if (!fileExists(program))
        throw DbError(dberr::General, "Das Programm '" + program + "', das Jet-Datenbanken liest, fehlt.");
    std::vector<std::string> args{nativePath(file), nativePath(target), id};
    if (allTables_)
        args.emplace_back("--alle");
    std::error_code ec;
    const auto bytes = fs::file_size(fs::u8path(nativePath(file)), ec);
    if (!runProgram(program, args, jetTimeLimit(ec ? 0 : bytes)) || MirrorWriter::identityOf(target) != id)
        throw DbError(dberr::UnrecognizedFormat, jetUnreadableMessage(file));
}

void HostMirror::buildFromSqlite(const std::string& file, const std::string& target, const std::string& id)
{
    struct Table {
        std::string source, name;
        std::vector<MirrorColumn> columns;
    };
    std::vector<Table> tables;
    {
        auto db = Database::open(file, true);
        const Recordset names = db->query("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE "
                                          "'sqlite\\_%' ESCAPE '\\' ORDER BY rowid");
        for (const auto& row : names.rows()) {
            const std::string name = toText(row[0]);
            const QuarnTable* quarn = findQuarnTable(name);
            if (!allTables_ && !quarn)
                continue;
            Table t{name, quarn ? std::string(quarn->name) : name, {}};
            const Recordset info = db->query("SELECT name, type FROM pragma_table_info(?1)", {name});
            for (const auto& column : info.rows())
                t.columns.push_back({quarnColumnName(toText(column[0])), sqliteColumnType(toText(column[1]))});
            tables.push_back(std::move(t));
        }
    }
    MirrorWriter mirror(target);
    mirror.attachReadOnly(file, "quelle");
    for (const Table& t : tables) {
        mirror.beginTable(t.name, t.columns);
        mirror.copyRows("quelle", t.source);
        mirror.endTable();
    }
    mirror.finish(id);
}

void HostMirror::buildFromServer(const std::string& connection, const std::string& target, const std::string& id)
{
    MirrorWriter mirror(target);
    const bool all = allTables_;
    readOdbcDatabase(connection, mirror,
                     [all](const std::string& table) { return all || findQuarnTable(table) != nullptr; });
    mirror.finish(id);
}

std::string HostLinkSources::localFile(const TableLink& link)
{
    if (!findQuarnTable(link.sourceTable))
        return {};
    if (isOdbcConnect(link.connect))
        return mirror_.mirrorFor(HostSource::odbc(link.connect));
    const std::string file = connectDatabaseFile(link.connect);
    if (file.empty() || !fileExists(file))
        return {};
    return mirror_.mirrorFor(HostSource::file(file));
}

std::shared_ptr<HostLinkSources> useHostMirrorForLinks(const std::string& programFolder)
{
    auto sources = std::make_shared<HostLinkSources>(HostMirror(HostMirror::defaultCacheFolder(), programFolder));
    setLinkSourceResolver(sources);
    return sources;
}

} // namespace qi
