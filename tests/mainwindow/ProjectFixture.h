#pragma once
// A small installation for the project windows: a program folder with "Quarn.ini",
// the template folder and the report database, and a Jet project with minimal
// Quarn databases.

#include "Database.h"
#include "TestSupport.h"

#include <string>

namespace qi::test {

/// Writes the five Quarn databases with a few rows into `folder`.
void writeMiniHost(const std::string& folder);

class ProjectFixture : public ::testing::Test {
protected:
    void SetUp() override;
    /// Writes Projekt.ini with that type and module.
    void writeProjectIni(const std::string& typ, const std::string& modul, const std::string& connection = "");

    TempDir root;
    std::string programDir; ///< without trailing separator
    std::string projectDir; ///< with trailing '/'
    std::string reportDb;   ///< the program folder's report database
    ScriptedUserInteraction ui;
};

} // namespace qi::test
