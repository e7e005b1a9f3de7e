// The demo installation: its sizes, its scanner files and that it comes out the same every time.

#include "DemoInstallation.h"
#include "ProfileFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

namespace qi {
namespace {

namespace fs = std::filesystem;
using test::TempDir;

std::map<std::string, std::string> filesBelow(const std::string& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& e : fs::recursive_directory_iterator(folder))
        if (e.is_regular_file())
            files[fs::relative(e.path(), folder).string()] = test::readFile(e.path().string());
    return files;
}

std::vector<std::string> split(const std::string& line)
{
    std::vector<std::string> fields;
    std::string::size_type start = 0;
    for (;;) {
        const auto comma = line.find(',', start);
        fields.push_back(line.substr(start, comma - start));
        if (comma == std::string::npos)
            return fields;
        start = comma + 1;
    }
}

std::string stripZeros(std::string room)
{
    while (!room.empty() && room.front() == '0')
        room.erase(0, 1);
    return room;
}

TEST(DemoInstallation, DefaultSizesMakeARealisticInstallation)
{
    const auto inst = demo::buildInstallation(demo::Sizes{});
    std::map<int, int> byType;
    for (const auto& n : inst.nodes)
        ++byType[n.typ];
    EXPECT_EQ(byType[1], 2);
    EXPECT_EQ(byType[2], 4);
    EXPECT_EQ(byType[3], 12);
    EXPECT_EQ(byType[4], 240);
    EXPECT_EQ(inst.rooms.size(), 240u);
    EXPECT_EQ(inst.modules[0].objects.size(), 6000u);
    EXPECT_EQ(inst.modules[0].articles.size(), 60u);
    EXPECT_EQ(inst.modules[1].prefix, "T_T");
    EXPECT_GT(inst.modules[1].objects.size(), 0u);
    EXPECT_GT(inst.modules[2].objects.size(), 0u);
    EXPECT_FALSE(inst.persons.empty());
    EXPECT_FALSE(inst.costCentres.empty());
    std::set<std::string> roomNumbers, invNumbers;
    for (const auto& r : inst.rooms)
        roomNumbers.insert(r.nr);
    EXPECT_EQ(roomNumbers.size(), inst.rooms.size());
    for (const auto& r : roomNumbers)
        EXPECT_NE(r.front(), '0') << "room numbers survive the scanner's zero stripping";
    for (const auto& o : inst.modules[0].objects)
        invNumbers.insert(o.name);
    EXPECT_EQ(invNumbers.size(), inst.modules[0].objects.size());
}

TEST(DemoInstallation, SizesThatCannotHoldAnInstallationAreRefused)
{
    demo::Sizes s = demo::smallSizes();
    s.roomsPerFloor = 0;
    EXPECT_THROW(demo::buildInstallation(s), std::invalid_argument);
    s = demo::smallSizes();
    s.inventarObjects = 5;
    const auto inst = demo::buildInstallation(s);
    EXPECT_THROW(demo::scannerFiles(inst, 0), std::invalid_argument);
}

TEST(DemoInstallation, GeneratedTwiceTheFilesAreByteIdentical)
{
    TempDir a, b;
    const std::string reports = std::string(QI_SOURCE_DIR) + "/resources/reports";
    demo::writeDemoProject(demo::smallSizes(), a.path() + "/Demo", reports);
    demo::writeDemoProject(demo::smallSizes(), b.path() + "/Demo", reports);
    const auto first = filesBelow(a.path() + "/Demo");
    const auto second = filesBelow(b.path() + "/Demo");
    EXPECT_EQ(first.size(), second.size());
    for (const auto& [name, bytes] : first) {
        ASSERT_TRUE(second.count(name)) << name;
        EXPECT_TRUE(second.at(name) == bytes) << name << " differs";
    }
    for (const char* name : {"QGebaeude.mdb", "QOvInventar.mdb", "QOvTechnik.mdb", "QOvBrandschutz.mdb",
                             "QStammdaten.mdb", "Projekt.ini", "Report/invraum.rpt", "Report/invausw.rpt",
                             "Scan_EG_Teil1.dat", "Scan_EG_Teil2.dat", "Scan_Zwei_Tage.dat",
                             "Scan_Raum_ausserhalb.dat", "Liesmich.txt"})
        EXPECT_TRUE(first.count(name)) << name;
    EXPECT_FALSE(first.count("QInventur.mdb")) << "the register is seeded at the first start";
}

TEST(DemoInstallation, RegeneratingInTheSameFolderReplacesTheFiles)
{
    TempDir a;
    demo::writeDemoProject(demo::smallSizes(), a.path(), "");
    const auto first = filesBelow(a.path());
    demo::writeDemoProject(demo::smallSizes(), a.path(), "");
    EXPECT_TRUE(filesBelow(a.path()) == first);
}

TEST(DemoInstallation, ProjectIniNamesAJetProjectAndTheModule)
{
    TempDir a;
    demo::writeDemoProject(demo::smallSizes(), a.path(), "", "TECHNIK");
    const std::string ini = a.path() + "/Projekt.ini";
    EXPECT_EQ(readProfileValue(ini, "ODBC", "Projekttyp", ""), "ptJet");
    EXPECT_EQ(readProfileValue(ini, "Inventur", "Modul", ""), "TECHNIK");
    EXPECT_EQ(test::readFile(ini).find('\n'), test::readFile(ini).find("\r\n") + 1);
}

TEST(DemoInstallation, QuarnIniNamesTheProject)
{
    TempDir a;
    demo::writeQuarnIni(a.file("Quarn.ini"), "/pfad/zum/Demo");
    EXPECT_EQ(readProfileValue(a.file("Quarn.ini"), "Quarn", "Projekt", ""), "/pfad/zum/Demo");
}

TEST(DemoInstallation, ProjectValueIsRelativeToTheProfileFilesFolder)
{
    EXPECT_EQ(demo::projectValueFor("/prog/bin/Quarn.ini", "/prog/bin/Demo"), "Demo");
    EXPECT_EQ(demo::projectValueFor("/prog/bin/Quarn.ini", "/prog/bin/Demo/"), "Demo");
    EXPECT_EQ(demo::projectValueFor("/prog/bin/Quarn.ini", "/prog/Projekte/Demo"), "..\\Projekte\\Demo");
    EXPECT_EQ(demo::projectValueFor("/prog/bin/Quarn.ini", "/prog/bin/./Demo/../Demo"), "Demo");
}

TEST(DemoInstallation, BuildsProfileFileNamesTheDemoRelativeToTheProgramFolder)
{
    // The build generated it; the program never writes it.
    EXPECT_EQ(readProfileValue(std::string(QI_PROGRAM_DIR) + "/Quarn.ini", "Quarn", "Projekt", ""), "Demo");
}

class ScannerFilesTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        inst = demo::buildInstallation(demo::smallSizes());
        files = demo::scannerFiles(inst, 0);
        ASSERT_EQ(files.size(), 4u);
        // The order the files are planned for: the rooms of the first floor.
        for (const auto& n : inst.nodes)
            if (n.typ == 3) {
                for (const auto* r : inst.roomsOfFloor(n.id))
                    orderRooms.insert(r->nr);
                break;
            }
        for (const auto& o : inst.modules[0].objects)
            known[o.name] = o.ort;
    }
    const demo::ScanFile& file(const std::string& name)
    {
        for (const auto& f : files)
            if (f.name == name)
                return f;
        throw std::runtime_error(name);
    }
    /// Records (8 fields or more) of a file.
    std::vector<std::vector<std::string>> records(const std::string& name)
    {
        std::vector<std::vector<std::string>> r;
        for (const auto& l : file(name).lines)
            if (!l.empty() && split(l).size() >= 8)
                r.push_back(split(l));
        return r;
    }
    demo::Installation inst;
    std::vector<demo::ScanFile> files;
    std::set<std::string> orderRooms;
    std::map<std::string, std::string> known; // inventory number -> room
};

TEST_F(ScannerFilesTest, FirstFileHoldsEveryCaseOfTheImport)
{
    const auto& lines = file("Scan_EG_Teil1.dat").lines;
    int shortLines = 0;
    for (const auto& l : lines)
        if (l.empty() || split(l).size() < 8)
            ++shortLines;
    EXPECT_GE(shortLines, 2);

    std::map<std::string, std::vector<std::string>> roomsOf; // inventory number -> rooms scanned
    bool padded = false, withoutNumber = false, umlaut = false;
    for (const auto& f : records("Scan_EG_Teil1.dat")) {
        const std::string room = stripZeros(f[4]);
        padded = padded || f[4] != room;
        EXPECT_TRUE(orderRooms.count(room)) << room;
        if (f[5].find_first_not_of(' ') == std::string::npos)
            withoutNumber = true;
        else
            roomsOf[f[5]].push_back(room);
        umlaut = umlaut || f[7].find("ä") != std::string::npos;
        EXPECT_EQ(f[2], "14.03.2025");
    }
    EXPECT_TRUE(padded);
    EXPECT_TRUE(withoutNumber);
    EXPECT_TRUE(umlaut);

    int sameRoomTwice = 0, twoRooms = 0, unknown = 0, foreign = 0, moved = 0;
    for (const auto& [nr, rooms] : roomsOf) {
        if (rooms.size() == 2 && rooms[0] == rooms[1])
            ++sameRoomTwice;
        if (rooms.size() == 2 && rooms[0] != rooms[1])
            ++twoRooms;
        if (!known.count(nr))
            ++unknown;
        else if (!orderRooms.count(known[nr]))
            ++foreign;
        else if (rooms.size() == 1 && rooms[0] != known[nr])
            ++moved;
    }
    EXPECT_EQ(sameRoomTwice, 1);
    EXPECT_EQ(twoRooms, 1);
    EXPECT_EQ(unknown, 1);   // 2c
    EXPECT_EQ(foreign, 1);   // 2b with the host's room
    EXPECT_EQ(moved, 1);     // 3a and 2a

    // At least one expected object of a scanned room is never scanned (3b).
    std::set<std::string> scannedRooms;
    for (const auto& [nr, rooms] : roomsOf)
        scannedRooms.insert(rooms.begin(), rooms.end());
    int missing = 0;
    for (const auto& o : inst.modules[0].objects)
        if (o.variante == 0 && scannedRooms.count(o.ort) && !roomsOf.count(o.name))
            ++missing;
    EXPECT_GE(missing, 1);
}

TEST_F(ScannerFilesTest, SecondFileScansAnObjectOfTheFirstFileInAnotherRoom)
{
    std::map<std::string, std::string> first;
    for (const auto& f : records("Scan_EG_Teil1.dat"))
        first[f[5]] = stripZeros(f[4]);
    int across = 0;
    for (const auto& f : records("Scan_EG_Teil2.dat")) {
        EXPECT_EQ(f[2], "17.03.2025");
        EXPECT_TRUE(orderRooms.count(f[4]));
        if (first.count(f[5]) && first[f[5]] != f[4])
            ++across;
    }
    EXPECT_EQ(across, 1);
}

TEST_F(ScannerFilesTest, OneFileHoldsTwoDaysAndOneARoomOutsideTheOrder)
{
    std::set<std::string> days;
    for (const auto& f : records("Scan_Zwei_Tage.dat"))
        days.insert(f[2]);
    EXPECT_EQ(days.size(), 2u);
    int outside = 0;
    for (const auto& f : records("Scan_Raum_ausserhalb.dat"))
        outside += orderRooms.count(f[4]) ? 0 : 1;
    EXPECT_GE(outside, 1);
}

TEST_F(ScannerFilesTest, FilesAreWrittenInWindows1252WithCrLf)
{
    TempDir a;
    demo::writeScannerFiles(inst, 0, a.path());
    const std::string bytes = test::readFile(a.file("Scan_EG_Teil1.dat"));
    EXPECT_NE(bytes.find("Z\xE4hlung"), std::string::npos);
    EXPECT_EQ(bytes.find("Zählung"), std::string::npos);
    std::size_t lf = 0, crlf = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] == '\n') {
            ++lf;
            crlf += i > 0 && bytes[i - 1] == '\r';
        }
    EXPECT_EQ(lf, crlf);
    EXPECT_EQ(lf, file("Scan_EG_Teil1.dat").lines.size());
}

TEST_F(ScannerFilesTest, ScannerFilesExistForEveryModule)
{
    for (int m = 1; m < 3; ++m) {
        const auto f = demo::scannerFiles(inst, m);
        ASSERT_EQ(f.size(), 4u);
        const auto& prefix = inst.modules[m].objects.front().name.substr(0, 1);
        bool moduleObject = false;
        for (const auto& l : f[1].lines)
            moduleObject = moduleObject || split(l)[5].rfind(prefix, 0) == 0;
        EXPECT_TRUE(moduleObject);
    }
}

} // namespace
} // namespace qi
