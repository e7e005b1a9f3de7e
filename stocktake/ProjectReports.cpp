#include "ProjectReports.h"

#include "CorrectionProtocol.h"
#include "ReportError.h"
#include "ReportFiles.h"
#include "Settings.h"

#include <array>

namespace qi {

namespace {

constexpr std::array<ProjectReport, 3> kProjectReports{{
    {"gesamtauswertung", "invgesamt.rpt", "Gesamtauswertung"},
    {"fortschritt", "invfortschritt.rpt", "Fortschritt"},
    {"protokoll", "invprotokoll.rpt", "Inventurprotokoll", putReviewedProposals},
}};

} // namespace

std::span<const ProjectReport> projectReports() { return kProjectReports; }

const ProjectReport* findProjectReport(std::string_view name)
{
    for (const ProjectReport& r : kProjectReports)
        if (r.name == name)
            return &r;
    return nullptr;
}

std::string projectReportNames()
{
    std::string names;
    for (const ProjectReport& r : kProjectReports)
        names += (names.empty() ? "" : ", ") + std::string(r.name);
    return names;
}

std::string projectReportFile(const Settings& settings, const ProjectReport& report)
{
    return reportFileOrTemplate(settings.gstProjektPfad + "Report\\" + std::string(report.file), settings.gstAppPfad);
}

std::unique_ptr<Report> openProjectReport(const Settings& settings, Database& result, const ProjectReport& report,
                                          const std::string& printDate)
{
    ReportOptions options;
    options.orderName = kAllOrders;
    options.projectFolder = settings.gstProjektPfad;
    options.printDate = printDate;
    if (report.prepare) {
        // What it can't read is told as any report whose rows can't be read.
        try {
            report.prepare(settings, result);
        } catch (const ReportError&) {
            throw;
        } catch (const std::exception& e) {
            throw ReportError(e.what());
        }
    }
    return Report::over(projectReportFile(settings, report), result, std::string(report.title), options);
}

void writeProjectReport(const Settings& settings, Database& result, const ProjectReport& report, ReportFormat format,
                        const std::string& path)
{
    openProjectReport(settings, result, report)->write(format, path);
}

} // namespace qi
