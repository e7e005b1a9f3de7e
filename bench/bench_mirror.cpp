// Making the local mirror of Quarn's data: the demo installation and one with
// 130,000 INVENTAR objects, each from Quarn's files (SQLite) and over ODBC from a
// PostgreSQL server of its own (psqlODBC), started for the run on 127.0.0.1.
// An argument sets the number of objects of the large installation.

#include "DemoInstallation.h"
#include "HostMirror.h"
#include "PostgresCluster.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

double seconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

void measure(qi::demo::PostgresCluster& cluster, const qi::demo::Sizes& sizes, const std::string& name)
{
    const fs::path folder = fs::temp_directory_path() / ("qinventur-bench-mirror-" + name);
    fs::remove_all(folder);
    fs::create_directories(folder / "cache");
    const auto inst = qi::demo::buildInstallation(sizes);
    qi::demo::writeHostDatabases(inst, folder.string());
    cluster.createDatabase(name);
    cluster.loadInstallation(inst, name);
    std::size_t objects = 0;
    for (const auto& m : inst.modules)
        objects += m.objects.size();
    std::printf("%s: %zu rooms, %zu objects (%zu INVENTAR)\n", name.c_str(), inst.rooms.size(), objects,
                inst.modules[0].objects.size());

    qi::HostMirror mirror((folder / "cache").string(), "");
    auto t = std::chrono::steady_clock::now();
    mirror.refresh(qi::HostSource::odbc(cluster.connectionString(name)));
    std::printf("  over ODBC (all Quarn tables, one server database): %.3f s\n", seconds(t));
    t = std::chrono::steady_clock::now();
    for (const char* file : {"QGebaeude.mdb", "QOvInventar.mdb", "QOvTechnik.mdb", "QOvBrandschutz.mdb",
                             "QStammdaten.mdb"})
        mirror.refresh(qi::HostSource::file((folder / file).string()));
    std::printf("  from Quarn's five files (SQLite):                  %.3f s\n", seconds(t));
    t = std::chrono::steady_clock::now();
    mirror.mirrorFor(qi::HostSource::file((folder / "QOvInventar.mdb").string()));
    std::printf("  unchanged file, mirror reused:                     %.6f s\n", seconds(t));
    fs::remove_all(folder);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        qi::demo::PostgresCluster cluster;
        measure(cluster, qi::demo::Sizes{}, "demo");
        qi::demo::Sizes large;
        large.sites = 4;
        large.buildingsPerSite = 5;
        large.floorsPerBuilding = 5;
        large.roomsPerFloor = 40;
        large.inventarArticles = 2000;
        large.inventarObjects = argc > 1 ? std::atoi(argv[1]) : 130000;
        measure(cluster, large, "gross");
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}
