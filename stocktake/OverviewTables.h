#pragma once
// What the project overview shows of a project result (ProjectResultSchema.h), as texts:
// the orders with their progress, the rooms of an order, the difference rows of a room, each
// list across orders, the project's totals and the figures that the main window's order list
// shows after its own columns. The windows only put these texts into their lists.

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace qi {

class Database;

/// A table as a list shows it: its headings and, per row, its cells and a key.
struct ShownTable {
    std::vector<std::string> headings;
    std::vector<std::vector<std::string>> rows;
    /// Per row: what the row stands for (an order's register lID, a room's number), or "".
    std::vector<std::string> keys;
};

/// A list across orders as the overview shows it in a tab of its own.
struct OverviewList {
    const char* table; ///< the result's table ("L_Verschoben")
    const char* title; ///< the tab's caption ("Verschoben")
};

/// The lists across orders in the order of their tabs.
std::span<const OverviewList> overviewLists();

/// The orders with their figures and progress, in the order of the register; keys: lAuftragID.
ShownTable orderTable(Database& result);
/// The rooms of an order (by name) with their progress, by room number; keys: stRaumNr.
ShownTable roomTable(Database& result, const std::string& order);
/// The difference rows of a room of an order: the objects Quarn expects there and those found there.
ShownTable objectTable(Database& result, const std::string& order, const std::string& room);
/// The rows of a list across orders (a table of overviewLists()).
ShownTable listTable(Database& result, const std::string& table);

/// The headings of the tables above, without a result.
std::vector<std::string> orderHeadings();
std::vector<std::string> roomHeadings();
std::vector<std::string> objectHeadings();
std::vector<std::string> listHeadings(const std::string& table);

/// The main window's order list: the headings of the columns it shows after its own.
std::vector<std::string> orderListHeadings();
/// Their texts per order, by the order's register lID.
std::map<std::int32_t, std::vector<std::string>> orderListFigures(Database& result);

/// The project's figures in one line: orders, rooms done, objects found, scans.
std::string projectTotalsText(Database& result);

/// A share in percent with one decimal and a decimal comma ("57,1").
std::string percentText(double percent);
/// A stamp "JJJJ-MM-TT hh:mm:ss" as the lists show dates ("TT.MM.JJJJ hh:mm:ss"); other texts stay.
std::string stampText(const std::string& stamp);

} // namespace qi
