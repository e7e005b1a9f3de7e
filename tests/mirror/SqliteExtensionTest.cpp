// The sqlite3 shell reads our order databases once the program's comparison is
// loaded as an extension, and answers text comparisons as Jet does.

#include "Database.h"
#include "FileSystem.h"
#include "MirrorTestSupport.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace qi {
namespace {

using test::successfulCommandOutput;
using test::shellWord;

TEST(SqliteExtension, ShellWithTheExtensionComparesTextAsJetOnATemplateOrderDatabase)
{
    test::TempDir dir;
    const std::string file = dir.path() + "/Auftrag.mdb";
    ASSERT_TRUE(copyFile(std::string(QI_PROGRAM_DIR) + "/Leeres Projekt/QAuftrag.mdb", file));
    Database::open(file)->execute("INSERT INTO T_DatInventur (stInvNr, stRaum) VALUES ('ABC', '101')");

    const std::string load = "-cmd " + shellWord(".load " + std::string(QI_PROGRAM_DIR) + "/QInventurJet") + " ";
    EXPECT_EQ(successfulCommandOutput("sqlite3 " + load + shellWord(file) + " \"SELECT 'ABC' = 'abc  ' COLLATE JET\""), "1\n");
    EXPECT_EQ(successfulCommandOutput("sqlite3 " + load + shellWord(file) +
                            " \"SELECT count(*) FROM T_DatInventur WHERE stInvNr = 'abc  '\""),
              "1\n");
    // Accents stay apart, and the unique index refuses the same number in other letters.
    EXPECT_EQ(successfulCommandOutput("sqlite3 " + load + shellWord(file) + " \"SELECT 'Acción' = 'accion' COLLATE JET\""),
              "0\n");
    EXPECT_NE(successfulCommandOutput("sqlite3 " + load + shellWord(file) +
                            " \"INSERT INTO T_DatInventur (stInvNr) VALUES ('abc') ; SELECT 'eingefügt'\" 2>&1 || true")
                  .find("UNIQUE constraint failed"),
              std::string::npos);
    // Without the extension the shell can't compare the columns at all.
    EXPECT_NE(successfulCommandOutput("sqlite3 " + shellWord(file) +
                            " \"SELECT count(*) FROM T_DatInventur WHERE stInvNr = 'abc'\" 2>&1 || true")
                  .find("no such collation sequence: JET"),
              std::string::npos);
}

} // namespace
} // namespace qi
