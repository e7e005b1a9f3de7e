// The decisions of the correction list, kept in "QInventurKorrekturen.db" in the project folder.

#include "Corrections.h"

#include "Database.h"
#include "FileSystem.h"
#include "JetCollation.h"
#include "JetDate.h"
#include "ProjectLock.h"
#include "Settings.h"

#include <map>
#include <set>
#include <stdexcept>

namespace qi {

namespace {

// One row per decided proposal, found by its kind and number (the number compared as in
// every file of ours). stStempel is the decision's time as a sortable text.
constexpr const char* kSchema =
    "CREATE TABLE K_Entscheidung ("
    " stArt TEXT COLLATE JET NOT NULL,"
    " stInvNr TEXT COLLATE JET NOT NULL,"
    " stEntscheidung TEXT COLLATE JET NOT NULL,"
    " stKommentar TEXT COLLATE JET DEFAULT '',"
    " stPerson TEXT COLLATE JET DEFAULT '',"
    " stZeit TEXT COLLATE JET DEFAULT '',"
    " stStempel TEXT COLLATE JET DEFAULT '',"
    " stBeleg TEXT COLLATE JET DEFAULT '',"
    " PRIMARY KEY (stArt, stInvNr));\n"
    "PRAGMA user_version = 1;\n";

constexpr const char* kSelect =
    "SELECT stArt, stInvNr, stEntscheidung, stKommentar, stPerson, stZeit, stBeleg FROM K_Entscheidung "
    "ORDER BY stStempel DESC, stArt, stInvNr";

constexpr const char* kUpsert =
    "INSERT INTO K_Entscheidung (stArt, stInvNr, stEntscheidung, stKommentar, stPerson, stZeit, stStempel, stBeleg) "
    "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8) ON CONFLICT (stArt, stInvNr) DO UPDATE SET stInvNr = excluded.stInvNr, "
    "stEntscheidung = excluded.stEntscheidung, stKommentar = excluded.stKommentar, stPerson = excluded.stPerson, "
    "stZeit = excluded.stZeit, stStempel = excluded.stStempel, stBeleg = excluded.stBeleg";

constexpr const char* kDelete = "DELETE FROM K_Entscheidung WHERE stArt = ?1 AND stInvNr = ?2";

/// The key of a proposal or decision: its kind and its number as the comparison sees it.
std::string keyOf(const std::string& art, const std::string& invNr) { return art + '\x1f' + jetFoldKey(invNr); }

/// Makes the file whole or not at all: the schema goes into a file of another name that takes
/// the file's name only when complete. A file of that other name left by a killed creation
/// is thrown away first.
void createWhole(const std::string& path)
{
    const std::string building = path + ".neu";
    removeFile(building);
    try {
        {
            auto db = Database::create(building);
            db->executeScript(kSchema);
        }
        // A new name beside the old: never replaces a file another creation put there meanwhile.
        if (!linkFile(building, path) && !fileExists(path) && !moveFile(building, path))
            throw std::runtime_error(cannotCreateCorrectionsMessage(path, {}));
    } catch (...) {
        removeFile(building);
        throw;
    }
    removeFile(building);
}

} // namespace

std::string cannotOpenCorrectionsMessage(const std::string& path, const std::string& reason)
{
    std::string text = "Die Korrekturliste '" + displayPath(path) + "' kann nicht geöffnet werden.";
    if (!reason.empty())
        text += " " + reason;
    return text;
}

std::string cannotCreateCorrectionsMessage(const std::string& path, const std::string& reason)
{
    std::string text = "Die Korrekturliste '" + displayPath(path) + "' kann nicht angelegt werden.";
    if (!reason.empty())
        text += " " + reason;
    return text;
}

std::string readOnlyCorrectionsMessage()
{
    return "Das Projekt ist nur zum Lesen geöffnet: Entscheidungen der Korrekturliste können nicht geändert werden.";
}

std::string unknownProposalMessage(const std::string& art, const std::string& invNr)
{
    return "Zur Inventarnummer '" + invNr + "' gibt es keinen Vorschlag '" + art +
           "'. Es wurde nichts entschieden.";
}

std::string unknownDecisionMessage(const std::string& entscheidung)
{
    return "'" + entscheidung + "' ist keine Entscheidung (angenommen, abgelehnt oder offen).";
}

std::string correctionsPath(const Settings& settings)
{
    std::string folder = settings.gstProjektPfad;
    if (!folder.empty() && folder.back() != '\\' && folder.back() != '/')
        folder += '\\';
    return folder + kCorrectionsFile;
}

std::string correctionPerson() { return ProjectLock::self().user; }

CorrectionDecisions::CorrectionDecisions(const Settings& settings, bool readOnly) : readOnly_(readOnly)
{
    const std::string path = correctionsPath(settings);
    if (!fileExists(path)) {
        // Looking only: no decisions yet, nothing to make.
        if (readOnly)
            return;
        try {
            createWhole(path);
        } catch (const std::exception& e) {
            const std::string text = e.what();
            if (text.rfind("Die Korrekturliste", 0) == 0)
                throw;
            throw std::runtime_error(cannotCreateCorrectionsMessage(path, e.what()));
        }
    }
    try {
        db_ = Database::open(path, readOnly);
        if (!db_->tableExists("K_Entscheidung"))
            throw std::runtime_error("Die Tabelle 'K_Entscheidung' fehlt.");
    } catch (const std::exception& e) {
        db_.reset();
        throw std::runtime_error(cannotOpenCorrectionsMessage(path, e.what()));
    }
}

CorrectionDecisions::~CorrectionDecisions() = default;

namespace {

std::vector<Decision> readDecisions(Database* db)
{
    std::vector<Decision> decisions;
    if (!db)
        return decisions;
    Statement& st = db->prepare(kSelect);
    st.bindAll({});
    while (st.step()) {
        Decision d;
        d.art = std::string(st.columnText(0));
        d.invNr = std::string(st.columnText(1));
        d.entscheidung = std::string(st.columnText(2));
        d.kommentar = std::string(st.columnText(3));
        d.person = std::string(st.columnText(4));
        d.zeit = std::string(st.columnText(5));
        d.beleg = std::string(st.columnText(6));
        decisions.push_back(std::move(d));
    }
    st.reset();
    return decisions;
}

} // namespace

std::vector<ReviewedProposal> CorrectionDecisions::review(const std::vector<Proposal>& proposals)
{
    std::map<std::string, Decision> byKey;
    for (Decision& d : readDecisions(db_.get()))
        byKey.emplace(keyOf(d.art, d.invNr), std::move(d));
    std::vector<ReviewedProposal> reviewed;
    reviewed.reserve(proposals.size());
    for (const Proposal& p : proposals) {
        ReviewedProposal r{p, kOffen, std::nullopt};
        if (const auto it = byKey.find(keyOf(p.art, p.invNr)); it != byKey.end()) {
            r.decision = it->second;
            r.entscheidung = jetEqual(it->second.beleg, p.beleg) ? it->second.entscheidung : std::string(kGeaendert);
        }
        reviewed.push_back(std::move(r));
    }
    return reviewed;
}

std::vector<Decision> CorrectionDecisions::history(const std::vector<Proposal>& proposals)
{
    std::set<std::string> present;
    for (const Proposal& p : proposals)
        present.insert(keyOf(p.art, p.invNr));
    std::vector<Decision> gone;
    for (Decision& d : readDecisions(db_.get()))
        if (!present.contains(keyOf(d.art, d.invNr)))
            gone.push_back(std::move(d));
    return gone;
}

void CorrectionDecisions::decide(const std::vector<Proposal>& proposals,
                                 const std::vector<std::pair<std::string, std::string>>& artAndInvNr,
                                 const std::string& entscheidung, const std::string& kommentar,
                                 const std::string& person)
{
    if (readOnly_ || !db_)
        throw std::runtime_error(readOnlyCorrectionsMessage());
    if (entscheidung != kOffen && entscheidung != kAngenommen && entscheidung != kAbgelehnt)
        throw std::runtime_error(unknownDecisionMessage(entscheidung));
    std::map<std::string, const Proposal*> byKey;
    for (const Proposal& p : proposals)
        byKey.emplace(keyOf(p.art, p.invNr), &p);
    // Every proposal is found before anything is written.
    std::vector<const Proposal*> chosen;
    chosen.reserve(artAndInvNr.size());
    for (const auto& [art, invNr] : artAndInvNr) {
        const auto it = byKey.find(keyOf(art, invNr));
        if (it == byKey.end())
            throw std::runtime_error(unknownProposalMessage(art, invNr));
        chosen.push_back(it->second);
    }
    const JetDate now = JetDate::now();
    const std::string zeit = now.toDisplayText();
    const std::string stempel = now.toStorageText();
    Database::Transaction tx(*db_);
    for (const Proposal* p : chosen) {
        if (entscheidung == kOffen)
            db_->execute(kDelete, {p->art, p->invNr});
        else
            db_->execute(kUpsert, {p->art, p->invNr, entscheidung, kommentar, person, zeit, stempel, p->beleg});
    }
    tx.commit();
}

} // namespace qi
