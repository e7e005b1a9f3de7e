#pragma once
// The accepted corrections as files for Quarn's data import: one table per kind of proposal
// (Corrections.h), one row per object, the new value in a column of its own. An Excel
// workbook "Korrekturen.xlsx" with a sheet per kind, or a CSV file per kind
// ("Korrekturen_Standort.csv", "Korrekturen_Neu.csv", "Korrekturen_Fehlt.csv",
// "Korrekturen_Klaeren.csv"; semicolons, UTF-8 with byte-order mark). Only proposals decided
// "angenommen" whose evidence is still the same go out; one marked "geändert – bitte prüfen"
// waits for a new decision. Every kind has its table, also without rows, so that an import
// finds the files it expects.

#include "Corrections.h"
#include "PlainTables.h"

#include <string>
#include <vector>

namespace qi {

/// The workbook's file name.
inline constexpr const char* kCorrectionWorkbook = "Korrekturen.xlsx";

enum class CorrectionFormat { Xlsx, Csv };

/// The accepted proposals as tables, one per kind in kind order (Standort ändern, Neu erfassen,
/// Fehlt, Klären), each named as its sheet ("Standort ändern"); rows in the order given.
std::vector<PlainTable> correctionTables(const std::vector<ReviewedProposal>& reviewed);

/// The CSV file of a kind ("Korrekturen_Standort.csv"); empty for an unknown kind.
std::string correctionCsvFile(const std::string& art);

/// Writes the accepted proposals into `folder` (which must exist) in `format`; each file
/// replaces an earlier one only when it is complete. The paths written, in kind order.
/// ReportError naming a file that can't be written.
std::vector<std::string> exportCorrections(const std::vector<ReviewedProposal>& reviewed, const std::string& folder,
                                           CorrectionFormat format);

} // namespace qi
