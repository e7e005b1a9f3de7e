#include "DemoInstallation.h"

#include "Database.h"
#include "FileSystem.h"
#include "OrderSchema.h"
#include "Startup.h"
#include "TextFile.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace qi::demo {

namespace {

/// The generator's own random numbers: a fixed linear congruential sequence, the same on every machine.
class Sequence {
public:
    explicit Sequence(std::uint32_t seed) : state_(seed) {}
    /// 0 .. n-1
    int next(int n)
    {
        state_ = state_ * 1103515245u + 12345u;
        return int((state_ >> 8) % std::uint32_t(n));
    }

private:
    std::uint32_t state_;
};

std::string pad(int n, int width)
{
    std::string s = std::to_string(n);
    if (int(s.size()) < width)
        s.insert(0, std::size_t(width - int(s.size())), '0');
    return s;
}

int digits(int n) { return int(std::to_string(std::max(n, 0)).size()); }

template <std::size_t N>
std::string pick(const char* const (&names)[N], int i, const std::string& fallback)
{
    return i < int(N) ? names[i] : fallback + " " + std::to_string(i + 1);
}

template <std::size_t N>
const char* cycle(const char* const (&names)[N], int i)
{
    return names[std::size_t(i) % N];
}

constexpr const char* kSites[] = {"Verwaltungszentrum Nord", "Campus Süd", "Betriebshof West", "Außenstelle Ost"};
constexpr const char* kBuildings[] = {"Hauptgebäude", "Laborgebäude", "Werkstattgebäude", "Bürohaus Ost",
                                      "Lagerhalle", "Schulungszentrum"};
constexpr const char* kRoomNames[] = {"Büro", "Büro", "Besprechungsraum", "Teeküche", "Lager", "Archiv",
                                      "Büro", "Serverraum", "Kopierraum", "Sozialraum", "Büro", "Labor",
                                      "Werkstatt", "Empfang", "Büro", "Schulungsraum", "Putzmittelraum",
                                      "Büro", "Flur", "Technikraum"};
constexpr const char* kInventar[] = {"Schreibtisch", "Bürodrehstuhl", "Besucherstuhl", "Rollcontainer",
                                     "Aktenschrank", "Hängeregistratur", "Regal", "Besprechungstisch",
                                     "Garderobe", "Sideboard", "PC-Arbeitsplatz", "Monitor 24 Zoll", "Notebook",
                                     "Laserdrucker", "Multifunktionsgerät", "Telefon", "Beamer", "Whiteboard",
                                     "Kühlschrank", "Kaffeemaschine"};
constexpr const char* kTechnik[] = {"Heizkörper", "Lüftungsgerät", "Split-Klimagerät", "Elektroverteilung",
                                    "Sicherheitsleuchte", "Warmwasserspeicher", "Umwälzpumpe", "Schaltschrank",
                                    "USV-Anlage", "Netzwerkschrank", "Wärmemengenzähler", "Deckenventilator",
                                    "Rückkühler", "Aufzugsanlage", "Türantrieb"};
constexpr const char* kBrandschutz[] = {"Feuerlöscher 6 kg Pulver", "Feuerlöscher 5 kg CO2", "Rauchmelder",
                                        "Brandschutztür T30", "Wandhydrant", "Rauchabzugsklappe",
                                        "Handfeuermelder", "Fluchtwegschild"};
constexpr const char* kFinish[] = {"Buche", "Ahorn", "Weiß", "Anthrazit", "Lichtgrau", "Eiche"};
constexpr const char* kSurnames[] = {"Müller", "Schäfer", "Groß", "Köhler", "Weiß", "Becker", "Hoffmann",
                                     "Schröder", "Neumann", "Krüger", "Wolf", "Braun", "Zimmermann", "Hübner",
                                     "Lange", "Jäger", "König", "Schulz", "Fuchs", "Böhm", "Vogel", "Keßler",
                                     "Lorenz", "Möller"};
constexpr const char* kFirstNames[] = {"Jürgen", "Anna", "Sören", "Birgit", "Klaus", "Ute", "Günther", "Petra",
                                       "Jörg", "Sabine", "Frank", "Käthe", "Michael", "Renate", "Björn"};
constexpr const char* kCostCentres[] = {"Verwaltung", "Personalwesen", "Finanzbuchhaltung", "Einkauf",
                                        "Informationstechnik", "Gebäudemanagement", "Forschung", "Entwicklung",
                                        "Qualitätssicherung", "Vertrieb", "Kantine", "Geschäftsführung"};

void fillModule(Module& m, const Installation& inst, int articleCount, int objectCount,
                const char* const* bases, int baseCount, const std::string& artPrefix, const std::string& invPrefix,
                int invWidth, std::uint32_t seed)
{
    Sequence rnd(seed);
    for (int i = 0; i < articleCount; ++i) {
        std::string name = bases[i % baseCount];
        if (articleCount > baseCount) {
            const int variant = i / baseCount;
            name += variant < 26 ? std::string(" Typ ") + char('A' + variant) : " Typ " + std::to_string(variant + 1);
        }
        m.articles.push_back(Article{i + 1, artPrefix + pad(i + 1, std::max(3, digits(articleCount))), name});
    }
    const int roomCount = int(inst.rooms.size());
    std::vector<const Node*> floors;
    for (const Node& n : inst.nodes)
        if (n.typ == 3)
            floors.push_back(&n);
    // The first three rounds give every room three objects; the rest fall where they may.
    const int even = std::min(objectCount, 3 * roomCount);
    for (int i = 0; i < objectCount; ++i) {
        Object o;
        o.id = i + 1;
        o.name = invPrefix + pad(i + 1, invWidth);
        o.articleId = articleCount > 0 ? 1 + (i < even ? i % articleCount : rnd.next(articleCount)) : 0;
        const std::string artName = articleCount > 0 ? m.articles[std::size_t(o.articleId - 1)].name : "Objekt";
        o.beschreibung = artName + ", " + cycle(kFinish, i + rnd.next(3));
        const bool onFloor = i >= even && i % 250 == 249 && !floors.empty();
        if (onFloor) {
            const Node& f = *floors[std::size_t(rnd.next(int(floors.size())))];
            o.gebstruId = f.id;
            o.gebstruTyp = 3;
        } else {
            const Room& r = inst.rooms[std::size_t(i < even ? i % roomCount : rnd.next(roomCount))];
            o.gebstruId = r.id;
            o.gebstruTyp = 4;
            o.ort = r.nr;
        }
        o.variante = (i >= even && i % 50 == 37) ? 1 : 0;
        o.bemerkung = i % 13 == 5 ? "Geprüft 2024" : i % 7 == 3 ? "Gebrauchsspuren" : "";
        o.kstId = inst.costCentres.empty() ? 0 : inst.costCentres[std::size_t(i) % inst.costCentres.size()].id;
        m.objects.push_back(std::move(o));
    }
}

void writeTextFile(const std::string& path, const std::vector<std::string>& lines)
{
    TextFileWriter w(path);
    for (const std::string& l : lines)
        w.writeLine(l);
    w.close();
}

/// The readme is for people, on any system: UTF-8 with CR LF.
void writeReadme(const std::string& path, const std::vector<std::string>& lines)
{
    std::ofstream out(nativePath(path), std::ios::binary | std::ios::trunc);
    for (const std::string& l : lines)
        out << l << "\r\n";
    if (!out)
        throw std::runtime_error("Die Datei '" + path + "' konnte nicht geschrieben werden.");
}

} // namespace

Sizes smallSizes()
{
    Sizes s;
    s.sites = 1;
    s.buildingsPerSite = 2;
    s.floorsPerBuilding = 1;
    s.roomsPerFloor = 6;
    s.inventarArticles = 8;
    s.inventarObjects = 60;
    s.technikArticles = 4;
    s.technikObjects = 40;
    s.brandschutzArticles = 3;
    s.brandschutzObjects = 40;
    s.persons = 4;
    s.costCentres = 3;
    return s;
}

const Article* Module::articleOf(const Object& o) const
{
    for (const Article& a : articles)
        if (a.id == o.articleId)
            return &a;
    return nullptr;
}

std::vector<const Room*> Installation::roomsOfFloor(std::int32_t floorId) const
{
    std::vector<const Room*> r;
    for (const Room& room : rooms)
        if (room.floorId == floorId)
            r.push_back(&room);
    std::sort(r.begin(), r.end(), [](const Room* a, const Room* b) { return a->nr < b->nr; });
    return r;
}

std::vector<const Object*> Installation::objectsOfRoom(int module, std::int32_t roomId) const
{
    std::vector<const Object*> r;
    for (const Object& o : modules[module].objects)
        if (o.gebstruId == roomId && o.gebstruTyp == 4 && o.variante == 0)
            r.push_back(&o);
    return r;
}

Installation buildInstallation(const Sizes& s)
{
    if (s.sites < 1 || s.buildingsPerSite < 1 || s.floorsPerBuilding < 1 || s.roomsPerFloor < 1 ||
        s.inventarArticles < 1 || s.technikArticles < 1 || s.brandschutzArticles < 1 || s.inventarObjects < 0 ||
        s.technikObjects < 0 || s.brandschutzObjects < 0 || s.persons < 0 || s.costCentres < 0)
        throw std::invalid_argument("every size must be at least 1 (object, person and cost centre counts at least 0)");
    Installation inst;
    for (int i = 0; i < s.persons; ++i)
        inst.persons.push_back(Person{i + 1, cycle(kSurnames, i), cycle(kFirstNames, i * 7 + i / 24)});
    for (int i = 0; i < s.costCentres; ++i)
        inst.costCentres.push_back(CostCentre{i + 1, std::to_string(4100 + 100 * i), pick(kCostCentres, i, "Kostenstelle")});

    Sequence rnd(20250314);
    std::int32_t nextId = 1;
    const int floorDigits = std::max(1, digits(s.floorsPerBuilding - 1));
    const int roomDigits = std::max(2, digits(s.roomsPerFloor));
    int buildingNo = 0;
    for (int si = 0; si < s.sites; ++si) {
        const Node site{nextId++, 0, 1, "L" + std::to_string(si + 1), pick(kSites, si, "Liegenschaft")};
        inst.nodes.push_back(site);
        for (int bi = 0; bi < s.buildingsPerSite; ++bi) {
            ++buildingNo;
            const Node building{nextId++, site.id, 2, "G" + std::to_string(buildingNo),
                                pick(kBuildings, buildingNo - 1, "Gebäude")};
            inst.nodes.push_back(building);
            for (int fi = 0; fi < s.floorsPerBuilding; ++fi) {
                const Node floor{nextId++, building.id, 3, fi == 0 ? "EG" : std::to_string(fi) + ".OG",
                                 fi == 0 ? "Erdgeschoss" : std::to_string(fi) + ". Obergeschoss"};
                inst.nodes.push_back(floor);
                for (int ri = 0; ri < s.roomsPerFloor; ++ri) {
                    Room room;
                    room.id = nextId++;
                    room.floorId = floor.id;
                    room.nr = std::to_string(buildingNo) + pad(fi, floorDigits) + pad(ri + 1, roomDigits);
                    room.name = cycle(kRoomNames, ri);
                    room.responsibleId = s.persons > 0 && rnd.next(5) != 0 ? 1 + rnd.next(s.persons) : 0;
                    inst.nodes.push_back(Node{room.id, floor.id, 4, room.nr, room.name});
                    inst.rooms.push_back(room);
                }
            }
        }
    }

    const int invWidth = std::max(5, digits(s.inventarObjects));
    inst.modules[0] = Module{"INVENTAR", "T_I", "QOvInventar.mdb", {}, {}};
    inst.modules[1] = Module{"TECHNIK", "T_T", "QOvTechnik.mdb", {}, {}};
    inst.modules[2] = Module{"BRANDSCHUTZ", "T_B", "QOvBrandschutz.mdb", {}, {}};
    fillModule(inst.modules[0], inst, s.inventarArticles, s.inventarObjects, kInventar, int(std::size(kInventar)),
               "A", "1", invWidth, 11);
    fillModule(inst.modules[1], inst, s.technikArticles, s.technikObjects, kTechnik, int(std::size(kTechnik)), "TA",
               "T", std::max(5, digits(s.technikObjects)), 22);
    fillModule(inst.modules[2], inst, s.brandschutzArticles, s.brandschutzObjects, kBrandschutz,
               int(std::size(kBrandschutz)), "BA", "BS", std::max(4, digits(s.brandschutzObjects)), 33);
    return inst;
}

void writeHostDatabases(const Installation& inst, const std::string& folder)
{
    const std::string t = coltype::Text;
    const std::string l = coltype::Long;
    {
        auto db = Database::create(folder + "/QGebaeude.mdb");
        db->executeScript("CREATE TABLE T_Gebstru (lId INTEGER PRIMARY KEY, lParentId " + l + ", byTyp " + l +
                          ", stNr " + t + ", stBezeichnung " + t + ");\n"
                          "CREATE INDEX T_Gebstru_lParentId ON T_Gebstru (lParentId);\n"
                          "CREATE TABLE T_Raumkern (lId INTEGER PRIMARY KEY, stRaumNr " + t + ", stBezeichnung " + t +
                          ", lRaumverantwId " + l + ");\n"
                          "CREATE UNIQUE INDEX T_Raumkern_stRaumNr ON T_Raumkern (stRaumNr);\n");
        Database::Transaction tx(*db);
        for (const Node& n : inst.nodes)
            db->execute("INSERT INTO T_Gebstru (lId, lParentId, byTyp, stNr, stBezeichnung) VALUES (?1, ?2, ?3, ?4, ?5)",
                        {std::int64_t{n.id}, std::int64_t{n.parentId}, std::int64_t{n.typ}, n.nr, n.name});
        for (const Room& r : inst.rooms)
            db->execute("INSERT INTO T_Raumkern (lId, stRaumNr, stBezeichnung, lRaumverantwId) VALUES (?1, ?2, ?3, ?4)",
                        {std::int64_t{r.id}, r.nr, r.name, std::int64_t{r.responsibleId}});
        tx.commit();
    }
    for (const Module& m : inst.modules) {
        auto db = Database::create(folder + "/" + m.file);
        const std::string& p = m.prefix;
        db->executeScript("CREATE TABLE " + p + "Objekt (lId INTEGER PRIMARY KEY, stName " + t + ", stBeschreibung " +
                          t + ", lArtikelId " + l + ", stOrt " + t + ", lGebstruId " + l + ", byGebstruTyp " + l +
                          ", stBemerkung " + t + ", iVariante " + l + ", lKstId " + l + ");\n"
                          "CREATE UNIQUE INDEX " + p + "Objekt_stName ON " + p + "Objekt (stName);\n"
                          "CREATE INDEX " + p + "Objekt_lGebstruId ON " + p + "Objekt (lGebstruId);\n"
                          "CREATE INDEX " + p + "Objekt_stOrt ON " + p + "Objekt (stOrt);\n"
                          "CREATE TABLE " + p + "Artikel (lId INTEGER PRIMARY KEY, stArtNr " + t + ", stName " + t +
                          ");\n"
                          "CREATE INDEX " + p + "Artikel_stArtNr ON " + p + "Artikel (stArtNr);\n");
        Database::Transaction tx(*db);
        for (const Article& a : m.articles)
            db->execute("INSERT INTO " + p + "Artikel (lId, stArtNr, stName) VALUES (?1, ?2, ?3)",
                        {std::int64_t{a.id}, a.artNr, a.name});
        for (const Object& o : m.objects)
            db->execute("INSERT INTO " + p +
                            "Objekt (lId, stName, stBeschreibung, lArtikelId, stOrt, lGebstruId, byGebstruTyp, "
                            "stBemerkung, iVariante, lKstId) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
                        {std::int64_t{o.id}, o.name, o.beschreibung, std::int64_t{o.articleId}, o.ort,
                         std::int64_t{o.gebstruId}, std::int64_t{o.gebstruTyp}, o.bemerkung, std::int64_t{o.variante},
                         std::int64_t{o.kstId}});
        tx.commit();
    }
    {
        auto db = Database::create(folder + "/QStammdaten.mdb");
        db->executeScript("CREATE TABLE T_AnsprechPartner (lId INTEGER PRIMARY KEY, stName " + t + ", stVorname " + t +
                          ");\n"
                          "CREATE TABLE T_KST (lId INTEGER PRIMARY KEY, stKST " + t + ", stBezeichnung " + t + ");\n");
        Database::Transaction tx(*db);
        for (const Person& p : inst.persons)
            db->execute("INSERT INTO T_AnsprechPartner (lId, stName, stVorname) VALUES (?1, ?2, ?3)",
                        {std::int64_t{p.id}, p.name, p.vorname});
        for (const CostCentre& k : inst.costCentres)
            db->execute("INSERT INTO T_KST (lId, stKST, stBezeichnung) VALUES (?1, ?2, ?3)",
                        {std::int64_t{k.id}, k.nr, k.name});
        tx.commit();
    }
}

void writeProjectIni(const std::string& folder, const std::string& modul)
{
    writeTextFile(folder + "/Projekt.ini", {"; Projekteinstellungen der Quarn-Demoinstallation", "[ODBC]",
                                            "Projekttyp=ptJet", "ConnectionString=", "", "[Inventur]",
                                            "Modul=" + modul});
}

void copyReports(const std::string& reportSource, const std::string& folder)
{
    const std::string target = folder + "/Report";
    if (!folderExists(target) && !createFolder(target))
        throw std::runtime_error("Der Ordner '" + target + "' konnte nicht angelegt werden.");
    for (const char* report : qi::kReportFiles)
        if (!copyFile(reportSource + "/" + report, target + "/" + report))
            throw std::runtime_error(std::string("Der Report '") + report + "' konnte nicht kopiert werden.");
}

namespace {

/// Writes the lines of one scanning run: one employee, one day, the clock running on.
class Run {
public:
    Run(const Module& m, std::string employee, std::string date, int startMinutes)
        : module_(m), employee_(std::move(employee)), date_(std::move(date)), seconds_(startMinutes * 60)
    {
    }

    void scan(const std::string& room, const Object& o, const std::string& activity = "Zählung")
    {
        const Article* a = module_.articleOf(o);
        line(room, o.name, a ? a->artNr : "", activity);
    }

    void line(const std::string& room, const std::string& invNr, const std::string& artNr,
              const std::string& activity = "Zählung")
    {
        seconds_ += 37;
        char time[16];
        std::snprintf(time, sizeof time, "%02d:%02d:%02d", (seconds_ / 3600) % 24, (seconds_ / 60) % 60, seconds_ % 60);
        lines.push_back(employee_ + ",2025-01," + date_ + "," + time + "," + room + "," + invNr + "," + artNr + "," +
                        activity);
    }

    void setDate(std::string date) { date_ = std::move(date); }

    std::vector<std::string> lines;

private:
    const Module& module_;
    std::string employee_;
    std::string date_;
    int seconds_;
};

/// The rooms the scanner files are planned for and the room outside that order.
struct Plan {
    const Node* floor = nullptr;
    std::vector<const Room*> order;
    const Room* outside = nullptr;
};

Plan plan(const Installation& inst, int module)
{
    Plan p;
    for (const Node& n : inst.nodes)
        if (n.typ == 3) {
            p.floor = &n;
            break;
        }
    if (!p.floor)
        throw std::invalid_argument("no floor");
    p.order = inst.roomsOfFloor(p.floor->id);
    for (const Room& r : inst.rooms)
        if (r.floorId != p.floor->id && !inst.objectsOfRoom(module, r.id).empty()) {
            p.outside = &r;
            break;
        }
    if (p.order.size() < 6 || !p.outside)
        throw std::invalid_argument("the scanner files need six rooms on the first floor and a room elsewhere");
    for (int j = 0; j < 3; ++j)
        if (inst.objectsOfRoom(module, p.order[std::size_t(j)]->id).size() < 3)
            throw std::invalid_argument("the scanner files need three objects in each of the first three rooms");
    return p;
}

} // namespace

std::vector<ScanFile> scannerFiles(const Installation& inst, int module)
{
    const Module& m = inst.modules[module];
    const Plan p = plan(inst, module);
    const std::size_t n = p.order.size();
    const std::size_t half = n / 2;
    const auto objects = [&](std::size_t j) { return inst.objectsOfRoom(module, p.order[j]->id); };
    const auto r0 = objects(0), r1 = objects(1);
    const Object& missing = *r0.back();   // never scanned: 3b
    const Object& moved = *r1.front();    // expected in room 1, found in room 2: 3a and 2a
    const Object& twiceInOneFile = *r1[1]; // room 1 and room 2 in the same file: the conflict dialog
    const Object& twiceSameRoom = *r0[1];  // room 0 twice: the warning
    const Object& acrossFiles = *r0.front(); // room 0 in the first file, another room in the second
    const Object& foreign = *inst.objectsOfRoom(module, p.outside->id).front(); // 2b, with its room in stQuarn

    std::vector<ScanFile> files;

    Run one(m, "MA07", "14.03.2025", 8 * 60);
    one.lines.push_back("MA07,2025-01,14.03.2025");
    one.lines.push_back("");
    for (std::size_t j = 0; j < half; ++j) {
        const Room& room = *p.order[j];
        // The scanner pads room numbers with zeros now and then.
        const std::string field = j == 1 ? "00" + room.nr : j == 2 ? "0" + room.nr : room.nr;
        for (const Object* o : objects(j)) {
            if (o == &missing || o == &moved)
                continue;
            one.scan(field, *o);
        }
        if (j == 0) {
            one.scan(field, twiceSameRoom, "Nachzählung");
            one.scan(field, foreign);
            one.line(field, "999001", m.articles.front().artNr, "Zählung ohne Etikett");
        }
        if (j == 2) {
            one.scan(field, moved);
            one.scan(field, twiceInOneFile, "Nachzählung");
            one.line(field, "  ", m.articles.back().artNr, "Etikett unleserlich");
        }
    }
    one.lines.push_back("Übertragung beendet,,");
    files.push_back({"Scan_EG_Teil1.dat", one.lines});

    Run two(m, "MA12", "17.03.2025", 7 * 60 + 30);
    for (std::size_t j = half; j < n; ++j) {
        for (const Object* o : objects(j))
            two.scan(p.order[j]->nr, *o);
        if (j == half)
            two.scan(p.order[j]->nr, acrossFiles, "Nachzählung");
    }
    files.push_back({"Scan_EG_Teil2.dat", two.lines});

    Run days(m, "MA07", "17.03.2025", 15 * 60);
    const auto last = objects(n - 1);
    for (std::size_t k = 0; k < last.size(); ++k) {
        if (k == (last.size() + 1) / 2)
            days.setDate("18.03.2025");
        days.scan(p.order[n - 1]->nr, *last[k], "Nachzählung");
    }
    if (last.size() < 2) {
        days.setDate("18.03.2025");
        days.scan(p.order[n - 1]->nr, *last.front(), "Nachzählung");
    }
    files.push_back({"Scan_Zwei_Tage.dat", days.lines});

    Run outside(m, "MA03", "18.03.2025", 9 * 60);
    outside.scan(p.order[0]->nr, acrossFiles);
    for (const Object* o : inst.objectsOfRoom(module, p.outside->id))
        outside.scan(p.outside->nr, *o);
    files.push_back({"Scan_Raum_ausserhalb.dat", outside.lines});
    return files;
}

void writeScannerFiles(const Installation& inst, int module, const std::string& folder)
{
    const Plan p = plan(inst, module);
    std::string building;
    for (const Node& n : inst.nodes)
        if (n.id == p.floor->parentId)
            building = n.name;
    std::string rooms;
    for (const Room* r : p.order)
        rooms += (rooms.empty() ? "" : ", ") + r->nr;
    for (const ScanFile& f : scannerFiles(inst, module))
        writeTextFile(folder + "/" + f.name, f.lines);
    writeReadme(folder + "/Liesmich.txt",
                  {"Quarn-Demoinstallation",
                   "",
                   "Legen Sie einen Auftrag an und wählen Sie die Räume des Geschosses \"" + p.floor->name + "\" im " +
                       building + " aus (" + rooms + ").",
                   "Fügen Sie dann die Scannerdateien des Projektordners hinzu:",
                   "- Scan_EG_Teil1.dat: erste Hälfte der Räume; Raumnummern mit führenden Nullen, ein Objekt "
                   "doppelt im selben Raum, ein Objekt in zwei Räumen, eine Zeile ohne Objektnummer, ein "
                   "unbekanntes Objekt, ein Objekt aus Raum " + p.outside->nr + ", kurze Zeilen.",
                   "- Scan_EG_Teil2.dat: zweite Hälfte der Räume; ein Objekt, das schon in Teil 1 erfasst wurde.",
                   "- Scan_Zwei_Tage.dat: Daten von zwei Tagen (wird abgewiesen).",
                   "- Scan_Raum_ausserhalb.dat: enthält Raum " + p.outside->nr + ", der nicht im Auftrag ist."});
}

void writeDemoProject(const Sizes& sizes, const std::string& folder, const std::string& reportSource,
                      const std::string& modul)
{
    if (!folderExists(folder) && !createFolder(folder))
        throw std::runtime_error("Der Ordner '" + folder + "' konnte nicht angelegt werden.");
    const Installation inst = buildInstallation(sizes);
    writeHostDatabases(inst, folder);
    writeProjectIni(folder, modul);
    if (!reportSource.empty())
        copyReports(reportSource, folder);
    int module = 0;
    for (int i = 0; i < 3; ++i)
        if (inst.modules[i].name == modul)
            module = i;
    writeScannerFiles(inst, module, folder);
}

void writeQuarnIni(const std::string& file, const std::string& projectFolder)
{
    writeTextFile(file, {"[Quarn]", "Projekt=" + projectFolder});
}

std::string projectValueFor(const std::string& quarnIni, const std::string& projectFolder)
{
    namespace fs = std::filesystem;
    const fs::path folder = fs::absolute(fs::u8path(nativePath(projectFolder))).lexically_normal();
    const fs::path base = fs::absolute(fs::u8path(nativePath(quarnIni))).parent_path().lexically_normal();
    const fs::path relative = folder.lexically_relative(base);
    if (relative.empty())
        return systemPath(folder.string());
    std::string value = systemPath(relative.string());
    // A folder that ended in a separator names the same folder without it.
    while (value.size() > 1 && value.back() == '\\')
        value.pop_back();
    return value;
}

} // namespace qi::demo
