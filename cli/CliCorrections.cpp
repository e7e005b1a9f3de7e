#include "CliSession.h"

#include "CorrectionExport.h"
#include "Corrections.h"
#include "Database.h"
#include "FileSystem.h"
#include "JetCollation.h"

#include <array>
#include <filesystem>
#include <ostream>
#include <string_view>

// The correction list for Quarn on the command line: the proposals of the project result
// with their decisions, deciding them (under the project's lock, as every change), and the
// accepted ones as files for Quarn's data import.

namespace qi::cli {

namespace {

/// A kind of proposal as --art names it: its short name or its full name.
struct KindName {
    std::string_view shortName;
    const char* art;
};

constexpr std::array<KindName, 4> kKindNames{{
    {"standort", kArtStandort},
    {"neu", kArtNeu},
    {"fehlt", kArtFehlt},
    {"klaeren", kArtKlaeren},
}};

/// The decision flags with the decision each gives.
constexpr std::array<std::pair<std::string_view, const char*>, 3> kDecisionFlags{{
    {"--annehmen", kAngenommen},
    {"--ablehnen", kAbgelehnt},
    {"--offen", kOffen},
}};

std::string kindNames()
{
    std::string out;
    for (const KindName& k : kKindNames)
        out += (out.empty() ? "" : ", ") + std::string(k.shortName);
    return out;
}

/// The decision the command line asks for ("" when none), and how many flags asked.
std::pair<std::string, int> decisionAsked(const Invocation& inv)
{
    std::string entscheidung;
    int flags = 0;
    for (const auto& [flag, decision] : kDecisionFlags)
        if (inv.has(std::string(flag))) {
            entscheidung = decision;
            ++flags;
        }
    return {entscheidung, flags};
}

/// "3 Vorschläge angenommen." and the like.
std::string decidedText(std::size_t n, const std::string& entscheidung)
{
    const std::string what = n == 1 ? "1 Vorschlag" : std::to_string(n) + " Vorschläge";
    if (entscheidung == kOffen)
        return what + " wieder offen.";
    return what + " " + entscheidung + ".";
}

} // namespace

std::string correctionKindOf(const std::string& name)
{
    for (const KindName& k : kKindNames)
        if (jetEqual(name, k.shortName) || jetEqual(name, k.art))
            return k.art;
    return {};
}

std::string refusedCorrectionCall(const Invocation& inv)
{
    const auto [entscheidung, flags] = decisionAsked(inv);
    const bool exporting = inv.options.count("--export") > 0;
    if (flags > 1)
        return "Nur eine von --annehmen, --ablehnen und --offen.";
    if (flags == 1 && exporting)
        return "--export geht nicht zusammen mit --annehmen, --ablehnen oder --offen.";
    if (flags == 1 && inv.args.empty())
        return "Es fehlen die Inventarnummern der Vorschläge.";
    if (flags == 0 && !inv.args.empty())
        return "Inventarnummern gehören zu --annehmen, --ablehnen oder --offen.";
    if (flags == 0 && (inv.options.count("--art") || inv.options.count("--kommentar")))
        return "--art und --kommentar gehören zu --annehmen, --ablehnen oder --offen.";
    if (inv.options.count("--art") && correctionKindOf(inv.option("--art")).empty())
        return "Eine Art '" + inv.option("--art") + "' gibt es nicht. Arten: " + kindNames() + ".";
    if (!exporting && inv.options.count("--format"))
        return "--format gehört zu --export.";
    const std::string format = inv.option("--format", "xlsx");
    if (format != "xlsx" && format != "csv")
        return "--format nimmt xlsx oder csv, nicht '" + format + "'.";
    return {};
}

std::vector<std::pair<std::string, std::string>> proposalsNamed(const std::vector<Proposal>& proposals,
                                                                const std::vector<std::string>& numbers,
                                                                const std::string& art, std::vector<std::string>& refused)
{
    std::vector<std::pair<std::string, std::string>> chosen;
    for (const std::string& number : numbers) {
        std::vector<const Proposal*> found;
        for (const Proposal& p : proposals)
            if (jetEqual(p.invNr, number) && (art.empty() || p.art == art))
                found.push_back(&p);
        if (found.empty()) {
            refused.push_back(art.empty()
                                  ? "Zur Inventarnummer '" + number + "' gibt es keinen Vorschlag. Es wurde nichts entschieden."
                                  : unknownProposalMessage(art, number));
        } else if (found.size() > 1) {
            std::string kinds;
            for (const Proposal* p : found)
                kinds += (kinds.empty() ? "" : ", ") + p->art;
            refused.push_back("Zur Inventarnummer '" + number + "' gibt es Vorschläge mehrerer Arten (" + kinds +
                              "); geben Sie --art an. Es wurde nichts entschieden.");
        } else {
            chosen.emplace_back(found.front()->art, found.front()->invNr);
        }
    }
    return chosen;
}

int Session::korrekturen()
{
    const std::string entscheidung = decisionAsked(inv_).first;
    // Deciding changes the project: only the program that holds it may.
    if (!entscheidung.empty() && settings_.readOnly) {
        say(readOnlyCorrectionsMessage());
        return kReadOnly;
    }
    const std::unique_ptr<Database> result = projectResult();
    const std::vector<Proposal> proposals = makeProposals(*result);

    if (!entscheidung.empty()) {
        std::vector<std::string> refused;
        const auto chosen = proposalsNamed(proposals, inv_.args, correctionKindOf(inv_.option("--art")), refused);
        for (const std::string& text : refused)
            say(text);
        if (!refused.empty())
            return kProposalUnknown;
        CorrectionDecisions decisions(settings_, false);
        decisions.decide(proposals, chosen, entscheidung, inv_.option("--kommentar"), correctionPerson());
        out_ << decidedText(chosen.size(), entscheidung) << '\n';
        return kSuccess;
    }

    CorrectionDecisions decisions(settings_, true);
    const std::vector<ReviewedProposal> reviewed = decisions.review(proposals);

    if (inv_.options.count("--export")) {
        const std::string folder = absolutePath(inv_.option("--export"));
        std::error_code ec;
        std::filesystem::create_directories(std::filesystem::u8path(folder), ec);
        if (!folderExists(folder)) {
            say("Der Ordner '" + displayPath(folder) + "' kann nicht angelegt werden.");
            return kFailure;
        }
        const CorrectionFormat format =
            inv_.option("--format", "xlsx") == "csv" ? CorrectionFormat::Csv : CorrectionFormat::Xlsx;
        std::size_t accepted = 0;
        for (const ReviewedProposal& r : reviewed)
            accepted += r.entscheidung == kAngenommen ? 1 : 0;
        for (const std::string& file : exportCorrections(reviewed, folder, format))
            out_ << "Korrekturen geschrieben: " << displayPath(file) << '\n';
        out_ << (accepted == 1 ? "1 angenommener Vorschlag" : std::to_string(accepted) + " angenommene Vorschläge")
             << ".\n";
        return kSuccess;
    }

    out_ << "Art\tInventar-Nr.\tRaum alt\tRaum neu\tAufträge\tEntscheidung\tKommentar\tPerson\n";
    for (const ReviewedProposal& r : reviewed) {
        const Proposal& p = r.proposal;
        std::string shown = r.entscheidung;
        if (r.entscheidung == kGeaendert && r.decision)
            shown += " (bisher " + r.decision->entscheidung + ")";
        out_ << p.art << '\t' << p.invNr << '\t' << p.raumQuarn << '\t' << (p.art == kArtKlaeren ? p.raeume : p.raumNeu)
             << '\t' << p.auftraege << '\t' << shown << '\t' << (r.decision ? r.decision->kommentar : "") << '\t'
             << (r.decision ? r.decision->person : "") << '\n';
    }
    return kSuccess;
}

} // namespace qi::cli
