#pragma once
// The work window of one order, without its widgets: the form-level state and
// the procedures behind its lists and commands (scanner data import, the data
// file list, the archive of scan data). Everything the user sees passes through
// UserInteraction; what the two list views show is kept in lvDateien and
// lvRooms, which the window copies into its controls after Init and InitData.

#include "CAuftragDb.h"
#include "RecColl.h"
#include "Settings.h"
#include "UserInteraction.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace qi {

class QArtikelDb;
class QGebDb;
class QObjektDb;

/// One entry of a list view in report mode: key, text and sub-items.
struct ListItem {
    std::string key;
    std::string text;
    std::vector<std::string> subItems;
};

/// What became of a command of the data file list; every refusal has told the user why.
enum class FileListResult {
    Done,
    Cancelled,        ///< the file dialog or the question was cancelled
    NoRooms,          ///< the order has no rooms yet
    RoomsNotInOrder,  ///< the file holds rooms that are not rooms of the order
    SeveralDays,      ///< the file holds scans of different days
    RoomsAlreadyRead, ///< scans of a room of the file are held already (also between the files of a rebuild)
    AlreadyAdded,     ///< a file of that name was added to the order before
    FileMissing,      ///< a file of the order is no longer at its place (rebuild)
    ReadOnly,         ///< the order is open read-only (said so)
    Failed,           ///< an error was reported
};

/// The work window's logic. Borrows the order database, the settings and the user
/// interaction for the lifetime of the object.
class frmWork {
public:
    frmWork(CAuftragDb& db, const Settings& settings, UserInteraction& ui);
    ~frmWork();
    frmWork(const frmWork&) = delete;
    frmWork& operator=(const frmWork&) = delete;

    // ------------------------------------------------------------ lists

    /// Refills the data file list (f_collDateien, lvDateien, pbRemoveEnabled) from T_Dateien.
    /// On failure shows "frmWork.Init" with the description and answers false.
    bool Init();
    /// Refills the room list (f_collRooms, lvRooms) from T_Raum, with the name of each
    /// room's data file. On failure shows "frmWork.InitData" and answers false.
    bool InitData();

    // ------------------------------------------------------------ commands

    /// "&Hinzufügen": once the order has rooms, asks for a data file and adds it (AddDataFile).
    FileListResult pbAdd_Click();
    /// Whether a data file can be added: Done when the order has rooms, NoRooms after
    /// "Zuerst müssen Räume ausgewählt werden!", Failed after the error message.
    FileListResult RoomsSelected();
    /// Adds the data file `path` as "&Hinzufügen" does after its dialog: checks the whole file,
    /// records it in T_Dateien, imports it, numbers the scans and sets the rooms' status, as one
    /// change of the order. A refused file leaves no trace.
    FileListResult AddDataFile(const std::string& path);
    /// "&Entfernen": after the question, removes the data file of the selected entry
    /// (its key "$" + lDatID and its text) and rebuilds. An empty key does nothing (Cancelled).
    FileListResult pbRemove_Click(const std::string& itemKey, const std::string& itemText);
    /// Double click on a data file entry: opens the file in the text editor.
    void lvDateien_DblClick(const std::string& itemKey);
    /// "&Auswertung aktualisieren": clears the order's scan data and reads all data files again.
    FileListResult pbNeu_Click();
    /// Writes all scan lines of the order to "Inventur\<order>.dat" in the project folder.
    /// Answers the archive's path, or an empty text after the error message.
    std::string MakeArchive();

    // ------------------------------------------------------------ evaluation, tally and lists

    /// Rebuilds the difference list T_Differenzliste from the order's rooms, Quarn's
    /// objects and the scans. True when the run reached its end; on an error it shows
    /// "frmWork.ReportDifferenzListe" with the description, keeps the list as far as it
    /// was built, leaves the busy pointer on and answers false.
    bool ReportDifferenzListe();
    /// Builds the article tally T_Artikelliste (Soll counts from Quarn, Ist counts from
    /// the scans) and shows the report "Report\invart.rpt". False after an error
    /// ("frmWork.MakeArtikelAufstellung"); what was written until then stays.
    bool MakeArtikelAufstellung();
    /// Builds the inventory list T_Invliste room by room with the articles'
    /// descriptions. False after an error ("frmWork.MakeInvListe").
    bool MakeInvListe();
    /// Completes difference lines without article number from Quarn's object of the
    /// scanned number. False after an error ("frmWork.MakeArtikelIst").
    bool MakeArtikelIst();

    // ------------------------------------------------------------ menus

    /// "&Berichte": 50 article tally, 100 rooms, 200 inventory list, 250 evaluation, 400 differences.
    void mnuReportFkt_Click(int index);
    /// "&Fehlerlisten (Auftragsbereich)": 100 new, 200 moved, 300 missing inventory.
    void mnuFehlerFkt_Click(int index);

    // ------------------------------------------------------------ import of f_stfilename

    /// True as soon as one record's room is not a room of the order.
    bool RaeumeNichtInAuftrag();
    /// True as soon as one record's date (field 3) differs from the first record's.
    bool VerschiedeneTage();
    /// True as soon as scan data of one record's room are already held in the order.
    bool RaeumeVorhanden();
    /// Reads the file into T_DatInventur under f_lDatId; true at the end of the file,
    /// false when an error stopped it (rows stored until then stay).
    bool GetDataFromDat();
    /// GetDataFromDat, then the renumbering of the scan lines; the import's result.
    bool DatEinlesen();

    // ------------------------------------------------------------ form state

    CAuftragDb& f_DBAuftrag;
    /// Full path of the data file being worked on.
    std::string f_stfilename;
    /// Its T_Dateien identifier.
    std::int32_t f_lDatId = 0;
    /// The host object component, created and opened on first use.
    std::unique_ptr<QObjektDb> f_GebDb;
    /// The host article component (descriptions by article number), created and opened on first use.
    std::unique_ptr<QArtikelDb> f_ArtikelDb;
    /// Quarn's building database component (structure tree, rooms, objects of a room).
    /// The opener may hand in its own; otherwise it is created and opened on first use.
    QGebDb* f_QGebDb = nullptr;
    CRaumRecColl f_collRooms;
    /// The order's data files, as Init read them.
    CDateienRecColl f_collDateien;

    /// What lvDateien shows: text file name, sub-items date and path, key "$" + lDatID.
    std::vector<ListItem> lvDateien;
    /// What lvRooms shows: text room, sub-items status, date, count, data file; key "R " + lID.
    std::vector<ListItem> lvRooms;
    /// pbRemove is enabled only while the order has data files.
    bool pbRemoveEnabled = false;

    /// True when the order is open read-only: every command that would change it is refused
    /// with a message, and the reports are made in a private copy of the order.
    bool readOnly() const { return f_DBAuftrag.isReadOnly(); }

    /// Called after Init refilled lvDateien, and after InitData refilled lvRooms.
    std::function<void()> onDateienChanged;
    std::function<void()> onRoomsChanged;

    /// Lines between two progress reports while a file is read.
    static constexpr std::int64_t kProgressStep = 1000;

private:
    /// Creates and opens the host object component if there is none yet.
    void ensureHost();
    /// Creates and opens the host article component if there is none yet.
    void ensureArtikelDb();
    /// Creates and opens the building component with the module's objects if none was handed in.
    QGebDb& ensureGebDb();
    /// The five deletions of the derived data, then Init and InitData.
    void clearScanData();
    /// While it lives, the windows go on painting during the order database's long statements.
    Database::Turning keepPainting();
    /// True while a change could not be written to the disk and was undone as a whole (see
    /// Database::storageFailed): the command stops; what it did is gone.
    bool storageFailed() const;
    /// Runs a report command of an order that is open read-only on a private copy of the order
    /// and of the report database, made now; errors are shown under `label`.
    void onPrivateCopy(const char* label, const std::function<void(frmWork&)>& command);

    /// The private copy of the last report command of a read-only order, kept while its report may be shown.
    struct PrivateCopy;
    std::unique_ptr<PrivateCopy> privateCopy_;

    const Settings& settings_;
    UserInteraction& ui_;
    std::unique_ptr<QGebDb> ownGebDb_;
    int progressDepth_ = 0;
    /// The engine's number of the error that stopped the last GetDataFromDat; 0 when it read to the end.
    int importError_ = 0;
    /// True when a room of the file last read had more lines than the 16-bit counter reaches:
    /// its lines are numbered afresh from none (DatEinlesen, pbNeu_Click).
    bool importOverflow_ = false;
    friend class ProgressScope;
};

/// Identifier of a list item key: the number from its second character on (0 if none).
std::int32_t idFromItemKey(const std::string& key);

} // namespace qi
