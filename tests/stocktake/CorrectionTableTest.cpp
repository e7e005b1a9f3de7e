// What the correction list shows: its rows and headings, what each filter keeps, the choices
// of the filter boxes, the counts at its foot, the history and the status texts.

#include "CorrectionTable.h"
#include "FileSystem.h"

#include <gtest/gtest.h>

namespace qi::test {
namespace {

Proposal proposal(const char* art, const char* invNr, const char* raumQuarn, const char* raumNeu, const char* orders,
                  const char* part)
{
    Proposal p;
    p.art = art;
    p.invNr = invNr;
    p.artNr = "A1";
    p.beschreibung = "Stuhl";
    p.raumQuarn = raumQuarn;
    p.raumNeu = raumNeu;
    p.auftraege = orders;
    p.raeume = *raumNeu ? raumNeu : raumQuarn;
    p.datei = *raumNeu ? "e.dat" : "";
    p.datum = *raumNeu ? "03.11.2026" : "";
    p.uhrzeit = *raumNeu ? "14:05:09" : "";
    p.gebaeudeteil = part;
    p.beleg = std::string(raumQuarn) + "|" + raumNeu;
    return p;
}

Decision decision(const Proposal& p, const char* entscheidung, const char* kommentar)
{
    return {p.art, p.invNr, entscheidung, kommentar, "mmuster", "04.11.2026 10:00:00", p.beleg};
}

/// Rows of every kind and decision.
std::vector<ReviewedProposal> rows()
{
    const Proposal moved = proposal(kArtStandort, "I100", "E0.1", "K0.1", "Erdgeschoss, Keller", "Haupthaus / Keller");
    const Proposal moved2 = proposal(kArtStandort, "I101", "E0.2", "E0.3", "Erdgeschoss", "Haupthaus / Erdgeschoss");
    const Proposal fresh = proposal(kArtNeu, "X1", "", "E0.1", "Erdgeschoss", "Haupthaus / Erdgeschoss");
    const Proposal missing = proposal(kArtFehlt, "I500", "E0.3", "", "Erdgeschoss", "Haupthaus / Erdgeschoss");
    Proposal unclear = proposal(kArtKlaeren, "I300", "", "", "Erdgeschoss, Keller", "Haupthaus / Keller");
    unclear.raeume = "E0.1, K0.1";
    Decision old = decision(moved2, kAbgelehnt, "war im Lager");
    old.beleg = "E0.2|E0.4";
    return {
        {moved, kAngenommen, decision(moved, kAngenommen, "umgestellt")},
        {moved2, kGeaendert, old},
        {fresh, kOffen, std::nullopt},
        {missing, kAbgelehnt, decision(missing, kAbgelehnt, "")},
        {unclear, kOffen, std::nullopt},
    };
}

std::vector<std::string> kept(const CorrectionFilter& filter)
{
    std::vector<std::string> out;
    for (const ReviewedProposal& row : rows())
        if (correctionMatches(row, filter))
            out.push_back(row.proposal.invNr);
    return out;
}

TEST(CorrectionTable, HeadingsAndTheCellsOfEachRow)
{
    EXPECT_EQ(correctionHeadings(),
              (std::vector<std::string>{"Art", "Inventar-Nr.", "Artikel", "Bezeichnung", "Raum Quarn", "Raum neu",
                                        "Aufträge", "Gebäudeteil", "Datei", "Datum", "Entscheidung",
                                        "Frühere Entscheidung", "Kommentar", "Person"}));
    EXPECT_EQ(correctionHeadings().size(), std::size_t(korrcol::Count));
    const auto all = rows();
    EXPECT_EQ(correctionRow(all[0]),
              (std::vector<std::string>{"Standort ändern", "I100", "A1", "Stuhl", "E0.1", "K0.1",
                                        "Erdgeschoss, Keller", "Haupthaus / Keller", "e.dat", "03.11.2026 14:05:09",
                                        "angenommen", "", "umgestellt", "mmuster"}));
    // Changed evidence: the mark, and the old decision with its comment beside it.
    const auto changed = correctionRow(all[1]);
    EXPECT_EQ(changed[korrcol::Entscheidung], "geändert – bitte prüfen");
    EXPECT_EQ(changed[korrcol::Frueher], "abgelehnt");
    EXPECT_EQ(changed[korrcol::Kommentar], "war im Lager");
    EXPECT_EQ(changed[korrcol::Person], "mmuster");
    // Undecided: open, nothing beside it.
    const auto open = correctionRow(all[2]);
    EXPECT_EQ(open[korrcol::Entscheidung], "offen");
    EXPECT_EQ(open[korrcol::Frueher], "");
    EXPECT_EQ(open[korrcol::Kommentar], "");
    EXPECT_EQ(open[korrcol::Person], "");
    EXPECT_EQ(open[korrcol::RaumQuarn], "");
    // Missing: no file, no date.
    const auto missing = correctionRow(all[3]);
    EXPECT_EQ(missing[korrcol::Datei], "");
    EXPECT_EQ(missing[korrcol::Datum], "");
    EXPECT_EQ(missing[korrcol::RaumNeu], "");
    // To clear up: every room it was scanned in is where it may be now.
    EXPECT_EQ(correctionRow(all[4])[korrcol::RaumNeu], "E0.1, K0.1");
}

TEST(CorrectionTable, EachFilterKeepsItsRows)
{
    EXPECT_EQ(kept({}), (std::vector<std::string>{"I100", "I101", "X1", "I500", "I300"}));
    EXPECT_EQ(kept({kArtStandort, "", "", "", ""}), (std::vector<std::string>{"I100", "I101"}));
    EXPECT_EQ(kept({kArtKlaeren, "", "", "", ""}), (std::vector<std::string>{"I300"}));
    // An order is one of the orders of the evidence, whole: "Keller" is not part of another name.
    EXPECT_EQ(kept({"", "Keller", "", "", ""}), (std::vector<std::string>{"I100", "I300"}));
    EXPECT_EQ(kept({"", "Erdgeschoss", "", "", ""}).size(), 5u);
    EXPECT_EQ(kept({"", "Kell", "", "", ""}).size(), 0u);
    EXPECT_EQ(kept({"", "", "Haupthaus / Keller", "", ""}), (std::vector<std::string>{"I100", "I300"}));
    // A room: any part of Quarn's room, the new one, or one of the rooms to clear up; letter case ignored.
    EXPECT_EQ(kept({"", "", "", "k0", ""}), (std::vector<std::string>{"I100", "I300"}));
    EXPECT_EQ(kept({"", "", "", " E0.3 ", ""}), (std::vector<std::string>{"I101", "I500"}));
    EXPECT_EQ(kept({"", "", "", "  ", ""}).size(), 5u);
    EXPECT_EQ(kept({"", "", "", "", kOffen}), (std::vector<std::string>{"X1", "I300"}));
    EXPECT_EQ(kept({"", "", "", "", kGeaendert}), (std::vector<std::string>{"I101"}));
    EXPECT_EQ(kept({"", "", "", "", kAngenommen}), (std::vector<std::string>{"I100"}));
    // The filters together keep what each keeps.
    EXPECT_EQ(kept({kArtStandort, "Keller", "", "", kAngenommen}),
              (std::vector<std::string>{"I100"}));
    EXPECT_EQ(kept({kArtFehlt, "Keller", "", "", ""}).size(), 0u);
}

TEST(CorrectionTable, TheFilterBoxesOfferWhatOccurs)
{
    EXPECT_EQ(kindChoices(), (std::vector<std::string>{"Standort ändern", "Neu erfassen", "Fehlt", "Klären"}));
    EXPECT_EQ(decisionChoices(),
              (std::vector<std::string>{"offen", "angenommen", "abgelehnt", "geändert – bitte prüfen"}));
    EXPECT_EQ(orderChoices(rows()), (std::vector<std::string>{"Erdgeschoss", "Keller"}));
    EXPECT_EQ(buildingPartChoices(rows()),
              (std::vector<std::string>{"Haupthaus / Erdgeschoss", "Haupthaus / Keller"}));
    EXPECT_TRUE(orderChoices({}).empty());
    EXPECT_STREQ(kAlle, "(alle)");
}

TEST(CorrectionTable, TheFootCountsEachKindByDecision)
{
    EXPECT_EQ(correctionCountsText(rows()),
              "Standort ändern: 2 (1 angenommen, 0 abgelehnt, 0 offen, 1 geändert); "
              "Neu erfassen: 1 (0 angenommen, 0 abgelehnt, 1 offen); "
              "Fehlt: 1 (0 angenommen, 1 abgelehnt, 0 offen); "
              "Klären: 1 (0 angenommen, 0 abgelehnt, 1 offen)");
    EXPECT_EQ(correctionCountsText({}), "Standort ändern: 0; Neu erfassen: 0; Fehlt: 0; Klären: 0");
    EXPECT_EQ(shownRowsText(7, 42), "7 von 42 Vorschlägen angezeigt");
    EXPECT_EQ(shownRowsText(1, 1), "1 von 1 Vorschlag angezeigt");
    EXPECT_EQ(shownRowsText(0, 0), "0 von 0 Vorschlägen angezeigt");
}

TEST(CorrectionTable, HistoryAndStatusTexts)
{
    EXPECT_EQ(historyHeadings(), (std::vector<std::string>{"Art", "Inventar-Nr.", "Entscheidung", "Kommentar",
                                                           "Person", "Zeit", "Beleg"}));
    const Decision d{kArtFehlt, "I9", kAngenommen, "ausgebucht", "mmuster", "04.11.2026 10:00:00", "E0.1"};
    EXPECT_EQ(historyRow(d), (std::vector<std::string>{"Fehlt", "I9", "angenommen", "ausgebucht", "mmuster",
                                                       "04.11.2026 10:00:00", "E0.1"}));
    const std::string readOnly =
        "Das Projekt ist nur zum Lesen geöffnet: Entscheidungen der Korrekturliste können nicht geändert werden.";
    EXPECT_EQ(readOnlyStatusText(""), readOnly);
    EXPECT_EQ(readOnlyStatusText("Das Projekt wird bereits von mmuster bearbeitet."),
              readOnly + " Das Projekt wird bereits von mmuster bearbeitet.");
    EXPECT_EQ(exportedText({"/tmp/p/Korrekturen.xlsx"}),
              "Die angenommenen Korrekturen wurden für Quarn gespeichert:\n" + displayPath("/tmp/p/Korrekturen.xlsx"));
    EXPECT_EQ(exportedText({"a.csv", "b.csv"}),
              "Die angenommenen Korrekturen wurden für Quarn gespeichert:\n" + displayPath("a.csv") + "\n" +
                  displayPath("b.csv"));
    EXPECT_EQ(exportedStatusText({"a"}), "1 Datei gespeichert.");
    EXPECT_EQ(exportedStatusText({"a", "b", "c", "d"}), "4 Dateien gespeichert.");
    EXPECT_EQ(decidedStatusText(3, kAngenommen), "3 Vorschläge angenommen.");
    EXPECT_EQ(decidedStatusText(1, kAbgelehnt), "1 Vorschlag abgelehnt.");
    EXPECT_EQ(decidedStatusText(2, kOffen), "2 Vorschläge wieder offen.");
}

} // namespace
} // namespace qi::test
