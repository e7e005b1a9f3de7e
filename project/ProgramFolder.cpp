#include "ProgramFolder.h"

#include "AtomicFile.h"
#include "FileSystem.h"
#include "ProfileFile.h"
#include "ReportDatabase.h"
#include "TextFile.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cstdlib>
#include <filesystem>

namespace qi {

namespace {

/// True when the disk that holds `path` is mounted read-only.
bool onReadOnlyDisk(const std::string& path)
{
    struct statvfs info {};
    return ::statvfs(nativePath(path).c_str(), &info) == 0 && (info.f_flag & ST_RDONLY) != 0;
}

/// What tells one state of a file from another: its size and time of change; empty when it is
/// not there. An installation's files change only when the installation is replaced.
std::string fileState(const std::string& path)
{
    struct stat st {};
    if (::stat(nativePath(path).c_str(), &st) != 0)
        return {};
    return std::to_string(st.st_size) + " " + std::to_string(st.st_mtim.tv_sec) + "." +
           std::to_string(st.st_mtim.tv_nsec);
}

/// Gives the user's program folder the installation's report database when it has none or the
/// installation's is another than the one it copied, and notes which one it copied.
void takeReportDatabase(const std::string& installation, const std::string& own)
{
    const std::string source = installation + "\\" + kReportDatabaseFile;
    const std::string target = own + "\\" + kReportDatabaseFile;
    const std::string origin = own + "\\" + kReportDatabaseOrigin;
    const std::string state = fileState(source);
    if (state.empty())
        return;
    std::string copied;
    if (fileExists(target) && readTextFile(origin, copied) && copied == state)
        return;
    copyFileWhole(source, target);
    AtomicFile note(origin);
    note.write(state);
    note.commit();
}

} // namespace

bool programFolderWritable(const std::string& folder)
{
    const std::string reportDatabase = folder + "\\" + kReportDatabaseFile;
    return canWrite(folder) && !onReadOnlyDisk(folder) && (!fileExists(reportDatabase) || canWrite(reportDatabase));
}

std::string userProgramFolder()
{
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && isAbsolutePath(data))
        return systemPath(std::string(data) + "/QInventur");
    const char* home = std::getenv("HOME");
    if (home && isAbsolutePath(home))
        return systemPath(std::string(home) + "/.local/share/QInventur");
    return {};
}

ProgramFolders programFolders(const std::string& installation)
{
    ProgramFolders folders{installation, installation};
    if (programFolderWritable(installation))
        return folders;
    const std::string own = userProgramFolder();
    if (own.empty())
        return folders;
    std::error_code ec;
    std::filesystem::create_directories(std::filesystem::u8path(nativePath(own)), ec);
    if (!folderExists(own))
        return folders;
    try {
        takeReportDatabase(installation, own);
    } catch (const FileError&) {
        // Relinking the report database tells of it when an order is opened.
    }
    folders.own = own;
    return folders;
}

std::string projectNamedIn(const std::string& folder)
{
    return readProfileValue(folder + "\\" + kQuarnIni, "Quarn", "Projekt", "");
}

std::string quarnIniFolder(const ProgramFolders& folders)
{
    if (folders.perUser() && !projectNamedIn(folders.own).empty())
        return folders.own;
    return folders.installation;
}

bool needsProjectChoice(const ProgramFolders& folders)
{
    return folders.perUser() && projectNamedIn(quarnIniFolder(folders)).empty();
}

void writeUserProject(const ProgramFolders& folders, const std::string& project)
{
    AtomicFile ini(folders.own + "\\" + kQuarnIni);
    ini.write("[Quarn]\r\nProjekt=" + project + "\r\n");
    ini.commit();
}

} // namespace qi
