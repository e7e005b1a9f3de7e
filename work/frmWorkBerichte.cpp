#include "frmWork.h"

#include "LinkedDatabase.h"
#include "ReportDatabase.h"
#include "ReportMenus.h"
#include "frmWorkSupport.h"

#include <span>

// The menus "&Berichte" and "&Fehlerlisten (Auftragsbereich)": each entry prepares its
// list and shows its report file (below the project folder) over the report database.

namespace qi {

namespace {

const ReportMenuEntry* entryOf(std::span<const ReportMenuEntry> menu, int index)
{
    for (const ReportMenuEntry& e : menu)
        if (e.index == index)
            return &e;
    return nullptr;
}

} // namespace

void frmWork::mnuReportFkt_Click(int index)
{
    if (readOnly())
        return onPrivateCopy("frmWork.mnuReportFkt_Click", [index](frmWork& copy) { copy.mnuReportFkt_Click(index); });
    try {
        ui_.setBusy(true);
        {
            // The stored queries follow the project's module before every entry.
            auto report = LinkedDatabase::open(reportDatabasePath(settings_));
            setReportQueries(*report, settings_.giModul);
        }
        const ReportMenuEntry* entry = entryOf(kReportMenu, index);
        switch (index) {
        case reportmenu::Artikel:
            MakeArtikelAufstellung();
            break;
        case reportmenu::Inventur:
            MakeInvListe();
            break;
        case reportmenu::Inventurauswertung:
        case reportmenu::Differenz:
            // A failed run has reported itself; the report shows the list as far as it was built.
            ReportDifferenzListe();
            break;
        default:
            break;
        }
        if (entry && !entry->reportFile.empty())
            ui_.showReport(reportFileOf(settings_, entry->reportFile), reportDatabasePath(settings_),
                           std::string(entry->title));
        ui_.setBusy(false);
    } catch (const std::exception& e) {
        ui_.setBusy(false);
        ui_.showError("frmWork.mnuReportFkt_Click", e.what());
    }
}

void frmWork::mnuFehlerFkt_Click(int index)
{
    if (readOnly())
        return onPrivateCopy("frmWork.mnuFehlerFkt_Click", [index](frmWork& copy) { copy.mnuFehlerFkt_Click(index); });
    try {
        ui_.setBusy(true);
        ReportDifferenzListe();
        const ReportMenuEntry* entry = entryOf(kFehlerMenu, index);
        // A list that can't be cut answers false and is shown as it stands; only a
        // run-time error ends the procedure.
        switch (index) {
        case fehlermenu::Neu:
            f_DBAuftrag.MakeListNeu();
            break;
        case fehlermenu::Verschoben:
            f_DBAuftrag.MakeListVerschoben();
            break;
        case fehlermenu::Fehlend:
            f_DBAuftrag.MakeListFehlend();
            break;
        default:
            break;
        }
        ui_.setBusy(false);
        if (entry)
            ui_.showReport(reportFileOf(settings_, entry->reportFile), reportDatabasePath(settings_),
                           std::string(entry->title));
    } catch (const std::exception& e) {
        ui_.setBusy(false);
        ui_.showError("frmWork.mnuFehlerFkt_Click", e.what());
    }
}

} // namespace qi
