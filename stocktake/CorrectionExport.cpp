#include "CorrectionExport.h"

#include "FileSystem.h"

#include <array>

namespace qi {

namespace {

/// A kind of proposal as its table shows it: the CSV file and the columns of its rows.
struct KindTable {
    const char* art;
    const char* csvFile;
    std::vector<std::string> (*headings)();
    std::vector<std::string> (*cells)(const Proposal& p);
};

/// What every row ends with: how it was decided.
std::vector<std::string> withDecision(std::vector<std::string> cells, const Decision* d)
{
    cells.push_back(d ? d->kommentar : std::string());
    cells.push_back(d ? d->person : std::string());
    cells.push_back(d ? d->zeit : std::string());
    return cells;
}

std::vector<std::string> withDecisionHeadings(std::vector<std::string> headings)
{
    headings.insert(headings.end(), {"Kommentar", "Entschieden_von", "Entschieden_am"});
    return headings;
}

const std::array<KindTable, 4> kKinds{{
    {kArtStandort, "Korrekturen_Standort.csv",
     [] {
         return withDecisionHeadings({"Inventarnummer", "Artikelnummer", "Bezeichnung", "Raum_alt", "Raum_neu",
                                      "Gebaeudeteil", "Datum", "Auftrag"});
     },
     [](const Proposal& p) {
         return std::vector<std::string>{p.invNr,     p.artNr,        p.beschreibung, p.raumQuarn,
                                         p.raumNeu,   p.gebaeudeteil, p.datum,        p.auftraege};
     }},
    {kArtNeu, "Korrekturen_Neu.csv",
     [] {
         return withDecisionHeadings(
             {"Inventarnummer", "Artikelnummer", "Bezeichnung", "Raum", "Gebaeudeteil", "Datum", "Auftrag"});
     },
     [](const Proposal& p) {
         return std::vector<std::string>{p.invNr,        p.artNr, p.beschreibung, p.raumNeu,
                                         p.gebaeudeteil, p.datum, p.auftraege};
     }},
    {kArtFehlt, "Korrekturen_Fehlt.csv",
     [] {
         return withDecisionHeadings({"Inventarnummer", "Artikelnummer", "Bezeichnung", "Raum", "Gebaeudeteil",
                                      "Auftrag"});
     },
     [](const Proposal& p) {
         return std::vector<std::string>{p.invNr, p.artNr, p.beschreibung, p.raumQuarn, p.gebaeudeteil, p.auftraege};
     }},
    {kArtKlaeren, "Korrekturen_Klaeren.csv",
     [] {
         return withDecisionHeadings({"Inventarnummer", "Artikelnummer", "Bezeichnung", "Raum_Quarn", "Raeume",
                                      "Auftraege", "Datum"});
     },
     [](const Proposal& p) {
         return std::vector<std::string>{p.invNr,   p.artNr,     p.beschreibung, p.raumQuarn,
                                         p.raeume,  p.auftraege, p.datum};
     }},
}};

} // namespace

std::vector<PlainTable> correctionTables(const std::vector<ReviewedProposal>& reviewed)
{
    std::vector<PlainTable> tables;
    for (const KindTable& kind : kKinds) {
        PlainTable t{kind.art, kind.headings(), {}};
        for (const ReviewedProposal& r : reviewed)
            if (r.proposal.art == kind.art && r.entscheidung == kAngenommen)
                t.rows.push_back(withDecision(kind.cells(r.proposal), r.decision ? &*r.decision : nullptr));
        tables.push_back(std::move(t));
    }
    return tables;
}

std::string correctionCsvFile(const std::string& art)
{
    for (const KindTable& kind : kKinds)
        if (art == kind.art)
            return kind.csvFile;
    return {};
}

std::vector<std::string> exportCorrections(const std::vector<ReviewedProposal>& reviewed, const std::string& folder,
                                           CorrectionFormat format)
{
    const std::vector<PlainTable> tables = correctionTables(reviewed);
    std::vector<std::string> written;
    if (format == CorrectionFormat::Xlsx) {
        written.push_back(resolvePath(folder, kCorrectionWorkbook));
        writePlainWorkbook(written.back(), "Korrekturen für Quarn", tables);
        return written;
    }
    for (const PlainTable& t : tables) {
        written.push_back(resolvePath(folder, correctionCsvFile(t.name)));
        writePlainCsv(written.back(), t);
    }
    return written;
}

} // namespace qi
