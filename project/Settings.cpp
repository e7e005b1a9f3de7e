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

HostSource Settings::buildingDatabase() const
{
    return isJet() ? HostSource::file(gstProjektPfad + "\\QGebaeude.mdb") : HostSource::odbc(gstConnectionString);
}

HostSource Settings::objectDatabase() const
{
    return isJet() ? HostSource::file(gstProjektPfad + objectDatabaseFile()) : HostSource::odbc(gstConnectionString);
}

} // namespace qi
