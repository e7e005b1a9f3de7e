#pragma once
// A German Quarn installation made up from a few sizes, always the same for the
// same sizes: sites, buildings, floors and rooms (QGebaeude.mdb), the objects and
// articles of the three modules (QOvInventar.mdb, QOvTechnik.mdb,
// QOvBrandschutz.mdb), persons responsible and cost centres (QStammdaten.mdb),
// the project's "Projekt.ini", its "Report" folder and scanner data files that
// walk through every case of the import and the reconciliation. The demo project
// of the program folder and the tests are made with it.

#include <cstdint>
#include <string>
#include <vector>

namespace qi::demo {

/// How big the installation is.
struct Sizes {
    int sites = 2;
    int buildingsPerSite = 2;
    int floorsPerBuilding = 3;
    int roomsPerFloor = 20;
    int inventarArticles = 60;
    int inventarObjects = 6000;
    int technikArticles = 15;
    int technikObjects = 600;
    int brandschutzArticles = 8;
    int brandschutzObjects = 400;
    int persons = 24;
    int costCentres = 12;
};

/// The smallest installation that still holds every scanner case (tests use it).
Sizes smallSizes();

struct Node {
    std::int32_t id = 0;
    std::int32_t parentId = 0;
    int typ = 0; ///< 1 site, 2 building, 3 floor, 4 room
    std::string nr;
    std::string name;
};

struct Room {
    std::int32_t id = 0; ///< node id of the room
    std::int32_t floorId = 0;
    std::string nr;
    std::string name;
    std::int32_t responsibleId = 0;
};

struct Article {
    std::int32_t id = 0;
    std::string artNr;
    std::string name;
};

struct Object {
    std::int32_t id = 0;
    std::string name; ///< inventory number
    std::string beschreibung;
    std::int32_t articleId = 0;
    std::string ort;              ///< room number, empty when attached to a floor
    std::int32_t gebstruId = 0;   ///< room or floor node
    int gebstruTyp = 4;
    std::string bemerkung;
    int variante = 0;
    std::int32_t kstId = 0;
};

struct Module {
    std::string name;   ///< "INVENTAR", "TECHNIK", "BRANDSCHUTZ"
    std::string prefix; ///< "T_I", "T_T", "T_B"
    std::string file;   ///< "QOvInventar.mdb" ...
    std::vector<Article> articles;
    std::vector<Object> objects;
    /// The article of an object (by its articleId); null when there is none.
    const Article* articleOf(const Object& o) const;
};

struct Person {
    std::int32_t id = 0;
    std::string name;
    std::string vorname;
};

struct CostCentre {
    std::int32_t id = 0;
    std::string nr;
    std::string name;
};

/// The whole installation in memory.
struct Installation {
    std::vector<Node> nodes; ///< sites, buildings, floors and rooms, depth first
    std::vector<Room> rooms; ///< in the order of the nodes
    Module modules[3];       ///< INVENTAR, TECHNIK, BRANDSCHUTZ
    std::vector<Person> persons;
    std::vector<CostCentre> costCentres;

    /// Rooms of one floor, in the order of their numbers.
    std::vector<const Room*> roomsOfFloor(std::int32_t floorId) const;
    /// Objects of a module that stand in a room (attached to it, variant 0).
    std::vector<const Object*> objectsOfRoom(int module, std::int32_t roomId) const;
};

/// Builds the installation for the sizes; throws std::invalid_argument for sizes too small.
Installation buildInstallation(const Sizes& sizes);

/// Writes the five Quarn databases into `folder` (replacing them).
void writeHostDatabases(const Installation& inst, const std::string& folder);
/// Writes "Projekt.ini" ([ODBC] Projekttyp=ptJet, [Inventur] Modul=`modul`).
void writeProjectIni(const std::string& folder, const std::string& modul);
/// Copies the eight report files from `reportSource` into `folder` + "/Report".
void copyReports(const std::string& reportSource, const std::string& folder);

/// One scanner data file of the demo.
struct ScanFile {
    std::string name;               ///< file name ("...dat")
    std::vector<std::string> lines; ///< UTF-8; written in Windows-1252 with CR LF
};
/// The scanner files for the module's objects, planned for an order of the rooms of the first floor.
std::vector<ScanFile> scannerFiles(const Installation& inst, int module);
/// Writes the scanner files and a "Liesmich.txt" that explains them into `folder`.
void writeScannerFiles(const Installation& inst, int module, const std::string& folder);

/// Everything of a demo project in `folder` (created if needed). `reportSource` may be empty (no Report folder).
void writeDemoProject(const Sizes& sizes, const std::string& folder, const std::string& reportSource,
                      const std::string& modul = "INVENTAR");
/// Writes the host profile file ("[Quarn]" "Projekt=" + `projectFolder`).
void writeQuarnIni(const std::string& file, const std::string& projectFolder);
/// The "Projekt" value of the host profile file `quarnIni` for the project folder `projectFolder`:
/// the folder relative to the profile file's folder, with backslashes ("Demo", "..\Projekte\Demo");
/// the absolute folder when there is no relative way (another drive).
std::string projectValueFor(const std::string& quarnIni, const std::string& projectFolder);

} // namespace qi::demo
