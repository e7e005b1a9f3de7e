#include "FileSystem.h"
#include "TableRecordset.h"
#include "TestSupport.h"

using namespace qi;
using test::leaveLastError;
using test::OrderDbTest;

namespace {
CDatInventurRec scan(const std::string& inv, const std::string& room)
{
    CDatInventurRec r;
    r.stMitarbNr = "7";
    r.stAuftragsNr = "100";
    r.Datum = "01.02.2015";
    r.Uhrzeit = "10:11:12";
    r.stRaum = room;
    r.stInvNr = inv;
    r.stArtNr = "ART1";
    r.stTaet = "I";
    r.lDatID = 1;
    return r;
}
} // namespace

TEST_F(OrderDbTest, AddNewWithoutRecordReturnsFalseAndLeavesLastErrorEmpty)
{
    leaveLastError(db);
    EXPECT_FALSE(db.AddNewRaumRec(nullptr));
    EXPECT_EQ(db.LastError(), "");
    EXPECT_FALSE(db.AddNewArtikellisteRec(nullptr));
    EXPECT_FALSE(db.AddNewDateienRec(nullptr));
    EXPECT_FALSE(db.AddNewDifferenzlisteRec(nullptr));
    EXPECT_FALSE(db.AddNewInvlisteRec(nullptr));
    bool dup = true;
    leaveLastError(db);
    EXPECT_FALSE(db.AddNewDatInventurRec(nullptr, dup));
    EXPECT_FALSE(dup);
    EXPECT_EQ(db.LastError(), "");
}

TEST_F(OrderDbTest, AddNewGivesTheRecordItsKey)
{
    CRaumRec r;
    r.stRaumNr = "101";
    ASSERT_TRUE(db.AddNewRaumRec(&r)) << db.LastError();
    EXPECT_EQ(r.lID, 1);
    CRaumRec s;
    ASSERT_TRUE(db.AddNewRaumRec(&s));
    EXPECT_EQ(s.lID, 2);
}

TEST_F(OrderDbTest, ATextLongerThan255CharactersIsRefusedWithError3163)
{
    CDateienRec file;
    file.stName = std::string(256, 'n');
    EXPECT_FALSE(db.AddNewDateienRec(&file));
    EXPECT_EQ(db.LastErrorNumber(), dberr::FieldTooSmall);
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht gespeichert werden!\r\nDer Wert für das Feld 'stName' der "
                              "Tabelle 'T_Dateien' ist 256 Zeichen lang; das Feld nimmt höchstens 255 Zeichen auf.");
    EXPECT_EQ(toLong(db.database()->scalar("SELECT count(*) FROM T_Dateien")), 0);
    file.stName = std::string(255, 'n');
    EXPECT_TRUE(db.AddNewDateienRec(&file)) << db.LastError();
    EXPECT_EQ(db.LastErrorNumber(), 0);
}

TEST_F(OrderDbTest, DuplicateInventoryNumberIsRefusedButSucceeds)
{
    CDatInventurRec a = scan("4711", "1");
    bool dup = true;
    ASSERT_TRUE(db.AddNewDatInventurRec(&a, dup));
    EXPECT_FALSE(dup);
    CDatInventurRec b = scan("4711", "2");
    leaveLastError(db);
    ASSERT_TRUE(db.AddNewDatInventurRec(&b, dup)) << db.LastError();
    EXPECT_TRUE(dup);
    EXPECT_EQ(db.LastError(), "");
    CDatInventurRecColl all;
    ASSERT_TRUE(db.ReadAllDatInventurRec2Coll(all));
    ASSERT_EQ(all.Count(), 1);
    EXPECT_EQ(all.Item(1)->stRaum, "1");
}

TEST_F(OrderDbTest, TwoLinesWithoutNumberAreDuplicatesOfEachOther)
{
    CDatInventurRec a = scan("Obj. ohne Nr.", "1"), b = scan("Obj. ohne Nr.", "1");
    bool dup = false;
    ASSERT_TRUE(db.AddNewDatInventurRec(&a, dup));
    EXPECT_FALSE(dup);
    ASSERT_TRUE(db.AddNewDatInventurRec(&b, dup));
    EXPECT_TRUE(dup);
}

TEST_F(OrderDbTest, DuplicateIgnoresLetterCaseAndTrailingBlanks)
{
    CDatInventurRec a = scan("ab12", "1"), b = scan("AB12  ", "2");
    bool dup = false;
    ASSERT_TRUE(db.AddNewDatInventurRec(&a, dup));
    ASSERT_TRUE(db.AddNewDatInventurRec(&b, dup));
    EXPECT_TRUE(dup);
}

TEST_F(OrderDbTest, ReadOfADeletedKeyFailsWithTheTextAlone)
{
    CRaumRec r;
    r.stRaumNr = "5";
    ASSERT_TRUE(db.AddNewRaumRec(&r));
    ASSERT_TRUE(db.DelRaumRec(&r));
    CRaumRec q;
    q.lID = r.lID;
    EXPECT_FALSE(db.ReadRaumRec(&q));
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht gelesen werden!");
}

TEST_F(OrderDbTest, EditAndDeleteOfAMissingKeyFailWithTheirTexts)
{
    CDateienRec f;
    f.lID = 99;
    EXPECT_FALSE(db.EditDateienRec(&f));
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht aktualisiert werden!");
    EXPECT_FALSE(db.DelDateienRec(&f));
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht gelöscht werden!");
}

TEST_F(OrderDbTest, GetByInvNrOfAnUnknownNumberLeavesExistingUntouched)
{
    CDatInventurRec a = scan("1", "1");
    bool dup = false;
    ASSERT_TRUE(db.AddNewDatInventurRec(&a, dup));
    CDatInventurRec probe = scan("nix", "1");
    CDatInventurRec existing;
    existing.stRaum = "vorher";
    existing.lID = 77;
    EXPECT_TRUE(db.GetDatInventurByInvNr(&probe, existing));
    EXPECT_EQ(existing.stRaum, "vorher");
    EXPECT_EQ(existing.lID, 77);
}

TEST_F(OrderDbTest, GetByInvNrReadsIntoExistingNotIntoRec)
{
    CDatInventurRec a = scan("O'Neil \"1\"", "12");
    bool dup = false;
    ASSERT_TRUE(db.AddNewDatInventurRec(&a, dup));
    CDatInventurRec probe = scan("O'Neil \"1\"", "99");
    CDatInventurRec existing;
    ASSERT_TRUE(db.GetDatInventurByInvNr(&probe, existing));
    EXPECT_EQ(existing.lID, a.lID);
    EXPECT_EQ(existing.stRaum, "12");
    EXPECT_EQ(existing.lDatID, 1);
    EXPECT_EQ(probe.stRaum, "99");
}

TEST_F(OrderDbTest, ReadAllRoomsDoesNotTakeTheTimeFromTheTable)
{
    CRaumRec r;
    r.stRaumNr = "101";
    r.Uhrzeit = "12:00:00";
    r.Datum = "01.01.2020";
    ASSERT_TRUE(db.AddNewRaumRec(&r));
    EXPECT_EQ(toText(db.database()->scalar("SELECT Uhrzeit FROM T_Raum")), "12:00:00");
    CRaumRecColl rooms;
    ASSERT_TRUE(db.ReadAllRaumRec2Coll(rooms));
    ASSERT_EQ(rooms.Count(), 1);
    EXPECT_EQ(rooms.Item(1)->Uhrzeit, "");
    EXPECT_EQ(rooms.Item(1)->Datum, "01.01.2020");
    CRaumRec single;
    single.lID = r.lID;
    single.Uhrzeit = "bleibt";
    ASSERT_TRUE(db.ReadRaumRec(&single));
    EXPECT_EQ(single.Uhrzeit, "bleibt");
}

TEST_F(OrderDbTest, NullDescriptionOfInvlisteReadsAsEmptyOtherNullsFail)
{
    db.database()->execute("INSERT INTO T_Invliste (stRaumNr, stInvNr, stArtNr) VALUES ('1', '2', '3')");
    CInvlisteRecColl lines;
    ASSERT_TRUE(db.ReadAllInvlisteRec2Coll(lines)) << db.LastError();
    ASSERT_EQ(lines.Count(), 1);
    EXPECT_EQ(lines.Item(1)->stBeschreibung, "");
    db.database()->execute("UPDATE T_Invliste SET stArtNr = NULL");
    EXPECT_FALSE(db.ReadAllInvlisteRec2Coll(lines));
    EXPECT_EQ(db.LastError().rfind("Die Datensätze konnten nicht in die Liste gelesen werden!\r\n", 0), 0u)
        << db.LastError();
}

TEST_F(OrderDbTest, LinesWithoutArticleAreThoseWithNoCharacterOfArticleAndSomeOfScannedNumber)
{
    const auto line = [&](const std::string& artNr, const std::string& ist) {
        CDifferenzlisteRec d;
        d.lRaumID = 1;
        d.stArtNr = artNr;
        d.stIstInvNR = ist;
        EXPECT_TRUE(db.AddNewDifferenzlisteRec(&d)) << db.LastError();
        return d.lID;
    };
    const std::int32_t second = line("", "B-2");
    const std::int32_t first = line("", "A-1");
    line("ART", "C-3");   // has its article
    line("  ", "D-4");    // blanks are an article number to the walk
    line("", "");         // nothing scanned
    const std::int32_t blanks = line("", " ");
    db.database()->execute("UPDATE T_Differenzliste SET lID = lID + 100 WHERE lID = ?1", {std::int64_t{second}});

    CDifferenzlisteRecColl lines;
    ASSERT_TRUE(db.ReadDifferenzlisteOhneArtNr2Coll(lines)) << db.LastError();
    ASSERT_EQ(lines.Count(), 3);
    EXPECT_EQ(lines.Item(1)->lID, first);
    EXPECT_EQ(lines.Item(2)->lID, blanks);
    EXPECT_EQ(lines.Item(3)->stIstInvNR, "B-2");

    // A Null in a line the walk would see fails the read as the whole table's read does.
    db.database()->execute("UPDATE T_Differenzliste SET stQuarn = NULL WHERE stIstInvNR = 'A-1'");
    EXPECT_FALSE(db.ReadDifferenzlisteOhneArtNr2Coll(lines));
    EXPECT_EQ(db.LastError().rfind("Die Datensätze konnten nicht in die Liste gelesen werden!\r\n", 0), 0u)
        << db.LastError();
}

TEST_F(OrderDbTest, IsValidDbOnAFileLackingOnlyTAbschreibung)
{
    EXPECT_TRUE(db.IsValidDb());
    db.database()->execute("DROP TABLE T_Abschreibung");
    EXPECT_FALSE(db.IsValidDb());
    const std::string prefix = "Die Struktur der Datenbank ist ungültig!\r\n";
    EXPECT_EQ(db.LastError().rfind(prefix, 0), 0u);
    EXPECT_GT(db.LastError().size(), prefix.size());
}

TEST_F(OrderDbTest, IsValidDbWithoutDatabaseFailsAtOnce)
{
    db.CloseDb();
    EXPECT_FALSE(db.IsValidDb());
    EXPECT_EQ(db.LastError(), "Die Struktur der Datenbank ist ungültig!");
}

TEST_F(OrderDbTest, OpenWithEmptyPathReturnsFalseWithoutText)
{
    leaveLastError(db);
    db.setDbPath("");
    EXPECT_FALSE(db.OpenDb());
    EXPECT_EQ(db.LastError(), "");
    EXPECT_FALSE(db.isOpen());
}

TEST_F(OrderDbTest, OpenOfAMissingFileFailsAndCreatesNothing)
{
    const std::string missing = dir.file("Fehlt.mdb");
    db.setDbPath(missing);
    EXPECT_FALSE(db.OpenDb());
    EXPECT_EQ(db.LastError().rfind("Die Datenbank " + missing + " konnte nicht geöffnet werden!\r\n", 0), 0u)
        << db.LastError();
    EXPECT_FALSE(fileExists(missing));
}

TEST_F(OrderDbTest, RecordOperationsOnAClosedDatabaseFailWithTheirTexts)
{
    db.CloseDb();
    CRaumRec r;
    EXPECT_FALSE(db.AddNewRaumRec(&r));
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht gespeichert werden!");
    EXPECT_EQ(r.lID, 0);
    EXPECT_FALSE(db.EditRaumRec(&r));
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht aktualisiert werden!");
    EXPECT_FALSE(db.ReadRaumRec(&r));
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht gelesen werden!");
    EXPECT_FALSE(db.DelRaumRec(&r));
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht gelöscht werden!");
    CRaumRecColl c;
    EXPECT_FALSE(db.ReadAllRaumRec2Coll(c));
    EXPECT_EQ(db.LastError(), "Die Datensätze konnten nicht in die Liste gelesen werden!");
    EXPECT_FALSE(db.DelAllDatInventur());
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht gelöscht werden!");
    EXPECT_FALSE(db.DelAllArtikellisteRec());
    CDatInventurRec s;
    CDatInventurRec e;
    EXPECT_FALSE(db.GetDatInventurByInvNr(&s, e));
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht gespeichert werden!");
    EXPECT_TRUE(db.UpdateDb());
}

TEST_F(OrderDbTest, SuccessClearsLastError)
{
    CRaumRec r;
    r.lID = 5;
    EXPECT_FALSE(db.ReadRaumRec(&r));
    EXPECT_FALSE(db.LastError().empty());
    EXPECT_TRUE(db.AddNewRaumRec(&r));
    EXPECT_EQ(db.LastError(), "");
}

TEST_F(OrderDbTest, SixteenBitOverflowFailsTheSave)
{
    // A 16-bit column refuses 32768 when the row is saved: the new row is not stored,
    // the changed row keeps its value.
    CArtikellisteRec a;
    a.stArtikel = "A";
    a.iAnzSoll = 32767;
    ASSERT_TRUE(db.AddNewArtikellisteRec(&a));
    {
        TableRecordset rs(*db.database(), "T_Artikelliste");
        rs.addNew();
        rs.setField("stArtikel", std::string("B"));
        try {
            rs.setField("iAnzSoll", std::int64_t{32768});
            rs.update();
            FAIL() << "32768 was saved";
        } catch (const DbError& e) {
            EXPECT_EQ(e.number(), dberr::NumericOverflow);
            EXPECT_STREQ(e.what(), "Numerischer Feldüberlauf.");
        }
    }
    {
        TableRecordset rs(*db.database(), "T_Artikelliste");
        rs.setIndex("PrimaryKey");
        ASSERT_TRUE(rs.seek(a.lID));
        rs.edit();
        EXPECT_THROW(rs.setField("iAnzSoll", std::int64_t{32768}), DbError);
    }
    // A statement that would write past the range is refused as a whole.
    try {
        db.database()->execute("UPDATE T_Artikelliste SET iAnzSoll = iAnzSoll + 1");
        FAIL() << "the statement saved 32768";
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::NumericOverflow);
    }
    CArtikellisteRecColl all;
    ASSERT_TRUE(db.ReadAllArtikellisteRec2Coll(all));
    ASSERT_EQ(all.Count(), 1);
    const CArtikellisteRec* only = all.Item(CArtikellisteRecColl::MakeIndex(a.lID));
    ASSERT_NE(only, nullptr);
    EXPECT_EQ(only->iAnzSoll, 32767);
}

TEST_F(OrderDbTest, EveryTableRoundTripsItsFields)
{
    CArtikellisteRec a;
    a.stArtikel = "ART-1"; a.iAnzSoll = 3; a.iAnzIst = 2; a.stBeschreibung = "Stuhl"; a.stAuftrag = "Nord";
    ASSERT_TRUE(db.AddNewArtikellisteRec(&a));
    CArtikellisteRec a2; a2.lID = a.lID;
    ASSERT_TRUE(db.ReadArtikellisteRec(&a2));
    EXPECT_EQ(a2.stArtikel, "ART-1"); EXPECT_EQ(a2.iAnzSoll, 3); EXPECT_EQ(a2.iAnzIst, 2);
    EXPECT_EQ(a2.stBeschreibung, "Stuhl"); EXPECT_EQ(a2.stAuftrag, "Nord");

    CDateienRec f; f.stName = "a.dat"; f.Datum = "01.02.2015"; f.stPfad = "C:\\Daten\\a.dat";
    ASSERT_TRUE(db.AddNewDateienRec(&f));
    CDateienRec f2; f2.lID = f.lID;
    ASSERT_TRUE(db.ReadDateienRec(&f2));
    EXPECT_EQ(f2.stName, "a.dat"); EXPECT_EQ(f2.Datum, "01.02.2015"); EXPECT_EQ(f2.stPfad, "C:\\Daten\\a.dat");
    CDateienRec same; same.stName = "A.DAT";
    EXPECT_FALSE(db.AddNewDateienRec(&same));
    EXPECT_EQ(same.lID, 0);
    EXPECT_EQ(db.LastError().rfind("Der Datensatz konnte nicht gespeichert werden!\r\n", 0), 0u);

    CDifferenzlisteRec d; d.lRaumID = 4; d.stSollInvNR = "S"; d.stIstInvNR = "I"; d.stBeschreibung = "B";
    d.stZiel = "Z"; d.stQuelle = "Q"; d.stQuarn = "QU"; d.stArtNr = "A"; d.Datum = "D"; d.Uhrzeit = "U";
    d.stTyp = "1 OK"; d.iMarke = 9;
    ASSERT_TRUE(db.AddNewDifferenzlisteRec(&d));
    CDifferenzlisteRec d2; d2.lID = d.lID;
    ASSERT_TRUE(db.ReadDifferenzlisteRec(&d2));
    EXPECT_EQ(d2.lRaumID, 4); EXPECT_EQ(d2.stSollInvNR, "S"); EXPECT_EQ(d2.stIstInvNR, "I");
    EXPECT_EQ(d2.stZiel, "Z"); EXPECT_EQ(d2.stQuelle, "Q"); EXPECT_EQ(d2.stQuarn, "QU"); EXPECT_EQ(d2.stTyp, "1 OK");
    EXPECT_EQ(d2.iMarke, 0); // memory only
    EXPECT_EQ(toLong(db.database()->scalar("SELECT iReihenfolge FROM T_Differenzliste")), 0);

    CInvlisteRec i; i.stRaumNr = "1"; i.stInvNr = "2"; i.stBeschreibung = "T"; i.stArtNr = "3"; i.iRFolge = 4;
    i.Datum = "D"; i.Uhrzeit = "U";
    ASSERT_TRUE(db.AddNewInvlisteRec(&i));
    i.stBeschreibung = "neu";
    ASSERT_TRUE(db.EditInvlisteRec(&i));
    CInvlisteRec i2; i2.lID = i.lID;
    ASSERT_TRUE(db.ReadInvlisteRec(&i2));
    EXPECT_EQ(i2.stBeschreibung, "neu"); EXPECT_EQ(i2.iRFolge, 4); EXPECT_EQ(i2.Uhrzeit, "U");

    CDatInventurRec s = scan("X1", "7");
    s.iReihenfolge = 3; s.stArtName = "nur im Speicher";
    bool dup = false;
    ASSERT_TRUE(db.AddNewDatInventurRec(&s, dup));
    CDatInventurRec s2; s2.lID = s.lID;
    ASSERT_TRUE(db.ReadDatInventurRec(&s2));
    EXPECT_EQ(s2.stMitarbNr, "7"); EXPECT_EQ(s2.stAuftragsNr, "100"); EXPECT_EQ(s2.Datum, "01.02.2015");
    EXPECT_EQ(s2.Uhrzeit, "10:11:12"); EXPECT_EQ(s2.stRaum, "7"); EXPECT_EQ(s2.stInvNr, "X1");
    EXPECT_EQ(s2.stArtNr, "ART1"); EXPECT_EQ(s2.stTaet, "I"); EXPECT_EQ(s2.iReihenfolge, 3); EXPECT_EQ(s2.lDatID, 1);
    EXPECT_EQ(s2.stArtName, "");
    s2.stRaum = "8";
    ASSERT_TRUE(db.EditDatInventurRec(&s2));
    ASSERT_TRUE(db.DelDatInventurRec(&s2));
    CDatInventurRecColl none;
    ASSERT_TRUE(db.ReadAllDatInventurRec2Coll(none));
    EXPECT_EQ(none.Count(), 0);
}

TEST_F(OrderDbTest, WholeTableDeletes)
{
    CArtikellisteRec a;
    ASSERT_TRUE(db.AddNewArtikellisteRec(&a));
    CDatInventurRec s = scan("1", "1");
    bool dup = false;
    ASSERT_TRUE(db.AddNewDatInventurRec(&s, dup));
    EXPECT_TRUE(db.DelAllArtikellisteRec());
    EXPECT_TRUE(db.DelAllDatInventur());
    EXPECT_EQ(toLong(db.database()->scalar("SELECT count(*) FROM T_Artikelliste")), 0);
    EXPECT_EQ(toLong(db.database()->scalar("SELECT count(*) FROM T_DatInventur")), 0);
}

TEST_F(OrderDbTest, ReadAllComesInKeyOrderAndKeysTheCollection)
{
    for (const char* nr : {"3", "1", "2"}) {
        CRaumRec r;
        r.stRaumNr = nr;
        ASSERT_TRUE(db.AddNewRaumRec(&r));
    }
    CRaumRecColl rooms;
    CRaumRec stale;
    stale.lID = 50;
    rooms.Append(&stale);
    ASSERT_TRUE(db.ReadAllRaumRec2Coll(rooms));
    ASSERT_EQ(rooms.Count(), 3);
    EXPECT_EQ(rooms.Item(1)->stRaumNr, "3");
    EXPECT_EQ(rooms.Item("$3")->stRaumNr, "2");
    EXPECT_EQ(rooms.Item("$50"), nullptr);
}

TEST_F(OrderDbTest, ReopenClosesFirstAndPropertiesAreKept)
{
    db.setOpenOptions(Value{std::int64_t{0}});
    db.setOpenReadOnly(Value{std::int64_t{0}});
    db.setOpenConnectInfo(";PWD=");
    EXPECT_TRUE(db.OpenDb());
    EXPECT_EQ(db.OpenConnectInfo(), ";PWD=");
    EXPECT_EQ(db.DbPath(), dbFile);
    db.setOpenReadOnly(Value{std::int64_t{-1}});
    ASSERT_TRUE(db.OpenDb());
    CRaumRec r;
    EXPECT_FALSE(db.AddNewRaumRec(&r));
    EXPECT_EQ(db.LastError().rfind("Der Datensatz konnte nicht gespeichert werden!\r\n", 0), 0u);
}

TEST_F(OrderDbTest, FailedAddNewLeavesTheRecordWithoutKey)
{
    // No database: the text alone, and the record's old key is gone.
    db.CloseDb();
    CRaumRec r;
    r.lID = 7;
    EXPECT_FALSE(db.AddNewRaumRec(&r));
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht gespeichert werden!");
    EXPECT_EQ(r.lID, 0);
    CDatInventurRec s = scan("1", "1");
    s.lID = 8;
    bool dup = true;
    EXPECT_FALSE(db.AddNewDatInventurRec(&s, dup));
    EXPECT_FALSE(dup);
    EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht gespeichert werden!");
    EXPECT_EQ(s.lID, 0);

    // The engine fails before a row is begun: the description follows a line break.
    ASSERT_TRUE(db.OpenDb());
    db.database()->execute("DROP TABLE T_Raum");
    db.database()->execute("DROP TABLE T_DatInventur");
    r.lID = 7;
    EXPECT_FALSE(db.AddNewRaumRec(&r));
    EXPECT_EQ(db.LastError().rfind("Der Datensatz konnte nicht gespeichert werden!\r\n", 0), 0u) << db.LastError();
    EXPECT_EQ(r.lID, 0);
    s.lID = 8;
    EXPECT_FALSE(db.AddNewDatInventurRec(&s, dup));
    EXPECT_EQ(db.LastError().rfind("Der Datensatz konnte nicht gespeichert werden!\r\n", 0), 0u) << db.LastError();
    EXPECT_EQ(s.lID, 0);
}

// ---------------------------------------------------------------- missing record objects

TEST_F(OrderDbTest, DeleteWithoutRecordFailsWithItsText)
{
    const std::string expected =
        "Der Datensatz konnte nicht gelöscht werden!\r\nObjektvariable oder With-Blockvariable nicht festgelegt";
    EXPECT_FALSE(db.DelArtikellisteRec(nullptr));
    EXPECT_EQ(db.LastError(), expected);
    EXPECT_FALSE(db.DelDateienRec(nullptr));
    EXPECT_EQ(db.LastError(), expected);
    EXPECT_FALSE(db.DelDatInventurRec(nullptr));
    EXPECT_EQ(db.LastError(), expected);
    EXPECT_FALSE(db.DelDifferenzlisteRec(nullptr));
    EXPECT_EQ(db.LastError(), expected);
    EXPECT_FALSE(db.DelInvlisteRec(nullptr));
    EXPECT_EQ(db.LastError(), expected);
    EXPECT_FALSE(db.DelRaumRec(nullptr));
    EXPECT_EQ(db.LastError(), expected);
}

TEST_F(OrderDbTest, GetDatInventurByInvNrWithoutRecordFailsWithItsText)
{
    CDatInventurRec existing;
    existing.stInvNr = "unchanged";
    EXPECT_FALSE(db.GetDatInventurByInvNr(nullptr, existing));
    EXPECT_EQ(db.LastError(),
              "Der Datensatz konnte nicht gespeichert werden!\r\nObjektvariable oder With-Blockvariable nicht festgelegt");
    EXPECT_EQ(existing.stInvNr, "unchanged");
}

// ---------------------------------------------------------------- scan lines the engine refuses

TEST_F(OrderDbTest, AddNewDatInventurRecFailsOnAnEngineErrorOtherThanADuplicate)
{
    // A write the engine refuses for another reason than a duplicate (here a trigger, as a
    // full disk or a lock would) is the operation's failure: the line is not taken for stored.
    db.database()->execute("CREATE TRIGGER refuse_line BEFORE INSERT ON T_DatInventur WHEN NEW.stInvNr = 'BAD' "
                           "BEGIN SELECT RAISE(ABORT, 'Datenträger voll'); END");
    CDatInventurRec good = scan("GOOD", "4711");
    bool dup = true;
    ASSERT_TRUE(db.AddNewDatInventurRec(&good, dup)) << db.LastError();
    EXPECT_FALSE(dup);
    CDatInventurRec bad = scan("BAD", "4711");
    dup = true;
    EXPECT_FALSE(db.AddNewDatInventurRec(&bad, dup));
    EXPECT_FALSE(dup);
    EXPECT_EQ(bad.lID, 0);
    EXPECT_EQ(db.LastError().rfind("Der Datensatz konnte nicht gespeichert werden!\r\n", 0), 0u) << db.LastError();
    EXPECT_NE(db.LastError().find("Datenträger voll"), std::string::npos) << db.LastError();
    CDatInventurRecColl all;
    ASSERT_TRUE(db.ReadAllDatInventurRec2Coll(all));
    EXPECT_EQ(all.Count(), 1);
}

// ---------------------------------------------------------------- AutoNumber

namespace {
std::int32_t addDiffRow(CAuftragDb& db, const std::string& soll)
{
    CDifferenzlisteRec r;
    r.lRaumID = 1;
    r.stSollInvNR = soll;
    EXPECT_TRUE(db.AddNewDifferenzlisteRec(&r)) << db.LastError();
    return r.lID;
}
} // namespace

TEST_F(OrderDbTest, AutoNumberIsNeverReusedAfterRowsWereDeleted)
{
    const auto first = addDiffRow(db, "A");
    const auto second = addDiffRow(db, "B");
    ASSERT_TRUE(db.DelAllDiffListe());
    const auto third = addDiffRow(db, "C");
    EXPECT_GT(third, second);
    EXPECT_GT(second, first);
    // A fresh connection to the same file continues after the deleted keys too.
    db.CloseDb();
    ASSERT_TRUE(db.OpenDb());
    EXPECT_GT(addDiffRow(db, "D"), third);
}

TEST_F(OrderDbTest, AutoNumberInATransactionWhoseFirstWriteIsNotAnAddNew)
{
    // A row added by a record call, rows that a statement inserted after it, then a
    // transaction that first empties the table: the next key lies past all of them.
    CRaumRec room;
    room.stRaumNr = "A";
    room.ststatus = "E";
    ASSERT_TRUE(db.AddNewRaumRec(&room));
    for (const char* inv : {"S1", "S2", "S3"}) {
        CDatInventurRec s = scan(inv, "A");
        bool dup = false;
        ASSERT_TRUE(db.AddNewDatInventurRec(&s, dup));
    }
    addDiffRow(db, "A");
    ASSERT_TRUE(db.MakeIstScanExtra());
    const std::int64_t largest = toLong(db.database()->scalar("SELECT max(lID) FROM T_Differenzliste"));
    Database::Transaction tx(*db.database());
    ASSERT_TRUE(db.DelAllDiffListe());
    const auto a = addDiffRow(db, "B");
    const auto b = addDiffRow(db, "C");
    tx.commit();
    EXPECT_GT(a, largest);
    EXPECT_GT(b, a);
}

TEST_F(OrderDbTest, AutoNumberAfterSetBasedInsertsInTheSameTransaction)
{
    // Statements that insert rows take keys the record calls must not hand out again.
    CRaumRec room;
    room.stRaumNr = "A";
    room.ststatus = "E";
    ASSERT_TRUE(db.AddNewRaumRec(&room));
    for (const char* inv : {"S1", "S2", "S3"}) {
        CDatInventurRec s = scan(inv, "A");
        bool dup = false;
        ASSERT_TRUE(db.AddNewDatInventurRec(&s, dup));
    }
    Database::Transaction tx(*db.database());
    const auto soll = addDiffRow(db, "X");
    ASSERT_TRUE(db.MakeIstScanExtra()); // three Ist-only rows
    const auto next = addDiffRow(db, "Y");
    tx.commit();
    const Recordset keys = db.database()->query("SELECT lID FROM T_Differenzliste ORDER BY lID");
    ASSERT_EQ(keys.size(), 5u);
    EXPECT_EQ(toLong(keys.rows()[0][0]), soll);
    EXPECT_EQ(toLong(keys.rows()[4][0]), next);
    EXPECT_GT(next, toLong(keys.rows()[3][0]));
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(OrderDbTest, AbandonedRowKeepsItsKeyConsumed)
{
    const auto a = addDiffRow(db, "A");
    std::int64_t abandoned = 0;
    {
        TableRecordset rs(*db.database(), "T_Differenzliste");
        abandoned = rs.addNew();
    }
    const auto b = addDiffRow(db, "B");
    EXPECT_GT(abandoned, a);
    EXPECT_GT(b, abandoned);
}

TEST_F(OrderDbTest, WalkOfTheScanLinesGivesThemInKeyOrderOneAtATime)
{
    bool dup = false;
    for (const char* inv : {"30", "10", "20"}) {
        CDatInventurRec r = scan(inv, "101");
        ASSERT_TRUE(db.AddNewDatInventurRec(&r, dup)) << db.LastError();
    }
    int started = 0;
    std::vector<std::string> seen;
    ASSERT_TRUE(db.WalkAllDatInventurRec([&] { ++started; },
                                         [&](const CDatInventurRec& r) {
                                             EXPECT_EQ(started, 1);
                                             seen.push_back(r.stInvNr + "/" + r.stRaum + "/" + r.stTaet);
                                         }))
        << db.LastError();
    EXPECT_EQ(seen, (std::vector<std::string>{"30/101/I", "10/101/I", "20/101/I"}));

    // What a step throws goes through as it is, after the lines before it.
    seen.clear();
    EXPECT_THROW(db.WalkAllDatInventurRec([] {},
                                          [&](const CDatInventurRec& r) {
                                              seen.push_back(r.stInvNr);
                                              if (seen.size() == 2)
                                                  throw DbError(dberr::DiskFull, "Datenträger voll");
                                          }),
                 DbError);
    EXPECT_EQ(seen, (std::vector<std::string>{"30", "10"}));
}

TEST_F(OrderDbTest, WalkOfAnEmptyTableStartsAndOfAClosedDatabaseFailsBeforeItStarts)
{
    int started = 0, lines = 0;
    ASSERT_TRUE(db.WalkAllDatInventurRec([&] { ++started; }, [&](const CDatInventurRec&) { ++lines; }));
    EXPECT_EQ(started, 1);
    EXPECT_EQ(lines, 0);
    db.CloseDb();
    started = 0;
    EXPECT_FALSE(db.WalkAllDatInventurRec([&] { ++started; }, [&](const CDatInventurRec&) { ++lines; }));
    EXPECT_EQ(started, 0);
    EXPECT_EQ(db.LastError(), "Die Datensätze konnten nicht in die Liste gelesen werden!");
}
