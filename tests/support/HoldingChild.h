#pragma once
// A child process that takes something (the project lock, an open project) and keeps it, as
// another program working on the same project does, until it is killed.

#include <sys/types.h>

#include <functional>
#include <string>

namespace qi::test {

/// Tells the parent whether the child got what it should hold; it never returns, so that all
/// the child took stays held until the child is killed.
using ChildReady = std::function<void(bool got)>;

/// Starts a child process that runs `take`, which hands `ready` whether it got what it should
/// hold. Returns the child's id once it got it; -1 when it did not (the child is then killed)
/// or no child could be started. The caller kills the child with SIGKILL and waits for it.
pid_t startHoldingChild(const std::function<void(const ChildReady& ready)>& take);

/// Another program working on the project: a child process that holds the project's lock
/// until the object is destroyed.
class OtherProgram {
public:
    explicit OtherProgram(const std::string& project);
    ~OtherProgram();
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;
    /// True when the child got the lock.
    bool held() const { return pid_ > 0; }

private:
    pid_t pid_ = -1;
};

} // namespace qi::test
