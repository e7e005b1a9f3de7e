// The room selection's logic on an order of the demo installation: the tree, the
// room lists, moving rooms in and out, the status toggle, the question on
// deactivation and the saving on every unload.

#include "frmRaum.h"

#include "DemoInstallation.h"
#include "TestSupport.h"

#include <algorithm>

namespace qi::test {
namespace {

class FrmRaumTest : public OrderDbTest {
protected:
    void SetUp() override
    {
        OrderDbTest::SetUp();
        inst = demo::buildInstallation(demo::smallSizes());
        demo::writeHostDatabases(inst, dir.path());
        ASSERT_TRUE(geb.Open(dir.path(), dir.file("QGebaeude.mdb"))) << geb.LastError();
        db.database()->execute("INSERT INTO T_Auftrag (stAuftrag) VALUES ('Lager Nord')");
        for (const demo::Node& n : inst.nodes) {
            if (n.typ == 3 && floorId == 0)
                floorId = n.id;
            if (n.typ == 2 && buildingId == 0)
                buildingId = n.id;
        }
        for (const demo::Room* r : inst.roomsOfFloor(floorId))
            floorRooms.push_back(*r);
        ASSERT_GE(floorRooms.size(), 4u);
    }

    /// A room stored in T_Raum, as a save of an earlier session left it.
    void storeRoom(const demo::Room& room, const std::string& status, const std::string& auftrag = "Lager Nord")
    {
        CRaumRec rec;
        rec.lIdRB = room.id;
        rec.stRaumNr = room.nr;
        rec.ststatus = status;
        rec.stAuftrag = auftrag;
        ASSERT_TRUE(db.AddNewRaumRec(&rec)) << db.LastError();
    }
    void storeDifference()
    {
        CDifferenzlisteRec rec;
        rec.stSollInvNR = "I-1";
        rec.stTyp = "1 OK";
        ASSERT_TRUE(db.AddNewDifferenzlisteRec(&rec)) << db.LastError();
    }
    void storeScan(const demo::Room& room, const std::string& invNr)
    {
        CDatInventurRec rec;
        rec.stRaum = room.nr;
        rec.stInvNr = invNr;
        rec.Datum = "14.03.2025";
        bool duplicate = false;
        ASSERT_TRUE(db.AddNewDatInventurRec(&rec, duplicate)) << db.LastError();
    }
    std::vector<CRaumRec> stored()
    {
        CRaumRecColl coll;
        EXPECT_TRUE(db.ReadAllRaumRec2Coll(coll)) << db.LastError();
        return {coll.begin(), coll.end()};
    }
    std::int64_t differences() { return toLong(db.database()->scalar("SELECT COUNT(*) FROM T_Differenzliste")); }

    /// Load and first activation, as the window is shown.
    void open()
    {
        form.Form_Load();
        form.Form_Activate();
    }
    void clickNode(std::int32_t id)
    {
        ASSERT_TRUE(form.tvGebStruktur.has_value());
        const auto& nodes = form.tvGebStruktur->nodes;
        const auto it = std::find_if(nodes.begin(), nodes.end(), [&](const GebNode& n) { return n.lId == id; });
        ASSERT_NE(it, nodes.end());
        form.tvGebSelected = *it;
        form.tvGeb_Click();
    }
    void selectLines(std::initializer_list<std::string> texts)
    {
        for (RoomLine& line : form.lbRooms)
            line.selected = std::find(texts.begin(), texts.end(), line.text) != texts.end();
    }
    void selectRows(std::initializer_list<std::string> texts)
    {
        for (RoomRow& row : form.lvRooms)
            row.selected = std::find(texts.begin(), texts.end(), row.text) != texts.end();
    }
    std::string statusOf(const std::string& text)
    {
        for (const RoomRow& row : form.lvRooms)
            if (row.text == text)
                return row.status;
        return "<fehlt>";
    }
    std::vector<std::string> rowTexts()
    {
        std::vector<std::string> out;
        for (const RoomRow& row : form.lvRooms)
            out.push_back(row.text);
        return out;
    }
    bool asked()
    {
        return std::any_of(ui.messages.begin(), ui.messages.end(),
                           [](const RecordedMessage& m) { return m.text == "Räume speichern?"; });
    }
    const demo::Room& room(std::size_t i) { return floorRooms.at(i); }

    demo::Installation inst;
    QGebDb geb;
    Settings settings;
    std::int32_t floorId = 0, buildingId = 0;
    std::vector<demo::Room> floorRooms;
    frmRaum form{db, &geb, settings, ui};
};

// ------------------------------------------------------------------ keys

TEST(HostIdFromKey, KeyR12YieldsHostId12)
{
    EXPECT_EQ(hostIdFromKey("R 12"), 12);
    EXPECT_EQ(hostIdFromKey("R 4711"), 4711);
    EXPECT_EQ(hostIdFromKey("R12"), 12);
    EXPECT_EQ(hostIdFromKey("R -3"), -3);
}

TEST(HostIdFromKey, KeyWithoutANumberIsAnError)
{
    EXPECT_THROW(hostIdFromKey("R "), std::invalid_argument);
    EXPECT_THROW(hostIdFromKey("R 1x"), std::invalid_argument);
    EXPECT_THROW(hostIdFromKey(""), std::invalid_argument);
    EXPECT_THROW(hostIdFromKey("R 99999999999"), std::overflow_error);
}

// ------------------------------------------------------------------ load, activation, InitData

TEST_F(FrmRaumTest, LoadClearsTheRoomsChangedFlagAndAwaitsTheFirstActivation)
{
    settings.gbRaeumeGeaendert = true;
    form.bFirstActivation = false;
    form.Form_Load();
    EXPECT_FALSE(settings.gbRaeumeGeaendert);
    EXPECT_TRUE(form.bFirstActivation);
    EXPECT_FALSE(form.tvGebStruktur.has_value());
}

TEST_F(FrmRaumTest, FirstActivationShowsTheTreeTheStoredRoomsAndUnticksAllRooms)
{
    storeRoom(room(2), "E");
    storeRoom(room(0), "L");
    form.Form_Load();
    form.cbAllRooms = true;
    int treeShown = 0;
    form.onTreeChanged = [&] { ++treeShown; };
    form.Form_Activate();
    EXPECT_TRUE(ui.messages.empty());
    ASSERT_TRUE(form.tvGebStruktur.has_value());
    EXPECT_EQ(form.tvGebStruktur->nodes.size(), inst.nodes.size());
    EXPECT_EQ(treeShown, 1);
    EXPECT_FALSE(form.cbAllRooms);
    EXPECT_FALSE(form.bFirstActivation);
    // Rows follow the stored order, with key "R " + lIdRB.
    ASSERT_EQ(form.lvRooms.size(), 2u);
    EXPECT_EQ(form.lvRooms[0].key, "R " + std::to_string(room(2).id));
    EXPECT_EQ(form.lvRooms[0].text, room(2).nr);
    EXPECT_EQ(form.lvRooms[0].status, "E");
    EXPECT_EQ(form.lvRooms[1].key, "R " + std::to_string(room(0).id));
    EXPECT_EQ(form.lvRooms[1].status, "L");
}

TEST_F(FrmRaumTest, LaterActivationsChangeNothing)
{
    open();
    storeRoom(room(1), "N");
    form.cbAllRooms = true;
    int treeShown = 0;
    form.onTreeChanged = [&] { ++treeShown; };
    form.Form_Activate();
    EXPECT_TRUE(form.lvRooms.empty());
    EXPECT_TRUE(form.cbAllRooms);
    EXPECT_EQ(treeShown, 0);
}

TEST_F(FrmRaumTest, ActivationWithoutBuildingDataSaysSoAndStillListsTheOrdersRooms)
{
    storeRoom(room(0), "E");
    QGebDb closed;
    frmRaum f(db, &closed, settings, ui);
    f.Form_Load();
    f.Form_Activate();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmRaum.Form_Activate\r\n", 0), 0u) << ui.messages[0].text;
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
    EXPECT_FALSE(f.tvGebStruktur.has_value());
    ASSERT_EQ(f.lvRooms.size(), 1u);
    EXPECT_FALSE(f.bFirstActivation);
}

TEST_F(FrmRaumTest, InitDataFailureShowsItsMessage)
{
    open();
    form.lvRooms.push_back({"R 1", "1", "N", false});
    db.CloseDb();
    form.InitData();
    EXPECT_TRUE(form.lvRooms.empty());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text,
              "frmRaum.InitData\r\nDie Datensätze konnten nicht in die Liste gelesen werden!");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
}

TEST_F(FrmRaumTest, ARoomStoredTwiceIsAKeyThatIsNotUnique)
{
    storeRoom(room(0), "N");
    storeRoom(room(1), "N");
    storeRoom(room(0), "L");
    open();
    // The rows before the second record of the room are listed; then the message.
    EXPECT_LT(form.lvRooms.size(), 3u);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmRaum.InitData\r\nSchlüssel ist in der Auflistung nicht eindeutig");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
}

TEST_F(FrmRaumTest, CheckStatusWithAKeyThatIsNoNumberShowsItsMessage)
{
    open();
    form.lvRooms.push_back({"R x", "x", "N", false});
    form.CheckStatus();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmRaum.CheckStatus\r\nTypen unverträglich");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
}

// ------------------------------------------------------------------ tree and room list

TEST_F(FrmRaumTest, FloorNodeListsItsRoomsWithTheirIdsAndUnticksAllRooms)
{
    open();
    form.cbAllRooms = true;
    clickNode(floorId);
    EXPECT_FALSE(form.cbAllRooms);
    ASSERT_EQ(form.lbRooms.size(), floorRooms.size());
    for (const demo::Room& r : floorRooms) {
        const auto it = std::find_if(form.lbRooms.begin(), form.lbRooms.end(),
                                     [&](const RoomLine& l) { return l.itemData == r.id; });
        ASSERT_NE(it, form.lbRooms.end()) << r.nr;
        EXPECT_EQ(it->text, r.nr);
        EXPECT_EQ(it->description, r.name);
    }
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(FrmRaumTest, TreeNodeWhoseTypeIsNot3LeavesTheRoomListUntouched)
{
    open();
    clickNode(floorId);
    const auto before = form.lbRooms.size();
    ASSERT_GT(before, 0u);
    form.lbRooms[0].selected = true;
    form.cbAllRooms = true;
    clickNode(buildingId);
    EXPECT_EQ(form.lbRooms.size(), before);
    EXPECT_TRUE(form.lbRooms[0].selected);
    // The check box is unticked all the same.
    EXPECT_FALSE(form.cbAllRooms);
}

TEST_F(FrmRaumTest, TreeClickWithoutSelectedNodeDoesNothing)
{
    open();
    form.cbAllRooms = true;
    form.lbRooms.push_back({"x", 1, "", false});
    form.tvGebSelected.reset();
    form.tvGeb_Click();
    EXPECT_TRUE(form.cbAllRooms);
    EXPECT_EQ(form.lbRooms.size(), 1u);
}

TEST_F(FrmRaumTest, TickingAllRoomsListsEveryRoomOfTheInstallationUntickingNothing)
{
    open();
    form.cbAllRooms = true;
    form.cbAllRooms_Click();
    EXPECT_EQ(form.lbRooms.size(), inst.rooms.size());
    form.cbAllRooms = false;
    form.lbRooms.resize(1);
    form.cbAllRooms_Click();
    EXPECT_EQ(form.lbRooms.size(), 1u);
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(FrmRaumTest, TreeClickAndAllRoomsShowTheirMessagesWhenTheBuildingDataFail)
{
    open();
    const GebNode floor = *std::find_if(form.tvGebStruktur->nodes.begin(), form.tvGebStruktur->nodes.end(),
                                        [&](const GebNode& n) { return n.lId == floorId; });
    QGebDb closed;
    frmRaum f(db, &closed, settings, ui);
    f.tvGebSelected = floor;
    f.tvGeb_Click();
    f.cbAllRooms = true;
    f.cbAllRooms_Click();
    ASSERT_EQ(ui.messages.size(), 2u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmRaum.tvGeb_Click\r\n", 0), 0u) << ui.messages[0].text;
    EXPECT_EQ(ui.messages[1].text.rfind("frmRaum.cbAllRooms_Click\r\n", 0), 0u) << ui.messages[1].text;
    for (const auto& m : ui.messages) {
        EXPECT_EQ(m.icon, MsgIcon::Critical);
        EXPECT_EQ(m.title, "QInventur");
    }
    // Without any building component the same procedures say that the object is missing.
    frmRaum none(db, nullptr, settings, ui);
    none.tvGebSelected = floor;
    none.tvGeb_Click();
    EXPECT_EQ(ui.messages.back().text, "frmRaum.tvGeb_Click\r\nObjektvariable oder With-Blockvariable nicht festgelegt");
}

// ------------------------------------------------------------------ moving rooms in and out

TEST_F(FrmRaumTest, SelectedLinesGoInTopToBottomAsNew)
{
    open();
    clickNode(floorId);
    selectLines({room(3).nr, room(1).nr});
    form.pbIn_Click();
    ASSERT_EQ(form.lvRooms.size(), 2u);
    // In the order of the lines, whatever order they were selected in.
    const auto first = std::min(room(1).nr, room(3).nr), second = std::max(room(1).nr, room(3).nr);
    EXPECT_EQ(rowTexts(), (std::vector<std::string>{first, second}));
    for (const RoomRow& row : form.lvRooms)
        EXPECT_EQ(row.status, "N");
    EXPECT_EQ(form.lvRooms[0].key.rfind("R ", 0), 0u);
    EXPECT_FALSE(settings.gbRaeumeGeaendert);
}

TEST_F(FrmRaumTest, PbInWithoutSelectedLineAddsNothing)
{
    open();
    clickNode(floorId);
    form.pbIn_Click();
    EXPECT_TRUE(form.lvRooms.empty());
}

TEST_F(FrmRaumTest, MovingInARoomAlreadyListedNeitherDuplicatesItNorChangesItsStatus)
{
    storeRoom(room(0), "E");
    open();
    clickNode(floorId);
    selectLines({room(1).nr});
    form.pbIn_Click();
    // A room not stored yet, marked by the user.
    form.lvRoomsSelectedKey = "R " + std::to_string(room(1).id);
    form.lvRooms_DblClick();
    ASSERT_EQ(statusOf(room(1).nr), "L");

    selectLines({room(0).nr, room(1).nr});
    form.pbIn_Click();
    EXPECT_EQ(form.lvRooms.size(), 2u);
    EXPECT_EQ(statusOf(room(0).nr), "E");
    EXPECT_EQ(statusOf(room(1).nr), "L");
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(FrmRaumTest, AllLinesGoInOnceAndStoredRoomsKeepTheirStatus)
{
    storeRoom(room(2), "E");
    open();
    clickNode(floorId);
    form.pbAllIn_Click();
    EXPECT_EQ(form.lvRooms.size(), floorRooms.size());
    EXPECT_EQ(rowTexts().front(), room(2).nr); // the stored row stays first
    EXPECT_EQ(statusOf(room(2).nr), "E");
    EXPECT_EQ(statusOf(room(0).nr), "N");
    form.pbAllIn_Click();
    EXPECT_EQ(form.lvRooms.size(), floorRooms.size());
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(FrmRaumTest, RoomTakenOutAndPutBackShowsItsStoredStatusAgain)
{
    storeRoom(room(0), "E");
    storeRoom(room(1), "L");
    open();
    selectRows({room(0).nr, room(1).nr});
    form.pbOut_Click();
    EXPECT_TRUE(form.lvRooms.empty());
    clickNode(floorId);
    selectLines({room(0).nr, room(1).nr});
    form.pbIn_Click();
    EXPECT_EQ(statusOf(room(0).nr), "E");
    EXPECT_EQ(statusOf(room(1).nr), "L");
}

TEST_F(FrmRaumTest, PbOutRemovesEverySelectedRowNeighboursIncluded)
{
    for (std::size_t i = 0; i < 4; ++i)
        storeRoom(room(i), "N");
    open();
    selectRows({room(1).nr, room(2).nr});
    form.pbOut_Click();
    EXPECT_EQ(rowTexts(), (std::vector<std::string>{room(0).nr, room(3).nr}));
    EXPECT_TRUE(settings.gbRaeumeGeaendert);
}

TEST_F(FrmRaumTest, PbAllOutEmptiesTheListWithoutMarkingAChange)
{
    storeRoom(room(0), "E");
    open();
    form.pbAllOut_Click();
    EXPECT_TRUE(form.lvRooms.empty());
    EXPECT_FALSE(settings.gbRaeumeGeaendert);
}

// ------------------------------------------------------------------ the toggle

TEST_F(FrmRaumTest, ToggleTurnsNIntoLAndLIntoN)
{
    storeRoom(room(0), "N");
    open();
    form.lvRoomsSelectedKey = "R " + std::to_string(room(0).id);
    form.lvRooms_DblClick();
    EXPECT_EQ(statusOf(room(0).nr), "L");
    form.lvRooms_DblClick();
    EXPECT_EQ(statusOf(room(0).nr), "N");
}

TEST_F(FrmRaumTest, ToggleLeavesEveryOtherStatusAlone)
{
    storeRoom(room(0), "E");
    storeRoom(room(1), "");
    storeRoom(room(2), "n");
    open();
    for (std::size_t i = 0; i < 3; ++i) {
        form.lvRoomsSelectedKey = "R " + std::to_string(room(i).id);
        form.lvRooms_DblClick();
    }
    EXPECT_EQ(statusOf(room(0).nr), "E");
    EXPECT_EQ(statusOf(room(1).nr), "");
    EXPECT_EQ(statusOf(room(2).nr), "n");
}

TEST_F(FrmRaumTest, ToggleWithoutSelectedRowDoesNothing)
{
    storeRoom(room(0), "N");
    open();
    form.lvRoomsSelectedKey.clear();
    form.lvRooms_DblClick();
    EXPECT_EQ(statusOf(room(0).nr), "N");
}

// ------------------------------------------------------------------ deactivation

TEST_F(FrmRaumTest, OnlyPbOutWithASelectedRowMakesDeactivationAsk)
{
    storeRoom(room(0), "N");
    open();
    clickNode(floorId);
    selectLines({room(1).nr});
    form.pbIn_Click();
    form.Form_Deactivate();
    form.pbAllIn_Click();
    form.Form_Deactivate();
    form.pbAllOut_Click();
    form.Form_Deactivate();
    EXPECT_FALSE(asked());

    form.pbAllIn_Click();
    selectRows({});
    form.pbOut_Click();
    form.Form_Deactivate();
    EXPECT_FALSE(asked());

    selectRows({room(1).nr});
    form.pbOut_Click();
    form.Form_Deactivate();
    ASSERT_TRUE(asked());
    const RecordedMessage& m = ui.messages.back();
    EXPECT_EQ(m.text, "Räume speichern?");
    EXPECT_EQ(m.buttons, MsgButtons::YesNo);
    EXPECT_EQ(m.icon, MsgIcon::None);
    EXPECT_EQ(m.title, "QInventur");
}

TEST_F(FrmRaumTest, AnsweringYesSavesAndClearsTheFlag)
{
    storeRoom(room(0), "N");
    storeRoom(room(1), "N");
    storeDifference();
    open();
    selectRows({room(0).nr});
    form.pbOut_Click();
    ui.answers.push_back(MsgResult::Yes);
    form.Form_Deactivate();
    const auto rows = stored();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].lIdRB, room(1).id);
    EXPECT_EQ(differences(), 0);
    EXPECT_FALSE(settings.gbRaeumeGeaendert);
    // Saved: the next deactivation does not ask again.
    const auto count = ui.messages.size();
    form.Form_Deactivate();
    EXPECT_EQ(ui.messages.size(), count);
}

TEST_F(FrmRaumTest, AnsweringNoSavesNothingAndAsksAgainNextTime)
{
    storeRoom(room(0), "N");
    storeRoom(room(1), "N");
    storeDifference();
    open();
    selectRows({room(0).nr});
    form.pbOut_Click();
    ui.answers.push_back(MsgResult::No);
    form.Form_Deactivate();
    EXPECT_EQ(stored().size(), 2u);
    EXPECT_EQ(differences(), 1);
    EXPECT_TRUE(settings.gbRaeumeGeaendert);
    ui.answers.push_back(MsgResult::No);
    form.Form_Deactivate();
    EXPECT_EQ(std::count_if(ui.messages.begin(), ui.messages.end(),
                            [](const RecordedMessage& m) { return m.text == "Räume speichern?"; }),
              2);
}

// ------------------------------------------------------------------ unload and saving

TEST_F(FrmRaumTest, ClosingWithNoChangeStillRewritesTRaumAndEmptiesTheDifferenceList)
{
    storeRoom(room(0), "E", "alter Name");
    storeRoom(room(1), "L", "alter Name");
    storeDifference();
    storeDifference();
    const auto before = stored();
    open();
    form.Form_Unload();
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_EQ(differences(), 0);
    const auto after = stored();
    ASSERT_EQ(after.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        // New rows (new keys), same rooms, the order's name from its own T_Auftrag.
        EXPECT_GT(after[i].lID, before[1].lID);
        EXPECT_EQ(after[i].lIdRB, before[i].lIdRB);
        EXPECT_EQ(after[i].stRaumNr, before[i].stRaumNr);
        EXPECT_EQ(after[i].stAuftrag, "Lager Nord");
    }
    EXPECT_EQ(after[1].ststatus, "L");
    EXPECT_GT(ui.eventsProcessed, 0);
}

TEST_F(FrmRaumTest, SavingWritesTheListInItsOrderAndUpdatesTheStatusesFromTheScans)
{
    storeScan(room(2), "I-7");
    open();
    clickNode(floorId);
    selectLines({room(0).nr, room(1).nr, room(2).nr});
    form.pbIn_Click();
    form.lvRoomsSelectedKey = "R " + std::to_string(room(1).id);
    form.lvRooms_DblClick();
    // The list as the user sorted it: room 2 first.
    std::rotate(form.lvRooms.begin(), form.lvRooms.begin() + 2, form.lvRooms.end());
    ASSERT_TRUE(form.SaveRooms());
    const auto rows = stored();
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].stRaumNr, room(2).nr);
    EXPECT_EQ(rows[0].ststatus, "E"); // scanned
    EXPECT_EQ(rows[0].iAnzahl, 1);
    EXPECT_EQ(rows[1].stRaumNr, room(0).nr);
    EXPECT_EQ(rows[1].ststatus, "N");
    EXPECT_EQ(rows[2].stRaumNr, room(1).nr);
    EXPECT_EQ(rows[2].ststatus, "L");
    EXPECT_EQ(rows[2].lIdRB, room(1).id);
    // The list was read anew from T_Raum before the statuses were updated.
    ASSERT_EQ(form.collRooms.Count(), 3);
    EXPECT_EQ(form.lvRooms[0].status, "N");
}

TEST_F(FrmRaumTest, UnloadAfterAllOutLeavesTheOrderWithoutRooms)
{
    storeRoom(room(0), "E");
    open();
    form.pbAllOut_Click();
    form.Form_Unload();
    EXPECT_TRUE(stored().empty());
}

TEST_F(FrmRaumTest, FailedSaveShowsTheDatabasesTextUnderQuarnInventurAndKeepsTheFlag)
{
    storeRoom(room(0), "N");
    storeRoom(room(1), "N");
    storeDifference();
    open();
    selectRows({room(0).nr});
    form.pbOut_Click();
    db.database()->execute("DROP TABLE T_Raum");
    EXPECT_FALSE(form.SaveRooms());
    ASSERT_FALSE(ui.messages.empty());
    const RecordedMessage& m = ui.messages.back();
    EXPECT_EQ(m.text.rfind("Der Datensatz konnte nicht gelöscht werden!\r\n", 0), 0u) << m.text;
    EXPECT_EQ(m.icon, MsgIcon::Exclamation);
    EXPECT_EQ(m.title, "Quarn-Inventur");
    EXPECT_TRUE(settings.gbRaeumeGeaendert);
    // The deletion before the failing step is not undone.
    EXPECT_EQ(differences(), 0);
}

TEST_F(FrmRaumTest, FailedSaveWithoutDatabaseTextShowsTheDescriptionUnderProblem)
{
    storeRoom(room(0), "N");
    storeDifference();
    open();
    db.database()->execute("DELETE FROM T_Auftrag");
    EXPECT_FALSE(form.SaveRooms());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Kein aktueller Datensatz.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(ui.messages[0].title, "Problem");
    // Nothing was written.
    EXPECT_EQ(stored().size(), 1u);
    EXPECT_EQ(differences(), 1);
}

TEST_F(FrmRaumTest, FertigAsksTheWindowToUnload)
{
    open();
    int unloads = 0;
    form.onUnloadRequested = [&] { ++unloads; };
    form.pbFertig_Click();
    EXPECT_EQ(unloads, 1);
}

// ------------------------------------------------------------------ an order open read-only

TEST_F(FrmRaumTest, AnOrderOpenReadOnlyShowsItsRoomsAndChangesNothing)
{
    storeRoom(room(0), "E");
    storeRoom(room(1), "N");
    storeDifference();
    db.setOpenReadOnly(Value(std::int64_t{-1}));
    ASSERT_TRUE(db.OpenDb());
    const std::string before = contentDigest(dbFile);
    open();
    EXPECT_TRUE(form.readOnly());
    EXPECT_EQ(rowTexts(), (std::vector<std::string>{room(0).nr, room(1).nr}));
    // The tree and the room lists work; moving and marking rooms does nothing.
    clickNode(floorId);
    EXPECT_FALSE(form.lbRooms.empty());
    selectLines({room(2).nr});
    form.pbIn_Click();
    form.pbAllIn_Click();
    selectRows({room(0).nr});
    form.pbOut_Click();
    form.lvRoomsSelectedKey = form.lvRooms[1].key;
    form.lvRooms_DblClick();
    EXPECT_EQ(rowTexts(), (std::vector<std::string>{room(0).nr, room(1).nr}));
    EXPECT_EQ(statusOf(room(1).nr), "N");
    form.pbAllOut_Click();
    EXPECT_EQ(form.lvRooms.size(), 2u);
    EXPECT_FALSE(settings.gbRaeumeGeaendert);
    // Closing saves nothing and says nothing.
    form.Form_Deactivate();
    form.Form_Unload();
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    // Saving on purpose (as a command would) is refused with a message.
    EXPECT_FALSE(form.SaveRooms());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Der Auftrag ist nur zum Ansehen geöffnet. Er kann nicht geändert werden.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(ui.messages[0].title, "Quarn-Inventur");
    db.CloseDb();
    EXPECT_EQ(contentDigest(dbFile), before);
}

} // namespace
} // namespace qi::test
