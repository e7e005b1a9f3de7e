#pragma once
// A project folder with an empty order register and an empty order template, the register
// open: the ground the order tests create, delete and keep orders on.

#include "Orders.h"

#include "TestSupport.h"

#include <filesystem>
#include <string>
#include <vector>

namespace qi::test {

class OrderRegisterFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        project = dir.path() + "/Projekt/";
        std::filesystem::create_directories(project);
        makeRegisterDatabase(project + "QInventur.mdb");
        makeOrderDatabase(project + "QAuftrag.mdb");
        settings.gstProjektPfad = project;
        settings.gstProjekttyp = "ptJet";
        settings.gstAppPfad = dir.path() + "/Programm";
        reg.setDbPath(project + "QInventur.mdb");
        ASSERT_TRUE(reg.OpenDb()) << reg.LastError();
    }
    /// The register's rows.
    std::vector<CAuftragRec> rows()
    {
        CAuftragRecColl coll;
        EXPECT_TRUE(reg.ReadAllAuftragRec2Coll(coll));
        return {coll.begin(), coll.end()};
    }
    std::string orderFile(const std::string& name) const { return project + "Inventur/" + name + ".mdb"; }

    TempDir dir;
    std::string project;
    Settings settings;
    ScriptedUserInteraction ui;
    CInventurDb reg;
};

} // namespace qi::test
