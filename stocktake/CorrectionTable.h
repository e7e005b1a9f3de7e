#pragma once
// What the window "Korrekturliste" shows of the proposals and their decisions, as texts:
// the rows and their headings, what its filters offer and keep, the counts at its foot, the
// history of decisions whose proposal disappeared and the status texts. The window only puts
// these texts into its controls.

#include "Corrections.h"

#include <string>
#include <vector>

namespace qi {

/// Columns of the correction list.
namespace korrcol {
inline constexpr int Art = 0;
inline constexpr int InvNr = 1;
inline constexpr int Artikel = 2;
inline constexpr int Bezeichnung = 3;
inline constexpr int RaumQuarn = 4;
inline constexpr int RaumNeu = 5;
inline constexpr int Auftraege = 6;
inline constexpr int Gebaeudeteil = 7;
inline constexpr int Datei = 8;
inline constexpr int Datum = 9;
inline constexpr int Entscheidung = 10;
inline constexpr int Frueher = 11;
inline constexpr int Kommentar = 12;
inline constexpr int Person = 13;
inline constexpr int Count = 14;
} // namespace korrcol

/// The first entry of every filter box: keeps every row.
inline constexpr const char* kAlle = "(alle)";

/// The headings of the correction list.
std::vector<std::string> correctionHeadings();
/// A proposal's cells under these headings. A proposal whose evidence changed since it was
/// decided shows kGeaendert as its decision and the old decision in "Frühere Entscheidung";
/// the comment and the person are those of the kept decision.
std::vector<std::string> correctionRow(const ReviewedProposal& row);

/// What the filters of the list ask; an empty text keeps every row.
struct CorrectionFilter {
    std::string art;          ///< a kind (kArt...), exactly
    std::string auftrag;      ///< one of the orders that make the evidence, exactly
    std::string gebaeudeteil; ///< the building part, exactly
    std::string raum;         ///< part of a room (Quarn's, the new one, any of "Klären"), letter case ignored
    std::string entscheidung; ///< kOffen, kAngenommen, kAbgelehnt or kGeaendert, exactly
};

/// Whether a proposal shows under the filter.
bool correctionMatches(const ReviewedProposal& row, const CorrectionFilter& filter);

/// The choices of the filter boxes (without kAlle): the kinds and the decisions in their
/// fixed order, the orders and building parts that occur among `rows`, sorted.
std::vector<std::string> kindChoices();
std::vector<std::string> decisionChoices();
std::vector<std::string> orderChoices(const std::vector<ReviewedProposal>& rows);
std::vector<std::string> buildingPartChoices(const std::vector<ReviewedProposal>& rows);

/// The counts per kind and decision in one line, every kind in its order:
/// "Standort ändern: 12 (5 angenommen, 1 abgelehnt, 6 offen); Neu erfassen: 0; …".
/// Proposals marked kGeaendert are counted as "geändert" after the others.
std::string correctionCountsText(const std::vector<ReviewedProposal>& rows);
/// How many rows the filters keep: "7 von 42 Vorschlägen angezeigt".
std::string shownRowsText(int shown, int total);

/// The headings of the history and a kept decision's cells under them.
std::vector<std::string> historyHeadings();
std::vector<std::string> historyRow(const Decision& decision);

/// The status line when the decisions can only be looked at (readOnlyCorrectionsMessage()),
/// with the reason the program was told at start-up.
std::string readOnlyStatusText(const std::string& reason);
/// The message after the accepted proposals were written for Quarn: the files, one a line.
std::string exportedText(const std::vector<std::string>& files);
/// The status line after it: "4 Dateien gespeichert." / "1 Datei gespeichert."
std::string exportedStatusText(const std::vector<std::string>& files);
/// The status line after a decision for `count` rows: "3 Vorschläge angenommen."
std::string decidedStatusText(int count, const std::string& entscheidung);

} // namespace qi
