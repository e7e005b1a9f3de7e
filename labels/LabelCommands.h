#pragma once
// The label commands of the windows, without their widgets: room labels, object labels of
// the new inventory and the walk list, for the order of a work window or for a node of the
// room selection's building tree. Each asks what to print through `chooseLabels` (the
// window's dialog), makes the sheets and hands them to the preview or the printer, or asks
// for a PDF file through the user interaction and writes it. Every message goes through the
// user interaction, so that the commands run headless in the tests.

#include "LabelJob.h"
#include "LabelRooms.h"
#include "Report.h"
#include "UserInteraction.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qi {

class CAuftragDb;
class QGebDb;
struct Settings;

/// Where a run of labels goes.
enum class LabelOutput { Preview, Pdf, Print };

/// What the label dialog offers.
struct LabelDialogRequest {
    std::string title;                ///< the dialog's title ("Raumetiketten")
    std::string what;                 ///< what is printed ("20 Räume des Auftrags 'EG'")
    std::vector<std::string> layouts; ///< the layouts of the template folder
    bool symbology = false;           ///< object labels: the symbology may be chosen
};

/// What the person chose in the label dialog.
struct LabelDialogAnswer {
    LabelChoice choice;
    LabelOutput output = LabelOutput::Preview;
};

/// Texts of the label commands.
namespace labeltext {
inline constexpr const char* RoomLabels = "Raumetiketten";
inline constexpr const char* ObjectLabels = "Objektetiketten (neues Inventar)";
inline constexpr const char* WalkList = "Begehungsliste";
inline constexpr const char* SaveTitle = "Etiketten speichern";
inline constexpr const char* PdfFilter = "PDF-Dateien (*.pdf)|*.pdf";
inline constexpr const char* NoLayouts =
    "Im Ordner \"Etiketten\" der Vorlage \"Leeres Projekt\" liegt kein Etikettenformat.";
inline constexpr const char* NoRooms = "Hier gibt es keine Räume, für die Etiketten gedruckt werden könnten.";
inline constexpr const char* NoUnknownNumbers =
    "Der Auftrag hat keine Nummern, die Quarn nicht kennt (Kategorie 2c der Auswertung): Es gibt kein neues "
    "Inventar, für das Etiketten gedruckt werden könnten.";
inline constexpr const char* NoBuilding = "Die Gebäudestruktur von Quarn ist nicht geöffnet.";
} // namespace labeltext

class LabelCommands {
public:
    /// `geb` may be null: the commands then refuse with a message.
    LabelCommands(const Settings& settings, UserInteraction& ui, QGebDb* geb);

    /// The room labels of the order's rooms.
    bool roomLabelsOfOrder(CAuftragDb& order, const std::string& orderName);
    /// The object labels of the numbers the order found that Quarn doesn't know; `evaluate`
    /// (when set) makes the difference list afresh first.
    bool objectLabelsOfOrder(CAuftragDb& order, const std::string& orderName);
    /// The walk list of the order's rooms.
    bool walkListOfOrder(CAuftragDb& order, const std::string& orderName);
    /// The room labels and the walk list of the rooms below a node of the building structure.
    bool roomLabelsOfNode(std::int32_t nodeId, const std::string& nodeName);
    bool walkListOfNode(std::int32_t nodeId, const std::string& nodeName);

    /// The label dialog: what the person chose, or nothing when cancelled.
    std::function<std::optional<LabelDialogAnswer>(const LabelDialogRequest&)> chooseLabels;
    /// Shows the sheets in a preview window, or prints them (after the print dialog).
    std::function<void(LabelSheets sheets, const std::string& title)> showSheets;
    std::function<void(LabelSheets sheets, const std::string& title)> printSheets;
    /// Shows the walk list in the report preview (which saves it as PDF, Excel or CSV and prints it).
    std::function<void(std::unique_ptr<Report> report)> showWalkList;
    /// Makes the order's difference list afresh; false when that failed (it said so).
    std::function<bool()> evaluate;

    /// The message the last PDF written left ("Etiketten geschrieben: …"); empty when none.
    const std::string& lastWritten() const { return lastWritten_; }

private:
    /// Asks, makes the sheets and puts them out; false when cancelled or refused (said so).
    bool run(std::vector<Label> labels, const std::string& title, const std::string& what, bool symbology);
    /// The rooms `choose` picks from Quarn's building structure; none after the message when
    /// the structure isn't open, the choice holds no room or fails.
    std::optional<std::vector<LabelRoom>>
    chosenRooms(const std::function<std::vector<LabelRoom>(const LabelRoomDirectory&)>& choose);
    std::optional<std::vector<LabelRoom>> orderRooms(CAuftragDb& order);
    std::optional<std::vector<LabelRoom>> nodeRooms(std::int32_t nodeId);
    bool walkList(const std::vector<LabelRoom>& rooms, const std::string& scope);
    void refuse(const std::string& text, const std::string& title);

    const Settings& settings_;
    UserInteraction& ui_;
    QGebDb* geb_;
    std::string lastWritten_;
};

/// The order's name (T_Auftrag), else its database's file name.
std::string orderNameOf(CAuftragDb& order);

/// "6 Räume des Auftrags 'EG'", "1 Raum unter 'Erdgeschoss'" ...
std::string roomsText(std::size_t count, const std::string& where);

} // namespace qi
