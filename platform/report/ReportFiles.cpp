#include "ReportFiles.h"

#include "Database.h"
#include "FileSystem.h"
#include "JetCollation.h"
#include "LinkedDatabase.h"
#include "ReportError.h"
#include "TextFile.h"

#include <QString>

#include <filesystem>
#include <fstream>

namespace qi {

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t kMaxReportFileSize = 1 << 20;

bool sameNameIgnoringCase(const std::string& a, const std::string& b)
{
    return QString::fromStdString(a).compare(QString::fromStdString(b), Qt::CaseInsensitive) == 0;
}

} // namespace

std::string findIgnoringCase(const std::string& path)
{
    const std::string native = nativePath(path);
    if (native.empty())
        return {};
    std::error_code ec;
    if (fs::exists(fs::u8path(native), ec))
        return native;
    // Walk from the root, taking each name as it is or, failing that, a name of the same
    // letters in another case.
    std::string current = native.front() == '/' ? "/" : "";
    std::size_t pos = native.front() == '/' ? 1 : 0;
    while (pos <= native.size()) {
        auto slash = native.find('/', pos);
        if (slash == std::string::npos)
            slash = native.size();
        const std::string name = native.substr(pos, slash - pos);
        pos = slash + 1;
        if (name.empty())
            continue;
        std::string next = current.empty() || current.back() == '/' ? current + name : current + "/" + name;
        if (!fs::exists(fs::u8path(next), ec)) {
            const std::string folder = current.empty() ? "." : current;
            std::string match;
            for (fs::directory_iterator it(fs::u8path(folder), ec), end; !ec && it != end; it.increment(ec)) {
                const std::string candidate = it->path().filename().string();
                if (sameNameIgnoringCase(candidate, name)) {
                    match = candidate;
                    break;
                }
            }
            if (match.empty())
                return {};
            next = current.empty() || current.back() == '/' ? current + match : current + "/" + match;
        }
        current = next;
    }
    return current;
}

std::string reportFileOrTemplate(const std::string& reportFile, const std::string& programFolder)
{
    const std::string found = findIgnoringCase(reportFile);
    if (!found.empty() && fileExists(found))
        return reportFile;
    if (!programFolder.empty()) {
        const std::string folder = programFolder.back() == '\\' || programFolder.back() == '/' ? programFolder
                                                                                              : programFolder + "/";
        const std::string copy = findIgnoringCase(folder + kTemplateFolder + "/Report/" + fileNamePart(reportFile));
        if (!copy.empty() && fileExists(copy))
            return copy;
    }
    return reportFile;
}

std::string locateReportFile(const std::string& reportFile, const std::string& dataFile)
{
    const std::string found = findIgnoringCase(reportFileOrTemplate(reportFile, folderPart(nativePath(dataFile))));
    if (!found.empty() && fileExists(found))
        return found;
    throw ReportError("Die Berichtsdatei '" + displayPath(reportFile) + "' wurde nicht gefunden.");
}

std::string readReportFile(const std::string& path)
{
    const auto p = fs::u8path(nativePath(path));
    std::error_code ec;
    const auto size = fs::file_size(p, ec);
    if (ec)
        throw ReportError("Die Berichtsdatei '" + displayPath(path) + "' kann nicht gelesen werden.");
    if (size > kMaxReportFileSize)
        throw ReportError("Die Berichtsdatei '" + displayPath(path) + "' ist zu groß (mehr als 1 MB).");
    std::ifstream in(p, std::ios::binary);
    std::string text(std::size_t(size), '\0');
    if (!in || !in.read(text.data(), std::streamsize(size)) || in.gcount() != std::streamsize(size))
        throw ReportError("Die Berichtsdatei '" + displayPath(path) + "' kann nicht gelesen werden.");
    if (text.find('\0') != std::string::npos)
        throw ReportError("Die Berichtsdatei '" + displayPath(path) + "' ist keine Textdatei.");
    if (text.rfind("\xEF\xBB\xBF", 0) == 0)
        text.erase(0, 3);
    return isUtf8(text) ? text : fromWindows1252(text);
}

OrderInfo orderOfReportDatabase(const std::string& dataFile, Database& statements)
{
    OrderInfo info;
    std::string orderFile;
    try {
        orderFile = connectDatabaseFile(LinkedDatabase::open(dataFile)->connect("T_Auftrag"));
    } catch (const std::exception&) {
        return info;
    }
    if (orderFile.empty())
        return info;
    std::string folder = folderPart(orderFile);
    if (!folder.empty()) {
        const std::string inner = folder.substr(0, folder.size() - 1);
        if (jetEqual(fileNamePart(inner), "Inventur"))
            folder = folderPart(inner);
        info.projectFolder = displayFolder(folder);
    }
    try {
        info.orderName = toText(statements.scalar("SELECT stAuftrag FROM T_Auftrag ORDER BY lID LIMIT 1"));
    } catch (const std::exception&) {
        info.orderName.clear();
    }
    if (info.orderName.empty()) {
        const std::string name = fileNamePart(orderFile);
        const auto dot = name.find_last_of('.');
        info.orderName = dot == std::string::npos ? name : name.substr(0, dot);
    }
    return info;
}

} // namespace qi
