// The print order of the difference list follows German reading: umlauts and
// accented letters stand with their base letters, ß as "ss"; texts that differ
// only in letter case or trailing blanks still tie.

#include "StatementsFixture.h"

#include <algorithm>
#include <map>

using namespace qi;
using namespace qi::test;

TEST_F(StatementsTest, WriteReihenfolgeDiffListeNumbersDescriptionsInGermanReadingOrder)
{
    const auto room = addRoom("A");
    std::map<std::int32_t, std::string> described;
    auto row = [&](const char* beschreibung) {
        CDifferenzlisteRec r;
        r.lRaumID = room;
        const std::string nr = "N" + std::to_string(described.size() + 1);
        r.stSollInvNR = nr;
        r.stIstInvNR = nr;
        r.stBeschreibung = beschreibung;
        described[addDiff(r)] = beschreibung;
    };
    for (const char* d : {"Zählwerk", "Übersicht", "Öfen", "Ofen", "Ufer", "Äpfel", "Apfel", "Straße", "Strasse",
                          "Strauch", "Éclair", "Eclair", "Ecke", "Ölkanne", "Oma", "Zahl"})
        row(d);
    ASSERT_TRUE(db.WriteReihenfolgeDiffListe());
    std::vector<std::pair<std::int64_t, std::string>> printed;
    for (const DiffRow& r : diffRows())
        printed.emplace_back(r.iReihenfolge, described.at(std::int32_t(r.lID)));
    std::sort(printed.begin(), printed.end());
    std::vector<std::string> order;
    for (const auto& [pos, text] : printed)
        order.push_back(text);
    EXPECT_EQ(order, (std::vector<std::string>{"Apfel", "Äpfel", "Ecke", "Eclair", "Éclair", "Ofen", "Öfen",
                                               "Ölkanne", "Oma", "Strasse", "Straße", "Strauch", "Übersicht",
                                               "Ufer", "Zahl", "Zählwerk"}));
    EXPECT_EQ(printed.front().first, 1);
    EXPECT_EQ(printed.back().first, std::int64_t(described.size()));
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, WriteReihenfolgeDiffListeKeepsCaseAndTrailingBlankTiesTogether)
{
    const auto room = addRoom("A");
    auto row = [&](const char* beschreibung) {
        CDifferenzlisteRec r;
        r.lRaumID = room;
        r.stSollInvNR = "S";
        r.stIstInvNR = "S";
        r.stBeschreibung = beschreibung;
        return addDiff(r);
    };
    const auto upper = row("ÖFEN");
    const auto lower = row("öfen  ");
    const auto plain = row("Ofen");
    const auto other = row("Ozean");
    ASSERT_TRUE(db.WriteReihenfolgeDiffListe());
    std::map<std::int64_t, std::int64_t> pos;
    for (const DiffRow& r : diffRows())
        pos[r.lID] = r.iReihenfolge;
    EXPECT_EQ(pos[plain], 1);
    // The two spellings of "Öfen" are one text to the comparison: places 2 and 3 in either order.
    EXPECT_EQ(std::min(pos[upper], pos[lower]), 2);
    EXPECT_EQ(std::max(pos[upper], pos[lower]), 3);
    EXPECT_EQ(pos[other], 4);
    EXPECT_EQ(toLong(sql().scalar("SELECT count(DISTINCT stBeschreibung) FROM T_Differenzliste")), 3);
}
