#include "QuarnTables.h"

#include <algorithm>
#include <cctype>

namespace qi {

namespace {

bool sameName(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](unsigned char x, unsigned char y) {
               return std::tolower(x) == std::tolower(y);
           });
}

/// Every column of the contract, in the spelling the statements use.
constexpr const char* kColumns[] = {
    "lId",        "lParentId",  "byTyp",          "stNr",       "stBezeichnung", "stRaumNr",  "lRaumverantwId",
    "stName",     "stBeschreibung", "lArtikelId", "stOrt",      "lGebstruId",    "byGebstruTyp", "stBemerkung",
    "iVariante",  "lKstId",     "stArtNr",        "stVorname",  "stKST",
};

std::vector<QuarnTable> makeTables()
{
    std::vector<QuarnTable> tables = {
        {"T_Gebstru", {"lId", "lParentId"}},
        {"T_Raumkern", {"lId", "stRaumNr", "lRaumverantwId"}},
    };
    for (const char* objekt : {"T_IObjekt", "T_TObjekt", "T_BObjekt"})
        tables.push_back({objekt, {"lId", "stName", "lGebstruId", "stOrt", "lArtikelId", "lKstId"}});
    for (const char* artikel : {"T_IArtikel", "T_TArtikel", "T_BArtikel"})
        tables.push_back({artikel, {"lId", "stArtNr"}});
    tables.push_back({"T_AnsprechPartner", {"lId"}});
    tables.push_back({"T_KST", {"lId"}});
    return tables;
}

} // namespace

const std::vector<QuarnTable>& quarnTables()
{
    static const std::vector<QuarnTable> tables = makeTables();
    return tables;
}

const QuarnTable* findQuarnTable(std::string_view name)
{
    for (const QuarnTable& t : quarnTables())
        if (sameName(t.name, name))
            return &t;
    return nullptr;
}

std::string quarnColumnName(const std::string& column)
{
    for (const char* c : kColumns)
        if (sameName(c, column))
            return c;
    return column;
}

} // namespace qi
