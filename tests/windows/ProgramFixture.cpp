#include "ProgramFixture.h"

#include "FileSystem.h"
#include "ProgramWindows.h"
#include "ReportLinks.h"
#include "QTreeGebStruCtrl.h"

#include <QTreeWidget>

#include <filesystem>

namespace qi::test {

namespace fs = std::filesystem;

void ProgramFixture::SetUp()
{
    qtApplication();
    programDir = root.file("QInventur");
    demoDir = programDir + "/Demo";
    fs::create_directories(programDir);
    fs::copy(fs::path(QI_PROGRAM_DIR) / "Leeres Projekt", fs::path(programDir) / "Leeres Projekt",
             fs::copy_options::recursive);
    fs::copy_file(fs::path(QI_PROGRAM_DIR) / "QInventur.html", fs::path(programDir) / "QInventur.html");
    createReportDatabase(programDir + "/QInventurRpt.mdb");
    demo::writeDemoProject(demo::smallSizes(), demoDir, std::string(QI_SOURCE_DIR) + "/resources/reports");
    demo::writeQuarnIni(programDir + "/Quarn.ini", demo::projectValueFor(programDir + "/Quarn.ini", demoDir));
    inst = demo::buildInstallation(demo::smallSizes());
}

void ProgramFixture::TearDown()
{
    if (main) {
        main->close();
        main.reset();
    }
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void ProgramFixture::startProgram() { startProgram(ui); }

void ProgramFixture::startProgram(UserInteraction& interaction)
{
    main = std::make_unique<ScriptedMain>(interaction, programDir);
    connectWindows(*main);
    main->Form_Load();
    main->show();
}

void ProgramFixture::newOrder(const std::string& name, const std::string& person)
{
    main->script.push_back(enter(name, person));
    main->mnuDateiFkt_Click(menuindex::NewOrder);
}

void ProgramFixture::openOrder(const std::string& name)
{
    QTreeWidgetItem* item = itemWithText(*main->lvAuftraege, QString::fromStdString(name));
    ASSERT_NE(item, nullptr) << name;
    main->lvAuftraege->setCurrentItem(item);
    item->setSelected(true);
    main->lvAuftraege_ItemClick(item);
    main->lvAuftraege_DblClick();
}

frmWorkWindow* ProgramFixture::work() { return main ? qobject_cast<frmWorkWindow*>(main->workWindow()) : nullptr; }

std::unique_ptr<Database> ProgramFixture::read(const std::string& file) { return Database::open(file, true); }

std::string ProgramFixture::orderFile(const std::string& name) const { return demoDir + "/Inventur/" + name + ".mdb"; }

std::int64_t ProgramFixture::count(const std::string& file, const std::string& sql)
{
    return toLong(read(file)->scalar(sql));
}

std::string ProgramFixture::scanFile(const std::string& name) const { return demoDir + "/" + name; }

std::int32_t ProgramFixture::firstFloor() const
{
    for (const demo::Node& n : inst.nodes)
        if (n.typ == 3)
            return n.id;
    return 0;
}

void ProgramFixture::chooseFirstFloor()
{
    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        w.tvGeb->SelectNode(firstFloor());
        emit w.tvGeb->Click();
        w.pbAllIn->click();
        w.pbFertig->click();
    });
    work()->pbRooms->click();
}

void ProgramFixture::addDemoScanFiles()
{
    ui.fileChoices = {scanFile("Scan_EG_Teil1.dat"), scanFile("Scan_EG_Teil2.dat")};
    work()->pbAdd->click();
    work()->pbAdd->click();
}

QTreeWidgetItem* ProgramFixture::itemWithText(QTreeWidget& view, const QString& text)
{
    for (int i = 0; i < view.topLevelItemCount(); ++i)
        if (view.topLevelItem(i)->text(0) == text)
            return view.topLevelItem(i);
    return nullptr;
}

} // namespace qi::test
