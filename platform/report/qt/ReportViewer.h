#pragma once
// The report engine's place in the program: the user interaction's showReport opens
// the report in a preview window.

#include <string>

class QWidget;

namespace qi {

class QtUserInteraction;
class ReportPreview;
class UserInteraction;

/// Opens the report (report file, report database, window title) and shows it in a new preview
/// window over `parent`, with the busy pointer while it is read and laid out. ReportError (naming
/// the file, and the line of a definition error) when it can't be opened; no window is shown then.
ReportPreview* showReportPreview(QWidget* parent, UserInteraction& ui, const std::string& reportFile,
                                 const std::string& dataFile, const std::string& title);

/// Plugs the preview window into the program's user interaction: every showReport opens one.
void installReportPreview(QtUserInteraction& ui);

} // namespace qi
