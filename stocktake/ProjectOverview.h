#pragma once
// The whole stocktake at one glance: every order of the project's register, what it
// holds and how far it has come, and what only shows across orders (objects moved from
// one order's rooms to another's, numbers taken twice, rooms nobody was given).
//
// Nothing is written while it is computed: an order database is only read (as its file
// stands, also while a window has it open); an order whose data changed after its
// difference list was made, or that was never evaluated, is evaluated afresh on a private
// copy, linked through a report database of the overview's own. The program folder's
// report database and its private copy stay untouched.

#include "Database.h"

#include <functional>
#include <memory>
#include <string>

namespace qi {

class QGebDb;
struct Settings;

struct OverviewOptions {
    /// False: the figures as the orders hold them (no fresh evaluation; a stale order keeps
    /// its stored list and stStand says so). Used where the result must be there at once.
    bool freshEvaluation = true;
    /// Called between steps with the steps done, all steps and what comes next; returning
    /// false stops the computation (it then throws OverviewCancelled).
    std::function<bool(int done, int total, const std::string& step)> progress;
};

/// Thrown when OverviewOptions::progress asked to stop.
struct OverviewCancelled {};

/// Computes the project result (ProjectResultSchema.h) for the project of `settings`, with
/// Quarn's building component `gebDb` (opened, with its objects opened for the module).
/// Orders that can't be read are rows with stStand "nicht lesbar" and a L_Hinweis row;
/// std::runtime_error (German text) only when the register itself can't be read.
std::unique_ptr<Database> computeProjectResult(const Settings& settings, QGebDb& gebDb,
                                               const OverviewOptions& options = {});

/// The same with Quarn's components opened for the call from the settings (as start-up opens
/// them), so that it may run in a thread of its own; std::runtime_error (German text) when
/// Quarn's databases can't be opened.
std::unique_ptr<Database> computeProjectResult(const Settings& settings, const OverviewOptions& options = {});

} // namespace qi
