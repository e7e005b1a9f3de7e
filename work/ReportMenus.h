#pragma once
// The entries of the work window's menus "&Berichte" (mnuReportFkt) and
// "&Fehlerlisten (Auftragsbereich)" (mnuFehlerFkt): index, caption, report file
// (relative to the project folder) and the report window's title. The windows
// build their menus from these tables and the command line names its reports
// after them, so that every caller prints the same report for the same entry.

#include <string_view>

namespace qi {

struct ReportMenuEntry {
    int index;                   ///< control-array index of the entry
    std::string_view caption;    ///< menu caption with its mnemonic
    std::string_view reportFile; ///< "Report\..." below the project folder; empty when the entry prints its own
    std::string_view title;      ///< window title of the report; empty when the entry prints its own
};

namespace reportmenu {
inline constexpr int Artikel = 50;
inline constexpr int Raumerfassung = 100;
inline constexpr int Inventur = 200;
inline constexpr int Inventurauswertung = 250;
inline constexpr int Differenz = 400;
} // namespace reportmenu

namespace fehlermenu {
inline constexpr int Neu = 100;
inline constexpr int Verschoben = 200;
inline constexpr int Fehlend = 300;
} // namespace fehlermenu

/// "&Berichte"; "&Artikel" prints the article tally itself (MakeArtikelAufstellung).
inline constexpr ReportMenuEntry kReportMenu[] = {
    {reportmenu::Artikel, "&Artikel", "", ""},
    {reportmenu::Raumerfassung, "&Raumerfassung", "Report\\invraum.rpt", "Raumliste"},
    {reportmenu::Inventur, "&Inventur", "Report\\invliste.rpt", "Inventurliste"},
    {reportmenu::Inventurauswertung, "I&nventurauswertung", "Report\\invausw.rpt", "Differenzliste"},
    {reportmenu::Differenz, "&Differenz", "Report\\invdiff.rpt", "Differenzliste"},
};

/// "&Fehlerlisten (Auftragsbereich)".
inline constexpr ReportMenuEntry kFehlerMenu[] = {
    {fehlermenu::Neu, "&Neues Inventar", "Report\\InvNeu.rpt", "Liste Neu im Auftragsbereich"},
    {fehlermenu::Verschoben, "&Verschobenes Inventar", "Report\\InvVersch.rpt", "Liste Verschoben"},
    {fehlermenu::Fehlend, "&Fehlendes Inventar", "Report\\InvFehlend.rpt", "Liste Fehlend"},
};

/// The article tally's report, printed by MakeArtikelAufstellung.
inline constexpr std::string_view kArtikelReportFile = "Report\\invart.rpt";
inline constexpr std::string_view kArtikelReportTitle = "Artikelaufstellung";

/// Menu captions.
inline constexpr std::string_view kReportMenuCaption = "&Berichte";
inline constexpr std::string_view kFehlerMenuCaption = "&Fehlerlisten (Auftragsbereich)";

} // namespace qi
