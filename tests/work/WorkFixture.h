#pragma once
// The work window's logic on a fresh order: scripted user, settings of a Jet
// project in a temporary folder, a small Quarn object database and helpers for
// rooms and scanner data files.

#include "Settings.h"
#include "TestSupport.h"
#include "frmWork.h"

#include <map>
#include <string>
#include <vector>

namespace qi::test {

/// One scanner line: employee, order, date, time, room, inventory number, article, activity.
std::string scanLine(const std::string& room, const std::string& invNr, const std::string& date = "01.02.2015",
                     const std::string& artNr = "X-1", const std::string& time = "10:00:00");
/// Lines joined with CR LF, the last one ended too.
std::string crlf(const std::vector<std::string>& lines);

/// Creates the object database of the INVENTAR module with a few objects and articles.
void makeHostObjects(const std::string& path);

class WorkTest : public OrderDbTest {
protected:
    void SetUp() override;

    /// Adds a room of the order with status "N".
    void addRoom(const std::string& nr);
    /// Writes a scanner data file into the temporary folder; returns its path.
    std::string datFile(const std::string& name, const std::vector<std::string>& lines);
    /// Adds the file through pbAdd_Click with the file dialog answering its path.
    void addFile(const std::string& path);
    /// All stored scan lines, in key order.
    std::vector<CDatInventurRec> scans();
    /// The number of each stored scan line in its room (iReihenfolge), by its inventory number.
    std::map<std::string, std::int16_t> lineNumbers();
    /// Lines "N1" ... "N<count>" in room `room`: more than 32767 overflow the numbering.
    static std::vector<std::string> manyLines(const std::string& room, int count);
    std::vector<CRaumRec> rooms();
    std::vector<CDateienRec> files();
    /// Imports a file under a fresh T_Dateien row (as pbAdd_Click does after its checks).
    bool import(const std::string& path);

    Settings settings;
    frmWork w{db, settings, ui};
};

} // namespace qi::test
