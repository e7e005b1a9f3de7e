#pragma once
// A small Quarn installation made for the evaluation, an order of five of its
// rooms and three scanner files that walk through every case of the reconciliation:
//
//   room  status  Quarn expects                         scanned
//   101   E       INV-001, INV-002, INV-008 (INV-007    INV-001 twice, INV-004 (Quarn: room 201),
//                 is a variant: never expected)         INV-008
//   102   E       INV-003, INV-010                      INV-002, INV-008 (conflict: keep 101),
//                                                       INV-010 (conflict: take 102), a line
//                                                       without number
//   103   E       nothing                               UNBEKANNT-1 (unknown to Quarn), INV-010
//   104   L       INV-005                               nothing
//   105   N       INV-006                               nothing
//   201   (not in the order)  INV-004
//
// The objects live in the module's object table; the INVENTAR table also holds the
// objects' remarks (the evaluation always takes them from there).

#include "ScriptedUserInteraction.h"
#include "Settings.h"
#include "TestSupport.h"
#include "frmWork.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qi::test {

/// One row of T_Differenzliste with the room number of its lRaumID.
struct EvalRow {
    std::string raum;
    std::string soll, ist, typ, ziel, quelle, quarn, artNr, beschreibung, bemerkung, datum, uhrzeit;
};

class EvaluationTest : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override;

    int modul() const { return GetParam(); }
    /// Adds a data file through pbAdd_Click with the file dialog answering its path.
    void addFile(const std::string& path);
    /// Imports the two good files and offers the refused one (conflict answers: keep, then take).
    void importAll();
    /// Writes a scanner file into the project folder; returns its path.
    std::string datFile(const std::string& name, const std::vector<std::string>& lines);
    /// T_Differenzliste in key order.
    std::vector<EvalRow> rows();
    /// Rows of one room.
    std::vector<EvalRow> rowsOf(const std::string& raum);
    /// The order's room key (lID of T_Raum) of a room number.
    std::int32_t roomKey(const std::string& raum) const { return roomKeys_.at(raum); }
    /// Number of messages whose text begins with `prefix`.
    int messagesStartingWith(const std::string& prefix) const;
    Database& sql() { return *db.database(); }

    TempDir dir;
    std::string project, program, dbFile, reportDb;
    std::string file1, file2, file3;
    Settings settings;
    ScriptedUserInteraction ui;
    CAuftragDb db{ui};
    std::unique_ptr<frmWork> w;

private:
    std::map<std::string, std::int32_t> roomKeys_;
};

/// The category texts.
inline constexpr const char* k1 = "1 OK";
inline constexpr const char* k2a = "2a Zuviel im Raum (verschoben aus anderem Raum des Auftrags)";
inline constexpr const char* k2b = "2b Zuviel im Auftrag (gehört in einen Raum außerhalb des Auftrags)";
inline constexpr const char* k2c = "2c Nicht in Quarn erfasst";
inline constexpr const char* k3a = "3a Fehlt im Raum (verschoben in anderen Raum des Auftrags)";
inline constexpr const char* k3b =
    "3b Fehlt im Auftrag (bisher). Könnte noch in diesem oder in anderem Auftrag auftauchen.";

} // namespace qi::test
