// Builds the demo project: a German Quarn installation with its databases,
// "Projekt.ini", the "Report" folder and scanner data files, always the same
// for the same sizes.
//   qi_mkdemo <project folder> [--reports <folder>] [--quarn-ini <file>] [--modul <name>]
//             [--sites N] [--buildings N] [--floors N] [--rooms N]
//             [--articles N] [--objects N] [--technik-articles N] [--technik-objects N]
//             [--brandschutz-articles N] [--brandschutz-objects N] [--persons N] [--cost-centres N]
// --buildings counts per site, --floors per building, --rooms per floor. --quarn-ini writes the
// host profile file naming the project folder relative to the folder of the profile file, so
// that a copied program folder keeps finding the demo beside it.

#include "DemoInstallation.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <string>

namespace {

int usage()
{
    std::fprintf(stderr,
                 "usage: qi_mkdemo <project folder> [--reports <folder>] [--quarn-ini <file>] [--modul <name>]\n"
                 "       [--sites N] [--buildings N] [--floors N] [--rooms N] [--articles N] [--objects N]\n"
                 "       [--technik-articles N] [--technik-objects N] [--brandschutz-articles N]\n"
                 "       [--brandschutz-objects N] [--persons N] [--cost-centres N]\n");
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return usage();
    qi::demo::Sizes sizes;
    const std::map<std::string, int*> numbers = {
        {"--sites", &sizes.sites},
        {"--buildings", &sizes.buildingsPerSite},
        {"--floors", &sizes.floorsPerBuilding},
        {"--rooms", &sizes.roomsPerFloor},
        {"--articles", &sizes.inventarArticles},
        {"--objects", &sizes.inventarObjects},
        {"--technik-articles", &sizes.technikArticles},
        {"--technik-objects", &sizes.technikObjects},
        {"--brandschutz-articles", &sizes.brandschutzArticles},
        {"--brandschutz-objects", &sizes.brandschutzObjects},
        {"--persons", &sizes.persons},
        {"--cost-centres", &sizes.costCentres}};
    std::string folder, reports, quarnIni, modul = "INVENTAR";
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg.rfind("--", 0) != 0) {
            if (!folder.empty())
                return usage();
            folder = arg;
            continue;
        }
        if (i + 1 >= argc)
            return usage();
        const std::string value = argv[++i];
        if (arg == "--reports")
            reports = value;
        else if (arg == "--quarn-ini")
            quarnIni = value;
        else if (arg == "--modul")
            modul = value;
        else if (const auto it = numbers.find(arg); it != numbers.end()) {
            char* end = nullptr;
            const long n = std::strtol(value.c_str(), &end, 10);
            if (*end != '\0' || n < 0 || n > 10'000'000)
                return usage();
            *it->second = int(n);
        } else
            return usage();
    }
    if (folder.empty())
        return usage();
    try {
        qi::demo::writeDemoProject(sizes, folder, reports, modul);
        if (!quarnIni.empty())
            qi::demo::writeQuarnIni(quarnIni, qi::demo::projectValueFor(quarnIni, folder));
    } catch (const std::exception& e) {
        std::fprintf(stderr, "qi_mkdemo: %s\n", e.what());
        return 1;
    }
    return 0;
}
