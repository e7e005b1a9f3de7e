// The text comparison of the order databases: sorting 115,000 descriptions as the
// reports and WriteReihenfolgeDiffListe sort them, once with plain ASCII texts (the
// shortcut that never asks the German collator) and once with umlauts and accents,
// beside the comparison without its shortcut and a plain byte comparison as floor;
// and an ORDER BY ... COLLATE JET over the same texts in SQLite.

#include "Database.h"
#include "JetCollation.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::size_t kTexts = 115000;

std::vector<std::string> texts(bool umlauts)
{
    static const char* const ascii[] = {"Schreibtisch", "Buerodrehstuhl", "Besucherstuhl", "Rollcontainer",
                                        "Aktenschrank", "Regal", "Besprechungstisch", "Lampe", "Monitor"};
    static const char* const german[] = {"Schreibtisch", "Bürodrehstuhl", "Besucherstuhl", "Rollcontainer",
                                         "Aktenschrank", "Hängeregistratur", "Regal", "Öfen", "Straße", "Éclair"};
    static const char* const colours[] = {"Ahorn", "Buche", "weiss", "Anthrazit", "Lichtgrau", "Eiche"};
    static const char* const germanColours[] = {"Ahorn", "Buche", "Weiß", "Anthrazit", "Lichtgrau", "Eiche", "Grün"};
    std::mt19937 random(42);
    std::vector<std::string> out;
    out.reserve(kTexts);
    for (std::size_t i = 0; i < kTexts; ++i) {
        const std::string base = umlauts ? german[random() % std::size(german)] : ascii[random() % std::size(ascii)];
        const std::string colour =
            umlauts ? germanColours[random() % std::size(germanColours)] : colours[random() % std::size(colours)];
        out.push_back(base + ", " + colour + " " + std::to_string(random() % 1000));
    }
    return out;
}

double sortMs(std::vector<std::string> v, const std::function<int(std::string_view, std::string_view)>& compare,
              std::size_t& comparisons)
{
    comparisons = 0;
    const auto t0 = Clock::now();
    std::sort(v.begin(), v.end(), [&](const std::string& a, const std::string& b) {
        ++comparisons;
        return compare(a, b) < 0;
    });
    return std::chrono::duration<double, std::milli>(Clock::now() - t0).count();
}

double orderByMs(const std::vector<std::string>& v)
{
    auto db = qi::Database::create(":memory:");
    db->executeScript("CREATE TABLE t (s TEXT COLLATE JET)");
    {
        qi::Database::Transaction tx(*db);
        qi::Statement& insert = db->prepare("INSERT INTO t VALUES (?1)");
        for (const std::string& s : v) {
            insert.bind(1, qi::Value(s));
            insert.step();
            insert.reset();
        }
        tx.commit();
    }
    const auto t0 = Clock::now();
    qi::Statement& select = db->prepare("SELECT s FROM t ORDER BY s");
    std::size_t n = 0;
    while (select.step())
        ++n;
    return n == v.size() ? std::chrono::duration<double, std::milli>(Clock::now() - t0).count() : -1;
}

} // namespace

int main()
{
    std::printf("sorting %zu descriptions                  ms   comparisons   ns/comparison\n", kTexts);
    for (bool umlauts : {false, true}) {
        const std::vector<std::string> v = texts(umlauts);
        const std::pair<const char*, std::function<int(std::string_view, std::string_view)>> ways[] = {
            {"comparison", qi::jetCompare},
            {"without ASCII shortcut", qi::detail::jetCompareUnicode},
            {"bytes (floor)", [](std::string_view a, std::string_view b) { return a.compare(b); }},
        };
        std::printf("%s\n", umlauts ? "with umlauts and accents" : "plain ASCII");
        for (const auto& [name, compare] : ways) {
            std::size_t comparisons = 0;
            const double ms = sortMs(v, compare, comparisons);
            std::printf("  %-30s %8.1f %12zu %12.1f\n", name, ms, comparisons, ms * 1e6 / double(comparisons));
        }
        std::printf("  %-30s %8.1f\n", "SQLite ORDER BY ... COLLATE JET", orderByMs(v));
    }
    return 0;
}
