#pragma once
// The room selection of one order, without its widgets: the building structure of
// Quarn as a tree (tvGeb), the rooms of the node picked or of the whole
// installation (lbRooms), and the rooms of the order with their status (lvRooms).
// The user moves rooms into the order and out of it; every unload writes the
// order's room table T_Raum anew and empties its difference list, which is only
// valid for the rooms it was computed for. What the controls show is kept here;
// the window copies the user's selection in before a handler runs and shows the
// state again when a handler reports a change.

#include "CAuftragDb.h"
#include "QuarnHost.h"
#include "RecColl.h"
#include "RoomStatus.h"
#include "Settings.h"
#include "UserInteraction.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace qi {

/// Labels of the common error message of the window's procedures.
namespace raumlabel {
inline constexpr const char* InitData = "frmRaum.InitData";
inline constexpr const char* CheckStatus = "frmRaum.CheckStatus";
inline constexpr const char* TreeClick = "frmRaum.tvGeb_Click";
inline constexpr const char* AllRoomsClick = "frmRaum.cbAllRooms_Click";
inline constexpr const char* In = "frmRaum.pbIn_Click";
inline constexpr const char* Activate = "frmRaum.Form_Activate";
} // namespace raumlabel

/// Texts of the window.
namespace raumtext {
inline constexpr const char* SaveQuestion = "Räume speichern?";
inline constexpr const char* SaveFailedTitle = "Quarn-Inventur";
inline constexpr const char* ErrorTitle = "Problem";
inline constexpr const char* Fertig = "&Fertig";
inline constexpr const char* AllRooms = "Auswahl alle Räume";
inline constexpr const char* Raum = "Raum";
inline constexpr const char* Status = "Status";
/// Prefix of a row key of lvRooms: "R " + the host room id.
inline constexpr const char* KeyPrefix = "R ";
} // namespace raumtext

/// One line of lbRooms: the room's text, its host id as item data, and whether it is selected.
struct RoomLine {
    std::string text;
    std::int32_t itemData = 0;
    /// The room's name, shown beside the number as a hint.
    std::string description;
    bool selected = false;
};

/// One row of lvRooms: key "R " + lIdRB, text the room number, sub-item 1 the status.
struct RoomRow {
    std::string key;
    std::string text;
    std::string status;
    bool selected = false;
};

/// The host id of an lvRooms key: the key without its first character, as a number
/// ("R 12" gives 12). Throws std::invalid_argument when the rest is no number.
std::int32_t hostIdFromKey(const std::string& key);

/// The room selection's logic. Borrows the order database, Quarn's building component,
/// the program-wide settings (gbRaeumeGeaendert) and the user interaction.
class frmRaum {
public:
    /// `gebDb` may be null; the procedures that need it then fail with their message.
    frmRaum(CAuftragDb& db, QGebDb* gebDb, Settings& settings, UserInteraction& ui);

    // ------------------------------------------------------------ window events

    /// Load: the first activation is still to come; gbRaeumeGeaendert is cleared.
    void Form_Load();
    /// Activation: the first one fetches the building structure for tvGeb, runs InitData
    /// and unticks cbAllRooms; later ones do nothing.
    void Form_Activate();
    /// Deactivation: after rooms were taken out asks "Räume speichern?" and saves on Yes.
    void Form_Deactivate();
    /// Unload: saves the rooms without asking (unless the order is open read-only), then lets
    /// pending events run.
    void Form_Unload();

    /// True when the order is open read-only: the rooms can be looked at; the procedures that
    /// move or mark rooms do nothing, and SaveRooms refuses with a message.
    bool readOnly() const { return db_.isReadOnly(); }

    // ------------------------------------------------------------ procedures

    /// Fills lvRooms from the order's stored rooms (T_Raum) in their stored order.
    void InitData();
    /// Copies the stored status of every listed room into its row; rows without a stored room keep theirs.
    void CheckStatus();
    /// Click on the tree: a floor (type 3) lists its rooms in lbRooms; unticks cbAllRooms.
    void tvGeb_Click();
    /// Click on cbAllRooms: when now ticked, lbRooms lists every room of the installation.
    void cbAllRooms_Click();
    /// The selected lines of lbRooms into the order (as "N"), skipping rooms already in it.
    void pbIn_Click();
    /// All lines of lbRooms into the order (as "N"); rooms already in it stay as they are.
    void pbAllIn_Click();
    /// The selected rows out of the order; marks the rooms as changed.
    void pbOut_Click();
    /// All rows out of the order (without marking the rooms as changed).
    void pbAllOut_Click();
    /// "&Fertig": asks the window to unload.
    void pbFertig_Click();
    /// The list view's item event on the selected row: "N" becomes "L", "L" becomes "N".
    void lvRooms_DblClick();
    /// Writes lvRooms to T_Raum (after emptying the difference list and T_Raum), then
    /// rereads and updates the statuses, all in one transaction. True when every step succeeded.
    /// A step that fails keeps what the steps before it wrote; a process that dies on the way,
    /// and a disk that can't take the changes, leave the rooms as they were.
    bool SaveRooms();

    // ------------------------------------------------------------ what the controls show

    /// The building structure tvGeb shows (fetched on the first activation).
    std::optional<GebStruktur> tvGebStruktur;
    /// The node selected in tvGeb, if any.
    std::optional<GebNode> tvGebSelected;
    std::vector<RoomLine> lbRooms;
    std::vector<RoomRow> lvRooms;
    /// Key of the row the list view's item event acts on (its selected item).
    std::string lvRoomsSelectedKey;
    bool cbAllRooms = false;

    /// True from load until the first activation.
    bool bFirstActivation = true;
    /// The order's rooms as last read from T_Raum.
    CRaumRecColl collRooms;

    /// Called after the procedure changed what the control shows.
    std::function<void()> onTreeChanged;
    std::function<void()> onRoomLinesChanged;
    std::function<void()> onOrderRoomsChanged;
    std::function<void()> onAllRoomsChanged;
    /// Called by pbFertig: the window unloads itself.
    std::function<void()> onUnloadRequested;

    /// The row with that key, or null.
    RoomRow* rowByKey(const std::string& key);

private:
    /// Adds a row for the line unless its key is among `listed` (the keys of lvRooms, kept up
    /// to date); false when it was listed.
    bool addRow(const RoomLine& line, std::unordered_set<std::string>& listed);
    /// The keys of lvRooms, so that adding many rows costs a lookup each, not a walk of the list.
    std::unordered_set<std::string> listedKeys() const;
    /// Fills lbRooms with rooms from the building component.
    void listRooms(const std::vector<GebRoom>& rooms);
    QGebDb& gebDb();
    /// The message of a failed save: LastError of the order database, else the description.
    void saveFailed(const std::string& description);
    static void notify(const std::function<void()>& f)
    {
        if (f)
            f();
    }

    CAuftragDb& db_;
    QGebDb* gebDb_;
    Settings& settings_;
    UserInteraction& ui_;
};

} // namespace qi
