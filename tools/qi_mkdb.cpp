// Builds the program's empty databases from the schema code:
//   qi_mkdb order <file>     the empty order database (QAuftrag.mdb)
//   qi_mkdb register <file>  the empty order register (QInventur.mdb)
//   qi_mkdb report <file>    the report database with its links (QInventurRpt.mdb)

#include "CInventurDb.h"
#include "OrderSchema.h"
#include "ReportLinks.h"

#include <cstdio>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: qi_mkdb order|register|report <file>\n");
        return 2;
    }
    const std::string kind = argv[1];
    try {
        if (kind == "report") {
            qi::createReportDatabase(argv[2]);
            return 0;
        }
        auto db = qi::Database::create(argv[2]);
        if (kind == "order")
            qi::createOrderSchema(*db);
        else if (kind == "register")
            qi::createRegisterSchema(*db);
        else {
            std::fprintf(stderr, "unknown kind %s\n", kind.c_str());
            return 2;
        }
    } catch (const qi::DbError& e) {
        std::fprintf(stderr, "qi_mkdb: %s\n", e.what());
        return 1;
    }
    return 0;
}
