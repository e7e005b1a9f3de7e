#pragma once
// One run of qinventur-cli: start-up on the project, the order register, and the
// command, each over the logic the windows use.

#include "CommandLine.h"
#include "ConsoleUserInteraction.h"

#include "CAuftragDb.h"
#include "Corrections.h"
#include "Orders.h"
#include "Settings.h"
#include "Startup.h"
#include "frmWork.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qi {
struct LabelRoom;
class LabelRoomDirectory;
} // namespace qi

namespace qi::cli {

/// A path given on the command line, made absolute against the working folder.
std::string absolutePath(const std::string& path);

/// The names of the reports and error lists, as the command line knows them ("artikel, raumerfassung, ...").
std::string reportNames();
/// Whether a report or error list has that name.
bool knownReport(const std::string& name);
/// The names of the lists across orders, as `projekt --liste` knows them ("verschoben, doppelt, ...").
std::string projectListNames();
/// The kind of correction proposal --art names ("standort" or "Standort ändern" → "Standort ändern"); empty when none.
std::string correctionKindOf(const std::string& name);
/// Why a call of `korrekturen` can't be run (German), or empty.
std::string refusedCorrectionCall(const Invocation& inv);
/// The proposals (kind, number as the proposal writes it) that the inventory numbers name, each
/// of the kind `art` or, when empty, of any kind; a number without a proposal, or with proposals
/// of several kinds and no `art`, adds a German refusal to `refused` instead.
std::vector<std::pair<std::string, std::string>> proposalsNamed(const std::vector<Proposal>& proposals,
                                                                const std::vector<std::string>& numbers,
                                                                const std::string& art, std::vector<std::string>& refused);
/// Why a call of `etiketten` or `begehungsliste` can't be run (German), or empty.
std::string refusedLabelCall(const Invocation& inv);
/// The format a report command writes: --format, else (for bericht) the extension of --ausgabe,
/// else (for export) "pdf"; empty when it is no format of the command line.
std::string reportFormatOf(const Invocation& inv);

class Session {
public:
    Session(const Invocation& inv, std::string programFolder, std::ostream& out, std::ostream& err, bool terminal);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Runs the command; the exit code.
    int run();

private:
    /// The command itself, after start-up and the register were read.
    int dispatch();

    int auftraege();
    int anlegen();
    int loeschen();
    int raeume();
    int raeumeSetzen();
    int hinzufuegen();
    int entfernen();
    int neuEinlesen();
    int auswerten();
    int bericht();
    int exportAll();
    /// Writes the reports (name, output file) of the order the first argument names in the format.
    int writeReports(const std::vector<std::pair<std::string, std::string>>& reports, const std::string& format);
    int archiv();
    /// The whole stocktake (CliProject.cpp): the overview or a list across orders, and a report
    /// of the project.
    int projekt();
    int projektBericht();
    /// The project result, computed for this call with a progress line.
    std::unique_ptr<Database> projectResult();
    /// The correction list for Quarn (CliCorrections.cpp): the proposals with their decisions,
    /// deciding them, or the accepted ones as files.
    int korrekturen();
    /// Labels and the walk list (CliLabels.cpp).
    int etiketten();
    int begehungsliste();
    /// The rooms a label or walk-list command names: all (--alle), those below the node --knoten,
    /// or the rooms of the order `orderName`; `scope` says which. kSuccess, or the exit code after
    /// the message.
    int chosenRooms(const LabelRoomDirectory& directory, const std::string& orderName,
                    std::vector<LabelRoom>& rooms, std::string& scope);
    /// The kept order databases (CliKeptOrders.cpp).
    int gesichert();
    int wiederherstellen();

    /// Runs a change of the order's scan data as one: a refusal, a failure or a conflict without
    /// --konflikt undoes all of it. The exit code.
    int asOneChange(const std::function<FileListResult()>& change);
    /// The order the first argument names; null after the message.
    CAuftragRec* order();
    /// The order of that name; null after the message.
    CAuftragRec* order(const std::string& name);
    /// Opens the order for work or to look at it; false after the message.
    bool open(CAuftragRec& rec, OrderAccess access);
    /// What a command does with its order.
    enum class Intent {
        Look,   ///< only reads it
        Work,   ///< works on it as the work window does (reports: in a private copy when read-only)
        Change, ///< changes it: refused when the order is open read-only
    };
    /// Finds and opens the order the first argument names: kSuccess with `rec` set, or the exit
    /// code after the message (unknown order, a failure to open it, a read-only order to change).
    int openOrder(Intent intent, CAuftragRec*& rec);
    /// A message of the command line program itself ("[qinventur-cli] text").
    void say(const std::string& text);
    /// Told after a command stopped and undid what it did.
    void unchanged();
    /// When the last copy of the ODBC project's server data was made ("TT.MM.JJJJ hh:mm"); empty when there is none.
    std::string lastCopyOfServer() const;

    const Invocation& inv_;
    std::string programFolder_;
    std::ostream& out_;
    std::ostream& err_;
    ConsoleUserInteraction ui_;
    Settings settings_;
    StartupResult startup_;
    CAuftragRecColl orders_;
    /// The private, put-back copy of an order looked at whose last change was cut off.
    std::unique_ptr<RolledBackCopy> putBack_;
    std::unique_ptr<CAuftragDb> db_;
};

} // namespace qi::cli
