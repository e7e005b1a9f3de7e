// The host components answer from a small generated installation, for all three modules.

#include "DemoInstallation.h"
#include "FileSystem.h"
#include "QuarnHost.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace qi {
namespace {

using test::TempDir;

/// A small installation with one object on a floor and one variant in a room added to every module.
class HostTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        dir_ = new TempDir;
        inst_ = new demo::Installation(demo::buildInstallation(demo::smallSizes()));
        for (auto& m : inst_->modules) {
            const auto floorId = inst_->rooms.front().floorId;
            const auto roomId = inst_->rooms.front().id;
            demo::Object onFloor;
            onFloor.id = std::int32_t(m.objects.size() + 1);
            onFloor.name = "F-" + m.prefix;
            onFloor.articleId = 1;
            onFloor.gebstruId = floorId;
            onFloor.gebstruTyp = 3;
            m.objects.push_back(onFloor);
            demo::Object variant;
            variant.id = std::int32_t(m.objects.size() + 1);
            variant.name = "V-" + m.prefix;
            variant.articleId = 1;
            variant.gebstruId = roomId;
            variant.ort = inst_->rooms.front().nr;
            variant.variante = 2;
            m.objects.push_back(variant);
            demo::Object noArticle;
            noArticle.id = std::int32_t(m.objects.size() + 1);
            noArticle.name = "OHNE-" + m.prefix;
            noArticle.beschreibung = "ohne Artikel";
            noArticle.articleId = 0;
            noArticle.gebstruId = roomId;
            noArticle.ort = inst_->rooms.front().nr;
            m.objects.push_back(noArticle);
        }
        demo::writeHostDatabases(*inst_, dir_->path());
    }
    static void TearDownTestSuite()
    {
        delete inst_;
        delete dir_;
    }
    static std::string file(const std::string& name) { return dir_->path() + "/" + name; }
    static const demo::Installation& inst() { return *inst_; }

    static TempDir* dir_;
    static demo::Installation* inst_;
};

TempDir* HostTest::dir_ = nullptr;
demo::Installation* HostTest::inst_ = nullptr;

std::vector<std::string> roomNumbers(const std::vector<GebRoom>& rooms)
{
    std::vector<std::string> r;
    for (const auto& room : rooms)
        r.push_back(room.stRaumNr);
    return r;
}

// ------------------------------------------------------------------ building component

TEST_F(HostTest, BuildingStructureHoldsEveryNodeWithItsType)
{
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", file("QGebaeude.mdb"))) << geb.LastError();
    EXPECT_TRUE(geb.IsOpen());
    const auto s = geb.GetGebStruktur(1);
    ASSERT_TRUE(s.has_value());
    ASSERT_EQ(s->nodes.size(), inst().nodes.size());
    for (const auto& expected : inst().nodes) {
        const auto it = std::find_if(s->nodes.begin(), s->nodes.end(),
                                     [&](const GebNode& n) { return n.lId == expected.id; });
        ASSERT_NE(it, s->nodes.end());
        EXPECT_EQ(it->lParentId, expected.parentId);
        EXPECT_EQ(it->byTyp, expected.typ);
        EXPECT_EQ(it->stNr, expected.nr);
        EXPECT_EQ(it->stBezeichnung, expected.name);
    }
    // Parents come before their children's siblings are done: ordered by parent, then number.
    for (std::size_t i = 1; i < s->nodes.size(); ++i)
        EXPECT_LE(s->nodes[i - 1].lParentId, s->nodes[i].lParentId);
}

TEST_F(HostTest, AllRoomsInRoomNumberOrder)
{
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", file("QGebaeude.mdb")));
    std::vector<GebRoom> rooms{GebRoom{99, "alt", "alt"}};
    ASSERT_TRUE(geb.GetAllRooms(rooms, 0)) << geb.LastError();
    std::vector<std::string> expected;
    for (const auto& r : inst().rooms)
        expected.push_back(r.nr);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(roomNumbers(rooms), expected);
    for (const auto& r : rooms) {
        const auto it = std::find_if(inst().rooms.begin(), inst().rooms.end(),
                                     [&](const demo::Room& x) { return x.id == r.lId; });
        ASSERT_NE(it, inst().rooms.end());
        EXPECT_EQ(it->nr, r.stRaumNr);
        EXPECT_EQ(it->name, r.stBezeichnung);
    }
}

TEST_F(HostTest, RoomsOfAFloorAreItsOwn)
{
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", file("QGebaeude.mdb")));
    for (const auto& n : inst().nodes) {
        if (n.typ != 3)
            continue;
        std::vector<GebRoom> rooms;
        ASSERT_TRUE(geb.GetRoomsOfNode(n.id, rooms, 0));
        std::vector<std::string> expected;
        for (const auto* r : inst().roomsOfFloor(n.id))
            expected.push_back(r->nr);
        EXPECT_EQ(roomNumbers(rooms), expected);
    }
}

TEST_F(HostTest, RoomsOfABuildingAreThoseOfItsFloors)
{
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", file("QGebaeude.mdb")));
    const auto& building = *std::find_if(inst().nodes.begin(), inst().nodes.end(),
                                         [](const demo::Node& n) { return n.typ == 2; });
    std::vector<GebRoom> rooms;
    ASSERT_TRUE(geb.GetRoomsOfNode(building.id, rooms));
    std::size_t expected = 0;
    for (const auto& n : inst().nodes)
        if (n.typ == 3 && n.parentId == building.id)
            expected += inst().roomsOfFloor(n.id).size();
    EXPECT_EQ(rooms.size(), expected);
    EXPECT_GT(expected, 0u);
}

TEST_F(HostTest, RoomsOfARoomOrUnknownNodeAreNone)
{
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", file("QGebaeude.mdb")));
    std::vector<GebRoom> rooms{GebRoom{}};
    EXPECT_TRUE(geb.GetRoomsOfNode(inst().rooms.front().id, rooms));
    EXPECT_TRUE(rooms.empty());
    EXPECT_TRUE(geb.GetRoomsOfNode(987654, rooms));
    EXPECT_TRUE(rooms.empty());
}

class HostModuleTest : public HostTest, public ::testing::WithParamInterface<int> {};

TEST_P(HostModuleTest, ObjectsOfEveryRoomWithArticleNumbers)
{
    const auto& m = inst().modules[GetParam()];
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", file("QGebaeude.mdb")));
    ASSERT_TRUE(geb.OpenObjects(file(m.file), m.prefix)) << geb.LastError();
    std::size_t total = 0;
    for (const auto& room : inst().rooms) {
        std::vector<RoomObject> objects;
        ASSERT_TRUE(geb.GetObjectsOfRoom(room.id, objects)) << geb.LastError();
        // In the order of the objects' keys, which is the order the installation made them in.
        std::vector<std::string> got, expected;
        for (const auto& o : objects)
            got.push_back(o.stName + "|" + o.stBeschreibung + "|" + o.stArtNr);
        for (const auto* o : inst().objectsOfRoom(GetParam(), room.id)) {
            const auto* a = m.articleOf(*o);
            expected.push_back(o->name + "|" + o->beschreibung + "|" + (a ? a->artNr : ""));
        }
        EXPECT_EQ(got, expected) << "room " << room.nr;
        total += objects.size();
    }
    EXPECT_GT(total, 0u);
}

TEST_P(HostModuleTest, TheObjectsOfAllRoomsAtOnceAreThoseOfEachRoom)
{
    const auto& m = inst().modules[GetParam()];
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", file("QGebaeude.mdb")));
    ASSERT_TRUE(geb.OpenObjects(file(m.file), m.prefix)) << geb.LastError();
    std::map<std::int32_t, std::vector<std::string>> byRoom{{-1, {"alt"}}};
    ASSERT_TRUE(geb.GetObjectNamesByRoom(byRoom)) << geb.LastError();
    std::size_t rooms = 0;
    for (const auto& room : inst().rooms) {
        std::vector<RoomObject> objects;
        ASSERT_TRUE(geb.GetObjectsOfRoom(room.id, objects));
        std::vector<std::string> expected;
        for (const auto& o : objects)
            expected.push_back(o.stName);
        const auto it = byRoom.find(room.id);
        EXPECT_EQ(it == byRoom.end() ? std::vector<std::string>() : it->second, expected) << "room " << room.nr;
        rooms += it != byRoom.end();
    }
    // No other node holds objects standing in a room (a floor's objects and variants stand in none).
    EXPECT_EQ(rooms, byRoom.size());
    EXPECT_GT(rooms, 0u);

    QGebDb closed;
    EXPECT_FALSE(closed.GetObjectNamesByRoom(byRoom));
    EXPECT_TRUE(byRoom.empty());
    EXPECT_EQ(closed.LastError(), "Die Quarn-Datenbank ist nicht geöffnet.");
}

TEST_P(HostModuleTest, ObjectsOnAFloorAndVariantsStandInNoRoom)
{
    const auto& m = inst().modules[GetParam()];
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", file("QGebaeude.mdb")));
    ASSERT_TRUE(geb.OpenObjects(file(m.file), m.prefix));
    std::vector<RoomObject> objects;
    ASSERT_TRUE(geb.GetObjectsOfRoom(inst().rooms.front().id, objects));
    for (const auto& o : objects) {
        EXPECT_NE(o.stName, "V-" + m.prefix);
        EXPECT_NE(o.stName, "F-" + m.prefix);
    }
    ASSERT_TRUE(geb.GetObjectsOfRoom(inst().rooms.front().floorId, objects));
    EXPECT_TRUE(objects.empty());
}

TEST_P(HostModuleTest, ObjectWithoutArticleHasAnEmptyArticleNumber)
{
    const auto& m = inst().modules[GetParam()];
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", file("QGebaeude.mdb")));
    ASSERT_TRUE(geb.OpenObjects(file(m.file), m.prefix));
    std::vector<RoomObject> objects;
    ASSERT_TRUE(geb.GetObjectsOfRoom(inst().rooms.front().id, objects));
    const auto it = std::find_if(objects.begin(), objects.end(),
                                 [&](const RoomObject& o) { return o.stName == "OHNE-" + m.prefix; });
    ASSERT_NE(it, objects.end());
    EXPECT_EQ(it->stArtNr, "");
    EXPECT_EQ(it->stBeschreibung, "ohne Artikel");

    QObjektDb obj;
    ASSERT_TRUE(obj.Open("app", file(m.file)));
    obj.SetTablePrefix(m.prefix);
    const auto found = obj.FindByInvNr("OHNE-" + m.prefix);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->stArtNr, "");
    EXPECT_EQ(found->stArtName, "");
}

TEST_P(HostModuleTest, EveryObjectIsFoundByItsInventoryNumber)
{
    const auto& m = inst().modules[GetParam()];
    QObjektDb obj;
    ASSERT_TRUE(obj.Open("app", file(m.file))) << obj.LastError();
    obj.SetTablePrefix(m.prefix);
    for (const auto& o : m.objects) {
        const auto found = obj.FindByInvNr(o.name);
        ASSERT_TRUE(found.has_value()) << o.name;
        const auto* a = m.articleOf(o);
        EXPECT_EQ(found->stArtNr, a ? a->artNr : "");
        EXPECT_EQ(found->stArtName, a ? a->name : "");
        EXPECT_EQ(found->stBeschreibung, o.beschreibung);
        EXPECT_EQ(found->stOrt, o.ort);
    }
}

TEST_P(HostModuleTest, UnknownInventoryNumberFindsNothing)
{
    const auto& m = inst().modules[GetParam()];
    QObjektDb obj;
    ASSERT_TRUE(obj.Open("app", file(m.file)));
    obj.SetTablePrefix(m.prefix);
    EXPECT_FALSE(obj.FindByInvNr("999001").has_value());
    EXPECT_FALSE(obj.FindByInvNr("").has_value());
    EXPECT_FALSE(obj.FindByInvNr("Obj. ohne Nr.").has_value());
    EXPECT_FALSE(obj.FindByInvNr("' OR 1=1 --").has_value());
}

TEST_P(HostModuleTest, InventoryNumberIgnoresLetterCaseAndTrailingBlanks)
{
    const auto& m = inst().modules[GetParam()];
    QObjektDb obj;
    ASSERT_TRUE(obj.Open("app", file(m.file)));
    obj.SetTablePrefix(m.prefix);
    const std::string name = "ohne-" + m.prefix + "  ";
    const auto found = obj.FindByInvNr(name);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->stBeschreibung, "ohne Artikel");
}

TEST_P(HostModuleTest, OtherModulesObjectsAreNotFound)
{
    const int other = (GetParam() + 1) % 3;
    const auto& m = inst().modules[GetParam()];
    QObjektDb obj;
    ASSERT_TRUE(obj.Open("app", file(m.file)));
    obj.SetTablePrefix(m.prefix);
    EXPECT_FALSE(obj.FindByInvNr(inst().modules[other].objects.front().name).has_value());
}

TEST_P(HostModuleTest, EveryArticleIsFoundByItsNumber)
{
    const auto& m = inst().modules[GetParam()];
    QArtikelDb art;
    ASSERT_TRUE(art.Open("app", file(m.file))) << art.LastError();
    art.SetTablePrefix(m.prefix);
    for (const auto& a : m.articles) {
        const auto d = art.FindDescription(a.artNr);
        ASSERT_TRUE(d.has_value()) << a.artNr;
        EXPECT_EQ(*d, a.name);
    }
    EXPECT_FALSE(art.FindDescription("X-0000").has_value());
    EXPECT_FALSE(art.FindDescription("").has_value());
}

TEST_P(HostModuleTest, LookupsOfABatchAnswerAsSingleLookups)
{
    const auto& m = inst().modules[GetParam()];
    const auto& other = inst().modules[(GetParam() + 1) % 3];
    QObjektDb single, batched;
    ASSERT_TRUE(single.Open("app", file(m.file)));
    ASSERT_TRUE(batched.Open("app", file(m.file)));
    single.SetTablePrefix(m.prefix);
    batched.SetTablePrefix(m.prefix);
    std::vector<std::string> numbers = {"999001", "", "Obj. ohne Nr.", "ohne-" + m.prefix + "  ",
                                        " OHNE-" + m.prefix, other.objects.front().name};
    for (const auto& o : m.objects) {
        numbers.push_back(o.name);
        std::string upper = o.name;
        for (char& c : upper)
            c = char(std::toupper(static_cast<unsigned char>(c)));
        numbers.push_back(upper + " ");
    }
    const auto same = [](const std::optional<HostObject>& a, const std::optional<HostObject>& b) {
        return a.has_value() == b.has_value() &&
               (!a || (a->stArtNr == b->stArtNr && a->stArtName == b->stArtName &&
                       a->stBeschreibung == b->stBeschreibung && a->stOrt == b->stOrt));
    };
    // Enough rounds that the batches answer by query first and from their map afterwards.
    std::size_t lookups = 0;
    for (int round = 0; round < 2 || lookups < 5000; ++round) {
        const QObjektDb::LookupBatch batch(batched);
        for (const std::string& n : numbers) {
            ASSERT_TRUE(same(batched.FindByInvNr(n), single.FindByInvNr(n))) << n;
            ++lookups;
        }
    }
    // A batch with the other module's prefix reads that module's tables, which the file lacks.
    batched.SetTablePrefix(other.prefix);
    const QObjektDb::LookupBatch batch(batched);
    EXPECT_THROW(batched.FindByInvNr(m.objects.front().name), DbError);
}

TEST_P(HostModuleTest, WrongPrefixForTheFileIsAnErrorNotACrash)
{
    const auto& m = inst().modules[GetParam()];
    const auto& other = inst().modules[(GetParam() + 1) % 3];
    QObjektDb obj;
    ASSERT_TRUE(obj.Open("app", file(m.file)));
    obj.SetTablePrefix(other.prefix);
    EXPECT_THROW(obj.FindByInvNr(m.objects.front().name), DbError);
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", file("QGebaeude.mdb")));
    ASSERT_TRUE(geb.OpenObjects(file(m.file), other.prefix));
    std::vector<RoomObject> objects{RoomObject{}};
    EXPECT_FALSE(geb.GetObjectsOfRoom(inst().rooms.front().id, objects));
    EXPECT_TRUE(objects.empty());
    EXPECT_NE(geb.LastError().find(other.prefix + "Objekt"), std::string::npos) << geb.LastError();
}

INSTANTIATE_TEST_SUITE_P(Modules, HostModuleTest, ::testing::Values(0, 1, 2));

// ------------------------------------------------------------------ failures

TEST_F(HostTest, UnknownServerFailsWithTheMessageAndWithoutACrash)
{
    const std::string unreachable = "Die Quarn-Datenbank konnte nicht geöffnet werden!\r\nDie Quarn-Datenbank auf "
                                    "dem Server ist nicht erreichbar (DSN=Quarn;UID=sa;PWD=***).";
    QGebDb geb;
    EXPECT_FALSE(geb.Open("app", HostSource::odbc("DSN=Quarn;UID=sa;PWD=x")));
    EXPECT_EQ(geb.LastError().rfind(unreachable, 0), 0u) << geb.LastError();
    EXPECT_FALSE(geb.IsOpen());
    EXPECT_FALSE(geb.GetGebStruktur(1).has_value());
    std::vector<GebRoom> rooms;
    EXPECT_FALSE(geb.GetAllRooms(rooms));
    EXPECT_FALSE(geb.GetRoomsOfNode(1, rooms));
    EXPECT_FALSE(geb.OpenObjects(HostSource::odbc("ODBC;DSN=Quarn;UID=sa;PWD=x"), "T_I"));
    std::vector<RoomObject> objects;
    EXPECT_FALSE(geb.GetObjectsOfRoom(1, objects));

    QObjektDb obj;
    EXPECT_FALSE(obj.Open("app", HostSource::odbc("ODBC;DSN=Quarn;UID=sa;PWD=x")));
    EXPECT_EQ(obj.LastError().rfind("Die Quarn-Datenbank konnte nicht geöffnet werden!\r\nDie Quarn-Datenbank auf dem "
                                    "Server ist nicht erreichbar (ODBC;DSN=Quarn;UID=sa;PWD=***).\r\n",
                                    0),
              0u)
        << obj.LastError();
    EXPECT_FALSE(obj.IsOpen());
    EXPECT_THROW(obj.FindByInvNr("100001"), DbError);

    QArtikelDb art;
    EXPECT_FALSE(art.Open("app", HostSource::odbc("DSN=Quarn;UID=sa;PWD=x")));
    EXPECT_THROW(art.FindDescription("A1"), DbError);
}

TEST_F(HostTest, FolderWhosePathHoldsAnEqualsSignIsAFolderLikeAnyOther)
{
    const std::string folder = dir_->path() + "/Projekt=Nord;DSN=x";
    ASSERT_TRUE(createFolder(folder));
    for (const char* name : {"QGebaeude.mdb", "QOvInventar.mdb"})
        ASSERT_TRUE(copyFile(file(name), folder + "/" + name));
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", folder + "\\QGebaeude.mdb")) << geb.LastError();
    std::vector<GebRoom> rooms;
    ASSERT_TRUE(geb.GetAllRooms(rooms));
    EXPECT_EQ(rooms.size(), inst().rooms.size());
    QObjektDb obj;
    ASSERT_TRUE(obj.Open("app", folder + "\\QOvInventar.mdb")) << obj.LastError();
    EXPECT_TRUE(obj.FindByInvNr(inst().modules[0].objects.front().name).has_value());
}

/// Quarn's files as Quarn writes them: no comparison of ours on the text columns, no indexes.
void dropOurComparison(const std::string& file)
{
    auto db = Database::open(file);
    const Recordset tables = db->query("SELECT name FROM sqlite_master WHERE type = 'table'");
    for (const auto& row : tables.rows()) {
        const std::string t = toText(row[0]);
        db->executeScript("ALTER TABLE " + t + " RENAME TO alt; CREATE TABLE " + t + " AS SELECT * FROM alt; "
                          "DROP TABLE alt;");
    }
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM sqlite_master WHERE sql LIKE '%COLLATE%'")), 0);
}

TEST_F(HostTest, LookupsIgnoreLetterCaseAndTrailingBlanksInQuarnsOwnFiles)
{
    const std::string folder = dir_->path() + "/Quarn";
    ASSERT_TRUE(createFolder(folder));
    for (const char* name : {"QGebaeude.mdb", "QOvTechnik.mdb"}) {
        ASSERT_TRUE(copyFile(file(name), folder + "/" + name));
        dropOurComparison(folder + "/" + name);
    }
    const demo::Object& o = inst().modules[1].objects[1];
    const demo::Article* a = inst().modules[1].articleOf(o);
    ASSERT_NE(a, nullptr);
    std::string lower = o.name + "  ";
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    ASSERT_NE(lower.substr(0, o.name.size()), o.name) << "the number needs letters";

    QObjektDb obj;
    ASSERT_TRUE(obj.Open("app", folder + "/QOvTechnik.mdb")) << obj.LastError();
    obj.SetTablePrefix("T_T");
    const auto found = obj.FindByInvNr(lower);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->stArtNr, a->artNr);
    EXPECT_EQ(found->stArtName, a->name);

    std::string article = a->artNr + " ";
    std::transform(article.begin(), article.end(), article.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    QArtikelDb art;
    ASSERT_TRUE(art.Open("app", folder + "/QOvTechnik.mdb"));
    art.SetTablePrefix("T_T");
    EXPECT_EQ(art.FindDescription(article), a->name);

    // The objects of a room come from the mirror's index on the room, whatever the file holds.
    QGebDb geb;
    ASSERT_TRUE(geb.Open("app", folder + "/QGebaeude.mdb"));
    ASSERT_TRUE(geb.OpenObjects(folder + "/QOvTechnik.mdb", "T_T"));
    std::vector<RoomObject> objects;
    ASSERT_TRUE(geb.GetObjectsOfRoom(o.gebstruId, objects)) << geb.LastError();
    EXPECT_EQ(objects.size(), inst().objectsOfRoom(1, o.gebstruId).size());
}

TEST_F(HostTest, MissingFileFailsWithTheEnginesDescription)
{
    QGebDb geb;
    EXPECT_FALSE(geb.Open("app", file("Fehlt.mdb")));
    EXPECT_EQ(geb.LastError().rfind("Die Quarn-Datenbank konnte nicht geöffnet werden!\r\nDie Datei '", 0), 0u)
        << geb.LastError();
    QObjektDb obj;
    EXPECT_FALSE(obj.Open("app", ""));
    EXPECT_FALSE(obj.LastError().empty());
}

TEST_F(HostTest, FileThatIsNoDatabaseFails)
{
    const std::string path = file("kaputt.mdb");
    test::writeFile(path, "Das ist keine Datenbank, sondern Text.\r\n");
    QObjektDb obj;
    EXPECT_FALSE(obj.Open("app", path));
    EXPECT_NE(obj.LastError().find("Nicht erkanntes Datenbankformat"), std::string::npos) << obj.LastError();
}

TEST_F(HostTest, LookupBeforeOpenIsAnError)
{
    QObjektDb obj;
    try {
        obj.FindByInvNr("1");
        FAIL() << "no error";
    } catch (const DbError& e) {
        EXPECT_EQ(e.description(), "Die Quarn-Datenbank ist nicht geöffnet.");
    }
    QArtikelDb art;
    EXPECT_THROW(art.FindDescription("1"), DbError);
    QGebDb geb;
    std::vector<GebRoom> rooms;
    EXPECT_FALSE(geb.GetAllRooms(rooms));
    EXPECT_EQ(geb.LastError(), "Die Quarn-Datenbank ist nicht geöffnet.");
    std::vector<RoomObject> objects;
    EXPECT_FALSE(geb.GetObjectsOfRoom(1, objects));
}

TEST_F(HostTest, UnknownTablePrefixIsRefused)
{
    QObjektDb obj;
    ASSERT_TRUE(obj.Open("app", file("QOvInventar.mdb")));
    obj.SetTablePrefix("T_IObjekt; DROP TABLE T_IObjekt; --");
    EXPECT_THROW(obj.FindByInvNr("1"), DbError);
    obj.SetTablePrefix("");
    EXPECT_THROW(obj.FindByInvNr("1"), DbError);
}

TEST_F(HostTest, PathWithDoubledBackslashOpens)
{
    // The start-up joins the project folder (ending in a backslash) and "\QGebaeude.mdb".
    QGebDb geb;
    EXPECT_TRUE(geb.Open("app", dir_->path() + "\\" + "\\QGebaeude.mdb")) << geb.LastError();
}

TEST_F(HostTest, HostFilesAreOpenedReadOnlyAndStayUnchanged)
{
    const std::string before = test::readFile(file("QOvInventar.mdb"));
    {
        QObjektDb obj;
        ASSERT_TRUE(obj.Open("app", file("QOvInventar.mdb")));
        for (int i = 0; i < 100; ++i)
            obj.FindByInvNr(inst().modules[0].objects[std::size_t(i) % inst().modules[0].objects.size()].name);
    }
    EXPECT_EQ(test::readFile(file("QOvInventar.mdb")), before);
}

TEST_F(HostTest, ReopeningReplacesTheDatabase)
{
    QObjektDb obj;
    ASSERT_TRUE(obj.Open("app", file("QOvInventar.mdb")));
    EXPECT_FALSE(obj.Open("app", file("Fehlt.mdb")));
    EXPECT_FALSE(obj.IsOpen());
    ASSERT_TRUE(obj.Open("app", file("QOvTechnik.mdb")));
    obj.SetTablePrefix("T_T");
    EXPECT_TRUE(obj.FindByInvNr(inst().modules[1].objects.front().name).has_value());
}

} // namespace
} // namespace qi
