#include "FileSystem.h"
#include "SystemError.h"
#include "TestSupport.h"

#include <cerrno>
#include <future>
#include <sys/stat.h>

using namespace qi;

TEST(SystemError, ReasonsAreGermanPhrases)
{
    EXPECT_EQ(systemErrorReason(ENOSPC), "Kein Platz mehr auf dem Datenträger");
    EXPECT_EQ(systemErrorReason(EDQUOT), "Kein Platz mehr auf dem Datenträger");
    EXPECT_EQ(systemErrorReason(EACCES), "Zugriff verweigert");
    EXPECT_EQ(systemErrorReason(EPERM), "Zugriff verweigert");
    EXPECT_EQ(systemErrorReason(EROFS), "Der Datenträger ist schreibgeschützt");
    EXPECT_EQ(systemErrorReason(EIO), "Datenträger- oder Netzwerkfehler");
    EXPECT_EQ(systemErrorReason(ENAMETOOLONG), "Der Pfad ist zu lang");
    EXPECT_EQ(systemErrorReason(EMFILE), "Zu viele Dateien geöffnet");
    EXPECT_EQ(systemErrorReason(ENFILE), "Zu viele Dateien geöffnet");
    EXPECT_EQ(systemErrorReason(ENOENT), "Die Datei oder der Ordner existiert nicht");
    EXPECT_EQ(systemErrorReason(ENOTDIR), "Ein Teil des Pfades ist kein Ordner");
    EXPECT_EQ(systemErrorReason(EISDIR), "Der Pfad ist ein Ordner, keine Datei");
    EXPECT_EQ(systemErrorReason(EEXIST), "Die Datei existiert bereits");
    EXPECT_EQ(systemErrorReason(ENOTEMPTY), "Der Ordner ist nicht leer");
    EXPECT_EQ(systemErrorReason(EBUSY), "Die Datei ist in Verwendung");
    EXPECT_EQ(systemErrorReason(EXDEV), "Die Datei liegt auf einem anderen Datenträger");
    EXPECT_EQ(systemErrorReason(EFBIG), "Die Datei ist zu groß");
    EXPECT_EQ(systemErrorReason(ELOOP), "Zu viele Verknüpfungen im Pfad");
    EXPECT_EQ(systemErrorReason(ENOMEM), "Nicht genügend Arbeitsspeicher");
    EXPECT_EQ(systemErrorReason(ENODEV), "Das Gerät ist nicht bereit");
    EXPECT_EQ(systemErrorReason(ESTALE), "Die Netzwerkverbindung ist unterbrochen");
}

TEST(SystemError, AnUnnamedNumberIsNamedByItsNumber)
{
    EXPECT_EQ(systemErrorReason(EPIPE), "Fehler " + std::to_string(EPIPE) + " des Betriebssystems");
    EXPECT_EQ(systemErrorReason(0), "Fehler 0 des Betriebssystems");
    const std::error_code other = std::make_error_code(std::future_errc::no_state);
    EXPECT_EQ(systemErrorReason(other), "Fehler " + std::to_string(other.value()) + " des Betriebssystems");
}

TEST(SystemError, ErrorCodesOfTheSystemReadAsTheirNumber)
{
    EXPECT_EQ(systemErrorReason(std::error_code(ENOSPC, std::generic_category())), "Kein Platz mehr auf dem Datenträger");
    EXPECT_EQ(systemErrorReason(std::error_code(EACCES, std::system_category())), "Zugriff verweigert");
    EXPECT_EQ(systemErrorMessage(std::error_code(ENOENT, std::system_category()), "/p\\Inventur", PathKind::Folder),
              "Der Ordner '/p/Inventur' existiert nicht.");
    const std::error_code other = std::make_error_code(std::future_errc::no_state);
    EXPECT_EQ(systemErrorMessage(other, "/p/x"), "'/p/x': Fehler " + std::to_string(other.value()) + " des Betriebssystems.");
}

TEST(SystemError, MessagesNameThePath)
{
    EXPECT_EQ(systemErrorMessage(ENOENT, "/p\\a.dat"), "Die Datei oder der Ordner '/p/a.dat' existiert nicht.");
    EXPECT_EQ(systemErrorMessage(ENOENT, "/p\\a.dat", PathKind::File), "Die Datei '/p/a.dat' existiert nicht.");
    EXPECT_EQ(systemErrorMessage(ENOENT, "/p\\Inventur", PathKind::Folder), "Der Ordner '/p/Inventur' existiert nicht.");
    EXPECT_EQ(systemErrorMessage(ENOTDIR, "/p/a.dat/b"), "Ein Teil des Pfades '/p/a.dat/b' ist kein Ordner.");
    EXPECT_EQ(systemErrorMessage(ENOTDIR, "/p/a.dat", PathKind::Folder), "'/p/a.dat' ist kein Ordner.");
    EXPECT_EQ(systemErrorMessage(EISDIR, "/p/Inventur"), "'/p/Inventur' ist ein Ordner, keine Datei.");
    EXPECT_EQ(systemErrorMessage(EACCES, "/p/a.dat"), "Zugriff auf '/p/a.dat' verweigert.");
    EXPECT_EQ(systemErrorMessage(EPERM, "/p/a.dat"), "Zugriff auf '/p/a.dat' verweigert.");
    EXPECT_EQ(systemErrorMessage(ENAMETOOLONG, "/p/a.dat"), "Der Pfad '/p/a.dat' ist zu lang.");
    EXPECT_EQ(systemErrorMessage(ENOSPC, "/p/a.pdf"), "'/p/a.pdf': Kein Platz mehr auf dem Datenträger.");
    EXPECT_EQ(systemErrorMessage(EROFS, "/p/a.pdf"), "'/p/a.pdf': Der Datenträger ist schreibgeschützt.");
}

TEST(SystemError, WhatIsThereButIsNoFileIsNamed)
{
    test::TempDir dir;
    test::writeFile(dir.file("a.dat"), "x");
    EXPECT_EQ(notAFileMessage(dir.file("a.dat")), "");
    EXPECT_EQ(notAFileMessage(dir.file("fehlt.dat")), "");
    EXPECT_EQ(notAFileMessage(dir.path()), "'" + displayPath(dir.path()) + "' ist ein Ordner, keine Datei.");
    ASSERT_EQ(mkfifo(dir.file("pipe.dat").c_str(), 0600), 0);
    EXPECT_EQ(notAFileMessage(dir.file("pipe.dat")), "'" + displayPath(dir.file("pipe.dat")) + "' ist keine Datei.");
    EXPECT_EQ(notAFileMessage("/dev/null"), "'/dev/null' ist keine Datei.");
}

TEST(SystemError, KnownKindsOfPathsAndEmptyFiles)
{
    EXPECT_EQ(notAFileMessage("/p\\Inventur", true), "'/p/Inventur' ist ein Ordner, keine Datei.");
    EXPECT_EQ(notAFileMessage("/p/pipe", false), "'/p/pipe' ist keine Datei.");
    EXPECT_EQ(emptyFileMessage("/p\\a.dat"), "Die Datei '/p/a.dat' ist leer.");
}
