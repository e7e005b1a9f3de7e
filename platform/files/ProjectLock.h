#pragma once
// One writer per project: a lock file in the project folder ("QInventur.lck") that a
// program holds with an operating-system lock for as long as it works on the project.
// The file names the user and the machine that hold it, so that a second program can
// tell its user who is working on the project. The operating system releases the lock
// when the holder ends in any way (also when it is killed or its machine loses the
// share), so a lock left behind by a crashed program is free and is taken over.

#include <memory>
#include <string>

namespace qi {

/// Who holds a project.
struct LockOwner {
    std::string user;
    std::string machine;
    std::string since; ///< "dd.mm.yyyy hh:mm"
};

class ProjectLock {
public:
    /// Name of the lock file in the project folder.
    static constexpr const char* kFileName = "QInventur.lck";

    /// Tries to take the project folder's lock (the folder in the system's form, with or
    /// without its trailing backslash). Check held() afterwards.
    explicit ProjectLock(const std::string& projectFolder);
    /// Releases the lock; the file stays (emptied) for the next program.
    ~ProjectLock();
    ProjectLock(const ProjectLock&) = delete;
    ProjectLock& operator=(const ProjectLock&) = delete;

    /// True when this program holds the project and may change it.
    bool held() const { return held_; }
    /// When the lock is held by another program: who holds it (empty texts when the
    /// holder has not written its name yet).
    const LockOwner& owner() const { return owner_; }
    /// When the lock could not be asked at all (a read-only folder, a missing folder): why, as a
    /// German phrase ("im Projektordner darf nicht geschrieben werden").
    const std::string& problem() const { return problem_; }

    /// The user's message when someone else holds the project or it can't be locked.
    std::string message() const;

    /// The name of the user running this program and of this machine.
    static LockOwner self();

    /// The open lock file, shared by every ProjectLock of one project in this program.
    struct Handle;

private:
    std::shared_ptr<Handle> handle_;
    bool held_ = false;
    LockOwner owner_;
    std::string problem_;
};

} // namespace qi
