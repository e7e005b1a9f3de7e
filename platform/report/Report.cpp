#include "Report.h"

#include "Database.h"
#include "DbError.h"
#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "ReportError.h"
#include "ReportFiles.h"
#include "ReportOutputFile.h"

#include <QDateTime>
#include <QGuiApplication>
#include <QPageLayout>
#include <QPageSize>

namespace qi {

namespace {

std::string nowText()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("dd.MM.yyyy, hh:mm 'Uhr'")).toStdString();
}

} // namespace

std::unique_ptr<Report> Report::open(const std::string& reportFile, const std::string& dataFile,
                                     const std::string& windowTitle, const ReportOptions& options)
{
    std::unique_ptr<Report> report(new Report);
    report->windowTitle_ = windowTitle;
    report->file_ = locateReportFile(reportFile, dataFile);
    ReportDefinition def = parseReportDefinition(readReportFile(report->file_), report->file_);

    if (!fileExists(dataFile))
        throw ReportError("Die Berichtsdatenbank '" + displayPath(dataFile) + "' wurde nicht gefunden.");
    std::unique_ptr<Database> statements;
    try {
        statements = LinkedDatabase::open(dataFile)->openForStatements();
        // A report only reads.
        statements->executeScript("PRAGMA query_only = ON");
    } catch (const DbError& e) {
        throw ReportError("Die Berichtsdatenbank '" + displayPath(dataFile) + "' kann nicht geöffnet werden: " +
                          e.description());
    }
    ReportContext context{options.orderName, displayFolder(options.projectFolder),
                          options.printDate.empty() ? nowText() : options.printDate, fileNamePart(report->file_)};
    if (context.orderName.empty() || context.projectFolder.empty()) {
        const OrderInfo order = orderOfReportDatabase(dataFile, *statements);
        if (context.orderName.empty())
            context.orderName = order.orderName;
        if (context.projectFolder.empty())
            context.projectFolder = order.projectFolder;
    }
    ReportTable table = readReportRows(def, *statements);
    report->model_ = std::make_unique<ReportModel>(std::move(def), std::move(table), std::move(context));
    return report;
}

std::unique_ptr<Report> Report::over(const std::string& reportFile, Database& data, const std::string& windowTitle,
                                     const ReportOptions& options)
{
    std::unique_ptr<Report> report(new Report);
    report->windowTitle_ = windowTitle;
    report->file_ = locateReportFile(reportFile, {});
    ReportDefinition def = parseReportDefinition(readReportFile(report->file_), report->file_);
    ReportContext context{options.orderName, displayFolder(options.projectFolder),
                          options.printDate.empty() ? nowText() : options.printDate, fileNamePart(report->file_)};
    // A report only reads: the caller's database refuses changes while its rows are read.
    const bool wasQueryOnly = toInt32(data.scalar("PRAGMA query_only")) != 0;
    data.executeScript("PRAGMA query_only = ON");
    std::optional<ReportTable> table;
    try {
        table.emplace(readReportRows(def, data));
    } catch (...) {
        if (!wasQueryOnly)
            data.executeScript("PRAGMA query_only = OFF");
        throw;
    }
    if (!wasQueryOnly)
        data.executeScript("PRAGMA query_only = OFF");
    report->model_ = std::make_unique<ReportModel>(std::move(def), std::move(*table), std::move(context));
    return report;
}

const ReportLayout& Report::layout() const
{
    if (!layout_) {
        ensureGuiApplication();
        layout_ = std::make_unique<ReportLayout>(*model_);
    }
    return *layout_;
}

QPageLayout Report::pageLayout() const
{
    return QPageLayout(QPageSize(QPageSize::A4),
                       model().definition().landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
                       QMarginsF(0, 0, 0, 0));
}

std::string Report::documentTitle() const
{
    return windowTitle().empty() ? model().definition().title : windowTitle();
}

std::string Report::cannotPrintText(const std::string& printer) const
{
    return printer.empty() ? std::string("Der Bericht kann nicht gedruckt werden.")
                           : "Der Bericht kann auf dem Drucker '" + printer + "' nicht gedruckt werden.";
}

std::unique_ptr<PagePainting> Report::pagePainter(double dpi, double unitsPerPoint, bool hinted) const
{
    return std::make_unique<PagePainter>(layout(), dpi, unitsPerPoint, hinted);
}

void ensureGuiApplication()
{
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return;
    if (QCoreApplication::instance())
        throw ReportError("Berichtsseiten können nur in einem Programm mit grafischer Oberfläche gesetzt werden.");
    static int argc = 3;
    static char name[] = "QInventur", option[] = "-platform", platform[] = "offscreen";
    static char* argv[] = {name, option, platform, nullptr};
    new QGuiApplication(argc, argv);
}

void Report::write(ReportFormat format, const std::string& path) const
{
    switch (format) {
    case ReportFormat::Pdf:
        writePdf(path);
        break;
    case ReportFormat::Xlsx:
        writeXlsx(path);
        break;
    case ReportFormat::Csv:
        writeCsv(path);
        break;
    case ReportFormat::Text: {
        ReportOutputFile file(path);
        file.write(text());
        file.close();
        break;
    }
    }
}

std::string writeReportFile(const std::string& reportFile, const std::string& dataFile, const std::string& title,
                            const std::string& orderName, const std::string& projectFolder, ReportFormat format,
                            const std::string& outputPath, const std::function<void(int page, int pages)>& pageProgress)
{
    try {
        ReportOptions options;
        options.orderName = orderName;
        options.projectFolder = projectFolder;
        const std::unique_ptr<Report> report = Report::open(reportFile, dataFile, title, options);
        report->setPageProgress(pageProgress);
        report->write(format, outputPath);
        return {};
    } catch (const std::exception& e) {
        return e.what();
    }
}

const char* reportFormatExtension(ReportFormat format)
{
    switch (format) {
    case ReportFormat::Pdf:
        return "pdf";
    case ReportFormat::Xlsx:
        return "xlsx";
    case ReportFormat::Csv:
        return "csv";
    case ReportFormat::Text:
        return "txt";
    }
    return "";
}

std::optional<ReportFormat> reportFormatNamed(std::string_view name)
{
    for (ReportFormat f : {ReportFormat::Pdf, ReportFormat::Xlsx, ReportFormat::Csv, ReportFormat::Text})
        if (sameName(name, reportFormatExtension(f)))
            return f;
    return std::nullopt;
}

} // namespace qi
