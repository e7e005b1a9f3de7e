#include "ProjectHints.h"

#include "FileSystem.h"

namespace qi::hinweis {

namespace {

constexpr const char* kFreshFigures = " Die Zahlen der Übersicht stammen aus einer eigenen Auswertung; der Auftrag "
                                      "selbst bleibt unverändert.";

} // namespace

std::string auftragFehlt(const std::string& order, const std::string& file)
{
    return "Die Datenbank des Auftrags '" + order + "' ist nicht an ihrem Platz: " + displayPath(file);
}

std::string nieAusgewertet(const std::string& order, bool fresh)
{
    return "Der Auftrag '" + order + "' ist noch nie ausgewertet worden." + (fresh ? kFreshFigures : "");
}

std::string veraltet(const std::string& order, bool fresh)
{
    return "Die Daten des Auftrags '" + order + "' haben sich seit seiner letzten Auswertung geändert." +
           (fresh ? kFreshFigures : " Die Zahlen der Übersicht sind die seiner letzten Auswertung.");
}

std::string raeumeN(const std::string& order, int rooms)
{
    if (rooms == 1)
        return "Im Auftrag '" + order + "' ist 1 Raum noch ohne Scandaten (Status N).";
    return "Im Auftrag '" + order + "' sind " + std::to_string(rooms) + " Räume noch ohne Scandaten (Status N).";
}

std::string dateiFehlt(const std::string& order, const std::string& file)
{
    return "Die Scannerdatei '" + displayPath(file) + "' des Auftrags '" + order +
           "' ist an dieser Stelle nicht mehr vorhanden.";
}

std::string nichtLesbar(const std::string& order, const std::string& why)
{
    return "Der Auftrag '" + order + "' kann nicht gelesen oder ausgewertet werden: " + why;
}

std::string gesichert(const std::string& order, const std::string& keptAt, const std::string& fileName)
{
    return "Im Ordner Inventur\\Gesichert liegt eine gesicherte Kopie des Auftrags '" + order + "' vom " + keptAt +
           ": " + fileName;
}

std::string ohneAuftrag(const std::string& fileName)
{
    return "Die Datei '" + fileName + "' im Ordner Inventur gehört zu keinem Auftrag des Projekts.";
}

} // namespace qi::hinweis
