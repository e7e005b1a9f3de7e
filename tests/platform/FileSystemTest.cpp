#include "FileSystem.h"
#include "TestSupport.h"

using namespace qi;

TEST(FileSystem, BackslashesMapToTheSeparator)
{
    test::TempDir dir;
    const std::string sys = systemPath(dir.path());
    ASSERT_TRUE(createFolder(sys + "\\Inventur"));
    EXPECT_TRUE(folderExists(dir.path() + "/Inventur"));
    test::writeFile(dir.file("Inventur/a.mdb"), "x");
    EXPECT_TRUE(fileExists(sys + "\\Inventur\\a.mdb"));
    EXPECT_TRUE(fileExists(dir.path() + "\\\\Inventur\\a.mdb")); // doubled separator is harmless
    EXPECT_TRUE(copyFile(sys + "\\Inventur\\a.mdb", sys + "\\b.mdb"));
    EXPECT_EQ(test::readFile(dir.file("b.mdb")), "x");
    EXPECT_TRUE(removeFile(sys + "\\b.mdb"));
    EXPECT_FALSE(fileExists(dir.file("b.mdb")));
    EXPECT_EQ(countFiles(dir.path()), 0);
    EXPECT_EQ(countFiles(dir.path() + "/nix"), -1);
}

TEST(FileSystem, NameAndFolderParts)
{
    EXPECT_EQ(fileNamePart("C:\\Projekt\\Inventur\\A7.mdb"), "A7.mdb");
    EXPECT_EQ(folderPart("C:\\Projekt\\Inventur\\A7.mdb"), "C:\\Projekt\\Inventur\\");
    EXPECT_EQ(fileNamePart("/tmp/x.dat"), "x.dat");
    EXPECT_EQ(folderPart("x.dat"), "");
}

TEST(FileSystem, PathsShownToAPersonUseOneSeparator)
{
    EXPECT_EQ(displayPath("/home/a/Projekt\\Inventur\\A7.mdb"), "/home/a/Projekt/Inventur/A7.mdb");
    // The doubled separator of "\\QOvInventar.mdb" after a folder ending in one is shown once.
    EXPECT_EQ(displayPath("/home/a/Projekt\\\\QOvInventar.mdb"), "/home/a/Projekt/QOvInventar.mdb");
    EXPECT_EQ(displayPath("Report\\invraum.rpt"), "Report/invraum.rpt");
    EXPECT_EQ(displayPath(""), "");
    EXPECT_EQ(displayPath("//server/share"), "//server/share");
}

TEST(FileSystem, AFolderShownToAPersonEndsWithoutSeparator)
{
    EXPECT_EQ(displayFolder("/home/a/Projekt/"), "/home/a/Projekt");
    EXPECT_EQ(displayFolder("C:\\Quarn\\Projekt\\"), "C:/Quarn/Projekt");
    EXPECT_EQ(displayFolder("/home/a/Projekt"), "/home/a/Projekt");
    EXPECT_EQ(displayFolder("/"), "/");
    EXPECT_EQ(displayFolder("C:\\"), "C:/");
    EXPECT_EQ(displayFolder(""), "");
}

TEST(FileSystem, RelativePathsResolveAgainstAFolder)
{
    EXPECT_TRUE(isAbsolutePath("/home/a"));
    EXPECT_TRUE(isAbsolutePath("\\Projekte"));
    EXPECT_TRUE(isAbsolutePath("C:\\Quarn"));
    EXPECT_TRUE(isAbsolutePath("d:Quarn"));
    EXPECT_FALSE(isAbsolutePath("Demo"));
    EXPECT_FALSE(isAbsolutePath("..\\Demo"));
    EXPECT_FALSE(isAbsolutePath(""));
    EXPECT_EQ(resolvePath("/prog", "Demo"), "/prog\\Demo");
    EXPECT_EQ(resolvePath("/prog/", "..\\Demo"), "/prog/..\\Demo");
    EXPECT_EQ(resolvePath("/prog", "/abs/Demo"), "/abs/Demo");
    EXPECT_EQ(resolvePath("/prog", ""), "");
}

TEST(FileSystem, MovingAFileReplacesTheTargetInOneStep)
{
    test::TempDir dir;
    test::writeFile(dir.file("neu"), "neu");
    test::writeFile(dir.file("alt.mdb"), "alt");
    EXPECT_TRUE(moveFile(systemPath(dir.file("neu")), systemPath(dir.file("alt.mdb"))));
    EXPECT_EQ(test::readFile(dir.file("alt.mdb")), "neu");
    EXPECT_FALSE(fileExists(dir.file("neu")));
    EXPECT_FALSE(moveFile(dir.file("neu"), dir.file("wieder.mdb")));
    EXPECT_FALSE(fileExists(dir.file("wieder.mdb")));
}
