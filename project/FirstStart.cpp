#include "FirstStart.h"

#include "AtomicFile.h"
#include "FileSystem.h"

#include <cerrno>
#include <filesystem>
#include <vector>

namespace qi {

namespace fs = std::filesystem;

namespace {

std::string withFolder(const char* text, const std::string& folder)
{
    std::string s = text;
    const auto at = s.find("%1");
    return s.replace(at, 2, displayFolder(folder));
}

} // namespace

std::string userDemoProject(const ProgramFolders& folders)
{
    const std::string target = folders.own + "\\" + kDemoFolder;
    if (folderExists(target))
        return target;
    const fs::path source = fs::u8path(nativePath(folders.installation + "\\" + kDemoFolder));
    const fs::path made = fs::u8path(nativePath(target + ".neu"));
    std::error_code ec;
    fs::remove_all(made, ec);
    fs::copy(source, made, fs::copy_options::recursive, ec);
    if (!ec) {
        // The installation's files are read-only; the user's copy is the user's to change.
        for (auto it = fs::recursive_directory_iterator(made, ec); !ec && it != fs::recursive_directory_iterator();
             it.increment(ec))
            fs::permissions(it->path(), fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add, ec);
    }
    if (!ec)
        fs::rename(made, fs::u8path(nativePath(target)), ec);
    if (ec) {
        fs::remove_all(made, ec);
        throw FileError(EIO, withFolder(firststart::DemoNotCopied, target));
    }
    return target;
}

bool chooseFirstProject(const ProgramFolders& folders, UserInteraction& ui)
{
    const bool demo = folderExists(folders.installation + "\\" + kDemoFolder);
    std::vector<std::string> choices = {firststart::ChooseFolder};
    if (demo)
        choices.emplace_back(firststart::OpenDemo);
    for (;;) {
        const auto choice = ui.askChoice(demo ? firststart::Question : firststart::QuestionWithoutDemo, kProgramName,
                                         MsgIcon::Question, choices);
        if (!choice)
            return false;
        try {
            std::string project;
            if (*choice == 0) {
                const auto folder = ui.chooseFolder(firststart::FolderDialogTitle, folders.own);
                if (!folder)
                    continue;
                if (countFiles(*folder) <= 0) {
                    ui.messageBox("Der Ordner '" + displayFolder(*folder) + "'" + firststart::EmptyFolder,
                                  MsgButtons::Ok, MsgIcon::Exclamation, kProgramName);
                    continue;
                }
                project = *folder;
            } else {
                project = nativePath(userDemoProject(folders));
            }
            writeUserProject(folders, project);
            return true;
        } catch (const FileError& e) {
            ui.messageBox(e.what(), MsgButtons::Ok, MsgIcon::Critical, kProgramName);
        }
    }
}

} // namespace qi
