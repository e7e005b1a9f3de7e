#include "ProjectAccess.h"

#include "FileSystem.h"

namespace qi {

namespace {
constexpr const char* kLookOnlyProject = " Sie können das Projekt ansehen, aber nichts ändern.";
constexpr const char* kRegisterFile = "QInventur.mdb";

void tell(UserInteraction& ui, const std::string& text)
{
    ui.messageBox(text, MsgButtons::Ok, MsgIcon::Exclamation, accessmsg::Title);
}
} // namespace

std::string accessmsg::folderReadOnly(const std::string& folder)
{
    return "Im Projektordner '" + displayPath(folder) + "' darf nicht geschrieben werden." + kLookOnlyProject;
}

std::string accessmsg::registerReadOnly(const std::string& file)
{
    return "Die Datei '" + displayPath(file) + "' ist schreibgeschützt." + kLookOnlyProject;
}

std::string accessmsg::orderReadOnly(const std::string& file)
{
    return "Die Datei '" + displayPath(file) +
           "' des Auftrags ist schreibgeschützt. Sie können den Auftrag ansehen, aber nichts ändern.";
}

std::shared_ptr<ProjectLock> TakeProject(Settings& settings, UserInteraction& ui)
{
    const std::string& folder = settings.gstProjektPfad;
    auto lock = std::make_shared<ProjectLock>(folder);
    std::string reason;
    if (!lock->held()) {
        reason = lock->message();
    } else {
        // The lock was taken, but the project's files can't be changed all the same: the lock
        // goes, so that someone who may write can have the project.
        const std::string registerFile = folder + kRegisterFile;
        const std::string here = folder.empty() ? std::string(".") : folder;
        if (!canWrite(here))
            reason = accessmsg::folderReadOnly(here);
        else if (fileExists(registerFile) && !canWrite(registerFile))
            reason = accessmsg::registerReadOnly(registerFile);
    }
    if (reason.empty())
        return lock;
    settings.readOnly = true;
    settings.readOnlyReason = reason;
    tell(ui, reason);
    return nullptr;
}

bool OpenOrderForWork(CAuftragDb& db, const Settings& settings, UserInteraction& ui)
{
    const std::string& path = db.DbPath();
    const std::string folder = folderPart(path);
    const bool fileReadOnly = !settings.readOnly && fileExists(path) &&
                              (!canWrite(path) || !canWrite(folder.empty() ? std::string(".") : folder));
    db.setOpenReadOnly(Value(std::int64_t{settings.readOnly || fileReadOnly ? -1 : 0}));
    if (!db.OpenCheckedDb())
        return false;
    if (fileReadOnly)
        tell(ui, accessmsg::orderReadOnly(path));
    return true;
}

bool RefuseProjectChange(const Settings& settings, UserInteraction& ui)
{
    if (!settings.readOnly)
        return false;
    tell(ui, accessmsg::ProjectReadOnly);
    return true;
}

bool RefuseOrderChange(const CAuftragDb& db, UserInteraction& ui)
{
    if (!db.isReadOnly())
        return false;
    tell(ui, accessmsg::OrderReadOnly);
    return true;
}

} // namespace qi
