// qi_jetmirror: reads a Jet file into a new mirror file, in a process of its own so
// that a damaged file can't take the program with it.
//
//   qi_jetmirror <Jet file> <mirror file> <identity> [--alle]
//
// Without "--alle" only Quarn's tables that the system reads are mirrored. Exit code
// 0: the mirror is finished; 2: the Jet file can't be read; 1: wrong call or another error.

#include "DbError.h"
#include "JetFile.h"
#include "MirrorWriter.h"
#include "QuarnTables.h"

#include <cstdio>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 4 && !(argc == 5 && std::string(argv[4]) == "--alle")) {
        std::fprintf(stderr, "qi_jetmirror <Jet-Datei> <Spiegeldatei> <Kennung> [--alle]\n");
        return 1;
    }
    const bool all = argc == 5;
    try {
        qi::MirrorWriter mirror(argv[2]);
        qi::readJetFile(argv[1], mirror, [all](const std::string& table) {
            return all || qi::findQuarnTable(table) != nullptr;
        });
        mirror.finish(argv[3]);
        return 0;
    } catch (const qi::DbError& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return e.number() == qi::dberr::UnrecognizedFormat ? 2 : 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
