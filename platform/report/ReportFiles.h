#pragma once
// Finding and reading report files, and what a report says about its order.

#include <string>

namespace qi {

class Database;

/// Folder below the program folder that holds the template of a new project.
inline constexpr const char* kTemplateFolder = "Leeres Projekt";

/// An existing file or folder at `path` whose names may differ from the ones asked for in
/// letter case only ("Report\InvNeu.rpt" finds "report/invneu.rpt"); empty when there is none.
/// An exact match wins over one that differs in case.
std::string findIgnoringCase(const std::string& path);

/// The report file to give the report engine for `reportFile` (a full path below the project
/// folder): `reportFile` itself when the project has it (letter case ignored) or when neither
/// has it; when the project has none (no "Report" folder, or not this file in it), the
/// template's copy "<programFolder>\Leeres Projekt\Report\<name>" as it was found.
std::string reportFileOrTemplate(const std::string& reportFile, const std::string& programFolder);

/// The report file to read for `reportFile`: reportFileOrTemplate with the program folder
/// being the folder of the report database `dataFile`, found with its names in the letter
/// case they have. ReportError naming the file asked for when neither exists.
std::string locateReportFile(const std::string& reportFile, const std::string& dataFile);

/// The text of a report file as UTF-8: files in UTF-8 (with or without byte-order mark) are
/// taken as they are, any other as Windows-1252. ReportError when the file can't be read,
/// is larger than 1 MB or is no text.
std::string readReportFile(const std::string& path);

/// The order a report database is linked to and its project folder.
struct OrderInfo {
    std::string orderName;     ///< T_Auftrag.stAuftrag, else the order database's file name
    std::string projectFolder; ///< the folder above "Inventur" of the order database
};

/// Reads the order's name through the link T_Auftrag of the report database at `dataFile`
/// (`statements` being its connection for statements) and derives the project folder from
/// that link's connect string (";DATABASE=<project>\Inventur\<name>.mdb"). Parts that
/// can't be found stay empty; nothing here fails.
OrderInfo orderOfReportDatabase(const std::string& dataFile, Database& statements);

} // namespace qi
