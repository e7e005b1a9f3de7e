// The mirror of Quarn's data names a failure to write it in German words.

#include "MirrorWriter.h"

#include "DbError.h"
#include "TestSupport.h"

#include <functional>

namespace qi::test {
namespace {

std::string failureOf(const std::function<void()>& write)
{
    try {
        write();
    } catch (const DbError& e) {
        return e.description();
    }
    return "no error";
}

TEST(MirrorWriter, AFailureOfTheFileIsTheSystemsReason)
{
    TempDir dir;
    const std::string path = dir.file("spiegel.db");
    MirrorWriter writer(path);
    EXPECT_EQ(failureOf([&] { writer.attachReadOnly(dir.file("fehlt.db"), "quelle"); }),
              "Der Spiegel '" + path + "' kann nicht geschrieben werden.\r\nDie Datei oder der Ordner existiert nicht.");
}

TEST(MirrorWriter, AnyOtherFailureIsTheEnginesNumber)
{
    TempDir dir;
    const std::string path = dir.file("spiegel.db");
    MirrorWriter writer(path);
    EXPECT_EQ(failureOf([&] { writer.copyRows("nirgends", "T_Raum"); }),
              "Der Spiegel '" + path + "' kann nicht geschrieben werden.\r\nFehler 1 des Datenbankmoduls.");
}

} // namespace
} // namespace qi::test
