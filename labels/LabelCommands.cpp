#include "LabelCommands.h"

#include "CAuftragDb.h"
#include "Database.h"
#include "FileSystem.h"
#include "LabelContent.h"
#include "ObjectNumbers.h"
#include "Settings.h"
#include "WalkList.h"

namespace qi {

std::string roomsText(std::size_t count, const std::string& where)
{
    return std::to_string(count) + (count == 1 ? " Raum " : " Räume ") + where;
}

std::string orderNameOf(CAuftragDb& order)
{
    try {
        if (Database* db = order.database()) {
            const std::string name = toText(db->scalar("SELECT stAuftrag FROM T_Auftrag LIMIT 1"));
            if (!name.empty())
                return name;
            return fileNamePart(db->path());
        }
    } catch (const std::exception&) {
    }
    return {};
}

LabelCommands::LabelCommands(const Settings& settings, UserInteraction& ui, QGebDb* geb)
    : settings_(settings), ui_(ui), geb_(geb)
{
}

void LabelCommands::refuse(const std::string& text, const std::string& title)
{
    ui_.messageBox(text, MsgButtons::Ok, MsgIcon::Exclamation, title);
}

bool LabelCommands::run(std::vector<Label> labels, const std::string& title, const std::string& what, bool symbology)
{
    LabelDialogRequest request{title, what, labelLayoutNames(labelTemplateDir(settings_)), symbology};
    if (request.layouts.empty()) {
        refuse(labeltext::NoLayouts, title);
        return false;
    }
    if (!chooseLabels)
        return false;
    const std::optional<LabelDialogAnswer> answer = chooseLabels(request);
    if (!answer)
        return false;
    try {
        if (symbology)
            for (Label& label : labels)
                label.symbology = answer->choice.symbology;
        LabelSheets sheets = makeLabelSheets(settings_, answer->choice, std::move(labels));
        switch (answer->output) {
        case LabelOutput::Preview:
            if (showSheets)
                showSheets(std::move(sheets), title);
            return true;
        case LabelOutput::Print:
            if (printSheets)
                printSheets(std::move(sheets), title);
            return true;
        case LabelOutput::Pdf: {
            FileDialogRequest save;
            save.title = labeltext::SaveTitle;
            save.startFolder = settings_.gstProjektPfad;
            save.filter = labeltext::PdfFilter;
            save.fileName = title + ".pdf";
            const std::optional<std::string> path = ui_.saveFile(save);
            if (!path)
                return false;
            ui_.setBusy(true);
            try {
                sheets.writePdf(*path);
            } catch (...) {
                ui_.setBusy(false);
                throw;
            }
            ui_.setBusy(false);
            lastWritten_ = labelsWrittenText(*path, sheets.printedCount(), sheets.pageCount());
            ui_.messageBox(lastWritten_, MsgButtons::Ok, MsgIcon::Information, title);
            return true;
        }
        }
    } catch (const LabelSourceError& e) {
        refuse(e.what(), title);
    } catch (const LabelError& e) {
        refuse(e.what(), title);
    } catch (const std::exception& e) {
        ui_.showError("Etiketten", e.what());
    }
    return false;
}

std::optional<std::vector<LabelRoom>>
LabelCommands::chosenRooms(const std::function<std::vector<LabelRoom>(const LabelRoomDirectory&)>& choose)
{
    if (!geb_) {
        refuse(labeltext::NoBuilding, labeltext::RoomLabels);
        return std::nullopt;
    }
    try {
        std::vector<LabelRoom> found = choose(LabelRoomDirectory(*geb_));
        if (found.empty()) {
            refuse(labeltext::NoRooms, labeltext::RoomLabels);
            return std::nullopt;
        }
        return found;
    } catch (const std::exception& e) {
        ui_.showError("Etiketten", e.what());
        return std::nullopt;
    }
}

std::optional<std::vector<LabelRoom>> LabelCommands::orderRooms(CAuftragDb& order)
{
    return chosenRooms([&order](const LabelRoomDirectory& directory) {
        CRaumRecColl rooms;
        if (!order.ReadAllRaumRec2Coll(rooms))
            throw std::runtime_error(order.LastError());
        return directory.ofOrder(rooms);
    });
}

std::optional<std::vector<LabelRoom>> LabelCommands::nodeRooms(std::int32_t nodeId)
{
    return chosenRooms([nodeId](const LabelRoomDirectory& directory) { return directory.underNode(nodeId); });
}

bool LabelCommands::roomLabelsOfOrder(CAuftragDb& order, const std::string& orderName)
{
    const auto rooms = orderRooms(order);
    return rooms && run(roomLabels(*rooms), labeltext::RoomLabels,
                        roomsText(rooms->size(), "des Auftrags '" + orderName + "'"), false);
}

bool LabelCommands::roomLabelsOfNode(std::int32_t nodeId, const std::string& nodeName)
{
    const auto rooms = nodeRooms(nodeId);
    return rooms &&
           run(roomLabels(*rooms), labeltext::RoomLabels, roomsText(rooms->size(), "unter '" + nodeName + "'"), false);
}

bool LabelCommands::objectLabelsOfOrder(CAuftragDb& order, const std::string& orderName)
{
    if (evaluate && !evaluate())
        return false;
    std::vector<std::string> numbers;
    try {
        numbers = unknownNumbersOfOrder(order);
    } catch (const std::exception& e) {
        ui_.showError("Etiketten", e.what());
        return false;
    }
    if (numbers.empty()) {
        refuse(labeltext::NoUnknownNumbers, labeltext::ObjectLabels);
        return false;
    }
    const std::string what = std::to_string(numbers.size()) +
                             (numbers.size() == 1 ? " Nummer" : " Nummern") + " des Auftrags '" + orderName +
                             "', die Quarn nicht kennt";
    return run(objectLabels(numbers, Symbology::Code128), labeltext::ObjectLabels, what, true);
}

bool LabelCommands::walkList(const std::vector<LabelRoom>& rooms, const std::string& scope)
{
    try {
        ui_.setBusy(true);
        std::unique_ptr<Database> data = walkListData(settings_, *geb_, rooms);
        std::unique_ptr<Report> report = openWalkList(settings_, *data, scope);
        report->layout();
        ui_.setBusy(false);
        // The report keeps its rows; the data may go.
        if (showWalkList)
            showWalkList(std::move(report));
        return true;
    } catch (const std::exception& e) {
        ui_.setBusy(false);
        ui_.showError("Begehungsliste", e.what());
        return false;
    }
}

bool LabelCommands::walkListOfOrder(CAuftragDb& order, const std::string& orderName)
{
    const auto rooms = orderRooms(order);
    return rooms && walkList(*rooms, orderName);
}

bool LabelCommands::walkListOfNode(std::int32_t nodeId, const std::string& nodeName)
{
    const auto rooms = nodeRooms(nodeId);
    return rooms && walkList(*rooms, nodeName);
}

} // namespace qi
