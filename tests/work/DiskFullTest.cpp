// A disk that fills up: the order lies on a small RAM disk of the test's own (see
// OwnMounts.h), nearly full, while a large scanner file is added or the archive of the
// scan data is written. The order stays as it was before the command, with one message.

#include "DemoInstallation.h"
#include "FileDigests.h"
#include "FileSystem.h"
#include "OwnMounts.h"
#include "Settings.h"
#include "TestSupport.h"
#include "frmWork.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

/// The names of the hidden files ("~…") a write may have left in the folder, one per line.
std::string hiddenFiles(const std::string& folder)
{
    std::string names;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().filename().string().rfind('~', 0) == 0)
            names += entry.path().filename().string() + "\n";
    return names;
}

/// A project with Quarn's small installation and the order "A1" of all its rooms, the first
/// half of them read from one file; a second file of many lines for the other half is ready.
class DiskFullTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        source = dir.file("Quelle");
        disk = dir.file("Platte");
        fs::create_directories(source + "/Inventur");
        fs::create_directories(disk);
        inst = demo::buildInstallation(demo::smallSizes());
        demo::writeHostDatabases(inst, source);
        makeOrderDatabase(source + "/Inventur/A1.mdb");

        ScriptedUserInteraction quiet;
        CAuftragDb db(quiet);
        db.setDbPath(source + "/Inventur/A1.mdb");
        ASSERT_TRUE(db.OpenDb());
        db.database()->execute("INSERT INTO T_Auftrag (stAuftrag) VALUES ('A1')");
        for (const demo::Room& room : inst.rooms) {
            CRaumRec r;
            r.lIdRB = room.id;
            r.stRaumNr = room.nr;
            r.ststatus = "N";
            r.stAuftrag = "A1";
            ASSERT_TRUE(db.AddNewRaumRec(&r));
        }
        const std::size_t half = inst.rooms.size() / 2;
        first = dir.file("Teil1.dat");
        second = dir.file("Teil2.dat");
        writeScans(first, 0, half, 3000);
        writeScans(second, half, inst.rooms.size(), 20000);
        Settings s = settingsFor(source);
        frmWork w(db, s, quiet);
        quiet.fileChoices.push_back(first);
        w.pbAdd_Click();
        ASSERT_TRUE(quiet.messages.empty()) << quiet.messages[0].text;
        ASSERT_EQ(toLong(db.database()->scalar("SELECT count(*) FROM T_DatInventur")), 3000);
    }

    /// `lines` scans spread over the rooms [from, to) of the installation, with numbers of their own.
    void writeScans(const std::string& path, std::size_t from, std::size_t to, int lines)
    {
        std::ofstream out(path, std::ios::binary);
        for (int i = 0; i < lines; ++i) {
            const demo::Room& room = inst.rooms[from + std::size_t(i) % (to - from)];
            out << "7,4711,05.03.2025,10:00:00," << room.nr << ",NR-" << path.size() << "-" << i << ",X-1,I\r\n";
        }
    }

    static Settings settingsFor(const std::string& project)
    {
        Settings s;
        s.gstProjektPfad = project + "/";
        s.gstProjekttyp = "ptJet";
        s.giModul = 0;
        return s;
    }

    /// The project copied onto a RAM disk of 4 MB with only `bytesLeft` free (inside inOwnMounts).
    void projectOnAFullDisk(std::size_t bytesLeft)
    {
        mountRamDisk(disk, 4 * 1024 * 1024);
        fs::copy(source, disk, fs::copy_options::recursive);
        fillDisk(disk, bytesLeft);
    }
    std::string order() const { return disk + "/Inventur/A1.mdb"; }
    FileDigests diskFiles() const
    {
        FileDigests d = digestFiles(disk);
        d.erase("Füllung");
        return d;
    }

    /// Runs `step` in the work window of the order on the disk; answers the messages.
    template <class Step>
    std::vector<RecordedMessage> inWorkWindow(Step step)
    {
        ScriptedUserInteraction ui;
        CAuftragDb db(ui);
        db.setDbPath(order());
        EXPECT_TRUE(db.OpenDb()) << db.LastError();
        Settings s = settingsFor(disk);
        frmWork w(db, s, ui);
        step(w, ui);
        return ui.messages;
    }

    /// Adds the second file to the order on the disk; answers the messages.
    std::vector<RecordedMessage> addSecondFile()
    {
        return inWorkWindow([&](frmWork& w, ScriptedUserInteraction& ui) {
            EXPECT_TRUE(w.Init());
            ui.fileChoices.push_back(second);
            w.pbAdd_Click();
            // The window shows the order as it is: the first file and its rooms.
            EXPECT_EQ(w.lvDateien.size(), 1u);
            EXPECT_FALSE(ui.busy);
        });
    }

    /// Writes the archive of the order on the disk, which fails; answers the messages.
    std::vector<RecordedMessage> makeArchive()
    {
        return inWorkWindow([](frmWork& w, ScriptedUserInteraction&) { EXPECT_EQ(w.MakeArchive(), ""); });
    }

    TempDir dir;
    std::string source, disk, first, second;
    demo::Installation inst;
};

TEST_F(DiskFullTest, AFileWhoseLinesTheDiskCantTakeLeavesTheOrderAsBefore)
{
    inOwnMounts([&] {
        projectOnAFullDisk(256 * 1024);
        const std::string before = contentDigest(order());
        const FileDigests files = diskFiles();
        const auto messages = addSecondFile();
        ASSERT_EQ(messages.size(), 1u) << messages.back().text;
        EXPECT_EQ(messages[0].text, "frmWork.pbAdd_Click\r\nDatenträger voll");
        EXPECT_EQ(messages[0].icon, MsgIcon::Critical);
        EXPECT_EQ(messages[0].title, "QInventur");
        EXPECT_TRUE(integrityOk(order()));
        EXPECT_EQ(contentDigest(order()), before);
        EXPECT_EQ(changedFiles(files, diskFiles()), "");
    });
}

TEST_F(DiskFullTest, ADiskThatFillsUpWhileTheLinesAreReadStopsTheImportAndKeepsNothingOfIt)
{
    inOwnMounts([&] {
        projectOnAFullDisk(64 * 1024);
        const std::string before = contentDigest(order());
        const FileDigests files = diskFiles();
        const auto messages = addSecondFile();
        ASSERT_EQ(messages.size(), 1u) << messages.back().text;
        EXPECT_EQ(messages[0].text,
                  "frmWork.GetDataFromDat\r\nDer Datensatz konnte nicht gespeichert werden!\r\nDatenträger voll");
        EXPECT_EQ(messages[0].icon, MsgIcon::Critical);
        EXPECT_TRUE(integrityOk(order()));
        EXPECT_EQ(contentDigest(order()), before);
        EXPECT_EQ(changedFiles(files, diskFiles()), "");
    });
}

TEST_F(DiskFullTest, ADiskTooFullForTheFilesRowIsNotTakenForAFileAddedBefore)
{
    inOwnMounts([&] {
        projectOnAFullDisk(8 * 1024);
        const std::string before = contentDigest(order());
        const FileDigests files = diskFiles();
        const auto messages = addSecondFile();
        ASSERT_EQ(messages.size(), 1u) << messages.back().text;
        EXPECT_EQ(messages[0].text,
                  "frmWork.pbAdd_Click\r\nDer Datensatz konnte nicht gespeichert werden!\r\nDatenträger voll");
        EXPECT_EQ(messages[0].icon, MsgIcon::Critical);
        EXPECT_TRUE(integrityOk(order()));
        EXPECT_EQ(contentDigest(order()), before);
        EXPECT_EQ(changedFiles(files, diskFiles()), "");
    });
}

TEST_F(DiskFullTest, AnArchiveTheDiskCantTakeSaysSoAndLeavesTheOrderAsItIs)
{
    inOwnMounts([&] {
        projectOnAFullDisk(16 * 1024);
        const std::string before = contentDigest(order());
        const auto messages = makeArchive();
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].text, "frmWork.MakeArchive\r\nDatenträger voll");
        EXPECT_EQ(messages[0].icon, MsgIcon::Critical);
        EXPECT_EQ(contentDigest(order()), before);
        // The lines written until the disk was full stay in the archive, and nothing else is left.
        const std::string archive = readFile(disk + "/Inventur/A1.dat");
        EXPECT_GT(archive.size(), 0u);
        EXPECT_LT(archive.size(), 3000u * 40u);
        EXPECT_EQ(hiddenFiles(disk + "/Inventur"), "");
    });
}

TEST_F(DiskFullTest, AnArchiveTheDiskCantTakeReplacesTheEarlierOneWithTheLinesWrittenUntilThen)
{
    inOwnMounts([&] {
        mountRamDisk(disk, 4 * 1024 * 1024);
        fs::copy(source, disk, fs::copy_options::recursive);
        writeFile(disk + "/Inventur/A1.dat", "7,4711,01.03.2025,10:00:00,101,INV-1,X-1,I\r\n");
        fillDisk(disk, 16 * 1024);
        const auto messages = makeArchive();
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].text, "frmWork.MakeArchive\r\nDatenträger voll");
        const std::string archive = readFile(disk + "/Inventur/A1.dat");
        EXPECT_GT(archive.size(), 0u);
        EXPECT_EQ(archive.find("7,4711,01.03.2025"), std::string::npos);
        EXPECT_EQ(hiddenFiles(disk + "/Inventur"), "");
    });
}

} // namespace
} // namespace qi::test
