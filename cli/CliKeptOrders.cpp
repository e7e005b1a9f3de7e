// qinventur-cli: the order databases the program kept before it replaced or deleted them,
// listed, and one taken back as a new order.

#include "CliSession.h"

#include "FileSystem.h"
#include "KeptOrders.h"
#include "ProjectAccess.h"

#include <filesystem>
#include <ostream>

namespace qi::cli {

namespace {

namespace fs = std::filesystem;

std::string countText(std::int64_t n) { return n < 0 ? "?" : std::to_string(n); }

/// True when `file` lies directly in `folder`.
bool liesIn(const std::string& file, const std::string& folder)
{
    std::error_code ec;
    return fs::equivalent(fs::u8path(nativePath(folderPart(file))), fs::u8path(nativePath(folder)), ec) && !ec;
}

} // namespace

int Session::gesichert()
{
    out_ << "Datei\tAuftrag\tDatum\tScans\tDateien\n";
    for (const KeptOrder& k : listKeptOrders(settings_))
        out_ << k.file << '\t' << k.order << '\t' << k.keptAt.toDisplayText() << '\t' << countText(k.scans) << '\t'
             << countText(k.files) << '\n';
    return kSuccess;
}

int Session::wiederherstellen()
{
    const std::string& given = inv_.args.at(0);
    const std::string& name = inv_.args.at(1);
    if (RefuseProjectChange(settings_, ui_))
        return kReadOnly;
    if (refuseTakenName(orders_, name, ui_))
        return kOrderExists;

    // A kept file is named as the list names it, or by its path.
    const std::string folder = keptOrdersFolder(settings_);
    const bool bare = given.find_first_of("\\/") == std::string::npos;
    const std::string file = bare ? folder + "\\" + given : absolutePath(given);
    if (!fileExists(file)) {
        say("Eine gesicherte Datenbank '" + given + "' gibt es im Ordner '" + displayFolder(folder) + "' nicht.");
        return kFileMissing;
    }
    std::string order;
    JetDate when;
    if (!liesIn(file, folder) || !parseKeptFileName(fileNamePart(file), order, when)) {
        say("'" + displayPath(file) + "' ist keine gesicherte Auftragsdatenbank: Gesicherte Datenbanken liegen im Ordner '" +
            displayFolder(folder) + "' und heißen nach Auftrag und Zeit der Sicherung.");
        return kFileMissing;
    }

    CAuftragRec rec;
    rec.Init();
    rec.stBezeichung = name;
    std::vector<std::string> kept;
    const OrderResult restored = RestoreOrder(*startup_.inventurDb, settings_, ui_, file, rec, &kept);
    for (const std::string& k : kept)
        say(keptmsg::kept(k));
    switch (restored) {
    case OrderResult::Done:
        out_ << "Auftrag '" << name << "' aus '" << fileNamePart(file)
             << "' wiederhergestellt: " << displayPath(orderDatabaseFile(settings_, rec.stPfad)) << '\n';
        return kSuccess;
    case OrderResult::NameRefused: return kNameRefused;
    case OrderResult::ReadOnly: return kReadOnly;
    default: return kFailure;
    }
}

} // namespace qi::cli
