#pragma once
// Which project qinventur-cli works on, and when it refuses to work at all. The
// windows start on whatever "Quarn.ini" names, as specified, even on nothing (the
// file names then become relative to the working folder). A command line run
// there would make any folder it is started in a project, so it refuses instead,
// before anything is written anywhere: without --projekt when "Quarn.ini" is
// missing, names no project, or names a folder that is missing or holds no file;
// with --projekt when the folder holds no file.

#include "ProgramFolder.h"

#include <string>

namespace qi::cli {

/// Why the program can't work on the project "Quarn.ini" in `programFolder` names (German, naming
/// the file and what is missing); empty when the folder it names exists and holds a file.
std::string missingProjectOfQuarnIni(const std::string& programFolder);
/// The same for an installed program (ProgramFolder.h): the "Quarn.ini" that counts is asked; when
/// none names a project, the message tells the ways to choose one (kNoProjectChosen).
std::string missingProjectOfQuarnIni(const ProgramFolders& folders);

/// An installed program on whose "Quarn.ini" files no project is named: "%1" is the user's "Quarn.ini",
/// "%2" the installation's demo project.
inline constexpr const char* kNoProjectChosen =
    "Es ist noch kein Projekt eingestellt. Geben Sie den Projektordner mit --projekt ORDNER an, oder "
    "tragen Sie ihn in '%1' ein (Abschnitt [Quarn], Eintrag Projekt=ORDNER); QInventur fragt beim ersten "
    "Start danach. Zum Ausprobieren kopieren Sie das Demoprojekt '%2' in einen eigenen Ordner.";

/// Why the folder given with --projekt can't be the project: it holds no file. Empty otherwise (a folder
/// that is not there is left to the start-up's "Projekt nicht gefunden!").
std::string emptyGivenProject(const std::string& folder);

} // namespace qi::cli
