#pragma once
// The reports of the whole stocktake: "Gesamtauswertung" (the figures of every order and
// of the project, then the lists across orders) and "Fortschritt" (progress per order and
// room). Their report files lie in the project's "Report" folder like every report, or in
// the template folder's when the project has none; they read a project result
// (ProjectResultSchema.h) instead of the report database of an order. The command line
// writes them to files, the overview window shows them in the preview. "Inventurprotokoll"
// also reads the proposals of the correction list with their decisions (CorrectionProtocol.h).

#include "Report.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace qi {

class Database;
struct Settings;

/// One report of the project.
struct ProjectReport {
    std::string_view name;  ///< as the command line names it ("gesamtauswertung")
    std::string_view file;  ///< its report file in "Report\" ("invgesamt.rpt")
    std::string_view title; ///< the preview window's title and the files' document title
    /// What the report reads besides the project's figures, put into the project result before
    /// it runs (the protocol: the correction list's proposals with their decisions); or null.
    void (*prepare)(const Settings& settings, Database& result) = nullptr;
};

/// The reports of the project, in menu order.
std::span<const ProjectReport> projectReports();
/// The report of that name (as the command line names it), or null.
const ProjectReport* findProjectReport(std::string_view name);
/// Their names for messages and help ("gesamtauswertung, fortschritt").
std::string projectReportNames();

/// What the page header says in place of an order: the report is about all of them.
inline constexpr const char* kAllOrders = "alle Aufträge";

/// The report file the report is printed with: the project's "Report\<file>" (letter case
/// ignored), else the template folder's copy.
std::string projectReportFile(const Settings& settings, const ProjectReport& report);

/// The report ready for the preview (or printing), its rows read from the project result
/// `result`, which stays unchanged but for what the report's `prepare` puts into it. `printDate` empty: now. ReportError for a report file
/// that is missing or wrong, or rows that can't be read.
std::unique_ptr<Report> openProjectReport(const Settings& settings, Database& result, const ProjectReport& report,
                                          const std::string& printDate = {});

/// Writes the report from the project result `result` to `path` in `format`; an earlier file
/// there is replaced only by the whole new one. ReportError as openProjectReport, or when
/// the file can't be written.
void writeProjectReport(const Settings& settings, Database& result, const ProjectReport& report,
                        ReportFormat format, const std::string& path);

} // namespace qi
