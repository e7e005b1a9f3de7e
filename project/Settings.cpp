#include "Settings.h"

namespace qi {

std::string Settings::tablePrefix() const
{
    switch (giModul) {
    case 0: return "T_I";
    case 1: return "T_T";
    case 2: return "T_B";
    default: return {};
    }
}

std::string Settings::objectDatabaseFile() const
{
    switch (giModul) {
    case 0: return "\\QOvInventar.mdb";
    case 1: return "\\QOvTechnik.mdb";
    case 2: return "\\QOvBrandschutz.mdb";
    default: return {};
    }
}

std::string Settings::buildingDatabase() const
{
    return isJet() ? gstProjektPfad + "\\QGebaeude.mdb" : gstConnectionString;
}

std::string Settings::objectDatabase() const
{
    return isJet() ? gstProjektPfad + objectDatabaseFile() : gstConnectionString;
}

} // namespace qi
