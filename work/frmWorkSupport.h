#pragma once
// What the work window's procedures share across the files that define them:
// the failure raised when a database call answered false, and the progress
// scope of a long run.

#include "frmWork.h"

#include "Database.h"
#include "ReportFiles.h"
#include "Settings.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qi {

/// Raised inside a procedure when a call answered false; carries its failure text.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The report file that a report of the work window shows for `file` ("Report\invraum.rpt",
/// below the project folder): the project's, or the template folder's copy when the project
/// has none (see reportFileOrTemplate), in read-only mode as in normal mode.
inline std::string reportFileOf(const Settings& settings, std::string_view file)
{
    return reportFileOrTemplate(settings.gstProjektPfad + std::string(file), settings.gstAppPfad);
}

/// Raises Failure with the order database's LastError when `ok` is false.
inline void check(bool ok, const CAuftragDb& db)
{
    if (!ok)
        throw Failure(db.LastError());
}

/// One transaction over a procedure's writes to the order database. What was written
/// stays also when the procedure stops on an error (it is committed then as well); only
/// a process that dies on the way, or a disk that can't take the changes (see
/// Database::storageFailed), leaves the order as it was before the procedure.
class KeptTransaction {
public:
    /// Begins the transaction; with no open database there is none (the calls then fail on their own).
    explicit KeptTransaction(CAuftragDb& order)
    {
        if (Database* db = order.database())
            tx_.emplace(*db);
    }
    ~KeptTransaction()
    {
        try {
            commit();
        } catch (const std::exception&) {
            // Nothing more can be kept: the guard rolls back, the error already reported counts.
        }
    }
    KeptTransaction(const KeptTransaction&) = delete;
    KeptTransaction& operator=(const KeptTransaction&) = delete;
    /// Commits now; a failing commit throws.
    void commit()
    {
        if (tx_)
            tx_->commit();
    }
    /// Undoes everything the procedure wrote; nothing is committed afterwards.
    void rollback()
    {
        if (tx_)
            tx_->rollback();
    }

private:
    std::optional<Database::Transaction> tx_;
};

/// A private copy of an order that is open read-only, with a private copy of the report
/// database linked to it, in a folder of its own below the system's temporary folder: a
/// report that first writes its lists into the order is made there, and the order itself is
/// not touched. The folder goes with the object.
struct frmWork::PrivateCopy {
    explicit PrivateCopy(UserInteraction& ui) : db(ui) {}
    ~PrivateCopy();
    PrivateCopy(const PrivateCopy&) = delete;
    PrivateCopy& operator=(const PrivateCopy&) = delete;

    std::string folder;
    Settings settings;
    CAuftragDb db;
};

/// Progress of a long run (reading files, the evaluation); nested scopes share the outermost one.
class ProgressScope {
public:
    ProgressScope(frmWork& w, const char* title) : w_(w)
    {
        if (w_.progressDepth_++ == 0)
            w_.ui_.beginProgress(title);
    }
    ~ProgressScope() { end(); }
    ProgressScope(const ProgressScope&) = delete;
    ProgressScope& operator=(const ProgressScope&) = delete;
    void end()
    {
        if (!open_)
            return;
        open_ = false;
        if (--w_.progressDepth_ == 0)
            w_.ui_.endProgress();
    }

private:
    frmWork& w_;
    bool open_ = true;
};

} // namespace qi
