#include "ProjectHints.h"

#include <gtest/gtest.h>

namespace qi {
namespace {

TEST(ProjectHints, EachSentenceNamesTheOrderAndWhatNeedsAttention)
{
    EXPECT_EQ(hinweis::auftragFehlt("EG", "/p/Inventur/EG.mdb"),
              "Die Datenbank des Auftrags 'EG' ist nicht an ihrem Platz: /p/Inventur/EG.mdb");
    EXPECT_EQ(hinweis::nieAusgewertet("EG", false), "Der Auftrag 'EG' ist noch nie ausgewertet worden.");
    EXPECT_EQ(hinweis::nieAusgewertet("EG", true),
              "Der Auftrag 'EG' ist noch nie ausgewertet worden. Die Zahlen der Übersicht stammen aus einer eigenen "
              "Auswertung; der Auftrag selbst bleibt unverändert.");
    EXPECT_EQ(hinweis::veraltet("OG", true),
              "Die Daten des Auftrags 'OG' haben sich seit seiner letzten Auswertung geändert. Die Zahlen der "
              "Übersicht stammen aus einer eigenen Auswertung; der Auftrag selbst bleibt unverändert.");
    EXPECT_EQ(hinweis::veraltet("OG", false),
              "Die Daten des Auftrags 'OG' haben sich seit seiner letzten Auswertung geändert. Die Zahlen der "
              "Übersicht sind die seiner letzten Auswertung.");
    EXPECT_EQ(hinweis::raeumeN("EG", 1), "Im Auftrag 'EG' ist 1 Raum noch ohne Scandaten (Status N).");
    EXPECT_EQ(hinweis::raeumeN("EG", 3), "Im Auftrag 'EG' sind 3 Räume noch ohne Scandaten (Status N).");
    EXPECT_EQ(hinweis::dateiFehlt("EG", "/daten/Scan_EG_Teil1.dat"),
              "Die Scannerdatei '/daten/Scan_EG_Teil1.dat' des Auftrags 'EG' ist an dieser Stelle nicht mehr "
              "vorhanden.");
    EXPECT_EQ(hinweis::nichtLesbar("EG", "Die Datei ist beschädigt."),
              "Der Auftrag 'EG' kann nicht gelesen oder ausgewertet werden: Die Datei ist beschädigt.");
    EXPECT_EQ(hinweis::gesichert("EG", "25.11.2026 17:31:05", "EG 2026-11-25 17-31-05.mdb"),
              "Im Ordner Inventur\\Gesichert liegt eine gesicherte Kopie des Auftrags 'EG' vom 25.11.2026 17:31:05: "
              "EG 2026-11-25 17-31-05.mdb");
    EXPECT_EQ(hinweis::ohneAuftrag("Alt.mdb"),
              "Die Datei 'Alt.mdb' im Ordner Inventur gehört zu keinem Auftrag des Projekts.");
}

TEST(ProjectHints, ScannerFilePathsReadAsAPersonReadsThem)
{
    // The system's paths keep backslashes; the sentence shows the platform's separator.
    EXPECT_EQ(hinweis::dateiFehlt("EG", "\\daten\\Scan.dat"),
              "Die Scannerdatei '/daten/Scan.dat' des Auftrags 'EG' ist an dieser Stelle nicht mehr vorhanden.");
}

} // namespace
} // namespace qi
