// Profile files read by the Windows profile rules.

#include "ProfileFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace qi {
namespace {

using test::TempDir;
using test::writeFile;

class ProfileFileTest : public ::testing::Test {
protected:
    std::string ini(const std::string& bytes)
    {
        const std::string path = dir.file("Test.ini");
        writeFile(path, bytes);
        return path;
    }
    TempDir dir;
};

TEST_F(ProfileFileTest, ReadsTheValueOfAKeyInItsSection)
{
    const auto f = ini("[Quarn]\r\nProjekt=C:\\Quarn\\Demo\r\n[Other]\r\nProjekt=falsch\r\n");
    EXPECT_EQ(readProfileValue(f, "Quarn", "Projekt", "x"), "C:\\Quarn\\Demo");
    EXPECT_EQ(readProfileValue(f, "Other", "Projekt", "x"), "falsch");
}

TEST_F(ProfileFileTest, SectionAndKeyNamesIgnoreLetterCase)
{
    const auto f = ini("[qUARN]\r\nPROJEKT=Wert\r\n");
    EXPECT_EQ(readProfileValue(f, "Quarn", "Projekt", ""), "Wert");
    EXPECT_EQ(readProfileValue(f, "QUARN", "projekt", ""), "Wert");
}

TEST_F(ProfileFileTest, UmlautsInNamesIgnoreLetterCase)
{
    const auto f = ini("[Prüfung]\nSCHLÜSSEL=ja\n");
    EXPECT_EQ(readProfileValue(f, "PRÜFUNG", "schlüssel", ""), "ja");
}

TEST_F(ProfileFileTest, MissingFileGivesTheDefault)
{
    EXPECT_EQ(readProfileValue(dir.file("fehlt.ini"), "Quarn", "Projekt", "Vorgabe"), "Vorgabe");
    EXPECT_EQ(readProfileValue("", "Quarn", "Projekt", "Vorgabe"), "Vorgabe");
}

TEST_F(ProfileFileTest, MissingKeyOrSectionGivesTheDefault)
{
    const auto f = ini("[Inventur]\r\nAnderes=1\r\n");
    EXPECT_EQ(readProfileValue(f, "Inventur", "Modul", "INVENTAR"), "INVENTAR");
    EXPECT_EQ(readProfileValue(f, "ODBC", "Anderes", "leer"), "leer");
}

TEST_F(ProfileFileTest, KeyOfAnotherSectionIsNotFound)
{
    const auto f = ini("[ODBC]\r\nModul=TECHNIK\r\n[Inventur]\r\n");
    EXPECT_EQ(readProfileValue(f, "Inventur", "Modul", "INVENTAR"), "INVENTAR");
}

TEST_F(ProfileFileTest, KeyBeforeAnySectionBelongsToNone)
{
    const auto f = ini("Modul=TECHNIK\r\n[Inventur]\r\n");
    EXPECT_EQ(readProfileValue(f, "Inventur", "Modul", "INVENTAR"), "INVENTAR");
}

TEST_F(ProfileFileTest, PresentKeyWithEmptyValueGivesEmptyText)
{
    const auto f = ini("[ODBC]\r\nConnectionString=\r\n");
    EXPECT_EQ(readProfileValue(f, "ODBC", "ConnectionString", "Vorgabe"), "");
}

TEST_F(ProfileFileTest, CommasAndSemicolonsInAValueStay)
{
    const auto f = ini("[ODBC]\r\nConnectionString=DSN=Quarn;UID=sa,PWD=geheim ; kein Kommentar\r\n");
    EXPECT_EQ(readProfileValue(f, "ODBC", "ConnectionString", ""), "DSN=Quarn;UID=sa,PWD=geheim ; kein Kommentar");
}

TEST_F(ProfileFileTest, BlanksAroundKeyAndValueAreDropped)
{
    const auto f = ini("[Quarn]\r\n  Projekt \t=   C:\\Mit Blank   \t\r\n");
    EXPECT_EQ(readProfileValue(f, "Quarn", "Projekt", ""), "C:\\Mit Blank");
}

TEST_F(ProfileFileTest, BlanksAroundTheSectionNameAreDropped)
{
    const auto f = ini("  [ Quarn ]  \r\nProjekt=a\r\n");
    EXPECT_EQ(readProfileValue(f, "Quarn", "Projekt", ""), "a");
}

TEST_F(ProfileFileTest, OnePairOfEnclosingQuotesIsRemoved)
{
    const auto f = ini("[S]\r\na=\"C:\\Pfad mit Blank \"\r\nb=\"\"doppelt\"\"\r\nc=\"nur vorn\r\nd=\"\r\n"
                       "e=\"links\" und \"rechts\"\r\nf='einfach'\r\ng=\"gemischt'\r\n");
    EXPECT_EQ(readProfileValue(f, "S", "a", ""), "C:\\Pfad mit Blank ");
    EXPECT_EQ(readProfileValue(f, "S", "b", ""), "\"doppelt\"");
    EXPECT_EQ(readProfileValue(f, "S", "c", ""), "\"nur vorn");
    EXPECT_EQ(readProfileValue(f, "S", "d", ""), "\"");
    EXPECT_EQ(readProfileValue(f, "S", "e", ""), "links\" und \"rechts");
    EXPECT_EQ(readProfileValue(f, "S", "f", ""), "einfach");
    EXPECT_EQ(readProfileValue(f, "S", "g", ""), "\"gemischt'");
}

TEST_F(ProfileFileTest, CommentLinesAreIgnored)
{
    const auto f = ini("[Inventur]\r\n;Modul=TECHNIK\r\n   ; Modul=BRANDSCHUTZ\r\nModul=INVENTAR\r\n");
    EXPECT_EQ(readProfileValue(f, "Inventur", "Modul", ""), "INVENTAR");
    EXPECT_EQ(readProfileValue(f, "Inventur", ";Modul", "x"), "x");
}

TEST_F(ProfileFileTest, ValueKeepsEverythingAfterTheFirstEqualsSign)
{
    const auto f = ini("[ODBC]\r\nConnectionString==DSN=a=b\r\n");
    EXPECT_EQ(readProfileValue(f, "ODBC", "ConnectionString", ""), "=DSN=a=b");
}

TEST_F(ProfileFileTest, FirstSectionAndFirstKeyOfANameCount)
{
    const auto f = ini("[Quarn]\r\nProjekt=eins\r\nProjekt=zwei\r\n[Quarn]\r\nProjekt=drei\r\nNur=hinten\r\n");
    EXPECT_EQ(readProfileValue(f, "Quarn", "Projekt", ""), "eins");
    EXPECT_EQ(readProfileValue(f, "Quarn", "Nur", "x"), "x");
}

TEST_F(ProfileFileTest, LinesMayEndInLfOnlyAndTheLastLineNeedsNoEnd)
{
    const auto f = ini("[Quarn]\nProjekt=/home/quarn/demo");
    EXPECT_EQ(readProfileValue(f, "Quarn", "Projekt", ""), "/home/quarn/demo");
}

TEST_F(ProfileFileTest, AnsiFileIsReadAsWindows1252)
{
    const auto f = ini("[Quarn]\r\nProjekt=C:\\Geb\xE4ude\\Gro\xDF\r\n");
    EXPECT_EQ(readProfileValue(f, "Quarn", "Projekt", ""), "C:\\Gebäude\\Groß");
}

TEST_F(ProfileFileTest, Utf8FileWithByteOrderMarkIsReadAsUtf8)
{
    const auto f = ini("\xEF\xBB\xBF[Quarn]\r\nProjekt=C:\\Gebäude\r\n");
    EXPECT_EQ(readProfileValue(f, "Quarn", "Projekt", ""), "C:\\Gebäude");
}

TEST_F(ProfileFileTest, BrokenSectionHeaderOpensNoSection)
{
    const auto f = ini("[Quarn\r\nProjekt=a\r\n");
    EXPECT_EQ(readProfileValue(f, "Quarn", "Projekt", "x"), "x");
}

TEST_F(ProfileFileTest, BinaryGarbageGivesTheDefault)
{
    const auto f = ini(std::string("\0\x01\xFF[\x80]=\0\n", 9));
    EXPECT_EQ(readProfileValue(f, "Quarn", "Projekt", "x"), "x");
}

TEST_F(ProfileFileTest, ServiceReadsValuesAndKnowsFiles)
{
    const ProfileService profile;
    const auto f = ini("[Quarn]\r\nProjekt=p\r\n");
    EXPECT_EQ(profile.ReadProfileValue(f, "QUARN", "projekt", ""), "p");
    EXPECT_TRUE(profile.FileExists(f));
    EXPECT_FALSE(profile.FileExists(dir.file("fehlt.ini")));
    EXPECT_FALSE(profile.FileExists(dir.path()));
    EXPECT_FALSE(profile.FileExists(""));
}

TEST_F(ProfileFileTest, ServiceTakesBackslashPaths)
{
    const ProfileService profile;
    const auto f = ini("[Quarn]\r\nProjekt=p\r\n");
    const std::string withBackslash = dir.path() + "\\Test.ini";
    EXPECT_TRUE(profile.FileExists(withBackslash));
    EXPECT_EQ(profile.ReadProfileValue(withBackslash, "Quarn", "Projekt", ""), "p");
}

} // namespace
} // namespace qi
