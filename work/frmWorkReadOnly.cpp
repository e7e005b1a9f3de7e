#include "frmWork.h"

#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "ReportDatabase.h"
#include "ReportLinks.h"
#include "frmWorkSupport.h"

#include <filesystem>

// An order that is open read-only (another program works on the project, or its file
// can't be written) changes nowhere: the commands that would change it refuse, and the
// reports, which write their lists into the order and relink the report database, are
// made in a private copy of both.

namespace qi {

namespace fs = std::filesystem;

frmWork::PrivateCopy::~PrivateCopy()
{
    db.CloseDb();
    std::error_code ec;
    fs::remove_all(fs::u8path(folder), ec);
}

bool frmWork::storageFailed() const
{
    const Database* db = f_DBAuftrag.database();
    return db && db->storageFailed();
}

void frmWork::onPrivateCopy(const char* label, const std::function<void(frmWork&)>& command)
{
    try {
        // The copy of the last report goes first: only one is kept.
        privateCopy_.reset();
        auto copy = std::make_unique<PrivateCopy>(ui_);
        copy->folder = newPrivateFolder();
        if (copy->folder.empty())
            throw Failure(kNoPrivateFolder);
        const std::string order = copy->folder + "/" + fileNamePart(f_DBAuftrag.DbPath());
        Database* source = f_DBAuftrag.database();
        if (!source)
            throw Failure(kNoObject);
        source->copyTo(order);

        copy->settings = settings_;
        copy->settings.reportDatabaseFile = copy->folder + "/" + kReportDatabaseFile;
        // The program folder's file: an order open read-only never linked a copy of this program's own.
        LinkedDatabase::open(sharedReportDatabasePath(settings_))->database().copyTo(copy->settings.reportDatabaseFile);
        if (!CheckReportMdbLink(copy->settings, order, ui_))
            return;

        copy->db.setDbPath(order);
        if (!copy->db.OpenDb())
            throw Failure(copy->db.LastError());
        frmWork work(copy->db, copy->settings, ui_);
        work.f_QGebDb = f_QGebDb;
        command(work);
        copy->db.CloseDb();
        privateCopy_ = std::move(copy);
    } catch (const std::exception& e) {
        ui_.setBusy(false);
        ui_.showError(label, e.what());
    }
}

} // namespace qi
