#include "DemoOrderRooms.h"

#include "ScannerFile.h"
#include "bGeneral.h"

#include <set>

namespace qi::test {

std::vector<demo::Room> groundFloorRooms(const demo::Installation& inst, const std::vector<demo::ScanFile>& scanFiles)
{
    std::set<std::string> scanned;
    for (std::size_t file = 0; file < 2 && file < scanFiles.size(); ++file)
        for (const std::string& line : scanFiles[file].lines)
            if (FieldCount(line, ",") >= 8)
                scanned.insert(normaliseRoom(GetField(line, ",", 5)));
    std::vector<demo::Room> rooms;
    for (const demo::Room& r : inst.rooms)
        if (scanned.count(r.nr))
            rooms.push_back(r);
    return rooms;
}

std::string addOrderRooms(CAuftragDb& db, const std::vector<demo::Room>& rooms, const std::string& order)
{
    for (const demo::Room& r : rooms) {
        CRaumRec room;
        room.lIdRB = r.id;
        room.stRaumNr = r.nr;
        room.ststatus = "N";
        room.stAuftrag = order;
        if (!db.AddNewRaumRec(&room))
            return db.LastError().empty() ? "room " + r.nr + " not added" : db.LastError();
    }
    return "";
}

} // namespace qi::test
