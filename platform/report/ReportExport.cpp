#include "ReportExport.h"

#include "FileSystem.h"
#include "UserInteraction.h"

namespace qi {

namespace {

/// A text as part of a file name: characters that no file name may hold become "_".
std::string fileNameOf(std::string text)
{
    for (char& c : text)
        if (std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos || static_cast<unsigned char>(c) < 0x20)
            c = '_';
    return text;
}

bool hasExtension(const std::string& path)
{
    const std::string name = fileNamePart(path);
    const auto dot = name.find_last_of('.');
    return dot != std::string::npos && dot > 0 && dot + 1 < name.size();
}

} // namespace

FileDialogRequest saveRequestFor(const Report& report, ReportFormat format)
{
    FileDialogRequest request;
    switch (format) {
    case ReportFormat::Pdf:
        request.title = "Als PDF speichern";
        request.filter = "PDF-Dokument (*.pdf)|*.pdf";
        break;
    case ReportFormat::Xlsx:
        request.title = "Als Excel-Datei speichern";
        request.filter = "Excel-Arbeitsmappe (*.xlsx)|*.xlsx";
        break;
    case ReportFormat::Csv:
        request.title = "Als CSV speichern";
        request.filter = "CSV-Datei, Semikolon getrennt (*.csv)|*.csv";
        break;
    case ReportFormat::Text:
        request.title = "Als Text speichern";
        request.filter = "Textdatei (*.txt)|*.txt";
        break;
    }
    const ReportContext& context = report.model().context();
    if (folderExists(context.projectFolder))
        request.startFolder = context.projectFolder;
    std::string name = report.windowTitle().empty() ? report.model().definition().title : report.windowTitle();
    if (!context.orderName.empty())
        name += " - " + context.orderName;
    request.fileName = fileNameOf(name) + "." + reportFormatExtension(format);
    return request;
}

std::optional<std::string> saveReportAs(const Report& report, ReportFormat format, UserInteraction& ui,
                                        const ReportWriter& write)
{
    std::optional<std::string> path = ui.saveFile(saveRequestFor(report, format));
    if (!path || path->empty())
        return std::nullopt;
    if (!hasExtension(*path))
        *path += std::string(".") + reportFormatExtension(format);
    try {
        ui.setBusy(true);
        if (write)
            write(report, format, *path);
        else
            report.write(format, *path);
        ui.setBusy(false);
        return path;
    } catch (const std::exception& e) {
        ui.setBusy(false);
        ui.showError(kSaveReportLabel, e.what());
        return std::nullopt;
    }
}

} // namespace qi
