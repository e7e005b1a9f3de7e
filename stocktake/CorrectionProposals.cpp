// The proposals of the correction list, made from a project result.
//
// The rules, for each kind (numbers and rooms compare as the order databases compare them):
//  - A room is checked when an order has it with a status other than "N". Only what was seen
//    in a checked room (for "Fehlt": what was expected in one) makes a proposal.
//  - "Klären": a number of L_Doppelt that was scanned in at least two different checked rooms.
//    It is the only proposal of its number: where the object stands must be settled first.
//  - "Standort ändern": a number found in a checked room other than its Quarn room: moved
//    within an order (a "2a" row; its "3a" counterpart gives Quarn's description), moved
//    between orders (L_Verschoben), surplus whose Quarn room is known (L_Zuviel with stQuarn).
//    Where it was seen in more than one room, the latest scan's room counts; the orders that
//    saw it there are listed.
//  - "Neu erfassen": a number of L_Unbekannt, in the room of its first scan.
//  - "Fehlt": a number of L_Fehlend (no order scanned it) in a checked room, with every order
//    whose difference list misses it ("3b").
// A number thus has at most one proposal: Quarn knows the numbers of "Standort ändern" and
// "Fehlt" and not those of "Neu erfassen"; "Fehlt" has no scan; "Klären" stands alone.

#include "Corrections.h"

#include "Categories.h"
#include "Database.h"
#include "JetCollation.h"
#include "ProjectResultSchema.h"

#include <algorithm>
#include <map>
#include <set>

namespace qi {

namespace {

std::string text(const Value& v) { return toText(v); }

/// The evidence in one text: its parts without trailing blanks (as the comparison sees them).
std::string evidence(std::initializer_list<std::string> parts, const char* separator = "|")
{
    std::string joined;
    bool first = true;
    for (std::string part : parts) {
        while (!part.empty() && part.back() == ' ')
            part.pop_back();
        if (!first)
            joined += separator;
        joined += part;
        first = false;
    }
    return joined;
}

/// Texts in the order of the comparison, each once (as the comparison sees them), joined by ", ".
std::string joinDistinct(std::vector<std::string> texts)
{
    std::sort(texts.begin(), texts.end(), [](const std::string& a, const std::string& b) { return jetCompare(a, b) < 0; });
    std::string joined;
    std::string last;
    bool first = true;
    for (const std::string& t : texts) {
        if (t.empty() || (!first && jetEqual(t, last)))
            continue;
        if (!first)
            joined += ", ";
        joined += t;
        last = t;
        first = false;
    }
    return joined;
}

/// The rooms that an order checked, with their building part.
class CheckedRooms {
public:
    explicit CheckedRooms(Database& result)
    {
        const Recordset rows = result.query(
            "SELECT stRaumNr, stStatus, stGebaeudeteil FROM P_Raum ORDER BY stAuftrag, stRaumNr, rowid");
        for (const auto& row : rows.rows()) {
            const std::string key = jetFoldKey(text(row[0]));
            std::string& part = parts_[key];
            if (part.empty())
                part = text(row[2]);
            if (!jetEqual(text(row[1]), "N"))
                checked_.insert(key);
        }
    }
    bool checked(const std::string& room) const { return checked_.contains(jetFoldKey(room)); }
    std::string partOf(const std::string& room) const
    {
        const auto it = parts_.find(jetFoldKey(room));
        return it == parts_.end() ? std::string() : it->second;
    }

private:
    std::set<std::string> checked_;
    std::map<std::string, std::string> parts_;
};

/// The latest scan of a number in a room (of an order, when one is named).
struct Scan {
    std::string datum, uhrzeit, zeit, datei, artNr;
};

Scan latestScan(Database& result, const std::string& order, const std::string& nr, const std::string& room)
{
    const Recordset rows = result.query(
        "SELECT Datum, Uhrzeit, stZeit, stDatei, stArtNr FROM P_Scan WHERE stInvNr = ?1 AND stRaum = ?2 "
        "AND (?3 = '' OR stAuftrag = ?3) ORDER BY stZeit DESC, rowid DESC LIMIT 1",
        {nr, room, order});
    if (rows.empty())
        return {};
    const auto& r = rows.rows().front();
    return {text(r[0]), text(r[1]), text(r[2]), text(r[3]), text(r[4])};
}

/// One sighting of an object away from its Quarn room.
struct Moved {
    std::string nr, raumQuarn, raumNeu, auftrag, artNr, beschreibung, datum, uhrzeit, zeit;
};

/// Within an order: "2a" rows, with Quarn's article and description from the "3a" row of the same number.
constexpr const char* kMovedWithin =
    "SELECT d.stIstInvNR, d.stQuelle, d.stRaumNr, d.stAuftrag,"
    " coalesce(nullif(d.stArtNr, ''), (SELECT s.stArtNr FROM P_Diff AS s WHERE s.stAuftrag = d.stAuftrag"
    "  AND s.stSollInvNR = d.stIstInvNR AND s.stTyp = ?2 ORDER BY s.rowid LIMIT 1), ''),"
    " coalesce(nullif(d.stBeschreibung, ''), (SELECT s.stBeschreibung FROM P_Diff AS s WHERE s.stAuftrag = d.stAuftrag"
    "  AND s.stSollInvNR = d.stIstInvNR AND s.stTyp = ?2 ORDER BY s.rowid LIMIT 1), ''),"
    " d.Datum, d.Uhrzeit, d.stZeit FROM P_Diff AS d WHERE d.stTyp = ?1 ORDER BY d.rowid";
/// Between orders.
constexpr const char* kMovedBetween =
    "SELECT stInvNr, stRaumSoll, stRaumIst, stAuftragIst, stArtNr, stBeschreibung, Datum, Uhrzeit, stZeit "
    "FROM L_Verschoben ORDER BY rowid";
/// Surplus whose Quarn room is known, with the description of its difference row.
constexpr const char* kSurplus =
    "SELECT z.stInvNr, z.stQuarn, z.stRaum, z.stAuftrag, z.stArtNr,"
    " coalesce((SELECT d.stBeschreibung FROM P_Diff AS d WHERE d.stAuftrag = z.stAuftrag AND d.stRaumNr = z.stRaum"
    "  AND d.stIstInvNR = z.stInvNr ORDER BY d.rowid LIMIT 1), ''),"
    " z.Datum, z.Uhrzeit, z.stZeit FROM L_Zuviel AS z WHERE z.stQuarn <> '' ORDER BY z.rowid";

std::vector<Moved> readMoved(Database& result)
{
    std::vector<Moved> moved;
    const auto add = [&](const Recordset& rows) {
        for (const auto& r : rows.rows())
            moved.push_back({text(r[0]), text(r[1]), text(r[2]), text(r[3]), text(r[4]), text(r[5]), text(r[6]),
                             text(r[7]), text(r[8])});
    };
    add(result.query(kMovedWithin, {category::k2a, category::k3a}));
    add(result.query(kMovedBetween));
    add(result.query(kSurplus));
    return moved;
}

/// Numbers scanned in several orders in different checked rooms.
std::vector<Proposal> clarify(Database& result, const CheckedRooms& rooms)
{
    struct Seen {
        std::string nr;
        std::vector<std::string> rooms, orders;
        bool hasLatest = false;
        std::string latestRoom, latestOrder, datum, uhrzeit, datei;
    };
    std::map<std::string, Seen> byNr;
    std::vector<std::string> order;
    const Recordset rows =
        result.query("SELECT stInvNr, stAuftrag, stRaum, Datum, Uhrzeit, stDatei FROM L_Doppelt ORDER BY rowid");
    for (const auto& r : rows.rows()) {
        const std::string room = text(r[2]);
        if (!rooms.checked(room))
            continue;
        const std::string key = jetFoldKey(text(r[0]));
        auto [it, isNew] = byNr.try_emplace(key);
        Seen& s = it->second;
        if (isNew) {
            s.nr = text(r[0]);
            order.push_back(key);
        }
        s.rooms.push_back(room);
        s.orders.push_back(text(r[1]));
        // The list holds the latest scan of a number first.
        if (!s.hasLatest) {
            s.hasLatest = true;
            s.latestRoom = room;
            s.latestOrder = text(r[1]);
            s.datum = text(r[3]);
            s.uhrzeit = text(r[4]);
            s.datei = text(r[5]);
        }
    }
    std::vector<Proposal> proposals;
    for (const std::string& key : order) {
        const Seen& s = byNr.at(key);
        const std::string raeume = joinDistinct(s.rooms);
        if (raeume.find(", ") == std::string::npos)
            continue;
        Proposal p;
        p.art = kArtKlaeren;
        p.invNr = s.nr;
        // What Quarn knows of the number: its room, article and description from a difference row.
        const Recordset quarn = result.query(
            "SELECT CASE WHEN stSollInvNR <> '' THEN stRaumNr ELSE stQuarn END, stArtNr, stBeschreibung FROM P_Diff "
            "WHERE stSollInvNR = ?1 OR (stIstInvNR = ?1 AND stQuarn <> '') "
            "ORDER BY stSollInvNR = '', rowid LIMIT 1",
            {s.nr});
        if (!quarn.empty()) {
            p.raumQuarn = text(quarn.rows().front()[0]);
            p.artNr = text(quarn.rows().front()[1]);
            p.beschreibung = text(quarn.rows().front()[2]);
        }
        if (p.artNr.empty())
            p.artNr = latestScan(result, s.latestOrder, s.nr, s.latestRoom).artNr;
        p.auftraege = joinDistinct(s.orders);
        p.raeume = raeume;
        p.datei = s.datei;
        p.datum = s.datum;
        p.uhrzeit = s.uhrzeit;
        p.gebaeudeteil = rooms.partOf(s.latestRoom);
        p.beleg = evidence({raeume, p.auftraege});
        proposals.push_back(std::move(p));
    }
    return proposals;
}

/// Objects found away from their Quarn room.
std::vector<Proposal> relocate(Database& result, const CheckedRooms& rooms, const std::set<std::string>& taken)
{
    std::map<std::string, std::vector<Moved>> byNr;
    std::vector<std::string> order;
    for (Moved& m : readMoved(result)) {
        if (!rooms.checked(m.raumNeu) || m.raumQuarn.empty() || jetEqual(m.raumQuarn, m.raumNeu))
            continue;
        const std::string key = jetFoldKey(m.nr);
        if (taken.contains(key))
            continue;
        auto [it, isNew] = byNr.try_emplace(key);
        if (isNew)
            order.push_back(key);
        it->second.push_back(std::move(m));
    }
    std::vector<Proposal> proposals;
    for (const std::string& key : order) {
        const std::vector<Moved>& seen = byNr.at(key);
        // The latest sighting decides the room; the first in the list where the times tie.
        const Moved* latest = &seen.front();
        for (const Moved& m : seen)
            if (m.zeit > latest->zeit)
                latest = &m;
        std::vector<std::string> orders;
        for (const Moved& m : seen)
            if (jetEqual(m.raumNeu, latest->raumNeu))
                orders.push_back(m.auftrag);
        Proposal p;
        p.art = kArtStandort;
        p.invNr = seen.front().nr;
        for (const Moved& m : seen) {
            if (p.artNr.empty())
                p.artNr = m.artNr;
            if (p.beschreibung.empty())
                p.beschreibung = m.beschreibung;
        }
        p.raumQuarn = latest->raumQuarn;
        p.raumNeu = latest->raumNeu;
        p.auftraege = joinDistinct(orders);
        p.raeume = p.raumNeu;
        const Scan scan = latestScan(result, latest->auftrag, p.invNr, p.raumNeu);
        p.datei = scan.datei;
        p.datum = latest->datum.empty() ? scan.datum : latest->datum;
        p.uhrzeit = latest->uhrzeit.empty() ? scan.uhrzeit : latest->uhrzeit;
        if (p.artNr.empty())
            p.artNr = scan.artNr;
        p.gebaeudeteil = rooms.partOf(p.raumNeu);
        p.beleg = evidence({evidence({p.raumQuarn, p.raumNeu}, "→"), p.auftraege});
        proposals.push_back(std::move(p));
    }
    return proposals;
}

/// Numbers Quarn doesn't know.
std::vector<Proposal> record(Database& result, const CheckedRooms& rooms, const std::set<std::string>& taken)
{
    std::vector<Proposal> proposals;
    const Recordset rows = result.query(
        "SELECT u.stInvNr, u.stArtNr, u.stAuftraege, u.stRaum, u.Datum, coalesce((SELECT a.stBeschreibung FROM P_Artikel "
        "AS a WHERE a.stArtNr = u.stArtNr AND u.stArtNr <> '' ORDER BY a.rowid LIMIT 1), '') FROM L_Unbekannt AS u "
        "ORDER BY u.rowid");
    for (const auto& r : rows.rows()) {
        Proposal p;
        p.invNr = text(r[0]);
        p.raumNeu = text(r[3]);
        if (!rooms.checked(p.raumNeu) || taken.contains(jetFoldKey(p.invNr)))
            continue;
        p.art = kArtNeu;
        p.artNr = text(r[1]);
        p.beschreibung = text(r[5]);
        p.auftraege = text(r[2]);
        p.raeume = p.raumNeu;
        // The scan the list names: the first of the number in that room.
        const Recordset scan = result.query("SELECT Datum, Uhrzeit, stDatei FROM P_Scan WHERE stInvNr = ?1 AND stRaum = ?2 "
                                            "ORDER BY stZeit, rowid LIMIT 1",
                                            {p.invNr, p.raumNeu});
        p.datum = text(r[4]);
        if (!scan.empty()) {
            p.uhrzeit = text(scan.rows().front()[1]);
            p.datei = text(scan.rows().front()[2]);
        }
        p.gebaeudeteil = rooms.partOf(p.raumNeu);
        p.beleg = evidence({p.raumNeu, p.artNr});
        proposals.push_back(std::move(p));
    }
    return proposals;
}

/// Objects expected in a checked room that no order found.
std::vector<Proposal> missing(Database& result, const CheckedRooms& rooms, const std::set<std::string>& taken)
{
    std::vector<Proposal> proposals;
    const Recordset rows =
        result.query("SELECT stInvNr, stBeschreibung, stArtNr, stAuftrag, stRaum FROM L_Fehlend ORDER BY rowid");
    for (const auto& r : rows.rows()) {
        Proposal p;
        p.invNr = text(r[0]);
        p.raumQuarn = text(r[4]);
        if (!rooms.checked(p.raumQuarn) || taken.contains(jetFoldKey(p.invNr)))
            continue;
        p.art = kArtFehlt;
        p.beschreibung = text(r[1]);
        p.artNr = text(r[2]);
        // Every order that misses it (a room that several orders have), not only the first.
        std::vector<std::string> orders{text(r[3])};
        const Recordset missedBy =
            result.query("SELECT stAuftrag FROM P_Diff WHERE stSollInvNR = ?1 AND stTyp = ?2", {p.invNr, category::k3b});
        for (const auto& o : missedBy.rows())
            orders.push_back(text(o[0]));
        p.auftraege = joinDistinct(orders);
        p.raeume = p.raumQuarn;
        p.gebaeudeteil = rooms.partOf(p.raumQuarn);
        p.beleg = evidence({p.raumQuarn, p.auftraege});
        proposals.push_back(std::move(p));
    }
    return proposals;
}

void sortByNumber(std::vector<Proposal>& proposals)
{
    std::stable_sort(proposals.begin(), proposals.end(),
                     [](const Proposal& a, const Proposal& b) { return jetCompare(a.invNr, b.invNr) < 0; });
}

} // namespace

std::vector<Proposal> makeProposals(Database& result)
{
    indexNumbers(result);
    const CheckedRooms rooms(result);
    std::vector<Proposal> klaeren = clarify(result, rooms);
    std::set<std::string> taken;
    for (const Proposal& p : klaeren)
        taken.insert(jetFoldKey(p.invNr));
    std::vector<Proposal> standort = relocate(result, rooms, taken);
    std::vector<Proposal> neu = record(result, rooms, taken);
    std::vector<Proposal> fehlt = missing(result, rooms, taken);

    std::vector<Proposal> all;
    all.reserve(standort.size() + neu.size() + fehlt.size() + klaeren.size());
    for (std::vector<Proposal>* kind : {&standort, &neu, &fehlt, &klaeren}) {
        sortByNumber(*kind);
        // One proposal per number and kind.
        std::set<std::string> seen;
        for (Proposal& p : *kind)
            if (seen.insert(jetFoldKey(p.invNr)).second)
                all.push_back(std::move(p));
    }
    return all;
}

} // namespace qi
