#pragma once
// Saving a shown report as a file of the user's choice: the save dialog through
// the user interaction, then the file in the chosen format.

#include "Report.h"
#include "UserInteraction.h"

#include <functional>
#include <optional>
#include <string>

namespace qi {

/// Label of the error message when a chosen file can't be written.
inline constexpr const char* kSaveReportLabel = "frmReport.SaveAs";

/// The save dialog's request for a format: its title ("Als PDF speichern", "Als Excel-Datei
/// speichern", "Als CSV speichern"), the format's filter, the project folder as start and the
/// report's window title and order as suggested name ("Differenzliste - Demo.pdf").
FileDialogRequest saveRequestFor(const Report& report, ReportFormat format);

/// Asks for a file name and writes the report there in `format`. A name without extension
/// gets the format's. Returns the path written; nothing when the user cancelled or the file
/// could not be written (then the common error message, label kSaveReportLabel, says why).
/// `write` writes the file (by default Report::write, on the caller's thread).
using ReportWriter = std::function<void(const Report& report, ReportFormat format, const std::string& path)>;
std::optional<std::string> saveReportAs(const Report& report, ReportFormat format, UserInteraction& ui,
                                        const ReportWriter& write = {});

} // namespace qi
