#pragma once
// Where the program's files lie. The installation folder holds the programs and what they
// only read: the template folder "Leeres Projekt", the help file, qi_jetmirror, the
// database extension, the demo project and the installation's "Quarn.ini". The program
// folder holds what the program writes: the report database "QInventurRpt.mdb", relinked
// for every opened order.
//
// A program folder that may be written (the build tree, a copy of the program in a user's
// own folder) is both: nothing else is made or read. An installation that can't be written
// (installed for every user, owned by the superuser, a read-only disk) gets a program
// folder of each user's own, "QInventur" below the user's data folder ($XDG_DATA_HOME, else
// ~/.local/share): made on the first start with a copy of the installation's report
// database and reused afterwards. When the installation's report database changes (an
// update of the installation), the user's copy is replaced by the new one on the next
// start: it holds nothing but links and the two stored queries, which are made anew
// whenever an order is opened, so nothing of the user's is lost.
//
// "Quarn.ini" names the current project. With a program folder of the user's own, the
// user's "Quarn.ini" counts when it names a project, else the installation's, so that an
// administrator can name the project for every user of an installation.

#include <string>

namespace qi {

/// File name of the host's profile file in the program folder.
inline constexpr const char* kQuarnIni = "Quarn.ini";
/// The demo project's folder in the installation.
inline constexpr const char* kDemoFolder = "Demo";
/// What the user's program folder remembers of the installation's report database it copied.
inline constexpr const char* kReportDatabaseOrigin = "QInventurRpt.mdb.herkunft";

struct ProgramFolders {
    /// The programs and the files they only read (no trailing separator).
    std::string installation;
    /// Where the program's writable files lie: the installation itself when it can be written,
    /// else the user's own program folder (no trailing separator).
    std::string own;

    /// True when the program works with a program folder of the user's own.
    bool perUser() const { return own != installation; }
};

/// True when the program may keep its writable files in `folder`: the folder and its
/// "QInventurRpt.mdb" (when there is one) can be written by this user, and the disk that holds
/// them is not mounted read-only (which the superuser's rights don't overcome).
bool programFolderWritable(const std::string& folder);

/// The user's own program folder: $XDG_DATA_HOME/QInventur when that variable names an absolute
/// folder, else $HOME/.local/share/QInventur; empty when neither is known.
std::string userProgramFolder();

/// The folders of the program installed in `installation`: the installation itself when it may be
/// written, else the user's own program folder, made now when it is not there yet and given the
/// installation's report database when it has none or the installation's has changed since it
/// was copied. Nothing is said to the user. When the user's folder can't be made, the
/// installation serves as it is (what fails to be written there then fails as without it).
ProgramFolders programFolders(const std::string& installation);

/// The project value of `folder`'s "Quarn.ini" (section "Quarn", key "Projekt"); empty when it
/// names none or there is no such file.
std::string projectNamedIn(const std::string& folder);

/// The folder whose "Quarn.ini" names the current project: the user's own program folder when
/// its "Quarn.ini" names a project, else the installation. A relative project value is taken
/// below this folder.
std::string quarnIniFolder(const ProgramFolders& folders);

/// True for an installed program on whose first start no "Quarn.ini" names a project: the user
/// is asked for one (FirstStart.h) instead of the program working in the current folder.
bool needsProjectChoice(const ProgramFolders& folders);

/// Writes the user's "Quarn.ini" anew, in one step, naming the project folder `project` (section
/// "Quarn", key "Projekt"). FileError when it can't be written.
void writeUserProject(const ProgramFolders& folders, const std::string& project);

} // namespace qi
