#include "Database.h"
#include "JetCollation.h"
#include "TestSupport.h"

#include <QString>

#include <algorithm>
#include <random>

using namespace qi;

TEST(JetCollation, IgnoresLetterCase)
{
    EXPECT_TRUE(jetEqual("ABC", "abc"));
    EXPECT_TRUE(jetEqual("Acción", "ACCIÓN"));
    EXPECT_TRUE(jetEqual("ÄÖÜ", "äöü"));
}

TEST(JetCollation, IgnoresTrailingBlanksOnly)
{
    EXPECT_TRUE(jetEqual("abc", "abc  "));
    EXPECT_TRUE(jetEqual("A Bad One  ", "a bad one"));
    EXPECT_FALSE(jetEqual(" abc", "abc"));
}

TEST(JetCollation, KeepsAccents)
{
    EXPECT_FALSE(jetEqual("Müller", "Muller"));
    EXPECT_FALSE(jetEqual("acción", "accion"));
}

TEST(JetCollation, OrdersWithoutRegardToCase)
{
    EXPECT_LT(jetCompare("apfel", "Birne"), 0);
    EXPECT_GT(jetCompare("Zebra", "affe"), 0);
    EXPECT_LT(jetCompare("ab", "abc"), 0);
    EXPECT_EQ(jetCompare("", "   "), 0);
}

TEST(JetCollation, SurvivesInvalidUtf8)
{
    const std::string bad1("\xff\xfe", 2), bad2("\xc3", 1);
    EXPECT_NE(jetCompare(bad1, bad2), 0);
    EXPECT_EQ(jetCompare(bad1, bad1), 0);
}

class CollationInDb : public ::testing::Test {
protected:
    void SetUp() override
    {
        db = Database::create(dir.file("c.mdb"));
        db->executeScript("CREATE TABLE t (lID INTEGER PRIMARY KEY AUTOINCREMENT, s TEXT COLLATE JET);"
                          "CREATE UNIQUE INDEX t_s ON t(s);");
    }
    test::TempDir dir;
    std::unique_ptr<Database> db;
};

TEST_F(CollationInDb, EqualityInStatements)
{
    db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("Müller")});
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM t WHERE s = ?1", {std::string("MÜLLER  ")})), 1);
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM t WHERE s = ?1", {std::string("Muller")})), 0);
}

TEST_F(CollationInDb, UniqueIndexRefusesOtherCase)
{
    db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("abc")});
    try {
        db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("ABC")});
        FAIL() << "duplicate accepted";
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::DuplicateKey);
        EXPECT_NE(e.description().find("mehrfach vorkommende Werte"), std::string::npos);
    }
    EXPECT_THROW(db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("abc ")}), DbError);
    EXPECT_NO_THROW(db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("ábc")}));
}

TEST_F(CollationInDb, GroupByFoldsCase)
{
    db->executeScript("DROP INDEX t_s;");
    for (const char* s : {"Raum", "RAUM", "raum ", "Räume"})
        db->execute("INSERT INTO t(s) VALUES (?1)", {std::string(s)});
    const Recordset rs = db->query("SELECT s, count(*) FROM t GROUP BY s ORDER BY s");
    EXPECT_EQ(rs.size(), 2u);
}

// ---------------------------------------------------------------- German order

namespace {

/// The texts sorted with the comparison.
std::vector<std::string> sorted(std::vector<std::string> v)
{
    std::stable_sort(v.begin(), v.end(), [](const std::string& a, const std::string& b) { return jetCompare(a, b) < 0; });
    return v;
}

int sign(int n) { return (n > 0) - (n < 0); }

/// Equality as the comparison has always had it: folded code points, trailing blanks dropped.
bool foldedEqual(const std::string& a, const std::string& b)
{
    auto norm = [](const std::string& s) {
        QString q = QString::fromUtf8(s.data(), qsizetype(s.size()));
        while (q.endsWith(QLatin1Char(' ')))
            q.chop(1);
        return q.toCaseFolded();
    };
    return norm(a) == norm(b);
}

/// Random texts over letters, umlauts, accents, ß, digits, punctuation, a control
/// character, a combining mark and trailing blanks, in both letter cases.
std::vector<std::string> randomTexts(unsigned seed, std::size_t count)
{
    static const char* const pieces[] = {"a", "A", "b", "o", "O", "u", "s", "ss", "e", "z", "Z", "ä", "Ä", "ö", "Ö",
                                         "ü", "Ü", "ß", "é", "É", "è", "ê", "á", "ç", "ñ", "0", "1", "9", "-", "_",
                                         ".", " ", "/", "(", "{", "~", "\t", "e\xcc\x81", "ø", "æ", "œ", "ẞ"};
    std::mt19937 rng(seed);
    std::uniform_int_distribution<std::size_t> piece(0, std::size(pieces) - 1), len(0, 6);
    std::vector<std::string> out;
    for (std::size_t n = 0; n < count; ++n) {
        std::string s;
        for (std::size_t k = len(rng); k > 0; --k)
            s += pieces[piece(rng)];
        if (rng() % 5 == 0)
            s += "  ";
        out.push_back(s);
    }
    return out;
}

} // namespace

TEST(JetCollation, UmlautsStandWithTheirBaseLetters)
{
    EXPECT_EQ(sorted({"Zange", "Öfen", "Ofen", "Äpfel", "Apfel", "Birne", "Übel", "Ufer", "Ozean", "Ast"}),
              (std::vector<std::string>{"Apfel", "Äpfel", "Ast", "Birne", "Ofen", "Öfen", "Ozean", "Übel", "Ufer",
                                        "Zange"}));
}

TEST(JetCollation, AccentsDecideOnlyBetweenOtherwiseEqualTexts)
{
    EXPECT_LT(jetCompare("Muller", "Müller"), 0);
    EXPECT_LT(jetCompare("Müller", "Mullerin"), 0);
    EXPECT_LT(jetCompare("Ecole", "École"), 0);
    EXPECT_LT(jetCompare("École", "Ecoles"), 0);
    EXPECT_LT(jetCompare("Crème", "Cremes"), 0);
    EXPECT_LT(jetCompare("Mueller", "Muller"), 0); // "ue" is no umlaut
}

TEST(JetCollation, SharpSStandsAsDoubleS)
{
    EXPECT_EQ(sorted({"Strauch", "Straße", "Strasse", "Strand", "Stras"}),
              (std::vector<std::string>{"Strand", "Stras", "Strasse", "Straße", "Strauch"}));
    EXPECT_FALSE(jetEqual("Straße", "Strasse"));
    EXPECT_NE(jetCompare("Straße", "Strasse"), 0);
}

TEST(JetCollation, EqualityIsUnchanged)
{
    EXPECT_EQ(jetCompare("ÄPFEL  ", "äpfel"), 0);
    EXPECT_EQ(jetCompare("Straße", "STRAẞE"), 0); // capital sharp s folds to ß
    EXPECT_NE(jetCompare("Müller", "Muller"), 0);
    EXPECT_NE(jetCompare("e\xcc\x81", "é"), 0); // decomposed and composed stay apart
    EXPECT_NE(jetCompare("a\tb", "ab"), 0);      // a control character counts
    EXPECT_TRUE(jetEqual("Öfen ", "öFEN"));
}

TEST(JetCollation, PlainTextsOrderDigitsAndPunctuationBeforeLetters)
{
    EXPECT_LT(jetCompare("Raum 10", "Raum 9"), 0);
    EXPECT_LT(jetCompare("9", "a"), 0);
    EXPECT_LT(jetCompare("A-1", "A1"), 0);
    EXPECT_LT(jetCompare("A_1", "A1"), 0);
    EXPECT_LT(jetCompare("Schrank A", "Schrankaufsatz"), 0);
}

TEST(JetCollation, IsATotalOrderWhoseEqualTextsAreExactlyTheJetEqualOnes)
{
    const std::vector<std::string> texts = randomTexts(7, 160);
    for (const std::string& a : texts)
        for (const std::string& b : texts) {
            const int ab = jetCompare(a, b);
            ASSERT_EQ(sign(ab), -sign(jetCompare(b, a))) << a << " / " << b;
            ASSERT_EQ(ab == 0, foldedEqual(a, b)) << a << " / " << b;
            ASSERT_EQ(ab == 0, jetEqual(a, b)) << a << " / " << b;
        }
    for (const std::string& a : texts)
        for (const std::string& b : texts) {
            if (jetCompare(a, b) > 0)
                continue;
            for (const std::string& c : texts) {
                if (jetCompare(b, c) <= 0) {
                    ASSERT_LE(jetCompare(a, c), 0) << a << " / " << b << " / " << c;
                }
            }
        }
}

TEST(JetCollation, PlainAsciiShortcutAgreesWithTheFullComparison)
{
    std::mt19937 rng(11);
    std::uniform_int_distribution<int> ch(0x20, 0x7E), len(0, 5);
    for (int n = 0; n < 20000; ++n) {
        std::string a, b;
        for (int k = len(rng); k > 0; --k)
            a += char(ch(rng));
        b = n % 3 == 0 ? a.substr(0, a.size() / 2) : std::string();
        for (int k = len(rng); k > 0; --k)
            b += char(ch(rng));
        ASSERT_EQ(sign(jetCompare(a, b)), sign(detail::jetCompareUnicode(a, b))) << a << " / " << b;
    }
}

TEST(JetCollation, AnAsciiDifferenceBeforeOtherCharactersAgreesWithTheFullComparison)
{
    // Texts that begin alike in plain ASCII, differ there or not, and go on with accents,
    // umlauts, "ß", combining marks, control characters and bytes that are no UTF-8.
    const std::vector<std::string> others = {"ä", "Ä", "ß", "é", "\xCC\x88", "\x01", "\xFF", "ø", "Œ", "ﬁ", "\t"};
    std::mt19937 rng(17);
    std::uniform_int_distribution<int> ch(0x20, 0x7E), len(0, 4), other(0, int(others.size()) - 1), coin(0, 2);
    for (int n = 0; n < 20000; ++n) {
        std::string prefix;
        for (int k = len(rng); k > 0; --k)
            prefix += char(ch(rng));
        std::string a = prefix, b = prefix;
        for (std::string* t : {&a, &b}) {
            for (int k = len(rng); k > 0; --k)
                *t += coin(rng) == 0 ? others[std::size_t(other(rng))] : std::string(1, char(ch(rng)));
        }
        ASSERT_EQ(sign(jetCompare(a, b)), sign(detail::jetCompareUnicode(a, b))) << a << " / " << b;
        ASSERT_EQ(sign(jetCompare(b, a)), -sign(jetCompare(a, b))) << a << " / " << b;
    }
    EXPECT_LT(jetCompare("1 OK", "2b Zuviel im Auftrag (gehört in einen Raum außerhalb des Auftrags)"), 0);
    EXPECT_GT(jetCompare("3b Fehlt im Auftrag (bisher). Könnte", "3a Fehlt im Raum"), 0);
}

TEST_F(CollationInDb, OrderByFollowsGermanReading)
{
    for (const char* s : {"Zange", "Öfen", "apfel", "Äpfel", "ofen", "Straße", "Strasse"})
        db->execute("INSERT INTO t(s) VALUES (?1)", {std::string(s)});
    const Recordset rs = db->query("SELECT s FROM t ORDER BY s");
    std::vector<std::string> got;
    for (const auto& row : rs.rows())
        got.push_back(toText(row[0]));
    EXPECT_EQ(got, (std::vector<std::string>{"apfel", "Äpfel", "ofen", "Öfen", "Strasse", "Straße", "Zange"}));
    // The unique index still refuses only Jet-equal texts.
    EXPECT_THROW(db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("ÖFEN ")}), DbError);
    EXPECT_NO_THROW(db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("Ofen!")}));
}

TEST(JetCollation, FoldKeysAreTheSameExactlyForEqualTexts)
{
    EXPECT_EQ(jetFoldKey("Müller  "), jetFoldKey("MÜLLER"));
    EXPECT_EQ(jetFoldKey("INV-001"), "inv-001");
    EXPECT_NE(jetFoldKey("Müller"), jetFoldKey("Muller"));
    EXPECT_NE(jetFoldKey(" abc"), jetFoldKey("abc"));
    // The Kelvin sign folds to a plain "k".
    EXPECT_EQ(jetFoldKey("\xE2\x84\xAA"), jetFoldKey("K"));
    std::vector<std::string> texts = randomTexts(7, 160);
    for (const char* t : {"\xFF", "\xED\xB3\xBF", "a\xC3", "Straße", "STRASSE", "ﬁ"})
        texts.emplace_back(t);
    for (const std::string& a : texts)
        for (const std::string& b : texts)
            ASSERT_EQ(jetFoldKey(a) == jetFoldKey(b), jetEqual(a, b)) << a << " / " << b;
}

TEST(JetCollation, NumbersAndNamesOfDigitsAndLettersAgreeWithTheFullComparison)
{
    // Inventory numbers and room numbers: digits and letters of either case, a few dashes,
    // dots and blanks, and now and then an umlaut after the first difference.
    const std::string chars = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ-. ";
    std::mt19937 rng(23);
    std::uniform_int_distribution<int> pick(0, int(chars.size()) - 1), len(0, 6), coin(0, 9);
    for (int n = 0; n < 20000; ++n) {
        std::string prefix;
        for (int k = len(rng); k > 0; --k)
            prefix += chars[std::size_t(pick(rng))];
        std::string a = prefix, b = prefix;
        for (std::string* t : {&a, &b}) {
            for (int k = len(rng); k > 0; --k)
                *t += coin(rng) == 0 ? std::string("ü") : std::string(1, chars[std::size_t(pick(rng))]);
        }
        ASSERT_EQ(sign(jetCompare(a, b)), sign(detail::jetCompareUnicode(a, b))) << a << " / " << b;
        ASSERT_EQ(sign(jetCompare(b, a)), -sign(jetCompare(a, b))) << a << " / " << b;
    }
    EXPECT_LT(jetCompare("INV-0099", "inv-0100"), 0);
    EXPECT_LT(jetCompare("A9", "AB"), 0);
    EXPECT_EQ(jetCompare("inv-0100  ", "INV-0100"), 0);
}
