#include "ProjectChoice.h"

#include "FileSystem.h"
#include "ProfileFile.h"

namespace qi::cli {

namespace {

constexpr const char* kGiveProject = " Geben Sie den Projektordner mit --projekt ORDNER an.";

/// "'folder'" as a person reads it.
std::string quotedFolder(const std::string& folder) { return "'" + displayFolder(folder) + "'"; }

} // namespace

std::string missingProjectOfQuarnIni(const std::string& programFolder)
{
    const std::string ini = programFolder + "\\Quarn.ini";
    const std::string shownIni = "'" + displayPath(ini) + "'";
    if (!fileExists(ini))
        return "Die Datei " + shownIni + ", die das Projekt nennt, gibt es nicht." + kGiveProject;
    const std::string projekt = ProfileService().ReadProfileValue(ini, "Quarn", "Projekt", "");
    if (projekt.empty())
        return "Die Datei " + shownIni + " nennt kein Projekt (Abschnitt [Quarn], Eintrag Projekt)." + kGiveProject;
    const std::string folder = resolvePath(programFolder, projekt);
    if (!folderExists(folder))
        return "Den Projektordner " + quotedFolder(folder) + ", den " + shownIni + " nennt, gibt es nicht." +
               kGiveProject;
    // A folder that can't be read holds no file the program could use.
    if (countFiles(folder) <= 0)
        return "Der Projektordner " + quotedFolder(folder) + ", den " + shownIni + " nennt, enthält keine Datei." +
               kGiveProject;
    return {};
}

std::string missingProjectOfQuarnIni(const ProgramFolders& folders)
{
    if (!needsProjectChoice(folders))
        return missingProjectOfQuarnIni(quarnIniFolder(folders));
    std::string text = kNoProjectChosen;
    text.replace(text.find("%1"), 2, displayPath(folders.own + "\\" + kQuarnIni));
    text.replace(text.find("%2"), 2, displayFolder(folders.installation + "\\" + kDemoFolder));
    return text;
}

std::string emptyGivenProject(const std::string& folder)
{
    if (folderExists(folder) && countFiles(folder) <= 0)
        return "Der Projektordner " + quotedFolder(folder) + " enthält keine Datei; ein Projekt von Quarn enthält "
               "mindestens seine \"Projekt.ini\" oder seine Datenbanken.";
    return {};
}

} // namespace qi::cli
