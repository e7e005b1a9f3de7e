#pragma once
// The program-wide settings that start-up establishes once and every window reads.

#include "HostSource.h"

#include <cstdint>
#include <memory>
#include <string>

namespace qi {

class PrivateReportDatabase;

struct Settings {
    /// Project folder; ends in a backslash once set; empty when no project is configured.
    std::string gstProjektPfad;
    /// "ptJet", or any other value, which means ODBC.
    std::string gstProjekttyp;
    /// ODBC connection string of the host database (only for ODBC projects).
    std::string gstConnectionString;
    /// The program's own folder: the programs, the template folder "Leeres Projekt", the help.
    std::string gstAppPfad;
    /// The folder of the program's writable files ("QInventurRpt.mdb") when gstAppPfad can't be
    /// written: the user's own program folder (ProgramFolder.h); empty when they lie in gstAppPfad.
    std::string ownProgramFolder;
    /// Host module: 0 INVENTAR, 1 TECHNIK, 2 BRANDSCHUTZ.
    std::int16_t giModul = 0;
    /// Set by the room selection when rooms were taken out of an order.
    bool gbRaeumeGeaendert = false;
    /// True when this program may look at the project but change nothing: another program
    /// works on it, or its folder or order register can't be written (see ProjectAccess.h).
    bool readOnly = false;
    /// Why, as the user was told at start-up.
    std::string readOnlyReason;
    /// The report database when it is not the program folder's (a private copy); empty for
    /// gstAppPfad + "\QInventurRpt.mdb".
    std::string reportDatabaseFile;
    /// This program's own copy of the report database (ReportDatabase.h), linked whenever the
    /// program folder's file is and read by this program's reports; null: they read the shared file.
    std::shared_ptr<PrivateReportDatabase> privateReportDatabase;

    bool isJet() const { return gstProjekttyp == "ptJet"; }
    /// "T_I", "T_T" or "T_B" for the module; empty outside 0..2.
    std::string tablePrefix() const;
    /// The module's object database file name with its leading backslash ("\QOvInventar.mdb" ...).
    std::string objectDatabaseFile() const;
    /// What Quarn's building component is opened with: the project's "\QGebaeude.mdb" for
    /// Jet projects, the connection string otherwise.
    HostSource buildingDatabase() const;
    /// What Quarn's object and article components are opened with: the module's object
    /// database file for Jet projects, the connection string otherwise.
    HostSource objectDatabase() const;
};

} // namespace qi
