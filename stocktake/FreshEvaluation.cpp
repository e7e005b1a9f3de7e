#include "FreshEvaluation.h"

#include "CAuftragDb.h"
#include "FileSystem.h"
#include "ReportDatabase.h"
#include "ReportLinks.h"
#include "ScriptedUserInteraction.h"
#include "Settings.h"
#include "frmWork.h"

namespace qi {

namespace {

/// What the messages of a run said that went wrong: the common error message as "label: description".
std::string toldErrors(const ScriptedUserInteraction& ui)
{
    std::string text;
    for (const RecordedMessage& m : ui.messages) {
        if (m.icon != MsgIcon::Critical)
            continue;
        std::string one = m.text;
        for (std::size_t p = one.find("\r\n"); p != std::string::npos; p = one.find("\r\n"))
            one.replace(p, 2, ": ");
        text += (text.empty() ? "" : " ") + one;
    }
    return text;
}

} // namespace

FreshEvaluation::FreshEvaluation(Database& order, const std::string& fileName, const Settings& settings, QGebDb& geb)
    : ui_(std::make_unique<ScriptedUserInteraction>())
{
    try {
        evaluate(order, fileName, settings, geb);
    } catch (const DbError& e) {
        error_ = e.description();
    } catch (const std::exception& e) {
        error_ = e.what();
    }
    if (error_.empty() && !copy_)
        error_ = "Die Auswertung ist nicht zu Ende gekommen.";
}

void FreshEvaluation::evaluate(Database& order, const std::string& fileName, const Settings& settings, QGebDb& geb)
{
    folder_ = std::make_unique<PrivateFolder>();
    const std::string copyPath = folder_->file(fileName);
    order.copyTo(copyPath);

    // A report database of the overview's own: the evaluation reads Quarn's tables through its links.
    // It is taken from the program folder's file (only read), whose links to Quarn's databases of other
    // modules (the remarks of the INVENTAR objects) stay as the projects evaluated there left them;
    // without that file it is made anew.
    Settings own = settings;
    own.reportDatabaseFile = folder_->file(kReportDatabaseFile);
    own.privateReportDatabase = nullptr;
    try {
        Database::open(sharedReportDatabasePath(settings), true)->copyTo(own.reportDatabaseFile);
    } catch (const DbError&) {
        createReportDatabase(own.reportDatabaseFile);
    }
    if (!CheckReportMdbLink(own, copyPath, *ui_)) {
        error_ = toldErrors(*ui_);
        return;
    }

    auto db = std::make_unique<CAuftragDb>(*ui_);
    db->setDbPath(copyPath);
    if (!db->OpenDb()) {
        error_ = db->LastError();
        return;
    }
    {
        frmWork work(*db, own, *ui_);
        work.f_QGebDb = &geb;
        if (!work.ReportDifferenzListe()) {
            error_ = toldErrors(*ui_);
            return;
        }
    }
    copy_ = std::move(db);
}

// The copy is closed before its folder goes (members end in reverse order).
FreshEvaluation::~FreshEvaluation() = default;

Database& FreshEvaluation::database() { return *copy_->database(); }

} // namespace qi
