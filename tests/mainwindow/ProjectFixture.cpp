#include "ProjectFixture.h"

#include "FileSystem.h"
#include "ReportLinks.h"

#include <filesystem>

namespace qi::test {

namespace fs = std::filesystem;

void writeMiniHost(const std::string& folder)
{
    {
        auto db = Database::create(folder + "/QGebaeude.mdb");
        db->executeScript(
            "CREATE TABLE T_Gebstru (lId INTEGER PRIMARY KEY, lParentId INTEGER, byTyp INTEGER, stNr TEXT COLLATE JET, "
            "stBezeichnung TEXT COLLATE JET);"
            "INSERT INTO T_Gebstru VALUES (1,0,1,'L1','Liegenschaft'),(2,1,2,'G1','Gebäude'),(3,2,3,'E0','Erdgeschoss'),"
            "(10,3,4,'101','Büro'),(11,3,4,'102','Lager');"
            "CREATE TABLE T_Raumkern (lId INTEGER PRIMARY KEY, stRaumNr TEXT COLLATE JET, stBezeichnung TEXT COLLATE JET, "
            "lRaumverantwId INTEGER);"
            "INSERT INTO T_Raumkern VALUES (10,'101','Büro',1),(11,'102','Lager',0);");
    }
    const char* modules[][2] = {{"QOvInventar.mdb", "I"}, {"QOvTechnik.mdb", "T"}, {"QOvBrandschutz.mdb", "B"}};
    for (const auto& m : modules) {
        const std::string x = m[1];
        auto db = Database::create(folder + "/" + m[0]);
        db->executeScript("CREATE TABLE T_" + x + "Objekt (lId INTEGER PRIMARY KEY, stName TEXT COLLATE JET, "
                          "stBeschreibung TEXT COLLATE JET, lArtikelId INTEGER, stOrt TEXT COLLATE JET, lGebstruId INTEGER, "
                          "byGebstruTyp INTEGER, stBemerkung TEXT COLLATE JET, iVariante INTEGER, lKstId INTEGER);"
                          "INSERT INTO T_" + x + "Objekt VALUES (1,'" + x + "-1','Tisch',1,'101',10,4,'',0,1),"
                          "(2,'" + x + "-2','Stuhl',1,'101',10,4,'',0,0),(3,'" + x + "-3','Schrank',1,'102',11,4,'',0,0);"
                          "CREATE TABLE T_" + x + "Artikel (lId INTEGER PRIMARY KEY, stArtNr TEXT COLLATE JET, "
                          "stName TEXT COLLATE JET);"
                          "INSERT INTO T_" + x + "Artikel VALUES (1,'A1','Möbel');");
    }
    auto db = Database::create(folder + "/QStammdaten.mdb");
    db->executeScript("CREATE TABLE T_AnsprechPartner (lId INTEGER PRIMARY KEY, stName TEXT COLLATE JET, "
                      "stVorname TEXT COLLATE JET);"
                      "INSERT INTO T_AnsprechPartner VALUES (1,'Muster','Erika');"
                      "CREATE TABLE T_KST (lId INTEGER PRIMARY KEY, stKST TEXT COLLATE JET, stBezeichnung TEXT COLLATE JET);"
                      "INSERT INTO T_KST VALUES (1,'4711','Verwaltung');");
}

void ProjectFixture::SetUp()
{
    programDir = root.file("prog");
    projectDir = root.file("Projekt 1") + "/";
    fs::create_directories(programDir);
    fs::create_directories(projectDir);
    fs::copy(fs::path(QI_PROGRAM_DIR) / "Leeres Projekt", fs::path(programDir) / "Leeres Projekt",
             fs::copy_options::recursive);
    reportDb = programDir + "/QInventurRpt.mdb";
    createReportDatabase(reportDb);
    writeFile(programDir + "/Quarn.ini", "[Quarn]\r\nProjekt=" + root.file("Projekt 1") + "\r\n");
    writeProjectIni("ptJet", "INVENTAR");
    writeMiniHost(root.file("Projekt 1"));
}

void ProjectFixture::writeProjectIni(const std::string& typ, const std::string& modul, const std::string& connection)
{
    writeFile(projectDir + "Projekt.ini", "[ODBC]\r\nProjekttyp=" + typ + "\r\nConnectionString=" + connection +
                                              "\r\n[Inventur]\r\nModul=" + modul + "\r\n");
}

} // namespace qi::test
