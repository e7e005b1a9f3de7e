#include "CorrectionProtocol.h"

#include "Database.h"
#include "Value.h"

namespace qi {

namespace {

int kindNumber(const std::string& art)
{
    const char* kinds[] = {kArtStandort, kArtNeu, kArtFehlt, kArtKlaeren};
    for (int i = 0; i < 4; ++i)
        if (art == kinds[i])
            return i + 1;
    return 0;
}

} // namespace

void putProposalTable(Database& result, const std::vector<ReviewedProposal>& reviewed)
{
    Database::Transaction tx(result);
    result.executeScript(
        "DROP TABLE IF EXISTS K_Vorschlag;\n"
        "CREATE TABLE K_Vorschlag (iPos INTEGER DEFAULT 0, iArt INTEGER DEFAULT 0, stArt TEXT COLLATE JET DEFAULT '', "
        "stInvNr TEXT COLLATE JET DEFAULT '', stArtNr TEXT COLLATE JET DEFAULT '', "
        "stBeschreibung TEXT COLLATE JET DEFAULT '', stRaumQuarn TEXT COLLATE JET DEFAULT '', "
        "stRaumNeu TEXT COLLATE JET DEFAULT '', stAuftraege TEXT COLLATE JET DEFAULT '', "
        "stRaeume TEXT COLLATE JET DEFAULT '', stDatei TEXT COLLATE JET DEFAULT '', Datum TEXT COLLATE JET DEFAULT '', "
        "Uhrzeit TEXT COLLATE JET DEFAULT '', stGebaeudeteil TEXT COLLATE JET DEFAULT '', "
        "stEntscheidung TEXT COLLATE JET DEFAULT '', stBisher TEXT COLLATE JET DEFAULT '', "
        "stKommentar TEXT COLLATE JET DEFAULT '', stPerson TEXT COLLATE JET DEFAULT '', "
        "stEntschieden TEXT COLLATE JET DEFAULT '');\n");
    int pos = 0;
    for (const ReviewedProposal& r : reviewed) {
        const Proposal& p = r.proposal;
        const Decision* d = r.decision ? &*r.decision : nullptr;
        result.execute("INSERT INTO K_Vorschlag VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, "
                       "?15, ?16, ?17, ?18, ?19)",
                       {Value(++pos), Value(kindNumber(p.art)), Value(p.art), Value(p.invNr), Value(p.artNr),
                        Value(p.beschreibung), Value(p.raumQuarn), Value(p.raumNeu), Value(p.auftraege),
                        Value(p.raeume), Value(p.datei), Value(p.datum), Value(p.uhrzeit), Value(p.gebaeudeteil),
                        Value(r.entscheidung),
                        Value(r.entscheidung == kGeaendert && d ? d->entscheidung : std::string()),
                        Value(d ? d->kommentar : std::string()), Value(d ? d->person : std::string()),
                        Value(d ? d->zeit : std::string())});
    }
    tx.commit();
}

void putReviewedProposals(const Settings& settings, Database& result)
{
    const std::vector<Proposal> proposals = makeProposals(result);
    CorrectionDecisions decisions(settings, true);
    putProposalTable(result, decisions.review(proposals));
}

} // namespace qi
