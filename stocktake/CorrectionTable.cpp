#include "CorrectionTable.h"

#include "FileSystem.h"

#include <QString>

#include <algorithm>
#include <array>
#include <set>

namespace qi {

namespace {

constexpr std::array<const char*, 4> kKinds{kArtStandort, kArtNeu, kArtFehlt, kArtKlaeren};

/// The orders of a proposal's evidence ("A, B").
std::vector<std::string> ordersOf(const Proposal& p)
{
    std::vector<std::string> out;
    std::size_t from = 0;
    while (from <= p.auftraege.size()) {
        std::size_t to = p.auftraege.find(", ", from);
        if (to == std::string::npos)
            to = p.auftraege.size();
        if (to > from)
            out.push_back(p.auftraege.substr(from, to - from));
        from = to + 2;
    }
    return out;
}

bool containsText(const std::string& text, const std::string& part)
{
    return QString::fromStdString(text).contains(QString::fromStdString(part).trimmed(), Qt::CaseInsensitive);
}

std::vector<std::string> sorted(std::set<std::string> values)
{
    std::vector<std::string> out(values.begin(), values.end());
    std::sort(out.begin(), out.end(), [](const std::string& a, const std::string& b) {
        return QString::fromStdString(a).localeAwareCompare(QString::fromStdString(b)) < 0;
    });
    return out;
}

} // namespace

std::vector<std::string> correctionHeadings()
{
    return {"Art",   "Inventar-Nr.", "Artikel",      "Bezeichnung",         "Raum Quarn", "Raum neu", "Aufträge",
            "Gebäudeteil", "Datei", "Datum", "Entscheidung", "Frühere Entscheidung", "Kommentar", "Person"};
}

std::vector<std::string> correctionRow(const ReviewedProposal& row)
{
    const Proposal& p = row.proposal;
    std::vector<std::string> cells(korrcol::Count);
    cells[korrcol::Art] = p.art;
    cells[korrcol::InvNr] = p.invNr;
    cells[korrcol::Artikel] = p.artNr;
    cells[korrcol::Bezeichnung] = p.beschreibung;
    cells[korrcol::RaumQuarn] = p.raumQuarn;
    // A number to clear up was scanned in several rooms: all of them are where it may be now.
    cells[korrcol::RaumNeu] = p.art == kArtKlaeren && p.raumNeu.empty() ? p.raeume : p.raumNeu;
    cells[korrcol::Auftraege] = p.auftraege;
    cells[korrcol::Gebaeudeteil] = p.gebaeudeteil;
    cells[korrcol::Datei] = p.datei;
    cells[korrcol::Datum] = p.uhrzeit.empty() ? p.datum : p.datum + " " + p.uhrzeit;
    cells[korrcol::Entscheidung] = row.entscheidung;
    if (row.entscheidung == kGeaendert && row.decision)
        cells[korrcol::Frueher] = row.decision->entscheidung;
    if (row.decision) {
        cells[korrcol::Kommentar] = row.decision->kommentar;
        cells[korrcol::Person] = row.decision->person;
    }
    return cells;
}

bool correctionMatches(const ReviewedProposal& row, const CorrectionFilter& filter)
{
    const Proposal& p = row.proposal;
    if (!filter.art.empty() && p.art != filter.art)
        return false;
    if (!filter.auftrag.empty()) {
        const std::vector<std::string> orders = ordersOf(p);
        if (std::find(orders.begin(), orders.end(), filter.auftrag) == orders.end())
            return false;
    }
    if (!filter.gebaeudeteil.empty() && p.gebaeudeteil != filter.gebaeudeteil)
        return false;
    if (!QString::fromStdString(filter.raum).trimmed().isEmpty() && !containsText(p.raumQuarn, filter.raum) &&
        !containsText(p.raumNeu, filter.raum) && !containsText(p.raeume, filter.raum))
        return false;
    if (!filter.entscheidung.empty() && row.entscheidung != filter.entscheidung)
        return false;
    return true;
}

std::vector<std::string> kindChoices() { return {kKinds.begin(), kKinds.end()}; }

std::vector<std::string> decisionChoices() { return {kOffen, kAngenommen, kAbgelehnt, kGeaendert}; }

std::vector<std::string> orderChoices(const std::vector<ReviewedProposal>& rows)
{
    std::set<std::string> orders;
    for (const ReviewedProposal& row : rows)
        for (std::string& order : ordersOf(row.proposal))
            orders.insert(std::move(order));
    return sorted(std::move(orders));
}

std::vector<std::string> buildingPartChoices(const std::vector<ReviewedProposal>& rows)
{
    std::set<std::string> parts;
    for (const ReviewedProposal& row : rows)
        if (!row.proposal.gebaeudeteil.empty())
            parts.insert(row.proposal.gebaeudeteil);
    return sorted(std::move(parts));
}

std::string correctionCountsText(const std::vector<ReviewedProposal>& rows)
{
    std::string text;
    for (const char* kind : kKinds) {
        int all = 0, accepted = 0, rejected = 0, open = 0, changed = 0;
        for (const ReviewedProposal& row : rows) {
            if (row.proposal.art != kind)
                continue;
            ++all;
            if (row.entscheidung == kAngenommen)
                ++accepted;
            else if (row.entscheidung == kAbgelehnt)
                ++rejected;
            else if (row.entscheidung == kGeaendert)
                ++changed;
            else
                ++open;
        }
        if (!text.empty())
            text += "; ";
        text += std::string(kind) + ": " + std::to_string(all);
        if (all == 0)
            continue;
        text += " (" + std::to_string(accepted) + " " + kAngenommen + ", " + std::to_string(rejected) + " " +
                kAbgelehnt + ", " + std::to_string(open) + " " + kOffen;
        if (changed > 0)
            text += ", " + std::to_string(changed) + " geändert";
        text += ")";
    }
    return text;
}

std::string shownRowsText(int shown, int total)
{
    return std::to_string(shown) + " von " + std::to_string(total) + (total == 1 ? " Vorschlag" : " Vorschlägen") +
           " angezeigt";
}

std::vector<std::string> historyHeadings()
{
    return {"Art", "Inventar-Nr.", "Entscheidung", "Kommentar", "Person", "Zeit", "Beleg"};
}

std::vector<std::string> historyRow(const Decision& decision)
{
    return {decision.art,   decision.invNr, decision.entscheidung, decision.kommentar,
            decision.person, decision.zeit,  decision.beleg};
}

std::string readOnlyStatusText(const std::string& reason)
{
    std::string text = readOnlyCorrectionsMessage();
    if (!reason.empty())
        text += " " + reason;
    return text;
}

std::string exportedText(const std::vector<std::string>& files)
{
    std::string text = "Die angenommenen Korrekturen wurden für Quarn gespeichert:";
    for (const std::string& file : files)
        text += "\n" + displayPath(file);
    return text;
}

std::string exportedStatusText(const std::vector<std::string>& files)
{
    return files.size() == 1 ? std::string("1 Datei gespeichert.") : std::to_string(files.size()) + " Dateien gespeichert.";
}

std::string decidedStatusText(int count, const std::string& entscheidung)
{
    const std::string rows = count == 1 ? "1 Vorschlag" : std::to_string(count) + " Vorschläge";
    if (entscheidung == kOffen)
        return rows + " wieder offen.";
    return rows + " " + entscheidung + ".";
}

} // namespace qi
