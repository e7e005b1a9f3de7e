#pragma once
// An order evaluated afresh without changing it: its database is copied into a private
// folder of this program's own, together with a report database of the overview's own (a
// copy of the program folder's, only read; made anew without it) linked to the copy, and the
// evaluation runs on the copy as the work window runs it. The order's file, the program
// folder's report database and the program's private copy of it are not written. Nothing is
// shown: what the evaluation would have told is kept as text. The folder goes with the object.

#include "Database.h"
#include "PrivateFolder.h"

#include <memory>
#include <string>

namespace qi {

class CAuftragDb;
class QGebDb;
class ScriptedUserInteraction;
struct Settings;

class FreshEvaluation {
public:
    /// Copies `order` (only read, as of one moment) as `fileName` and evaluates the copy with
    /// Quarn's building component `geb`. Never throws: a failure is told by failed() and error().
    FreshEvaluation(Database& order, const std::string& fileName, const Settings& settings, QGebDb& geb);
    /// Closes the copy and removes the private folder.
    ~FreshEvaluation();
    FreshEvaluation(const FreshEvaluation&) = delete;
    FreshEvaluation& operator=(const FreshEvaluation&) = delete;

    bool failed() const { return !error_.empty(); }
    /// Why the copy could not be made, linked or evaluated (German, as the message would have said it).
    const std::string& error() const { return error_; }
    /// The evaluated copy; only while !failed().
    Database& database();

private:
    void evaluate(Database& order, const std::string& fileName, const Settings& settings, QGebDb& geb);
    std::unique_ptr<PrivateFolder> folder_;
    std::string error_;
    std::unique_ptr<ScriptedUserInteraction> ui_;
    std::unique_ptr<CAuftragDb> copy_;
};

} // namespace qi
