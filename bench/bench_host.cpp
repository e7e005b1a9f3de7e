// Lookups in Quarn's object data: 100,000 FindByInvNr calls against a generated
// installation (default: the demo's sizes; the first argument sets the number of
// INVENTAR objects), plus the per-room object query and the room lists.

#include "DemoInstallation.h"
#include "QuarnHost.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

double seconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

} // namespace

int main(int argc, char** argv)
{
    namespace fs = std::filesystem;
    qi::demo::Sizes sizes;
    if (argc > 1)
        sizes.inventarObjects = std::atoi(argv[1]);
    const fs::path folder = fs::temp_directory_path() / "qinventur-bench-host";
    fs::remove_all(folder);
    fs::create_directories(folder);

    auto t = std::chrono::steady_clock::now();
    const auto inst = qi::demo::buildInstallation(sizes);
    qi::demo::writeHostDatabases(inst, folder.string());
    std::printf("installation: %zu rooms, %zu INVENTAR objects written in %.3f s\n", inst.rooms.size(),
                inst.modules[0].objects.size(), seconds(t));

    qi::QObjektDb obj;
    if (!obj.Open(folder.string(), (folder / "QOvInventar.mdb").string())) {
        std::fprintf(stderr, "%s\n", obj.LastError().c_str());
        return 1;
    }
    obj.SetTablePrefix("T_I");
    const auto& objects = inst.modules[0].objects;
    constexpr int kLookups = 100000;
    int found = 0;
    t = std::chrono::steady_clock::now();
    qi::QObjektDb::LookupBatch batch(obj);
    for (int i = 0; i < kLookups; ++i) {
        // Nine known numbers, then an unknown one, as a scanner file of a busy day might bring.
        const std::string nr = i % 10 == 9 ? "X" + std::to_string(i) : objects[std::size_t(i * 7919) % objects.size()].name;
        found += obj.FindByInvNr(nr).has_value() ? 1 : 0;
    }
    const double s = seconds(t);
    std::printf("FindByInvNr: %d lookups (%d found) in %.3f s = %.0f lookups per second\n", kLookups, found, s,
                kLookups / s);

    qi::QGebDb geb;
    geb.Open(folder.string(), (folder / "QGebaeude.mdb").string());
    geb.OpenObjects((folder / "QOvInventar.mdb").string(), "T_I");
    std::vector<qi::RoomObject> roomObjects;
    std::size_t total = 0;
    t = std::chrono::steady_clock::now();
    for (const auto& room : inst.rooms) {
        geb.GetObjectsOfRoom(room.id, roomObjects);
        total += roomObjects.size();
    }
    std::printf("GetObjectsOfRoom: %zu rooms, %zu objects in %.3f s\n", inst.rooms.size(), total, seconds(t));

    std::vector<qi::GebRoom> rooms;
    t = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i)
        geb.GetAllRooms(rooms);
    std::printf("GetAllRooms: 100 calls (%zu rooms each) in %.3f s\n", rooms.size(), seconds(t));
    fs::remove_all(folder);
    return 0;
}
