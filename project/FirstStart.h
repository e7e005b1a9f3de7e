#pragma once
// The first start of an installed program on which no "Quarn.ini" names a project
// (needsProjectChoice, ProgramFolder.h): instead of working in whatever folder it was
// started in, the program asks for a project folder or offers the demo project, and
// writes the choice to the user's "Quarn.ini", which the start-up then reads.

#include "ProgramFolder.h"
#include "UserInteraction.h"

#include <string>

namespace qi {

namespace firststart {
inline constexpr const char* Question =
    "Es ist noch kein Projekt eingestellt. Wählen Sie einen Projektordner oder öffnen Sie das Demoprojekt.";
/// The question when the installation holds no demo project.
inline constexpr const char* QuestionWithoutDemo =
    "Es ist noch kein Projekt eingestellt. Wählen Sie einen Projektordner.";
inline constexpr const char* ChooseFolder = "Projektordner wählen …";
inline constexpr const char* OpenDemo = "Demoprojekt öffnen";
/// Title of the folder dialog.
inline constexpr const char* FolderDialogTitle = "Projektordner wählen";
/// A chosen folder without any file: "Der Ordner '<folder>'" + this.
inline constexpr const char* EmptyFolder =
    " enthält keine Datei. Ein Projekt von Quarn enthält mindestens seine \"Projekt.ini\" oder seine Datenbanken.";
/// The demo project could not be copied: "Das Demoprojekt konnte nicht nach '<folder>' kopiert werden."
inline constexpr const char* DemoNotCopied = "Das Demoprojekt konnte nicht nach '%1' kopiert werden.";
} // namespace firststart

/// Asks for the project as told above until the user chose one or cancelled. The demo project
/// is copied from the installation's folder "Demo" to the user's program folder once ("Demo"
/// there, kept and reused afterwards). A chosen folder that holds no file is refused and the
/// question comes again, as it does when the folder dialog is cancelled or a copy or the
/// user's "Quarn.ini" could not be written (after a message saying so). True when the user's
/// "Quarn.ini" names the chosen project now; false when the user cancelled the question.
bool chooseFirstProject(const ProgramFolders& folders, UserInteraction& ui);

/// The user's copy of the demo project: the installation's "Demo" copied to the user's program
/// folder unless it is there already. The copy is made under another name and takes its own
/// when complete. FileError when it can't be made.
std::string userDemoProject(const ProgramFolders& folders);

} // namespace qi
