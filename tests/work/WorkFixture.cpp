#include "WorkFixture.h"

#include "FileSystem.h"

namespace qi::test {

std::string scanLine(const std::string& room, const std::string& invNr, const std::string& date,
                     const std::string& artNr, const std::string& time)
{
    return "M7,4711," + date + "," + time + "," + room + "," + invNr + "," + artNr + ",E";
}

std::string crlf(const std::vector<std::string>& lines)
{
    std::string out;
    for (const std::string& l : lines)
        out += l + "\r\n";
    return out;
}

void makeHostObjects(const std::string& path)
{
    auto db = Database::create(path);
    db->executeScript(
        "CREATE TABLE T_IArtikel (lId INTEGER PRIMARY KEY, stArtNr TEXT COLLATE JET, stName TEXT COLLATE JET);"
        "CREATE TABLE T_IObjekt (lId INTEGER PRIMARY KEY, stName TEXT COLLATE JET UNIQUE, "
        "stBeschreibung TEXT COLLATE JET, lArtikelId INTEGER, stOrt TEXT COLLATE JET, lGebstruId INTEGER, "
        "byGebstruTyp INTEGER, stBemerkung TEXT COLLATE JET, iVariante INTEGER, lKstId INTEGER);"
        "INSERT INTO T_IArtikel VALUES (1, 'ART-STUHL', 'Bürostuhl'), (2, 'ART-TISCH', 'Schreibtisch');"
        "INSERT INTO T_IObjekt VALUES (1, 'INV-1', 'Stuhl grau', 1, '1', 0, 4, '', 0, 0),"
        " (2, 'INV-2', 'Tisch', 2, '2', 0, 4, '', 0, 0);");
}

void WorkTest::SetUp()
{
    OrderDbTest::SetUp();
    settings.gstProjektPfad = dir.path() + "/";
    settings.gstProjekttyp = "ptJet";
    settings.gstAppPfad = dir.path();
    settings.giModul = 0;
    makeHostObjects(dir.file("QOvInventar.mdb"));
}

void WorkTest::addRoom(const std::string& nr)
{
    CRaumRec r;
    r.stRaumNr = nr;
    r.ststatus = "N";
    ASSERT_TRUE(db.AddNewRaumRec(&r)) << db.LastError();
}

std::string WorkTest::datFile(const std::string& name, const std::vector<std::string>& lines)
{
    const std::string path = dir.file(name);
    writeFile(path, crlf(lines));
    return path;
}

void WorkTest::addFile(const std::string& path)
{
    ui.fileChoices.push_back(path);
    w.pbAdd_Click();
}

bool WorkTest::import(const std::string& path)
{
    CDateienRec d;
    d.stName = fileNamePart(path);
    d.stPfad = path;
    EXPECT_TRUE(db.AddNewDateienRec(&d)) << db.LastError();
    w.f_stfilename = path;
    w.f_lDatId = d.lID;
    return w.GetDataFromDat();
}

std::vector<CDatInventurRec> WorkTest::scans()
{
    CDatInventurRecColl c;
    EXPECT_TRUE(db.ReadAllDatInventurRec2Coll(c));
    return {c.begin(), c.end()};
}

std::map<std::string, std::int16_t> WorkTest::lineNumbers()
{
    std::map<std::string, std::int16_t> numbers;
    for (const CDatInventurRec& s : scans())
        numbers[s.stInvNr] = s.iReihenfolge;
    return numbers;
}

std::vector<std::string> WorkTest::manyLines(const std::string& room, int count)
{
    std::vector<std::string> lines;
    for (int i = 1; i <= count; ++i)
        lines.push_back(scanLine(room, "N" + std::to_string(i)));
    return lines;
}

std::vector<CRaumRec> WorkTest::rooms()
{
    CRaumRecColl c;
    EXPECT_TRUE(db.ReadAllRaumRec2Coll(c));
    return {c.begin(), c.end()};
}

std::vector<CDateienRec> WorkTest::files()
{
    CDateienRecColl c;
    EXPECT_TRUE(db.ReadAllDateienRec2Coll(c));
    return {c.begin(), c.end()};
}

} // namespace qi::test
