#pragma once
// What the "Inventurprotokoll" reads besides the project's figures: the proposals of the
// correction list with their decisions, put into the project result as the table
//
//  K_Vorschlag  iPos (the proposal's place in the list), iArt (1 Standort ändern, 2 Neu
//               erfassen, 3 Fehlt, 4 Klären), stArt, stInvNr, stArtNr, stBeschreibung,
//               stRaumQuarn, stRaumNeu, stAuftraege, stRaeume, stDatei, Datum, Uhrzeit,
//               stGebaeudeteil, stEntscheidung (offen, angenommen, abgelehnt, or "geändert –
//               bitte prüfen"), stBisher (the kept decision when it changed, else ''),
//               stKommentar, stPerson, stEntschieden (when it was decided, "TT.MM.JJJJ hh:mm:ss").
//
// made anew each time before the report runs (the rest of the result stays as it was).

#include "Corrections.h"

#include <vector>

namespace qi {

class Database;
struct Settings;

/// Replaces K_Vorschlag of the project result `result` with these proposals, in their order.
void putProposalTable(Database& result, const std::vector<ReviewedProposal>& reviewed);

/// The proposals made from `result` with the decisions kept for the project of `settings`
/// (only read; without a decisions database every proposal is open) into K_Vorschlag.
/// std::runtime_error (German) when the decisions can't be read.
void putReviewedProposals(const Settings& settings, Database& result);

} // namespace qi
