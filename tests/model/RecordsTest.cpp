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

TEST(Records, CopyFromCopiesStringsNotShares)
{
    CRaumRec a;
    a.stRaumNr = "101";
    CRaumRec b;
    b.CopyFrom(a);
    a.stRaumNr = "202";
    EXPECT_EQ(b.stRaumNr, "101");
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
