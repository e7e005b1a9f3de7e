// The project overview on a project made as a person makes it: orders created, rooms chosen
// and scanner files added with qinventur-cli on the demo installation, once with the module
// INVENTAR and once with TECHNIK (whose inventory numbers hold letters, so that a known number
// can differ in case alone), so that every case across orders occurs at least twice.
// The expected result is computed here, independently of the overview: from the order
// databases and the register (read with plain statements), Quarn's demo tables (read
// directly) and each order's difference list as `auswerten` makes it on a copy of the project.
//
// Readings of rules that the result's description leaves open (the test holds them):
//  - Numbers and rooms compare as the order databases compare them; the spelling a list
//    shows for a number is the scan's in L_Doppelt and L_Zuviel and Quarn's in L_Fehlend.
//    L_Verschoben and L_Unbekannt may show either spelling (compared case-insensitively).
//  - L_Verschoben: one row per pair of a "3b" row of one order and a scan of its number in
//    another order, in a room other than the "3b" row's; a scan in the same room (a room in
//    two orders) is no move.
//  - L_Zuviel: a "2b" row is explained when another order has a Soll row of its number
//    (whatever that order made of it); stQuarn is the object's location in Quarn.
//  - L_Fehlend: one row per number of a "3b" row that no order scanned; where several
//    orders miss it (a room in two orders), the row names one of them with its room.
//  - L_Unbekannt: the first scan is the earliest by stZeit; iScans counts the scans of the
//    number in all orders.
//  - L_Doppelt: iRang 1 is the latest scan by stZeit.
//  - stAuftraege lists each order once; their order in the text is not checked.
//  - L_Hinweis: "Räume ohne Scandaten" at least once for each order with rooms "N" (one row
//    per order or per room); a kept copy names its order or none; stText is not checked
//    beyond being there; stDatei is checked by its file name for missing scanner files, kept
//    copies and files without an order.
//  - stZeit of a row without date and time may be empty or a blank (texts compare with
//    trailing blanks ignored).
//  - An order whose rooms are all "N" has an empty difference list whether it was evaluated
//    or not, so it can't be told "nie ausgewertet"; the never evaluated orders here have rooms
//    to evaluate.
//  - Numbers with trailing blanks: the import trims them, so a scanner line with them (one is
//    here) is the same number in the order; across orders only letter case can differ.

#include "StocktakeProjectFixture.h"

#include "FileDigests.h"
#include "ProjectOverview.h"

namespace qi::test {

namespace {

using namespace road;

class ProjectOverviewRoadTest : public StocktakeProjectFixture {};

/// Counts per category of `auswerten`'s output ("Kategorie\tAnzahl" lines) by the category's code ("1 ", "2a" ...).
std::map<std::string, std::int64_t> printedCounts(const std::string& out)
{
    std::map<std::string, std::int64_t> counts;
    std::istringstream in(out);
    std::string line;
    std::getline(in, line); // heading
    while (std::getline(in, line)) {
        const std::size_t tab = line.find('\t');
        if (tab == std::string::npos)
            continue;
        counts[line.substr(0, 2)] += std::stoll(line.substr(tab + 1));
    }
    return counts;
}

TEST_P(ProjectOverviewRoadTest, everyListAndCountAsComputedFromTheOrdersAndQuarn)
{
    buildProject();
    ASSERT_FALSE(HasFailure()) << "the project could not be built";
    const std::map<std::string, std::string> printed = evaluateCopy();
    readModel();
    ASSERT_EQ(orders.size(), 5u);

    // The overview, with the files it must leave as they are watched around it.
    const FileDigests before = digestFiles(programDir);
    std::unique_ptr<Database> result;
    try {
        result = computeProjectResult(projectSettings());
    } catch (const std::exception& e) {
        FAIL() << "computeProjectResult: " << e.what();
    }
    ASSERT_TRUE(result);
    const FileDigests after = digestFiles(programDir);
    // No file of the project changes or is added, and no database file anywhere in the program
    // folder changes (the report database above all); what the overview keeps of its own elsewhere
    // in the program folder is only told.
    std::string changed, told;
    {
        std::istringstream changes(changedFiles(before, after));
        for (std::string line; std::getline(changes, line);) {
            const bool inProject = line.find(": Demo/") != std::string::npos;
            const bool database = line.find(".mdb") != std::string::npos && !startsWith(line, "neu: ");
            (inProject || database ? changed : told) += line + "\n";
        }
    }
    EXPECT_EQ(changed, "") << "the overview changed files it must leave as they are";
    if (!told.empty())
        std::printf("Files the overview left in the program folder:\n%s", told.c_str());

    // ---------------------------------------------------------------- P_Auftrag
    Rows auftrag;
    for (const Order& o : orders) {
        std::int64_t n = 0, e = 0, l = 0, erwartet = 0, soll = 0;
        std::map<std::string, std::int64_t> cat;
        for (const OrderRoom& r : o.rooms) {
            n += r.status == "N";
            e += r.status == "E";
            l += r.status == "L";
            erwartet += quarnRoom(r.idRB).expected;
        }
        for (const DiffRow& d : o.diffs) {
            soll += !d.soll.empty();
            if (!d.typ.empty())
                ++cat[d.typ.substr(0, 2)];
        }
        std::string last;
        for (const Scan& s : o.scans)
            last = std::max(last, s.zeit);
        const std::int64_t rooms = std::int64_t(o.rooms.size());
        auftrag.push_back({std::to_string(o.id), o.name, o.pfad, o.stand, std::to_string(rooms), std::to_string(n),
                           std::to_string(e), std::to_string(l), std::to_string(o.files),
                           std::to_string(o.scans.size()), std::to_string(soll), std::to_string(erwartet),
                           std::to_string(cat["1 "]), std::to_string(cat["1 "]), std::to_string(cat["2a"]),
                           std::to_string(cat["2b"]), std::to_string(cat["2c"]), std::to_string(cat["3a"]),
                           std::to_string(cat["3b"]), percentOf(cat["1 "], erwartet), percentOf(e + l, rooms), last,
                           ""});

        // The counts are those `auswerten` prints for the order.
        SCOPED_TRACE("order " + o.name);
        const std::map<std::string, std::int64_t> told = printedCounts(printed.at(o.name));
        const auto got = rowsOf(*result, "SELECT i1, i2a, i2b, i2c, i3a, i3b FROM P_Auftrag WHERE stAuftrag = ?1", {o.name});
        ASSERT_EQ(got.size(), 1u);
        const char* codes[] = {"1 ", "2a", "2b", "2c", "3a", "3b"};
        for (int i = 0; i < 6; ++i) {
            const auto it = told.find(codes[i]);
            EXPECT_EQ(toLong(got[0][std::size_t(i)]), it == told.end() ? 0 : it->second)
                << "category " << codes[i] << "; auswerten printed:\n"
                << printed.at(o.name);
        }
    }
    expectTable(*result, "P_Auftrag",
                {{"lAuftragID"}, {"stAuftrag"}, {"stPfad"}, {"stStand"}, {"iRaeume"}, {"iRaeumeN"}, {"iRaeumeE"},
                 {"iRaeumeL"}, {"iDateien"}, {"iScans"}, {"iSoll"}, {"iErwartet"}, {"iAmPlatz"}, {"i1"}, {"i2a"},
                 {"i2b"}, {"i2c"}, {"i3a"}, {"i3b"}, {"dProzent", Cell::Percent}, {"dRaeumeFertig", Cell::Percent},
                 {"stLetzterScan"}, {"stFehler"}},
                auftrag);
    // The order database's full path.
    for (const Order& o : orders) {
        std::string file = toText(result->scalar("SELECT stDatei FROM P_Auftrag WHERE stAuftrag = ?1", {o.name}));
        std::replace(file.begin(), file.end(), '\\', '/');
        std::error_code ec;
        EXPECT_TRUE(fs::equivalent(fs::u8path(file), fs::u8path(o.file), ec)) << o.name << ": " << file;
    }

    // ---------------------------------------------------------------- P_Raum
    Rows raum;
    for (const Order& o : orders)
        for (const OrderRoom& r : o.rooms) {
            const QuarnRoom& q = quarnRoom(r.idRB);
            std::int64_t amPlatz = 0, gescannt = 0;
            std::string last;
            for (const DiffRow& d : o.diffs)
                amPlatz += d.roomId == r.id && d.typ == "1 OK";
            for (const Scan& s : o.scans)
                if (key(s.room) == key(r.nr)) {
                    ++gescannt;
                    last = std::max(last, s.zeit);
                }
            raum.push_back({o.name, std::to_string(r.id), std::to_string(r.idRB), r.nr, q.name, r.status,
                            std::to_string(q.expected), std::to_string(amPlatz), std::to_string(gescannt),
                            percentOf(amPlatz, q.expected), last});
        }
    expectTable(*result, "P_Raum",
                {{"stAuftrag"}, {"lRaumID"}, {"lIdRB"}, {"stRaumNr"}, {"stBezeichnung"}, {"stStatus"}, {"iErwartet"},
                 {"iAmPlatz"}, {"iGescannt"}, {"dProzent", Cell::Percent}, {"stLetzterScan"}},
                raum);

    // ---------------------------------------------------------------- P_Scan
    Rows scanRows;
    for (const Order& o : orders)
        for (const Scan& s : o.scans)
            scanRows.push_back({s.order, s.invNr, s.room, s.artNr, s.datum, s.uhrzeit, s.zeit, s.file});
    expectTable(*result, "P_Scan",
                {{"stAuftrag"}, {"stInvNr"}, {"stRaum"}, {"stArtNr"}, {"Datum"}, {"Uhrzeit"}, {"stZeit"}, {"stDatei"}},
                scanRows);

    // ---------------------------------------------------------------- P_Diff
    const std::vector<Column> diffColumns = {{"stAuftrag"}, {"stRaumNr"}, {"stSollInvNR"}, {"stIstInvNR"},
                                             {"stTyp"},     {"stBeschreibung"}, {"stArtNr"},   {"stZiel"},
                                             {"stQuelle"},  {"stQuarn"},  {"Datum"},       {"Uhrzeit"},
                                             {"stZeit"}};
    const auto diffRowsOf = [&](std::vector<DiffRow> Order::*list) {
        Rows rows;
        for (const Order& o : orders)
            for (const DiffRow& d : o.*list)
                rows.push_back({d.order, d.room, d.soll, d.ist, d.typ, d.beschreibung, d.artNr, d.ziel, d.quelle,
                                d.quarn, d.datum, d.uhrzeit, d.zeit});
        return rows;
    };
    expectTable(*result, "P_Diff", diffColumns, diffRowsOf(&Order::diffs));

    // ---------------------------------------------------------------- the lists across orders
    const CrossOrderModel model = crossOrderModel();
    const auto& [verschoben, doppelt, zuviel, unbekannt, fehlend, fehlendWhere, ungeprueft, ueberschneidung] = model;

    // Every case occurs at least twice in the project the test made.
    EXPECT_GE(verschoben.size(), 4u);
    EXPECT_GE(doppelt.size(), 4u);
    EXPECT_GE(zuviel.size(), 2u);
    EXPECT_GE(unbekannt.size(), 2u);
    EXPECT_GE(fehlend.size(), 2u);
    EXPECT_GE(ungeprueft.size(), 2u);
    EXPECT_GE(ueberschneidung.size(), 2u);

    expectTable(*result, "L_Verschoben",
                {{"stInvNr", Cell::Number}, {"stBeschreibung"}, {"stArtNr"}, {"stAuftragSoll"}, {"stRaumSoll"},
                 {"stAuftragIst"}, {"stRaumIst"}, {"Datum"}, {"Uhrzeit"}, {"stZeit"}},
                verschoben);
    expectTable(*result, "L_Doppelt",
                {{"stInvNr"}, {"stAuftrag"}, {"stRaum"}, {"Datum"}, {"Uhrzeit"}, {"stZeit"}, {"stDatei"},
                 {"iAuftraege"}, {"iRang"}},
                doppelt);
    expectTable(*result, "L_Zuviel",
                {{"stAuftrag"}, {"stRaum"}, {"stInvNr"}, {"stArtNr"}, {"stQuarn"}, {"Datum"}, {"Uhrzeit"}, {"stZeit"}},
                zuviel);
    expectTable(*result, "L_Unbekannt",
                {{"stInvNr", Cell::Number}, {"stArtNr"}, {"stAuftraege", Cell::NameSet}, {"stRaum"}, {"iScans"},
                 {"Datum"}, {"stZeit"}},
                unbekannt);
    expectTable(*result, "L_Fehlend", {{"stInvNr"}, {"stBeschreibung"}, {"stArtNr"}}, fehlend);
    for (const auto& r : rowsOf(*result, "SELECT stInvNr, stAuftrag, stRaum FROM L_Fehlend")) {
        const auto where = fehlendWhere.find(key(toText(r[0])));
        EXPECT_TRUE(where != fehlendWhere.end() && where->second.count({toText(r[1]), toText(r[2])}))
            << "L_Fehlend: " << toText(r[0]) << " is no \"3b\" row of order " << toText(r[1]) << " in room "
            << toText(r[2]);
    }
    EXPECT_TRUE(std::any_of(fehlendWhere.begin(), fehlendWhere.end(), [](const auto& w) { return w.second.size() > 1; }))
        << "an object missing in two orders";
    expectTable(*result, "L_Ungeprueft", {{"lIdRB"}, {"stRaumNr"}, {"stBezeichnung"}, {"iErwartet"}, {"stPruefung"}},
                ungeprueft);
    expectTable(*result, "L_Ueberschneidung",
                {{"lIdRB"}, {"stRaumNr"}, {"stBezeichnung"}, {"stAuftraege", Cell::NameSet}, {"iAuftraege"}},
                ueberschneidung);

    // ---------------------------------------------------------------- what needs attention
    struct Hint {
        std::string order; ///< "*": the order's name or none
        std::string art;
        std::string file;  ///< the file name stDatei must end in; "" when not checked
        bool several;      ///< one row or more
    };
    std::vector<Hint> hints;
    for (const Order& o : orders) {
        if (o.stand == kStandNie)
            hints.push_back({o.name, kHinweisNieAusgewertet, "", false});
        if (o.stand == kStandNeu)
            hints.push_back({o.name, kHinweisVeraltet, "", false});
        if (std::any_of(o.rooms.begin(), o.rooms.end(), [](const OrderRoom& r) { return r.status == "N"; }))
            hints.push_back({o.name, kHinweisRaeumeN, "", true});
    }
    hints.push_back({"A", kHinweisDateiFehlt, fileNamePart(aMissingFile), false});
    hints.push_back({"C", kHinweisDateiFehlt, fileNamePart(cMissingFile), false});
    const std::vector<std::string> kept = sortedNames(demoDir + "/Inventur/Gesichert");
    std::vector<std::string> keptDatabases;
    for (const std::string& k : kept)
        if (k.size() > 4 && k.substr(k.size() - 4) == ".mdb")
            keptDatabases.push_back(k);
    ASSERT_EQ(keptDatabases.size(), 2u) << "kept copies of D and Weg";
    for (const std::string& k : keptDatabases)
        hints.push_back({"*", kHinweisGesichert, k, false});
    hints.push_back({"", kHinweisOhneAuftrag, "Fremd.mdb", false});
    hints.push_back({"", kHinweisOhneAuftrag, "Rest.mdb", false});

    const auto got = rowsOf(*result, "SELECT stAuftrag, stArt, stText, stDatei FROM L_Hinweis");
    std::vector<int> matched(hints.size(), 0);
    std::string unexpected;
    for (const auto& r : got) {
        const std::string order = toText(r[0]), art = toText(r[1]), text = toText(r[2]);
        std::string file = toText(r[3]);
        std::replace(file.begin(), file.end(), '\\', '/');
        EXPECT_FALSE(rtrim(text).empty()) << "no text: " << order << " " << art;
        bool found = false;
        for (std::size_t i = 0; i < hints.size() && !found; ++i) {
            const Hint& h = hints[i];
            const bool orderFits =
                h.order == "*" ? (order.empty() || startsWith(h.file, (order + " ").c_str())) : order == h.order;
            if (art == h.art && orderFits && (h.file.empty() || fileNamePart(file) == h.file) &&
                (h.several || matched[i] == 0)) {
                ++matched[i];
                found = true;
            }
        }
        if (!found)
            unexpected += "  [" + order + " | " + art + " | " + text + " | " + file + "]\n";
    }
    std::string missing;
    for (std::size_t i = 0; i < hints.size(); ++i)
        if (matched[i] == 0)
            missing += "  [" + hints[i].order + " | " + hints[i].art + " | " + hints[i].file + "]\n";
    EXPECT_EQ(missing, "") << "L_Hinweis rows expected, not there";
    EXPECT_EQ(unexpected, "") << "L_Hinweis rows there, not expected";

    // Without fresh evaluations: each order's difference list and counts as the order holds them
    // (the stale and the never evaluated ones too), and still nothing of the project changes.
    OverviewOptions quick;
    quick.freshEvaluation = false;
    const FileDigests projectBefore = digestFiles(demoDir);
    std::unique_ptr<Database> stored;
    try {
        stored = computeProjectResult(projectSettings(), quick);
    } catch (const std::exception& e) {
        FAIL() << "computeProjectResult without fresh evaluation: " << e.what();
    }
    EXPECT_EQ(changedFiles(projectBefore, digestFiles(demoDir)), "");
    expectTable(*stored, "P_Diff", diffColumns, diffRowsOf(&Order::storedDiffs));
    Rows storedCounts;
    for (const Order& o : orders) {
        std::map<std::string, std::int64_t> cat;
        for (const DiffRow& d : o.storedDiffs)
            if (!d.typ.empty())
                ++cat[d.typ.substr(0, 2)];
        storedCounts.push_back({o.name, std::to_string(cat["1 "]), std::to_string(cat["2a"]),
                                std::to_string(cat["2b"]), std::to_string(cat["2c"]), std::to_string(cat["3a"]),
                                std::to_string(cat["3b"])});
    }
    expectTable(*stored, "P_Auftrag", {{"stAuftrag"}, {"i1"}, {"i2a"}, {"i2b"}, {"i2c"}, {"i3a"}, {"i3b"}},
                storedCounts);
}

INSTANTIATE_TEST_SUITE_P(Modules, ProjectOverviewRoadTest, ::testing::Values(0, 1),
                         [](const ::testing::TestParamInfo<int>& info) {
                             return info.param == 0 ? std::string("Inventar") : std::string("Technik");
                         });

} // namespace

} // namespace qi::test
