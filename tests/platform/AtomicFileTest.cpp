// Files replaced whole or not at all: the target keeps its earlier content until the new
// one is complete, and nothing of a write that failed or was given up stays behind.

#include "AtomicFile.h"
#include "FileDigests.h"
#include "FileSystem.h"
#include "OwnMounts.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include <sys/stat.h>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

TEST(AtomicFile, ANewFileAppearsOnlyWhenCommitted)
{
    TempDir dir;
    const std::string target = dir.file("Bericht.csv");
    {
        AtomicFile file(target);
        file.write("a;b\r\n");
        file.write(std::string(3 << 20, 'x')); // more than is kept before writing
        EXPECT_FALSE(fs::exists(target));
        EXPECT_EQ(digestFiles(dir.path()).size(), 0u) << "a temporary file can be seen";
        file.commit();
        EXPECT_TRUE(file.committed());
    }
    EXPECT_EQ(readFile(target), "a;b\r\n" + std::string(3 << 20, 'x'));
    EXPECT_EQ(digestFiles(dir.path()).size(), 1u);
}

TEST(AtomicFile, TheEarlierFileStaysUntilTheNewOneIsComplete)
{
    TempDir dir;
    const std::string target = dir.file("A1.dat");
    writeFile(target, "alt\r\n");
    AtomicFile file(target);
    file.write("neu\r\n");
    EXPECT_EQ(readFile(target), "alt\r\n");
    file.commit();
    EXPECT_EQ(readFile(target), "neu\r\n");
}

TEST(AtomicFile, AFileNotCommittedLeavesTheEarlierOneAndNothingElse)
{
    TempDir dir;
    const std::string target = dir.file("A1.dat");
    writeFile(target, "alt\r\n");
    const FileDigests before = digestFiles(dir.path());
    {
        AtomicFile file(target);
        file.write(std::string(5 << 20, 'y'));
    }
    EXPECT_EQ(changedFiles(before, digestFiles(dir.path())), "");
}

TEST(AtomicFile, AWriterThatOpensTheFileByNameWritesTheNewContent)
{
    TempDir dir;
    const std::string target = dir.file("Liste.xlsx");
    writeFile(target, "alt");
    AtomicFile file(target);
    std::FILE* f = std::fopen(file.writePath().c_str(), "wb");
    ASSERT_NE(f, nullptr);
    std::fputs("neu", f);
    std::fclose(f);
    EXPECT_EQ(readFile(target), "alt");
    file.commit();
    EXPECT_EQ(readFile(target), "neu");
    EXPECT_EQ(digestFiles(dir.path()).size(), 1u);
}

TEST(AtomicFile, TheFileKeepsTheRightsOfTheEarlierOne)
{
    TempDir dir;
    const std::string target = dir.file("privat.csv");
    writeFile(target, "alt");
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
    AtomicFile file(target);
    file.write("neu");
    file.commit();
    EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(AtomicFile, ALinkStaysAndTheFileItNamesGetsTheContent)
{
    TempDir dir;
    const std::string real = dir.file("echt.csv"), link = dir.file("Verknuepfung.csv");
    writeFile(real, "alt");
    fs::create_symlink(real, link);
    AtomicFile file(link);
    file.write("neu");
    file.commit();
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(readFile(real), "neu");
}

TEST(AtomicFile, ADeviceIsWrittenDirectly)
{
    AtomicFile file("/dev/null");
    file.write("nichts");
    file.commit();
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(AtomicFile, AMissingFolderIsNamedInGerman)
{
    TempDir dir;
    const std::string target = dir.file("fehlt/A1.dat");
    try {
        AtomicFile file(target);
        FAIL() << "no failure";
    } catch (const FileError& e) {
        EXPECT_EQ(std::string(e.what()), "Die Datei '" + displayPath(target) +
                                             "' kann nicht geschrieben werden: Die Datei oder der Ordner existiert "
                                             "nicht.");
    }
}

TEST(AtomicFile, AFolderInTheTargetsPlaceIsRefused)
{
    TempDir dir;
    fs::create_directories(dir.file("Ordner"));
    try {
        AtomicFile file(dir.file("Ordner"));
        FAIL() << "no failure";
    } catch (const FileError& e) {
        EXPECT_EQ(std::string(e.what()), "Die Datei '" + displayPath(dir.file("Ordner")) +
                                             "' kann nicht geschrieben werden: Der Pfad ist ein Ordner, keine "
                                             "Datei.");
    }
}

TEST(AtomicFile, AMissingSourceOfACopyIsNamedAndTheTargetStays)
{
    TempDir dir;
    writeFile(dir.file("Ziel.mdb"), "alt");
    try {
        copyFileWhole(dir.file("Quelle.mdb"), dir.file("Ziel.mdb"));
        FAIL() << "no failure";
    } catch (const FileError& e) {
        EXPECT_EQ(std::string(e.what()), "Die Datei '" + displayPath(dir.file("Quelle.mdb")) + "' existiert nicht.");
    }
    EXPECT_EQ(readFile(dir.file("Ziel.mdb")), "alt");
    EXPECT_EQ(digestFiles(dir.path()).size(), 1u);
}

TEST(AtomicFile, ACopyIsWhole)
{
    TempDir dir;
    writeFile(dir.file("Quelle.mdb"), std::string(200000, 'q'));
    copyFileWhole(dir.file("Quelle.mdb"), dir.file("Ziel.mdb"));
    EXPECT_EQ(readFile(dir.file("Ziel.mdb")), std::string(200000, 'q'));
}

TEST(AtomicFile, AFullDiskSaysSoInGermanAndLeavesTheEarlierFileAndNothingElse)
{
    TempDir dir;
    const std::string disk = dir.file("Platte");
    fs::create_directories(disk);
    inOwnMounts([&] {
        mountRamDisk(disk, 1024 * 1024);
        const std::string target = disk + "/Differenzliste.pdf";
        writeFile(target, "die frühere Liste");
        fillDisk(disk, 16 * 1024);
        FileDigests before = digestFiles(disk);
        try {
            AtomicFile file(target);
            for (int i = 0; i < 40; ++i)
                file.write(std::string(64 * 1024, 'p'));
            file.commit();
            FAIL() << "the disk took it all";
        } catch (const FileError& e) {
            EXPECT_EQ(std::string(e.what()), "Die Datei '" + displayPath(target) +
                                                 "' kann nicht geschrieben werden: Kein Platz mehr auf dem "
                                                 "Datenträger.");
        }
        EXPECT_EQ(changedFiles(before, digestFiles(disk)), "");
    });
}

TEST(AtomicFile, AfterAFullDiskWhatWasWrittenMayTakeTheTargetsPlace)
{
    TempDir dir;
    const std::string disk = dir.file("Platte");
    fs::create_directories(disk);
    inOwnMounts([&] {
        mountRamDisk(disk, 1024 * 1024);
        const std::string target = disk + "/Archiv.dat";
        writeFile(target, "das frühere Archiv");
        fillDisk(disk, 16 * 1024);
        AtomicFile file(target);
        const std::string block(64 * 1024, 'z');
        bool full = false;
        for (int i = 0; i < 40 && !full; ++i) {
            try {
                file.write(block);
            } catch (const FileError& e) {
                full = true;
                EXPECT_EQ(e.error(), ENOSPC);
            }
        }
        ASSERT_TRUE(full);
        // A commit after the failure is refused; what reached the file may still be put in place.
        EXPECT_THROW(file.commit(), FileError);
        file.commitWritten();
        EXPECT_TRUE(file.committed());
        const std::string written = readFile(target);
        EXPECT_GT(written.size(), 0u);
        EXPECT_LT(written.size(), 40u * block.size());
        EXPECT_EQ(written.find_first_not_of('z'), std::string::npos);
        for (const auto& entry : fs::directory_iterator(disk))
            EXPECT_NE(entry.path().filename().string().front(), '~') << entry.path();
    });
}

} // namespace
} // namespace qi::test
