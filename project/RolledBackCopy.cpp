#include "RolledBackCopy.h"

#include "Database.h"
#include "FileSystem.h"

#include <stdexcept>

namespace qi {

std::string journalOf(const std::string& databaseFile) { return databaseFile + "-journal"; }

bool hasJournal(const std::string& databaseFile) { return fileExists(journalOf(databaseFile)); }

RolledBackCopy::RolledBackCopy(const std::string& databaseFile) : path_(folder_.file(fileNamePart(databaseFile)))
{
    // The journal first: a journal that its program ends meanwhile leaves a file that is
    // complete without it. The copy's own journal has the name the engine looks for.
    const bool journal = hasJournal(databaseFile);
    if (journal && !copyFile(journalOf(databaseFile), journalOf(path_)))
        throw std::runtime_error("Die Datei '" + displayPath(journalOf(databaseFile)) + "' kann nicht gelesen werden.");
    if (!copyFile(databaseFile, path_))
        throw std::runtime_error("Die Datei '" + displayPath(databaseFile) + "' kann nicht gelesen werden.");
    // Opening the copy for changes plays its journal back into it.
    Database::open(path_);
}

} // namespace qi
