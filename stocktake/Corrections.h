#pragma once
// The correction list for Quarn: what the stocktake found, as proposals that a responsible
// person reviews, decides and signs off. QInventur never writes Quarn's databases; the
// accepted proposals leave it as files that Quarn's data import takes (CorrectionExport.h).
//
// Proposals are made from a project result (ProjectResultSchema.h) each time anew; the
// decisions last in a database of our own in the project folder, "QInventurKorrekturen.db"
// (SQLite, texts compared as in every file of ours). A proposal is identified by its kind
// and inventory number; its evidence (the rooms and orders that make it) is kept with the
// decision, so that a proposal whose evidence changed since it was decided is marked
// "geändert – bitte prüfen" with the old decision beside it, and a decision whose proposal
// disappeared stays in the history.

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qi {

class Database;
struct Settings;

/// File name of the decisions database in the project folder.
inline constexpr const char* kCorrectionsFile = "QInventurKorrekturen.db";

/// Kinds of proposals.
inline constexpr const char* kArtStandort = "Standort ändern";
inline constexpr const char* kArtNeu = "Neu erfassen";
inline constexpr const char* kArtFehlt = "Fehlt";
inline constexpr const char* kArtKlaeren = "Klären";

/// Decisions.
inline constexpr const char* kOffen = "offen";
inline constexpr const char* kAngenommen = "angenommen";
inline constexpr const char* kAbgelehnt = "abgelehnt";

/// A proposal whose evidence changed since it was decided.
inline constexpr const char* kGeaendert = "geändert – bitte prüfen";

/// One proposal with its evidence, as made from a project result.
struct Proposal {
    std::string art;            ///< kArt...
    std::string invNr;          ///< the inventory number (as first written in the evidence)
    std::string artNr;          ///< article number (from Quarn, else from the scan)
    std::string beschreibung;   ///< description (from Quarn, else the article's name where known)
    std::string raumQuarn;      ///< Quarn's room of the object ('' when Quarn does not know it)
    std::string raumNeu;        ///< the room it was found in ("Standort ändern", "Neu erfassen"); '' otherwise
    std::string auftraege;      ///< the orders that make the evidence ("A, B")
    std::string raeume;         ///< "Klären": every room it was scanned in ("1001, 1203"); else raumNeu or raumQuarn
    std::string datei;          ///< the scanner file of the (latest) scan; '' for "Fehlt"
    std::string datum;          ///< scan date "TT.MM.JJJJ" of the (latest) scan
    std::string uhrzeit;        ///< scan time
    std::string gebaeudeteil;   ///< building and floor of the room that decides where it is handled ("Hauptgebäude / Erdgeschoss")
    std::string beleg;          ///< the evidence in one text; a change of it marks a decision "geändert – bitte prüfen"
};

/// A decision as kept.
struct Decision {
    std::string art;
    std::string invNr;
    std::string entscheidung; ///< kAngenommen, kAbgelehnt or kOffen
    std::string kommentar;
    std::string person;       ///< the user's name
    std::string zeit;         ///< "TT.MM.JJJJ hh:mm:ss"
    std::string beleg;        ///< the proposal's evidence when it was decided
};

/// A proposal as the list shows it: with its decision, or the old one when the evidence changed.
struct ReviewedProposal {
    Proposal proposal;
    std::string entscheidung;          ///< kOffen, kAngenommen, kAbgelehnt, or kGeaendert
    std::optional<Decision> decision;  ///< the kept decision (also when kGeaendert: the old one)
};

/// Makes the proposals of a project result, in kind order (Standort ändern, Neu erfassen, Fehlt,
/// Klären), then by inventory number. Rooms that no order checked produce none.
std::vector<Proposal> makeProposals(Database& result);

/// The decisions database's path in the project folder (the system's form, with backslashes).
std::string correctionsPath(const Settings& settings);

/// The person who decides: the name of the user running this program (as the project lock
/// names the user who holds a project).
std::string correctionPerson();

/// The messages of the decisions database (German, as the user reads them).
std::string cannotOpenCorrectionsMessage(const std::string& path, const std::string& reason);
std::string cannotCreateCorrectionsMessage(const std::string& path, const std::string& reason);
std::string readOnlyCorrectionsMessage();
std::string unknownProposalMessage(const std::string& art, const std::string& invNr);
std::string unknownDecisionMessage(const std::string& entscheidung);

/// The decisions database of a project.
class CorrectionDecisions {
public:
    /// Opens (readOnly) or opens and creates the project's decisions database. std::runtime_error
    /// with a German text when it can't be opened or made.
    CorrectionDecisions(const Settings& settings, bool readOnly);
    ~CorrectionDecisions();

    /// The proposals with their decisions.
    std::vector<ReviewedProposal> review(const std::vector<Proposal>& proposals);
    /// Kept decisions whose proposal is not among `proposals` any more, newest first.
    std::vector<Decision> history(const std::vector<Proposal>& proposals);
    /// Decides the proposals (found by kind and number among `proposals`) in one transaction:
    /// all of them or, when killed or failing, none. kOffen removes the decision. std::runtime_error
    /// (German) when read-only or when a proposal is not among `proposals`.
    void decide(const std::vector<Proposal>& proposals, const std::vector<std::pair<std::string, std::string>>& artAndInvNr,
                const std::string& entscheidung, const std::string& kommentar, const std::string& person);

private:
    std::unique_ptr<Database> db_;
    bool readOnly_ = false;
};

} // namespace qi
