#include "DemoOrder.h"

#include "DemoInstallation.h"
#include "DemoOrderRooms.h"
#include "FileSystem.h"
#include "ReportLinks.h"
#include "ReportMenus.h"


namespace qi::test {

namespace {

const char* const kModules[] = {"INVENTAR", "TECHNIK", "BRANDSCHUTZ"};

} // namespace

void RenderingUserInteraction::showReport(const std::string& reportFile, const std::string& dataFile,
                                          const std::string& title)
{
    ScriptedUserInteraction::showReport(reportFile, dataFile, title);
    ReportOptions options;
    options.printDate = kTestPrintDate;
    auto report = Report::open(reportFile, dataFile, title, options);
    RenderedReport r;
    r.reportFile = reportFile;
    r.title = title;
    r.file = report->file();
    const std::string base = folder_ + "/" + std::to_string(rendered.size() + 1) + "_" + fileNamePart(r.file);
    r.text = report->text();
    r.pages = report->pageCount();
    r.rows = report->model().rowCount();
    r.pdf = base + ".pdf";
    r.xlsx = base + ".xlsx";
    r.csv = base + ".csv";
    report->writePdf(r.pdf);
    report->writeXlsx(r.xlsx);
    report->writeCsv(r.csv);
    rendered.push_back(std::move(r));
}

DemoOrder& DemoOrder::shared()
{
    static const std::unique_ptr<DemoOrder> order = std::make_unique<DemoOrder>();
    return *order;
}

DemoOrder::DemoOrder(int modul)
{
    qtApplication();
    program = dir.path();
    project = dir.path() + "/Demo";
    const demo::Sizes sizes = demo::smallSizes();
    demo::writeDemoProject(sizes, project, std::string(QI_SOURCE_DIR) + "/resources/reports", kModules[modul]);
    const demo::Installation inst = demo::buildInstallation(sizes);
    const std::vector<demo::ScanFile> scanFiles = demo::scannerFiles(inst, modul);

    settings.gstProjektPfad = project + "/";
    settings.gstProjekttyp = "ptJet";
    settings.gstAppPfad = program;
    settings.giModul = std::int16_t(modul);

    createFolder(project + "/Inventur");
    createFolder(program + "/Ausgabe");
    dbFile = project + "/Inventur/Demo.mdb";
    makeOrderDatabase(dbFile);
    ui = std::make_unique<RenderingUserInteraction>(program + "/Ausgabe");
    db = std::make_unique<CAuftragDb>(*ui);
    db->setDbPath(dbFile);
    if (!db->OpenDb())
        throw std::runtime_error(db->LastError());
    db->database()->execute("INSERT INTO T_Auftrag (stAuftrag) VALUES (?1)", {std::string("Demo")});

    if (const std::string error = addOrderRooms(*db, groundFloorRooms(inst, scanFiles), "Demo"); !error.empty())
        throw std::runtime_error(error);

    reportDb = program + "/QInventurRpt.mdb";
    createReportDatabase(reportDb);
    if (!CheckReportMdbLink(settings, dbFile, *ui))
        throw std::runtime_error("the report links could not be set");

    work = std::make_unique<frmWork>(*db, settings, *ui);
    work->Init();
    ui->fileChoices = {project + "/" + scanFiles[0].name, project + "/" + scanFiles[1].name};
    ui->conflictAnswers = {false, true};
    work->pbAdd_Click();
    work->pbAdd_Click();

    const std::pair<int, const char*> berichte[] = {{reportmenu::Raumerfassung, "Raumerfassung"},
                                                    {reportmenu::Inventur, "Inventur"},
                                                    {reportmenu::Inventurauswertung, "Inventurauswertung"},
                                                    {reportmenu::Differenz, "Differenz"},
                                                    {reportmenu::Artikel, "Artikel"}};
    for (const auto& [index, name] : berichte)
        if (const RenderedReport* r = runReportMenu(index))
            reports[name] = *r;
    const std::pair<int, const char*> fehler[] = {
        {fehlermenu::Neu, "Neu"}, {fehlermenu::Verschoben, "Verschoben"}, {fehlermenu::Fehlend, "Fehlend"}};
    for (const auto& [index, name] : fehler)
        if (const RenderedReport* r = runErrorMenu(index))
            reports[name] = *r;
}

const RenderedReport* DemoOrder::runReportMenu(int index)
{
    const std::size_t before = ui->rendered.size();
    work->mnuReportFkt_Click(index);
    return ui->rendered.size() > before ? &ui->rendered.back() : nullptr;
}

const RenderedReport* DemoOrder::runErrorMenu(int index)
{
    const std::size_t before = ui->rendered.size();
    work->mnuFehlerFkt_Click(index);
    return ui->rendered.size() > before ? &ui->rendered.back() : nullptr;
}

void DemoOrder::switchModule(int modul)
{
    demo::writeProjectIni(project, kModules[modul]);
    settings.giModul = std::int16_t(modul);
    if (!CheckReportMdbLink(settings, dbFile, *ui))
        throw std::runtime_error("the report links could not be set");
}

std::string withoutProjectFolder(std::string text, const std::string& project)
{
    for (const std::string& form : {displayPath(project), project}) {
        for (std::size_t at = text.find(form); at != std::string::npos; at = text.find(form, at))
            text.replace(at, form.size(), "<Projekt>");
    }
    return text;
}

} // namespace qi::test
