#include "KeptOrders.h"

#include "Database.h"
#include "FileSystem.h"
#include "Orders.h"
#include "RolledBackCopy.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>

namespace qi {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kMdb = ".mdb";
/// " YYYY-MM-DD HH-MM-SS"
constexpr std::size_t kStampLength = 20;
/// The longest number suffix that a kept name gets room for, " (99)".
constexpr std::size_t kNumberRoom = 5;
/// The longest name a file system holds, and the journal's addition to a database's name.
constexpr std::size_t kMaxName = 255;
constexpr std::size_t kJournalAddition = std::char_traits<char>::length(".mdb-journal");

/// `text` cut to at most `bytes` bytes without splitting a UTF-8 character.
std::string cutUtf8(const std::string& text, std::size_t bytes)
{
    if (text.size() <= bytes)
        return text;
    std::size_t end = bytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end);
}

bool digits(std::string_view s)
{
    return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// The count of a table of the database, or -1.
std::int64_t rowsOf(Database& db, const char* sql)
{
    try {
        return toLong(db.scalar(sql));
    } catch (const std::exception&) {
        return -1;
    }
}

} // namespace

std::string keptmsg::kept(const std::string& keptFile)
{
    std::string order;
    JetDate when;
    if (!parseKeptFileName(fileNamePart(keptFile), order, when))
        order = fileNamePart(keptFile);
    return "Die bisherige Datenbank des Auftrags '" + order + "' wurde gesichert: " + displayPath(keptFile);
}

std::string keptmsg::readBeforeCutOff(const std::string& order)
{
    return "Der Auftrag '" + order +
           "' wurde bei einem Abbruch nicht abgeschlossen; angezeigt wird sein Stand vor dem abgebrochenen Befehl.";
}

std::string keptOrdersFolder(const Settings& settings)
{
    return settings.gstProjektPfad + kOrderFolder + "\\" + kKeptFolder;
}

std::string keptFileName(const std::string& order, const JetDate& when, int number)
{
    int y, mo, d, h, mi, s;
    when.toParts(y, mo, d, h, mi, s);
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, " %04d-%02d-%02d %02d-%02d-%02d", y, mo, d, h, mi, s);
    const std::string suffix = number > 1 ? " (" + std::to_string(number) + ")" : std::string();
    return cutUtf8(order, kMaxName - kJournalAddition - kStampLength - kNumberRoom) + stamp + suffix +
           std::string(kMdb);
}

bool parseKeptFileName(const std::string& fileName, std::string& order, JetDate& when)
{
    std::string_view s(fileName);
    if (s.size() < kMdb.size() || s.substr(s.size() - kMdb.size()) != kMdb)
        return false;
    s.remove_suffix(kMdb.size());
    // " (n)"
    if (!s.empty() && s.back() == ')') {
        const std::size_t open = s.rfind(" (");
        if (open == std::string_view::npos || !digits(s.substr(open + 2, s.size() - open - 3)))
            return false;
        s = s.substr(0, open);
    }
    // " YYYY-MM-DD HH-MM-SS"
    if (s.size() <= kStampLength)
        return false;
    const std::string_view stamp = s.substr(s.size() - kStampLength);
    if (stamp[0] != ' ' || stamp[5] != '-' || stamp[8] != '-' || stamp[11] != ' ' || stamp[14] != '-' ||
        stamp[17] != '-')
        return false;
    constexpr std::size_t kNumbersAt[] = {1, 6, 9, 12, 15, 18};
    for (const std::size_t at : kNumbersAt)
        if (!digits(stamp.substr(at, at == 1 ? std::size_t{4} : std::size_t{2})))
            return false;
    std::string storage(stamp.substr(1));
    storage[13] = ':';
    storage[16] = ':';
    when = JetDate::fromStorageText(storage);
    if (when.toStorageText() != storage)
        return false;
    order = std::string(s.substr(0, s.size() - kStampLength));
    return true;
}

std::string keepOrderDatabase(const Settings& settings, const std::string& file)
{
    const std::string folder = keptOrdersFolder(settings);
    if (!folderExists(folder) && !createFolder(folder))
        return {};
    std::string name = fileNamePart(file);
    if (name.size() >= kMdb.size())
        name.resize(name.size() - kMdb.size());
    const JetDate now = JetDate::now();
    const std::string journal = journalOf(file);
    const bool withJournal = fileExists(journal);
    for (int number = 1; number < 100; ++number) {
        const std::string kept = folder + "\\" + keptFileName(name, now, number);
        if (fileExists(kept) || fileExists(journalOf(kept)))
            continue;
        // A second name keeps the file at its place as well until the caller replaces or deletes
        // it: a process that dies meanwhile leaves the order as it was. The journal goes first,
        // so that the kept file never stands without it.
        if (withJournal && !linkFile(journal, journalOf(kept))) {
            if (fileExists(journalOf(kept)))
                continue;
            // A file system without links: both are moved.
            if (!moveFile(journal, journalOf(kept)))
                return {};
            if (moveFile(file, kept))
                return kept;
            moveFile(journalOf(kept), journal);
            return {};
        }
        if (linkFile(file, kept))
            return kept;
        if (fileExists(kept)) {
            if (withJournal)
                removeFile(journalOf(kept));
            continue;
        }
        if (moveFile(file, kept)) {
            if (withJournal)
                removeFile(journal);
            return kept;
        }
        if (withJournal)
            removeFile(journalOf(kept));
        return {};
    }
    return {};
}

std::vector<KeptOrder> listKeptOrders(const Settings& settings)
{
    std::vector<KeptOrder> list;
    std::error_code ec;
    for (fs::directory_iterator it(fs::u8path(nativePath(keptOrdersFolder(settings))), ec), end; !ec && it != end;
         it.increment(ec)) {
        std::error_code typeEc;
        if (!it->is_regular_file(typeEc))
            continue;
        KeptOrder k;
        k.file = it->path().filename().string();
        if (!parseKeptFileName(k.file, k.order, k.keptAt))
            continue;
        const std::string path = keptOrdersFolder(settings) + "\\" + k.file;
        try {
            // Only read: a file kept with its journal is read as it was before its cut-off change.
            std::unique_ptr<RolledBackCopy> copy;
            if (hasJournal(path))
                copy = std::make_unique<RolledBackCopy>(path);
            const auto db = Database::open(copy ? copy->path() : path, true);
            k.scans = rowsOf(*db, "SELECT COUNT(*) FROM T_DatInventur");
            k.files = rowsOf(*db, "SELECT COUNT(*) FROM T_Dateien");
        } catch (const std::exception&) {
            // A file that is no database stays in the list with no counts.
        }
        list.push_back(std::move(k));
    }
    std::sort(list.begin(), list.end(), [](const KeptOrder& a, const KeptOrder& b) {
        if (a.order != b.order)
            return a.order < b.order;
        if (a.keptAt.serial != b.keptAt.serial)
            return a.keptAt.serial < b.keptAt.serial;
        return a.file < b.file;
    });
    return list;
}

} // namespace qi
