#pragma once
// A report on a printer: the pages the printer's range asks for (all when it names
// none), at the printer's resolution, on A4 in the report's orientation.

class QPrinter;

namespace qi {

class Report;

/// Prepares `printer` for the report before the print dialog shows it: A4 in the report's
/// orientation, the whole sheet as the page, the page range 1 to the number of pages, the
/// report's title as the document name.
void preparePrinter(const Report& report, QPrinter& printer);

/// Prints the report on `printer` (prepared with preparePrinter). ReportError when the
/// printer can't be used.
void printReport(const Report& report, QPrinter& printer);

} // namespace qi
