#pragma once
// Disks that fill up and folders that can't be written, made for one test without
// touching the machine: the test's body runs in a child process with a mount
// namespace of its own (directly as root, otherwise inside a user namespace of its
// own), where it mounts a small RAM disk or makes a file or folder read-only. The
// mounts vanish with the child.

#include <cstddef>
#include <functional>
#include <string>

namespace qi::test {

/// Runs `body` in a child process with mounts of its own and waits for it. The body's
/// assertions are the test's: the child prints its failures, and the test fails when the
/// child failed, threw or did not end normally. The body must not show widgets.
void inOwnMounts(const std::function<void()>& body);

/// Mounts an empty RAM disk of `bytes` on the folder `folder` (inside inOwnMounts).
void mountRamDisk(const std::string& folder, std::size_t bytes);

/// Makes the file or folder `path` read-only for everyone, the superuser too (inside inOwnMounts).
void mountReadOnly(const std::string& path);

/// Fills the disk that holds `folder` with a file "Füllung" until only about `bytesLeft` are free.
void fillDisk(const std::string& folder, std::size_t bytesLeft);

} // namespace qi::test
