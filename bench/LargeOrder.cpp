#include "LargeOrder.h"

#include "FileSystem.h"
#include "OrderSchema.h"
#include "QuarnHost.h"
#include "ReportLinks.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace qi::bench {

namespace {

/// A number from 0 to 99 for the k-th object, always the same.
int percent(std::uint32_t k)
{
    k = k * 2654435761u;
    return int((k >> 16) % 100);
}

std::string line(const std::string& date, int i, const std::string& room, const std::string& inv,
                 const std::string& art)
{
    char time[16];
    std::snprintf(time, sizeof time, "%02d:%02d:%02d", 7 + i / 3600 % 10, i / 60 % 60, i % 60);
    return "17,4711," + date + "," + time + ",0" + room + "," + inv + "," + art + ",I\r\n";
}

} // namespace

void writeLargeOrderFiles(const demo::Installation& inst, const fs::path& folder, int orderRoomCount,
                          std::size_t& lines)
{
    // Objects of rooms outside the order, scanned in rooms of the order.
    std::vector<std::string> outside;
    for (std::size_t r = std::size_t(orderRoomCount); r < inst.rooms.size(); ++r)
        for (const demo::Object* o : inst.objectsOfRoom(0, inst.rooms[r].id))
            outside.push_back(o->name);
    std::size_t nextOutside = 0;

    const int roomsPerFile = (orderRoomCount - 20) / kFiles;
    for (int f = 0; f < kFiles; ++f) {
        const fs::path p = folder / ("Scan" + std::to_string(f + 1) + ".dat");
        std::ofstream out(p, std::ios::binary);
        const std::string date = std::to_string(10 + f) + ".03.2025";
        int i = 0;
        std::string previousRoomObject;
        for (int k = 0; k < roomsPerFile; ++k) {
            const std::size_t r = std::size_t(f * roomsPerFile + k);
            const std::string& nr = inst.rooms[r].nr;
            // The room after this one in the same file takes the objects moved out of it.
            const std::string& next = inst.rooms[std::size_t(f * roomsPerFile + (k + 1) % roomsPerFile)].nr;
            std::string first;
            for (const demo::Object* o : inst.objectsOfRoom(0, inst.rooms[r].id)) {
                const int pc = percent(std::uint32_t(o->id));
                if (pc < 85) {
                    out << line(date, i++, nr, o->name, "SCAN");
                    if (first.empty())
                        first = o->name;
                } else if (pc < 90) {
                    out << line(date, i++, next, o->name, "SCAN");
                } // else: missing
            }
            for (int x = 0; x < 2 && nextOutside < outside.size(); ++x)
                out << line(date, i++, nr, outside[nextOutside++], "FREMD");
            out << line(date, i++, nr, "UNB-" + std::to_string(f) + "-" + std::to_string(k), "ART-X");
            if (!first.empty())
                out << line(date, i++, nr, first, "SCAN"); // twice in one room
            if (k % 10 == 0)
                out << line(date, i++, nr, "", "SCAN"); // without number
            if (k % 5 == 1 && !previousRoomObject.empty())
                out << line(date, i++, nr, previousRoomObject, "SCAN"); // in two rooms
            previousRoomObject = first;
        }
        lines += std::size_t(i);
    }
}

int scale()
{
    static const int s = [] {
        const char* v = std::getenv("QI_BENCH_SCALE");
        return v && std::atoi(v) > 1 ? std::atoi(v) : 1;
    }();
    return s;
}

int orderRooms() { return 1000 / scale(); }
int scannedRooms() { return orderRooms() - 20; }

double seconds(Clock::time_point a, Clock::time_point b) { return std::chrono::duration<double>(b - a).count(); }

long peakKilobytes()
{
    // The high-water mark of this program image: unlike the resource usage's maximum, it
    // starts anew when a process runs another program.
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmHWM:", 0) == 0)
            return std::atol(line.c_str() + 6);
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return u.ru_maxrss;
}

Installation makeInstallation(const fs::path& folder, const fs::path& project,
                              const std::function<void(const demo::Installation&)>& extra)
{
    const pid_t child = fork();
    if (child == 0) {
        demo::Sizes sizes;
        sizes.sites = 2;
        sizes.buildingsPerSite = 3;
        sizes.floorsPerBuilding = 4;
        sizes.roomsPerFloor = 50 / scale();
        sizes.inventarArticles = 200;
        sizes.inventarObjects = 130000 / scale();
        sizes.technikObjects = 100;
        sizes.brandschutzObjects = 100;
        const demo::Installation inst = demo::buildInstallation(sizes);
        demo::writeHostDatabases(inst, project.string());
        std::size_t lines = 0;
        writeLargeOrderFiles(inst, folder, orderRooms(), lines);
        if (extra)
            extra(inst);
        {
            std::ofstream noted(folder / "installation.txt");
            noted << inst.modules[0].objects.size() << " " << lines << "\n";
            for (const demo::Room& r : inst.rooms)
                noted << r.id << " " << r.nr << "\n";
        }
        std::_Exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);

    Installation made;
    std::ifstream noted(folder / "installation.txt");
    noted >> made.objects >> made.lines;
    for (std::int32_t id; noted >> id;) {
        std::string nr;
        noted >> nr;
        made.rooms.emplace_back(id, nr);
    }
    if (made.rooms.size() < std::size_t(orderRooms()))
        made.rooms.clear();
    for (int f = 0; f < kFiles; ++f)
        made.files.push_back((folder / ("Scan" + std::to_string(f + 1) + ".dat")).string());
    return made;
}

LargeOrder::LargeOrder(const fs::path& project, const fs::path& program, const Installation& installation,
                       UserInteraction& ui)
{
    settings.gstProjektPfad = project.string() + "/";
    settings.gstProjekttyp = "ptJet";
    settings.gstAppPfad = program.string();

    orderPath = (project / "Inventur" / "A1.mdb").string();
    {
        auto db = Database::create(orderPath);
        createOrderSchema(*db);
    }
    createReportDatabase((program / "QInventurRpt.mdb").string());
    if (!CheckReportMdbLink(settings, orderPath, ui))
        throw std::runtime_error("the report database could not be linked");
    order = std::make_unique<CAuftragDb>(ui);
    order->setDbPath(orderPath);
    if (!order->OpenDb())
        throw std::runtime_error("order database: " + order->LastError());
    for (int r = 0; r < orderRooms(); ++r) {
        CRaumRec room;
        room.lIdRB = installation.rooms[std::size_t(r)].first;
        room.stRaumNr = installation.rooms[std::size_t(r)].second;
        room.ststatus = r >= scannedRooms() && r < scannedRooms() + 10 ? "L" : "N";
        room.stAuftrag = "A1";
        order->AddNewRaumRec(&room);
    }
    // Quarn's databases are mirrored once and kept while they don't change, as a team's
    // installation is after its first file; the floor, too, loads its copy of them untimed.
    QObjektDb objects;
    if (!objects.Open(settings.gstAppPfad, settings.objectDatabase()))
        throw std::runtime_error("Quarn's objects: " + objects.LastError());
    QGebDb building;
    if (!building.Open(settings.gstAppPfad, settings.buildingDatabase()))
        throw std::runtime_error("Quarn's building: " + building.LastError());
}

} // namespace qi::bench
