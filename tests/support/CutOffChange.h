#pragma once
// An order database whose last change was cut off, as a process leaves it that is killed in
// the middle of writing.

#include <string>

namespace qi::test {

/// Leaves `file` as a process leaves it that dies in the middle of a change: a child process
/// deletes every scan and adds data files until pages of the file are written, then is killed.
/// Fails the test unless the child was killed and left the file's journal.
void cutOffChange(const std::string& file);

} // namespace qi::test
