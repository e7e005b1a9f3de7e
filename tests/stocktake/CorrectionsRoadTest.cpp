// The correction list on the project of several orders (StocktakeProjectFixture.h): every
// proposal of every kind compared with values computed here from the order databases and
// Quarn's demo tables, then decisions made and followed through a new evaluation, a scanner
// file removed and new scanner files.
//
// Readings of rules that the correction list's description leaves open (the test holds them):
//  - One proposal per kind and number (numbers compare as the order databases compare them;
//    the spelling of invNr is not checked beyond that).
//  - "Standort ändern": a number known to Quarn found in a room of an order that is not its
//    Quarn room, from a "2a" row (moved within an order: the row's room, its order), a row of
//    L_Verschoben (moved between orders: the room where it was scanned; the orders of both
//    sides) or a row of L_Zuviel whose object has a Quarn room other than the room of the row
//    (surplus that stays; its order). raumQuarn is the object's room in Quarn, raeume the new
//    room. The object's Quarn room may lie in a room no order has: the room it was found in was
//    checked, so the proposal is made.
//  - "Neu erfassen": each number of L_Unbekannt once; the room, article number, file, date and
//    time of its latest scan (by date and time); the orders that scanned it; raeume the room.
//  - "Fehlt": each number of L_Fehlend once; raumQuarn and raeume the room that misses it,
//    the orders that miss it, no file, date or time.
//  - "Klären": a number scanned in more than one order in rooms that differ; raeume every
//    room it was scanned in, the orders that scanned it, file, date and time of the latest scan,
//    raumQuarn its room in Quarn ('' when Quarn does not know it), raumNeu ''. A number may
//    also be a proposal of another kind ("Neu erfassen" of an unknown number in two orders).
//  - Article number and description: Quarn's where Quarn knows the number; else the scan's
//    article number and the name of that article in Quarn's article table ('' when unknown).
//  - gebaeudeteil: "Gebäude / Geschoss" of one of the rooms of the proposal.
//  - The evidence whose change marks a decision "geändert – bitte prüfen" is the rooms and the
//    orders of the proposal (raumQuarn, raumNeu, raeume, auftraege); a later scan of the same
//    number in the same room by the same order is no change.
//  - Orders in auftraege and rooms in raeume are compared as sets.

#include "StocktakeProjectFixture.h"

#include "CorrectionExport.h"
#include "Corrections.h"
#include "ProjectOverview.h"

#include <cctype>

namespace qi::test {

namespace {

using namespace road;

/// Kind order of the list.
int kindRank(const std::string& art)
{
    const std::vector<std::string> kinds = {kArtStandort, kArtNeu, kArtFehlt, kArtKlaeren};
    return int(std::find(kinds.begin(), kinds.end(), art) - kinds.begin());
}

/// "1001, 1203" as a set of keys.
std::string keySet(const std::set<std::string>& texts)
{
    std::set<std::string> keys;
    for (const std::string& t : texts)
        keys.insert(key(t));
    std::string out;
    for (const std::string& k : keys)
        out += (out.empty() ? "" : ", ") + k;
    return out;
}

std::string keySetOf(const std::string& text)
{
    std::set<std::string> parts;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t comma = text.find(',', start);
        std::string part = text.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        while (!part.empty() && part.front() == ' ')
            part.erase(part.begin());
        if (!rtrim(part).empty())
            parts.insert(part);
        if (comma == std::string::npos)
            break;
        start = comma + 1;
    }
    return keySet(parts);
}

/// A proposal as the test compares it: everything but the building part and the evidence text.
Row comparable(const Proposal& p)
{
    return {p.art,           key(p.invNr),   rtrim(p.artNr), rtrim(p.beschreibung), key(p.raumQuarn), key(p.raumNeu),
            nameSet(p.auftraege), keySetOf(p.raeume), rtrim(p.datei), rtrim(p.datum), rtrim(p.uhrzeit)};
}

const char* const kColumns = "[art | invNr | artNr | beschreibung | raumQuarn | raumNeu | auftraege | raeume | datei | "
                             "datum | uhrzeit]";

/// A proposal as the test expects it, with the rooms whose building part it may name.
struct Expected {
    Proposal p;
    std::set<std::string> rooms;
};

/// The evidence of a proposal, whose change marks its decision: "Standort ändern" the Quarn room,
/// the new room and the orders; "Neu erfassen" the room and the article number; "Fehlt" the
/// Quarn room and the orders; "Klären" the rooms and the orders.
std::string evidence(const Proposal& p)
{
    if (p.art == kArtStandort)
        return key(p.raumQuarn) + "->" + key(p.raumNeu) + "|" + nameSet(p.auftraege);
    if (p.art == kArtNeu)
        return key(p.raumNeu) + "|" + key(p.artNr);
    if (p.art == kArtFehlt)
        return key(p.raumQuarn) + "|" + nameSet(p.auftraege);
    return keySetOf(p.raeume) + "|" + nameSet(p.auftraege);
}

std::string idOf(const std::string& art, const std::string& invNr) { return art + " " + key(invNr); }

/// What the test expects of a decision.
struct Kept {
    std::string entscheidung, kommentar, person;
    std::string evidence; ///< of the proposal when it was decided
};

/// The lines of a CSV file of ours: byte-order mark, semicolons, CR LF, texts with a semicolon,
/// quote or line break in double quotes. Fails the test where the form is not kept.
Rows parseCsv(const std::string& bytes)
{
    Rows rows;
    EXPECT_EQ(bytes.compare(0, 3, "\xEF\xBB\xBF"), 0) << "no byte-order mark";
    std::size_t i = bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    Row row;
    std::string cell;
    bool quoted = false;
    for (; i < bytes.size(); ++i) {
        const char c = bytes[i];
        if (quoted) {
            if (c == '"' && i + 1 < bytes.size() && bytes[i + 1] == '"') {
                cell += '"';
                ++i;
            } else if (c == '"') {
                quoted = false;
            } else {
                cell += c;
            }
        } else if (c == '"') {
            quoted = true;
        } else if (c == ';') {
            row.push_back(cell);
            cell.clear();
        } else if (c == '\r') {
            EXPECT_TRUE(i + 1 < bytes.size() && bytes[i + 1] == '\n') << "a line not ended by CR LF";
        } else if (c == '\n') {
            EXPECT_TRUE(i > 0 && bytes[i - 1] == '\r') << "a line not ended by CR LF";
            row.push_back(cell);
            cell.clear();
            rows.push_back(row);
            row.clear();
        } else {
            cell += c;
        }
    }
    if (!cell.empty() || !row.empty()) {
        row.push_back(cell);
        rows.push_back(row);
    }
    return rows;
}

std::string xmlText(const std::string& xml)
{
    std::string out;
    for (std::size_t i = 0; i < xml.size(); ++i) {
        if (xml[i] != '&') {
            out += xml[i];
            continue;
        }
        const std::size_t semi = xml.find(';', i);
        const std::string entity = xml.substr(i + 1, semi - i - 1);
        out += entity == "amp" ? "&" : entity == "lt" ? "<" : entity == "gt" ? ">" : entity == "quot" ? "\"" : "'";
        i = semi;
    }
    return out;
}

/// The texts between <tag ...> and </tag> in order (the element's text with its inner tags dropped).
std::vector<std::string> elements(const std::string& xml, const std::string& tag)
{
    std::vector<std::string> out;
    std::size_t at = 0;
    for (;;) {
        std::size_t open = xml.find("<" + tag, at);
        while (open != std::string::npos && xml[open + 1 + tag.size()] != '>' && xml[open + 1 + tag.size()] != ' ')
            open = xml.find("<" + tag, open + 1);
        if (open == std::string::npos)
            return out;
        const std::size_t start = xml.find('>', open);
        if (xml[start - 1] == '/') {
            out.push_back(xml.substr(open, start - open));
            at = start;
            continue;
        }
        const std::size_t end = xml.find("</" + tag + ">", start);
        out.push_back(xml.substr(open, end - open));
        at = end;
    }
}

std::string stripTags(const std::string& xml)
{
    std::string out;
    bool inTag = false;
    for (char c : xml) {
        if (c == '<')
            inTag = true;
        else if (c == '>')
            inTag = false;
        else if (!inTag)
            out += c;
    }
    return xmlText(out);
}

/// The cells of a worksheet of an xlsx file, row by row (shared or inline strings, numbers as written).
Rows sheetRows(const std::string& sheetXml, const std::vector<std::string>& shared)
{
    Rows rows;
    for (const std::string& rowXml : elements(sheetXml, "row")) {
        Row row;
        for (const std::string& c : elements(rowXml, "c")) {
            const std::size_t r = c.find(" r=\"");
            std::size_t column = 0;
            for (std::size_t i = r + 4; i < c.size() && std::isalpha(static_cast<unsigned char>(c[i])); ++i)
                column = column * 26 + std::size_t(c[i] - 'A' + 1);
            if (row.size() < column)
                row.resize(column);
            std::string value;
            const std::size_t head = c.find('>');
            const std::string attrs = c.substr(0, head);
            if (attrs.find("t=\"s\"") != std::string::npos) {
                const auto v = elements(c, "v");
                value = v.empty() ? "" : shared.at(std::stoul(stripTags(v.front())));
            } else if (attrs.find("t=\"inlineStr\"") != std::string::npos) {
                value = stripTags(c.substr(head + 1));
            } else {
                const auto v = elements(c, "v");
                value = v.empty() ? "" : stripTags(v.front());
            }
            row[column - 1] = value;
        }
        rows.push_back(row);
    }
    return rows;
}

class CorrectionsRoadTest : public StocktakeProjectFixture {
protected:
    /// The model and the project result afresh, after the project changed.
    void refresh()
    {
        fs::remove_all(root.file("Kopie"));
        orders.clear();
        quarnObjects.clear();
        quarnRooms.clear();
        evaluateCopy();
        readModel();
        try {
            result = computeProjectResult(projectSettings());
        } catch (const std::exception& e) {
            ADD_FAILURE() << "computeProjectResult: " << e.what();
            result.reset();
        }
    }

    const demo::Object* quarnObject(const std::string& number) const
    {
        for (const demo::Object& o : inst.modules[module()].objects)
            if (key(o.name) == key(number))
                return &o;
        return nullptr;
    }
    std::string articleName(const std::string& artNr) const
    {
        for (const demo::Article& a : inst.modules[module()].articles)
            if (key(a.artNr) == key(artNr))
                return a.name;
        return "";
    }
    /// "Gebäude / Geschoss" of a room number ('' when Quarn has no such room).
    std::string buildingPart(const std::string& nr) const
    {
        for (const demo::Room& r : inst.rooms)
            if (key(r.nr) == key(nr)) {
                const demo::Node* floor = nullptr;
                const demo::Node* building = nullptr;
                for (const demo::Node& n : inst.nodes)
                    if (n.id == r.floorId)
                        floor = &n;
                for (const demo::Node& n : inst.nodes)
                    if (floor && n.id == floor->parentId)
                        building = &n;
                return (building ? building->name : "") + " / " + (floor ? floor->name : "");
            }
        return "";
    }

    /// Article number and description: Quarn's, else the scan's article and its name.
    void describe(Proposal& p, const std::string& scanArtNr) const
    {
        if (const demo::Object* o = quarnObject(p.invNr)) {
            const demo::Article* a = inst.modules[module()].articleOf(*o);
            p.artNr = a ? a->artNr : "";
            p.beschreibung = o->beschreibung;
            p.raumQuarn = o->ort;
        } else {
            p.artNr = scanArtNr;
            p.beschreibung = articleName(scanArtNr);
        }
    }

    /// The scans of a number in all orders, latest first.
    std::vector<const Scan*> scansOf(const std::string& number) const
    {
        std::vector<const Scan*> list;
        for (const Order& o : orders)
            for (const Scan& s : o.scans)
                if (key(s.invNr) == key(number))
                    list.push_back(&s);
        std::stable_sort(list.begin(), list.end(), [](const Scan* x, const Scan* y) { return x->zeit > y->zeit; });
        return list;
    }

    void takeScan(Proposal& p, const Scan& s) const
    {
        p.datei = s.file;
        p.datum = s.datum;
        p.uhrzeit = s.uhrzeit;
    }

    /// The proposals as computed from the model, by kind and number.
    std::map<std::string, Expected> expectedProposals() const
    {
        const CrossOrderModel m = crossOrderModel();
        std::map<std::string, Expected> out;

        // Rooms that an order has with a status other than "N".
        std::set<std::string> checked;
        for (const Order& o : orders)
            for (const OrderRoom& r : o.rooms)
                if (r.status != "N")
                    checked.insert(key(r.nr));
        const auto isChecked = [&](const std::string& room) { return checked.count(key(room)) > 0; };

        // Klären: numbers scanned by several orders in at least two different checked rooms; the
        // number's only proposal.
        std::set<std::string> numbers, toClarify;
        for (const Order& o : orders)
            for (const Scan& s : o.scans)
                numbers.insert(key(s.invNr));
        for (const std::string& number : numbers) {
            std::vector<const Scan*> list;
            for (const Scan* s : scansOf(number))
                if (isChecked(s->room))
                    list.push_back(s);
            std::set<std::string> inOrders, rooms, roomTexts;
            for (const Scan* s : list) {
                inOrders.insert(s->order);
                if (rooms.insert(key(s->room)).second)
                    roomTexts.insert(s->room);
            }
            if (inOrders.size() < 2 || rooms.size() < 2)
                continue;
            toClarify.insert(number);
            Expected e;
            e.p.art = kArtKlaeren;
            e.p.invNr = list.front()->invNr;
            describe(e.p, list.front()->artNr);
            if (!quarnObject(number))
                e.p.raumQuarn = "";
            e.p.auftraege = joinNames(inOrders);
            e.p.raeume = joinNames(roomTexts);
            takeScan(e.p, *list.front());
            e.rooms = roomTexts;
            e.rooms.insert(e.p.raumQuarn);
            out[idOf(kArtKlaeren, number)] = e;
        }

        // Standort ändern: where each number known to Quarn was seen in a checked room away from
        // its Quarn room; seen in several rooms, the latest sighting's room, with the orders
        // that saw it there.
        struct Seen {
            std::string room, order, zeit;
        };
        std::map<std::string, std::vector<Seen>> seen;
        const auto seenAt = [&](const std::string& number, const std::string& room, const std::string& order,
                                const std::string& zeit) {
            const demo::Object* o = quarnObject(number);
            if (!o || rtrim(o->ort).empty() || !isChecked(room) || toClarify.count(key(number)))
                return;
            seen[key(number)].push_back({room, order, zeit});
        };
        for (const Order& o : orders)
            for (const DiffRow& d : o.diffs)
                if (startsWith(d.typ, "2a"))
                    seenAt(d.ist, d.room, o.name, d.zeit);
        for (const Row& r : m.verschoben)
            seenAt(r[0], r[6], r[5], r[9]);
        for (const Row& r : m.zuviel)
            seenAt(r[2], r[1], r[0], r[7]);
        for (const auto& [number, sightings] : seen) {
            const Seen* latest = &sightings.front();
            for (const Seen& s : sightings)
                if (s.zeit > latest->zeit)
                    latest = &s;
            Expected e;
            e.p.art = kArtStandort;
            e.p.invNr = number;
            describe(e.p, "");
            if (key(e.p.raumQuarn) == key(latest->room))
                continue;
            std::set<std::string> there;
            for (const Seen& s : sightings)
                if (key(s.room) == key(latest->room))
                    there.insert(s.order);
            e.p.raumNeu = latest->room;
            e.p.raeume = latest->room;
            e.p.auftraege = joinNames(there);
            for (const Scan* s : scansOf(number))
                if (key(s->room) == key(latest->room) && there.count(s->order)) {
                    takeScan(e.p, *s);
                    break;
                }
            e.rooms = {e.p.raumNeu};
            out[idOf(kArtStandort, number)] = e;
        }

        // Neu erfassen: each unknown number once, in the room of its first scan, with that scan's
        // article number, file, date and time, and the orders that scanned it.
        for (const Row& r : m.unbekannt) {
            if (toClarify.count(key(r[0])) || !isChecked(r[3]))
                continue;
            std::vector<const Scan*> list = scansOf(r[0]);
            std::reverse(list.begin(), list.end());
            if (list.empty())
                continue;
            Expected e;
            e.p.art = kArtNeu;
            e.p.invNr = r[0];
            describe(e.p, r[1]);
            e.p.raumQuarn = "";
            e.p.raumNeu = r[3];
            e.p.raeume = r[3];
            e.p.auftraege = r[2];
            takeScan(e.p, *list.front());
            e.rooms = {e.p.raumNeu};
            out[idOf(kArtNeu, r[0])] = e;
        }

        // Fehlt: each number of L_Fehlend once, with the orders that miss it.
        for (const Row& r : m.fehlend) {
            Expected e;
            e.p.art = kArtFehlt;
            e.p.invNr = r[0];
            describe(e.p, "");
            std::set<std::string> inOrders;
            for (const auto& [order, room] : m.fehlendWhere.at(key(r[0])))
                inOrders.insert(order);
            e.p.auftraege = joinNames(inOrders);
            e.p.raeume = e.p.raumQuarn;
            e.rooms = {e.p.raumQuarn};
            out[idOf(kArtFehlt, r[0])] = e;
        }
        return out;
    }

    /// Compares the proposals of the current result with the model, row by row; the proposals.
    std::vector<Proposal> checkProposals(const std::string& step)
    {
        SCOPED_TRACE(step);
        if (!result)
            return {};
        std::vector<Proposal> got;
        try {
            got = makeProposals(*result);
        } catch (const std::exception& e) {
            ADD_FAILURE() << "makeProposals: " << e.what();
            return {};
        }
        expected = expectedProposals();
        Rows want, have;
        for (const auto& [id, e] : expected)
            want.push_back(comparable(e.p));
        for (const Proposal& p : got)
            have.push_back(comparable(p));
        std::sort(want.begin(), want.end());
        std::sort(have.begin(), have.end());
        Rows missing, extra;
        std::set_difference(want.begin(), want.end(), have.begin(), have.end(), std::back_inserter(missing));
        std::set_difference(have.begin(), have.end(), want.begin(), want.end(), std::back_inserter(extra));
        std::string told;
        for (const Row& r : missing)
            told += "  expected, not there: " + show(r) + "\n";
        for (const Row& r : extra)
            told += "  there, not expected:  " + show(r) + "\n";
        EXPECT_TRUE(missing.empty() && extra.empty())
            << "proposals " << kColumns << ": " << want.size() << " expected, " << have.size() << " there\n"
            << told;

        // Every kind at least twice; the list in kind order, then by number; one per kind and number.
        std::map<std::string, int> perKind;
        std::set<std::string> ids;
        for (std::size_t i = 0; i < got.size(); ++i) {
            ++perKind[got[i].art];
            EXPECT_TRUE(ids.insert(idOf(got[i].art, got[i].invNr)).second) << "twice: " << got[i].art << " " << got[i].invNr;
            EXPECT_LT(kindRank(got[i].art), 4) << got[i].art;
            if (i > 0) {
                const int a = kindRank(got[i - 1].art), b = kindRank(got[i].art);
                EXPECT_TRUE(a < b || (a == b && key(got[i - 1].invNr) <= key(got[i].invNr)))
                    << "out of order: " << got[i - 1].art << " " << got[i - 1].invNr << " before " << got[i].art << " "
                    << got[i].invNr;
            }
            EXPECT_FALSE(rtrim(got[i].beleg).empty()) << "no evidence text: " << got[i].art << " " << got[i].invNr;
            const auto e = expected.find(idOf(got[i].art, got[i].invNr));
            if (e != expected.end()) {
                std::set<std::string> parts;
                for (const std::string& room : e->second.rooms)
                    if (!room.empty())
                        parts.insert(buildingPart(room));
                EXPECT_TRUE(parts.count(got[i].gebaeudeteil))
                    << got[i].art << " " << got[i].invNr << ": building part \"" << got[i].gebaeudeteil
                    << "\" is none of its rooms'";
            }
        }
        for (const char* kind : {kArtStandort, kArtNeu, kArtFehlt, kArtKlaeren})
            EXPECT_GE(perKind[kind], 2) << kind;
        return got;
    }

    /// Decides proposals of the list and notes what the test expects of them.
    void decide(CorrectionDecisions& d, const std::vector<Proposal>& list, const std::vector<std::string>& ids,
                const std::string& entscheidung, const std::string& kommentar, const std::string& person)
    {
        std::vector<std::pair<std::string, std::string>> which;
        for (const std::string& id : ids) {
            const auto it = std::find_if(list.begin(), list.end(), [&](const Proposal& p) { return idOf(p.art, p.invNr) == id; });
            ASSERT_NE(it, list.end()) << "no proposal " << id;
            which.push_back({it->art, it->invNr});
        }
        try {
            d.decide(list, which, entscheidung, kommentar, person);
        } catch (const std::exception& e) {
            FAIL() << "decide " << entscheidung << ": " << e.what();
        }
        for (const std::string& id : ids) {
            const Proposal& p = *std::find_if(list.begin(), list.end(), [&](const Proposal& q) { return idOf(q.art, q.invNr) == id; });
            if (entscheidung == kOffen)
                kept.erase(id);
            else
                kept[id] = {entscheidung, kommentar, person, evidence(p)};
        }
    }

    /// The decisions as the list shows them and the history, compared with what the test kept.
    void checkDecisions(CorrectionDecisions& d, const std::vector<Proposal>& list, const std::string& step)
    {
        SCOPED_TRACE(step);
        std::vector<ReviewedProposal> reviewed;
        std::vector<Decision> history;
        try {
            reviewed = d.review(list);
            history = d.history(list);
        } catch (const std::exception& e) {
            FAIL() << "review: " << e.what();
        }
        ASSERT_EQ(reviewed.size(), list.size());
        std::set<std::string> present;
        for (std::size_t i = 0; i < reviewed.size(); ++i) {
            const ReviewedProposal& r = reviewed[i];
            const std::string id = idOf(r.proposal.art, r.proposal.invNr);
            present.insert(id);
            EXPECT_EQ(id, idOf(list[i].art, list[i].invNr)) << "the list in another order";
            const auto k = kept.find(id);
            if (k == kept.end()) {
                EXPECT_EQ(r.entscheidung, kOffen) << id;
                EXPECT_FALSE(r.decision.has_value()) << id;
                continue;
            }
            const bool changed = k->second.evidence != evidence(r.proposal);
            EXPECT_EQ(r.entscheidung, changed ? kGeaendert : k->second.entscheidung)
                << id << (changed ? ": evidence changed from " + k->second.evidence + " to " + evidence(r.proposal)
                                  : ": evidence as decided, " + evidence(r.proposal));
            ASSERT_TRUE(r.decision.has_value()) << id;
            EXPECT_EQ(r.decision->entscheidung, k->second.entscheidung) << id;
            EXPECT_EQ(r.decision->kommentar, k->second.kommentar) << id;
            EXPECT_EQ(r.decision->person, k->second.person) << id;
            EXPECT_EQ(key(r.decision->invNr), key(r.proposal.invNr)) << id;
            EXPECT_EQ(r.decision->art, r.proposal.art) << id;
            EXPECT_TRUE(isTime(r.decision->zeit)) << id << ": " << r.decision->zeit;
            EXPECT_EQ(r.decision->beleg == r.proposal.beleg, !changed)
                << id << ": kept evidence \"" << r.decision->beleg << "\", now \"" << r.proposal.beleg << "\"";
        }
        std::set<std::string> wantHistory, haveHistory;
        for (const auto& [id, k] : kept)
            if (!present.count(id))
                wantHistory.insert(id + " " + k.entscheidung + " " + k.kommentar);
        for (const Decision& h : history)
            haveHistory.insert(idOf(h.art, h.invNr) + " " + h.entscheidung + " " + h.kommentar);
        EXPECT_EQ(joinNames(haveHistory), joinNames(wantHistory)) << "history";
        EXPECT_EQ(history.size(), haveHistory.size()) << "a decision twice in the history";
    }


    /// The accepted proposals as the outputs must show them, per kind in list order: rows of
    /// cells by column name.
    std::map<std::string, std::vector<std::map<std::string, std::string>>> acceptedRows(const std::vector<Proposal>& list) const
    {
        std::map<std::string, std::vector<std::map<std::string, std::string>>> out;
        for (const char* kind : {kArtStandort, kArtNeu, kArtFehlt, kArtKlaeren})
            out[kind];
        for (const Proposal& p : list) {
            const auto k = kept.find(idOf(p.art, p.invNr));
            if (k == kept.end() || k->second.entscheidung != kAngenommen || k->second.evidence != evidence(p))
                continue;
            const Proposal& e = expected.at(idOf(p.art, p.invNr)).p;
            std::map<std::string, std::string> row = {{"Inventarnummer", key(e.invNr)},
                                                      {"Artikelnummer", e.artNr},
                                                      {"Bezeichnung", e.beschreibung},
                                                      {"Kommentar", k->second.kommentar},
                                                      {"Entschieden_von", k->second.person}};
            if (p.art == kArtStandort) {
                row["Raum_alt"] = e.raumQuarn;
                row["Raum_neu"] = e.raumNeu;
                row["Gebaeudeteil"] = buildingPart(e.raumNeu);
                row["Datum"] = e.datum;
                row["Auftrag"] = nameSet(e.auftraege);
            } else if (p.art == kArtNeu) {
                row["Raum"] = e.raumNeu;
                row["Gebaeudeteil"] = buildingPart(e.raumNeu);
                row["Datum"] = e.datum;
                row["Auftrag"] = nameSet(e.auftraege);
            } else if (p.art == kArtFehlt) {
                row["Raum"] = e.raumQuarn;
                row["Gebaeudeteil"] = buildingPart(e.raumQuarn);
                row["Auftrag"] = nameSet(e.auftraege);
            } else {
                row["Raum_Quarn"] = e.raumQuarn;
                row["Raeume"] = keySetOf(e.raeume);
                row["Auftraege"] = nameSet(e.auftraege);
                row["Datum"] = e.datum;
            }
            out[p.art].push_back(row);
        }
        return out;
    }

    /// Compares a table of an output (headings in its first row) with the accepted proposals of a kind.
    void expectOutputRows(const std::string& what, const Rows& table,
                          const std::vector<std::map<std::string, std::string>>& want)
    {
        SCOPED_TRACE(what);
        ASSERT_FALSE(table.empty()) << "no heading line";
        const Row& head = table.front();
        ASSERT_EQ(table.size() - 1, want.size()) << "rows";
        for (std::size_t i = 0; i < want.size(); ++i) {
            const Row& row = table[i + 1];
            for (const auto& [column, value] : want[i]) {
                const auto at = std::find(head.begin(), head.end(), column);
                ASSERT_NE(at, head.end()) << "no column " << column;
                const std::size_t c = std::size_t(at - head.begin());
                std::string got = c < row.size() ? row[c] : "";
                if (column == "Inventarnummer")
                    got = key(got);
                else if (column == "Auftrag" || column == "Auftraege")
                    got = nameSet(got);
                else if (column == "Raeume")
                    got = keySetOf(got);
                EXPECT_EQ(rtrim(got), rtrim(value)) << "row " << i + 1 << ", column " << column;
            }
            const auto at = std::find(head.begin(), head.end(), "Entschieden_am");
            ASSERT_NE(at, head.end()) << "no column Entschieden_am";
            const std::size_t c = std::size_t(at - head.begin());
            EXPECT_TRUE(c < row.size() && isTime(row[c])) << "row " << i + 1 << ": " << (c < row.size() ? row[c] : "");
        }
    }

    static bool isTime(const std::string& t)
    {
        if (t.size() != 19)
            return false;
        for (std::size_t i = 0; i < t.size(); ++i) {
            const char want = i == 2 || i == 5 ? '.' : i == 10 ? ' ' : i == 13 || i == 16 ? ':' : '0';
            if (want == '0' ? !std::isdigit(static_cast<unsigned char>(t[i])) : t[i] != want)
                return false;
        }
        return true;
    }

    std::string idOfObject(const char* art, const demo::Object& o) const { return idOf(art, o.name); }

    std::unique_ptr<Database> result;
    std::map<std::string, Expected> expected;
    std::map<std::string, Kept> kept; ///< by idOf
};

TEST_P(CorrectionsRoadTest, everyProposalAsComputedAndDecisionsFollowTheProject)
{
    buildProject();
    ASSERT_FALSE(HasFailure()) << "the project could not be built";
    refresh();
    ASSERT_TRUE(result);
    std::vector<Proposal> list = checkProposals("the project as built");
    ASSERT_FALSE(list.empty());

    // The cases the steps below follow.
    const std::string moved = idOfObject(kArtStandort, object("2003", 1));    // C misses it, D_Teil2 has it in 2001
    const std::string foundLater = idOfObject(kArtFehlt, object("2002", 3)); // missing in B and C, found later
    const std::string unknownTwice = idOf(kArtKlaeren, "X-4712"); // scanned in B, C and D (D's goes)
    const std::string unknownOnce = idOf(kArtNeu, "X-4713");      // A's alone
    for (const std::string& id : {moved, foundLater, unknownTwice, unknownOnce})
        ASSERT_TRUE(expected.count(id)) << "the model has no " << id;

    const Settings settings = projectSettings();
    {
        CorrectionDecisions d(settings, false);
        EXPECT_TRUE(fs::exists(demoDir + "/" + kCorrectionsFile));
        checkDecisions(d, list, "nothing decided");

        // Every "Standort ändern" at once, some more singly, one rejected, one set back to open.
        std::vector<std::string> standort, fehlt;
        for (const Proposal& p : list) {
            if (p.art == kArtStandort)
                standort.push_back(idOf(p.art, p.invNr));
            if (p.art == kArtFehlt)
                fehlt.push_back(idOf(p.art, p.invNr));
        }
        decide(d, list, standort, kAngenommen, "Raum vor Ort geprüft", "Meier");
        decide(d, list, {foundLater, fehlt.front() == foundLater ? fehlt.back() : fehlt.front()}, kAngenommen,
               "Abschreiben", "Schulz");
        decide(d, list, {unknownTwice}, kAbgelehnt, "Leihgerät, nicht erfassen", "Meier");
        decide(d, list, {unknownOnce}, kAngenommen, "Neu inventarisieren; Etikett fehlt", "Schulz");
        decide(d, list, {standort.back()}, kOffen, "", "Meier");
        checkDecisions(d, list, "decided");

        // A proposal that is not in the list: nothing of the call is kept.
        EXPECT_THROW(d.decide(list, {{kArtNeu, "X-4713"}, {kArtNeu, "GIBT-ES-NICHT"}}, kAngenommen, "", "Meier"),
                     std::runtime_error);
        EXPECT_THROW(d.decide(list, {{kArtFehlt, "X-4713"}}, kAngenommen, "", "Meier"), std::runtime_error);
        checkDecisions(d, list, "a call with an unknown proposal");
    }
    {
        // A read-only program sees the decisions and changes none.
        CorrectionDecisions ro(settings, true);
        checkDecisions(ro, list, "read-only");
        EXPECT_THROW(ro.decide(list, {{list.front().art, list.front().invNr}}, kAbgelehnt, "", "Meier"),
                     std::runtime_error);
        checkDecisions(ro, list, "read-only after a refused decision");
    }

    // A new evaluation of the stale orders changes no proposal and no decision.
    expectCli(0, {"auswerten", "B"});
    expectCli(0, {"auswerten", "D"});
    refresh();
    list = checkProposals("after a new evaluation");
    {
        CorrectionDecisions d(settings, false);
        checkDecisions(d, list, "after a new evaluation");
    }

    // D's second file removed: C's object that D found in 2001 is found nowhere now (its
    // "Standort ändern" goes to the history, a "Fehlt" comes), and X-4712 is no longer D's (its
    // "Klären" changed).
    expectCli(0, {"entfernen", "D", "D_Teil2.dat"});
    refresh();
    list = checkProposals("after a scanner file was removed");
    {
        CorrectionDecisions d(settings, false);
        checkDecisions(d, list, "after a scanner file was removed");
        EXPECT_TRUE(std::none_of(list.begin(), list.end(), [&](const Proposal& p) { return idOf(p.art, p.invNr) == moved; }));
        EXPECT_TRUE(expected.count(idOfObject(kArtFehlt, object("2003", 1))));
    }

    // New files (a file may only bring rooms the order has not read yet): D is given a room that
    // no order had (2006: the proposals of objects whose Quarn room it is then name D too) and
    // finds the object there (its proposal comes back with another room and is marked changed);
    // C finds the object that B and C missed in C's room 2002 (the "Fehlt" goes
    // to the history).
    std::string freeRoom;
    for (const Row& r : crossOrderModel().ungeprueft)
        if (freeRoom.empty() && r[1] != "1006")
            freeRoom = r[1];
    ASSERT_FALSE(freeRoom.empty()) << "no room of no order";
    expectCli(0, {"raeume", "D", "--setzen", "2005", "2001", freeRoom});
    ScanRun d3("22.03.2025", 8 * 60);
    scan(d3, freeRoom, object("2003", 1));
    add("D", d3, "D_Teil3.dat");
    ScanRun c2("22.03.2025", 9 * 60);
    scan(c2, "2002", object("2002", 3));
    add("C", c2, "C_Teil2.dat");
    refresh();
    list = checkProposals("after new scanner files");
    {
        CorrectionDecisions d(settings, false);
        checkDecisions(d, list, "after new scanner files");
        const std::vector<ReviewedProposal> reviewed = d.review(list);
        const auto it = std::find_if(reviewed.begin(), reviewed.end(),
                                     [&](const ReviewedProposal& r) { return idOf(r.proposal.art, r.proposal.invNr) == moved; });
        ASSERT_NE(it, reviewed.end()) << moved;
        EXPECT_EQ(it->entscheidung, kGeaendert);
        EXPECT_EQ(it->entscheidung, "geändert – bitte prüfen");
        ASSERT_TRUE(it->decision.has_value());
        EXPECT_EQ(it->decision->entscheidung, kAngenommen);
        EXPECT_EQ(key(it->proposal.raumNeu), key(freeRoom));
        EXPECT_TRUE(std::none_of(list.begin(), list.end(), [&](const Proposal& p) { return idOf(p.art, p.invNr) == foundLater; }));

        // Decided anew, the changed proposal holds its new decision.
        decide(d, list, {moved}, kAngenommen, "Neuer Raum bestätigt", "Schulz");
        checkDecisions(d, list, "the changed proposal decided anew");

        // The outputs: the accepted proposals whose evidence is as decided, per kind, row by row.
        const auto want = acceptedRows(list);
        std::size_t accepted = 0;
        for (const auto& [kind, rows] : want)
            accepted += rows.size();
        EXPECT_GE(accepted, 5u);
        const std::vector<ReviewedProposal> now = d.review(list);
        const std::string csvFolder = root.file("Export_csv"), xlsxFolder = root.file("Export_xlsx");
        fs::create_directories(csvFolder);
        fs::create_directories(xlsxFolder);
        try {
            exportCorrections(now, csvFolder, CorrectionFormat::Csv);
            exportCorrections(now, xlsxFolder, CorrectionFormat::Xlsx);
        } catch (const std::exception& e) {
            FAIL() << "exportCorrections: " << e.what();
        }
        const std::vector<std::string> kinds = {kArtStandort, kArtNeu, kArtFehlt, kArtKlaeren};
        const std::vector<std::string> csvNames = {"Korrekturen_Standort.csv", "Korrekturen_Neu.csv",
                                                   "Korrekturen_Fehlt.csv", "Korrekturen_Klaeren.csv"};
        for (std::size_t k = 0; k < kinds.size(); ++k)
            expectOutputRows(csvNames[k], parseCsv(readFile(csvFolder + "/" + csvNames[k])), want.at(kinds[k]));

        const std::string workbook = xlsxFolder + "/" + kCorrectionWorkbook;
        ASSERT_TRUE(fs::exists(workbook));
        const CliRun sharedXml = runProgram("/usr/bin/unzip", {"-p", workbook, "xl/sharedStrings.xml"});
        std::vector<std::string> shared;
        for (const std::string& si : elements(sharedXml.out, "si"))
            shared.push_back(stripTags(si));
        const CliRun workbookXml = runProgram("/usr/bin/unzip", {"-p", workbook, "xl/workbook.xml"});
        std::vector<std::string> sheetNames;
        for (const std::string& s : elements(workbookXml.out, "sheet")) {
            const std::size_t n = s.find("name=\"");
            sheetNames.push_back(xmlText(s.substr(n + 6, s.find('"', n + 6) - n - 6)));
        }
        EXPECT_EQ(sheetNames, kinds) << "the sheets, one per kind in kind order";
        for (std::size_t k = 0; k < kinds.size(); ++k) {
            const CliRun sheet =
                runProgram("/usr/bin/unzip", {"-p", workbook, "xl/worksheets/sheet" + std::to_string(k + 1) + ".xml"});
            ASSERT_EQ(sheet.code, 0) << sheet.err;
            expectOutputRows("Korrekturen.xlsx, sheet " + kinds[k], sheetRows(sheet.out, shared), want.at(kinds[k]));
        }

        // The Inventurprotokoll: the accepted corrections and the signature lines.
        const std::string pdf = root.file("Inventurprotokoll.pdf");
        expectCli(0, {"bericht", "--projekt-weit", "protokoll", "--ausgabe", pdf});
        const CliRun text = runProgram("/usr/bin/pdftotext", {"-layout", pdf, "-"});
        ASSERT_EQ(text.code, 0) << text.err;
        EXPECT_NE(text.out.find("Inventurprotokoll"), std::string::npos) << text.out;
        EXPECT_NE(text.out.find("Inventurleitung"), std::string::npos) << text.out;
        EXPECT_NE(text.out.find("Anlagenverantwortliche(r)"), std::string::npos) << text.out;
        std::string lowered = text.out;
        for (char& c : lowered)
            c = char(std::tolower(static_cast<unsigned char>(c)));
        for (const auto& [kind, rows] : want)
            for (const auto& row : rows)
                EXPECT_NE(lowered.find(row.at("Inventarnummer")), std::string::npos)
                    << kind << " " << row.at("Inventarnummer") << " accepted, not in the protocol";
    }
}

INSTANTIATE_TEST_SUITE_P(Modules, CorrectionsRoadTest, ::testing::Values(0, 1),
                         [](const ::testing::TestParamInfo<int>& info) {
                             return info.param == 0 ? std::string("Inventar") : std::string("Technik");
                         });

} // namespace

} // namespace qi::test
