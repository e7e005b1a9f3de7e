#include "ReportPrinting.h"

#include "AtomicFile.h"
#include "PagedDocument.h"
#include "ReportError.h"
#include "UserInteraction.h"

#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPrinter>

#include <algorithm>
#include <memory>

namespace qi {

void preparePrinter(const PagedDocument& document, QPrinter& printer)
{
    printer.setFullPage(true);
    printer.setPageLayout(document.pageLayout());
    printer.setFromTo(1, document.pageCount());
    printer.setDocName(QString::fromStdString(document.documentTitle()));
}

void printReport(const PagedDocument& document, QPrinter& printer, const std::function<void(int page, int pages)>& progress)
{
    const int pageCount = document.pageCount();
    int from = printer.fromPage(), to = printer.toPage();
    if (printer.printRange() == QPrinter::AllPages || from <= 0) {
        from = 1;
        to = pageCount;
    }
    from = std::clamp(from, 1, pageCount);
    to = std::clamp(to, from, pageCount);

    // Printed into a file, the pages replace an earlier file only when they are all written.
    const QString outputFile = printer.outputFileName();
    std::unique_ptr<AtomicFile> file;
    if (!outputFile.isEmpty()) {
        try {
            file = std::make_unique<AtomicFile>(outputFile.toStdString());
        } catch (const FileError& e) {
            throw ReportError(e.what());
        }
        printer.setOutputFileName(QString::fromStdString(file->writePath()));
    }
    struct NameBack {
        QPrinter& printer;
        const QString& name;
        ~NameBack() { printer.setOutputFileName(name); }
    } nameBack{printer, outputFile};

    QPainter painter;
    if (!painter.begin(&printer)) {
        if (file)
            throw cannotWrite(outputFile.toStdString());
        throw ReportError(document.cannotPrintText(printer.printerName().toStdString()));
    }
    const double dpi = printer.resolution();
    const std::unique_ptr<PagePainting> pages = document.pagePainter(dpi, dpi / 72.0, false);
    for (int page = from; page <= to; ++page) {
        if (page > from)
            printer.newPage();
        pages->paint(painter, page - 1);
        if (progress)
            progress(page - from + 1, to - from + 1);
    }
    const bool ended = painter.end();
    if (file) {
        if (!ended)
            throw cannotWrite(outputFile.toStdString());
        try {
            file->commit();
        } catch (const FileError& e) {
            throw ReportError(e.what());
        }
    }
}

bool printWithProgress(const PagedDocument& document, QPrinter& printer, UserInteraction& ui,
                       const std::string& errorLabel, const std::function<void()>& done)
{
    bool progressShown = false;
    const auto end = [&] {
        if (progressShown)
            ui.endProgress();
        if (done)
            done();
        ui.setBusy(false);
    };
    try {
        ui.setBusy(true);
        printReport(document, printer, [&](int page, int pages) {
            if (!progressShown) {
                ui.beginProgress("Drucken");
                progressShown = true;
            }
            ui.reportStep("Seite", page, pages);
        });
        end();
        return true;
    } catch (const std::exception& e) {
        end();
        ui.showError(errorLabel, e.what());
        return false;
    }
}

} // namespace qi
