#include "Records.h"

#include <gtest/gtest.h>

using namespace qi;

TEST(Records, NewDifferenzlisteRecHasTypeZeroAndEmptyTexts)
{
    CDifferenzlisteRec r;
    EXPECT_EQ(r.stTyp, "0");
    for (const std::string* s : {&r.stSollInvNR, &r.stIstInvNR, &r.stBeschreibung, &r.stZiel, &r.stQuelle,
                                 &r.stQuarn, &r.stArtNr, &r.Datum, &r.Uhrzeit})
        EXPECT_EQ(*s, "");
    EXPECT_EQ(r.lID, 0);
    EXPECT_EQ(r.lRaumID, 0);
    EXPECT_EQ(r.iMarke, 0);
}

TEST(Records, NewAuftragRecHoldsTheZeroDate)
{
    CAuftragRec r;
    EXPECT_EQ(r.erstellt.serial, 0.0);
    EXPECT_EQ(r.letzte_Aenderung.serial, 0.0);
    EXPECT_EQ(r.erstellt.toDisplayText(), "30.12.1899 00:00:00");
    EXPECT_EQ(r.bOffen, 0);
}

TEST(Records, AuftragRecInitKeepsDatesAndClearsTheRest)
{
    CAuftragRec r;
    r.lID = 7;
    r.stBezeichung = "Nord";
    r.stPfad = "\\Inventur\\Nord.mdb";
    r.stErsteller = "Meier";
    r.stEditor = "Schulz";
    r.bOffen = -1;
    r.erstellt = JetDate::fromParts(2024, 3, 1, 8, 15, 0);
    r.letzte_Aenderung = JetDate::fromParts(2024, 3, 2, 9, 0, 0);
    r.Init();
    EXPECT_EQ(r.lID, 0);
    EXPECT_EQ(r.stBezeichung, "");
    EXPECT_EQ(r.stPfad, "");
    EXPECT_EQ(r.stErsteller, "");
    EXPECT_EQ(r.stEditor, "");
    EXPECT_EQ(r.bOffen, 0);
    EXPECT_EQ(r.erstellt, JetDate::fromParts(2024, 3, 1, 8, 15, 0));
    EXPECT_EQ(r.letzte_Aenderung, JetDate::fromParts(2024, 3, 2, 9, 0, 0));
}

TEST(Records, CopyFromCarriesMemoryOnlyFields)
{
    CDatInventurRec a;
    a.lID = 3;
    a.stInvNr = "4711";
    a.stArtName = "Stuhl";
    a.lDatID = 9;
    CDatInventurRec b;
    b.CopyFrom(a);
    EXPECT_EQ(b.stArtName, "Stuhl");
    EXPECT_EQ(b.stInvNr, "4711");
    EXPECT_EQ(b.lDatID, 9);

    CDifferenzlisteRec d;
    d.iMarke = 12;
    d.stTyp = "1 OK";
    CDifferenzlisteRec e;
    e.CopyFrom(d);
    EXPECT_EQ(e.iMarke, 12);
    EXPECT_EQ(e.stTyp, "1 OK");

    CAuftragRec f;
    f.bOffen = -1;
    f.erstellt = JetDate::fromParts(2020, 1, 2);
    CAuftragRec g;
    g.CopyFrom(f);
    EXPECT_EQ(g.bOffen, -1);
    EXPECT_EQ(g.erstellt, f.erstellt);
}

TEST(Records, CopyFromCopiesEveryFieldIntoARecordOfItsOwn)
{
    // Every field arrives, the memory-only ones included, and the copy keeps its values
    // when the source changes afterwards.
    CDatInventurRec a;
    a.lID = 7; a.stMitarbNr = "M"; a.stAuftragsNr = "O"; a.Datum = "01.02.2015"; a.Uhrzeit = "10:00";
    a.stRaum = "101"; a.stInvNr = "INV"; a.stArtNr = "ART"; a.stArtName = "Stuhl"; a.stTaet = "E";
    a.iReihenfolge = 3; a.lDatID = 9;
    CDatInventurRec b;
    b.CopyFrom(a);
    a.Init();
    EXPECT_EQ(b.lID, 7); EXPECT_EQ(b.stMitarbNr, "M"); EXPECT_EQ(b.stAuftragsNr, "O");
    EXPECT_EQ(b.Datum, "01.02.2015"); EXPECT_EQ(b.Uhrzeit, "10:00"); EXPECT_EQ(b.stRaum, "101");
    EXPECT_EQ(b.stInvNr, "INV"); EXPECT_EQ(b.stArtNr, "ART"); EXPECT_EQ(b.stArtName, "Stuhl");
    EXPECT_EQ(b.stTaet, "E"); EXPECT_EQ(b.iReihenfolge, 3); EXPECT_EQ(b.lDatID, 9);

    CDifferenzlisteRec d;
    d.lID = 1; d.lRaumID = 2; d.stSollInvNR = "S"; d.stIstInvNR = "I"; d.stBeschreibung = "B"; d.stZiel = "Z";
    d.stQuelle = "Q"; d.stQuarn = "R"; d.stArtNr = "A"; d.Datum = "D"; d.Uhrzeit = "U"; d.iMarke = 5; d.stTyp = "1 OK";
    CDifferenzlisteRec e;
    e.CopyFrom(d);
    d.Init();
    EXPECT_EQ(e.lID, 1); EXPECT_EQ(e.lRaumID, 2); EXPECT_EQ(e.stSollInvNR, "S"); EXPECT_EQ(e.stIstInvNR, "I");
    EXPECT_EQ(e.stBeschreibung, "B"); EXPECT_EQ(e.stZiel, "Z"); EXPECT_EQ(e.stQuelle, "Q"); EXPECT_EQ(e.stQuarn, "R");
    EXPECT_EQ(e.stArtNr, "A"); EXPECT_EQ(e.Datum, "D"); EXPECT_EQ(e.Uhrzeit, "U"); EXPECT_EQ(e.iMarke, 5);
    EXPECT_EQ(e.stTyp, "1 OK");
}

TEST(Records, InitRestoresEveryInitValue)
{
    CRaumRec r;
    r.lID = 1; r.lIdRB = 2; r.stRaumNr = "x"; r.ststatus = "E"; r.stAuftrag = "A"; r.lDatID = 3;
    r.Datum = "d"; r.Uhrzeit = "u"; r.iAnzahl = 4;
    r.Init();
    EXPECT_EQ(r.lID, 0); EXPECT_EQ(r.lIdRB, 0); EXPECT_EQ(r.stRaumNr, ""); EXPECT_EQ(r.ststatus, "");
    EXPECT_EQ(r.stAuftrag, ""); EXPECT_EQ(r.lDatID, 0); EXPECT_EQ(r.Datum, ""); EXPECT_EQ(r.Uhrzeit, "");
    EXPECT_EQ(r.iAnzahl, 0);

    CArtikellisteRec a;
    a.iAnzSoll = 5; a.iAnzIst = 6; a.stArtikel = "A"; a.Init();
    EXPECT_EQ(a.iAnzSoll, 0); EXPECT_EQ(a.iAnzIst, 0); EXPECT_EQ(a.stArtikel, "");

    CInvlisteRec i;
    i.iRFolge = 9; i.stBeschreibung = "b"; i.Init();
    EXPECT_EQ(i.iRFolge, 0); EXPECT_EQ(i.stBeschreibung, "");

    CDateienRec f;
    f.stName = "a.dat"; f.Init();
    EXPECT_EQ(f.stName, "");
}
