#pragma once
// Pages on a printer (a report's, a sheet of labels): the pages the printer's range asks
// for (all when it names none), at the printer's resolution, on the document's sheet.

#include <functional>
#include <string>

class QPrinter;

namespace qi {

class PagedDocument;
class UserInteraction;

/// Prepares `printer` for the pages before the print dialog shows them: the document's sheet
/// (a report's A4 in its orientation), the whole sheet as the page, the page range 1 to the
/// number of pages, the document's title as the document name.
void preparePrinter(const PagedDocument& document, QPrinter& printer);

/// Prints the pages on `printer` (prepared with preparePrinter). ReportError when the
/// printer can't be used. `progress` is told after each page with the page's place among the
/// pages printed and their number.
void printReport(const PagedDocument& document, QPrinter& printer,
                 const std::function<void(int page, int pages)>& progress = {});

/// Prints the pages as the windows do: busy meanwhile, the pages printed shown in a progress
/// window titled as the print dialog ("Seite 2 von 5"), the windows answering. A failure is
/// shown as an error under `errorLabel` once the progress window is gone; `done` is called
/// before that, when printing has ended either way. Answers whether the pages were printed.
bool printWithProgress(const PagedDocument& document, QPrinter& printer, UserInteraction& ui,
                       const std::string& errorLabel, const std::function<void()>& done = {});

} // namespace qi
