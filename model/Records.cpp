#include "Records.h"

namespace qi {

void CAuftragRec::Init()
{
    // The two dates are left alone: a new record holds the zero date in both,
    // a record used again keeps the dates it had.
    lID = 0;
    stBezeichung.clear();
    stPfad.clear();
    stErsteller.clear();
    stEditor.clear();
    bOffen = 0;
}

void CArtikellisteRec::Init()
{
    lID = 0;
    stArtikel.clear();
    iAnzSoll = 0;
    iAnzIst = 0;
    stBeschreibung.clear();
    stAuftrag.clear();
}

void CDateienRec::Init()
{
    lID = 0;
    stName.clear();
    Datum.clear();
    stPfad.clear();
}

void CDatInventurRec::Init()
{
    lID = 0;
    stMitarbNr.clear();
    stAuftragsNr.clear();
    Datum.clear();
    Uhrzeit.clear();
    stRaum.clear();
    stInvNr.clear();
    stArtNr.clear();
    stArtName.clear();
    stTaet.clear();
    iReihenfolge = 0;
    lDatID = 0;
}

void CDifferenzlisteRec::Init()
{
    lID = 0;
    lRaumID = 0;
    stSollInvNR.clear();
    stIstInvNR.clear();
    stBeschreibung.clear();
    stZiel.clear();
    stQuelle.clear();
    stQuarn.clear();
    stArtNr.clear();
    Datum.clear();
    Uhrzeit.clear();
    iMarke = 0;
    stTyp = "0";
}

void CInvlisteRec::Init()
{
    lID = 0;
    stRaumNr.clear();
    stInvNr.clear();
    stBeschreibung.clear();
    stArtNr.clear();
    iRFolge = 0;
    Datum.clear();
    Uhrzeit.clear();
}

void CRaumRec::Init()
{
    lID = 0;
    lIdRB = 0;
    stRaumNr.clear();
    ststatus.clear();
    stAuftrag.clear();
    lDatID = 0;
    Datum.clear();
    Uhrzeit.clear();
    iAnzahl = 0;
}

} // namespace qi
