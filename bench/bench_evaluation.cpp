// The whole reconciliation of the large order (LargeOrder.h): it times the import of
// the files through "Hinzufügen", the evaluation run, the article tally and the
// inventory list, and a sqlite3-shell floor that loads the same lines and classifies
// them set-based into the same six categories; both print their count per category.

#include "LargeOrder.h"
#include "ScriptedUserInteraction.h"
#include "ShellFloor.h"
#include "frmWork.h"

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using qi::bench::Clock;
using qi::bench::seconds;
using qi::bench::cpuSeconds;

namespace {

/// The scripted user, noting when each step of the evaluation began.
class TimedUser : public qi::ScriptedUserInteraction {
public:
    void reportStep(const std::string& step, std::int64_t done, std::int64_t total) override
    {
        ScriptedUserInteraction::reportStep(step, done, total);
        if (stepStarts.empty() || stepStarts.back().first != step)
            stepStarts.emplace_back(step, Clock::now());
    }
    std::vector<std::pair<std::string, Clock::time_point>> stepStarts;
};

/// Every row of the difference list, key and all columns, in the order of the keys.
std::vector<std::string> differenceList(qi::CAuftragDb& order)
{
    std::vector<std::string> lines;
    const qi::Recordset rs = order.database()->query("SELECT * FROM T_Differenzliste ORDER BY lID");
    for (const auto& r : rs.rows()) {
        std::string line;
        for (const qi::Value& v : r)
            line += (qi::isNull(v) ? std::string("<Null>") : qi::toText(v)) + "|";
        lines.push_back(line);
    }
    return lines;
}

/// QI_BENCH_DIFFLIST_SAVE=file writes the difference list there; QI_BENCH_DIFFLIST_EXPECT=file
/// compares it, key for key, with one saved before. False when they differ.
bool checkDifferenceList(qi::CAuftragDb& order)
{
    const std::vector<std::string> lines = differenceList(order);
    if (const char* save = std::getenv("QI_BENCH_DIFFLIST_SAVE")) {
        std::ofstream out(save, std::ios::binary);
        for (const std::string& l : lines)
            out << l << "\n";
        std::printf("difference list saved to %s (%zu rows)\n", save, lines.size());
    }
    const char* expect = std::getenv("QI_BENCH_DIFFLIST_EXPECT");
    if (!expect)
        return true;
    std::ifstream in(expect, std::ios::binary);
    std::vector<std::string> saved;
    for (std::string l; std::getline(in, l);)
        saved.push_back(l);
    std::size_t first = 0;
    while (first < lines.size() && first < saved.size() && lines[first] == saved[first])
        ++first;
    if (first == lines.size() && first == saved.size()) {
        std::printf("difference list identical to %s, row for row (%zu rows)\n", expect, lines.size());
        return true;
    }
    std::printf("difference list DIFFERS from %s at row %zu (%zu rows, %zu saved)\n", expect, first + 1,
                lines.size(), saved.size());
    if (first < lines.size())
        std::printf("  now:   %s\n", lines[first].c_str());
    if (first < saved.size())
        std::printf("  saved: %s\n", saved[first].c_str());
    return false;
}

} // namespace

int main()
{
    const fs::path folder = fs::temp_directory_path() / ("qi-bench-evaluation-" + std::to_string(::getpid()));
    fs::remove_all(folder);
    const fs::path project = folder / "Projekt";
    const fs::path program = folder / "Programm";
    fs::create_directories(project / "Inventur");
    fs::create_directories(program);

    const qi::bench::Installation installation = qi::bench::makeInstallation(
        folder, project, [&](const qi::demo::Installation& inst) { qi::bench::writeFloorObjects(inst, folder); });
    if (installation.rooms.empty()) {
        std::printf("the installation could not be made\n");
        return 1;
    }
    const std::vector<std::string>& files = installation.files;
    const std::vector<std::pair<std::int32_t, std::string>>& rooms = installation.rooms;
    const std::size_t objects = installation.objects, lines = installation.lines;

    TimedUser ui;
    qi::bench::LargeOrder large(project, program, installation, ui);
    qi::CAuftragDb& order = *large.order;
    const qi::Settings& settings = large.settings;

    qi::frmWork work(order, settings, ui);
    const double c0 = cpuSeconds(RUSAGE_SELF);
    const auto t0 = Clock::now();
    for (const std::string& f : files) {
        ui.fileChoices.push_back(f);
        work.pbAdd_Click();
    }
    const auto t1 = Clock::now();
    ui.stepStarts.clear();
    const bool evaluated = work.ReportDifferenzListe();
    const auto t2 = Clock::now();
    const double c2 = cpuSeconds(RUSAGE_SELF);
    const bool sameList = checkDifferenceList(order);
    const auto evaluationSteps = ui.stepStarts;
    const bool tallied = work.MakeArtikelAufstellung();
    const auto t3 = Clock::now();
    const bool listed = work.MakeInvListe();
    const auto t4 = Clock::now();
    const long peak = qi::bench::peakKilobytes();

    std::map<std::string, long> ours;
    const qi::Recordset types =
        order.database()->query("SELECT substr(stTyp, 1, 2), count(*) FROM T_Differenzliste GROUP BY 1 ORDER BY 1");
    for (const auto& t : types.rows())
        ours[qi::toText(t[0])] = long(qi::toLong(t[1]));
    const long scans = long(qi::toLong(order.database()->scalar("SELECT count(*) FROM T_DatInventur")));
    const long diffRows = long(qi::toLong(order.database()->scalar("SELECT count(*) FROM T_Differenzliste")));
    const long invRows = long(qi::toLong(order.database()->scalar("SELECT count(*) FROM T_Invliste")));

    qi::bench::writeFloorRooms(*order.database(), folder);
    const qi::bench::Floor shellFloor = qi::bench::runFloor(folder, files);
    const std::map<std::string, long>& floor = shellFloor.counts;
    const double floorCpu = shellFloor.cpu;
    const double floorTime = shellFloor.seconds;

    const double import = seconds(t0, t1), evaluation = seconds(t1, t2);
    std::printf("installation: %zu rooms, %zu INVENTAR objects; order: %d rooms; %zu lines in %d files\n",
                rooms.size(), objects, qi::bench::orderRooms(), lines, qi::bench::kFiles);
    std::printf("import:                 %7.3f s (%ld scan rows, %zu conflicts asked, %zu messages)\n", import, scans,
                ui.conflicts.size(), ui.messages.size());
    std::printf("evaluation:             %7.3f s (%ld difference rows)%s\n", evaluation, diffRows,
                evaluated ? "" : " FAILED");
    for (std::size_t i = 0; i < evaluationSteps.size(); ++i)
        std::printf("  %-36s %6.3f s\n", evaluationSteps[i].first.c_str(),
                    seconds(evaluationSteps[i].second, i + 1 < evaluationSteps.size() ? evaluationSteps[i + 1].second : t2));
    std::printf("article tally:          %7.3f s%s\n", seconds(t2, t3), tallied ? "" : " FAILED");
    std::printf("inventory list:         %7.3f s (%ld rows)%s\n", seconds(t3, t4), invRows, listed ? "" : " FAILED");
    std::printf("sqlite3 shell floor:    %7.3f s (load and classify)\n", floorTime);
    std::printf("ratio (import + evaluation) / floor: %.2f wall clock, %.2f processor time (%.3f s / %.3f s)\n",
                (import + evaluation) / floorTime, (c2 - c0) / floorCpu, c2 - c0, floorCpu);
    std::printf("peak memory: %.1f MB\n", double(peak) / 1024.0);
    bool same = ours.size() == floor.size();
    std::printf("category      ours   floor\n");
    for (const auto& [typ, n] : ours) {
        const long f = floor.count(typ) ? floor.at(typ) : -1;
        same = same && f == n;
        std::printf("  %-4s %10ld %7ld\n", typ.c_str(), n, f);
    }
    std::printf("counts per category %s\n", same ? "agree" : "DIFFER");

    order.CloseDb();
    fs::remove_all(folder);
    return same && sameList && evaluated && tallied && listed ? 0 : 1;
}
