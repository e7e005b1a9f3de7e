#pragma once
// The project result: the state of the whole stocktake, made from every order of the
// register without changing any of them, held in a database of its own (in memory, or a
// private file) that the overview window, the project reports and the command line read.
//
// Texts compare as everywhere in our files (JET: letter case and trailing blanks ignored).
// Dates are kept twice: as the scanner wrote them (Datum "TT.MM.JJJJ", Uhrzeit "hh:mm:ss")
// and as a sortable stamp (stZeit "JJJJ-MM-TT hh:mm:ss"; the raw texts joined by a blank
// where the date is not of the scanner's form).
//
// Tables of the orders (one row per order, room, scan line, difference row):
//
//  P_Auftrag   lAuftragID (register lID), stAuftrag, stPfad (as the register holds it),
//              stDatei (the order database's full path), stStand (kStand... below),
//              iRaeume, iRaeumeN, iRaeumeE, iRaeumeL, iDateien, iScans,
//              iSoll (Soll rows of the difference list: objects Quarn expects in its evaluated rooms),
//              iErwartet (objects Quarn expects in all its rooms, "N" rooms included),
//              iAmPlatz (rows "1 OK"), i1, i2a, i2b, i2c, i3a, i3b (rows per category, as
//              `auswerten` counts them), dProzent (iAmPlatz / iErwartet * 100, 0 without objects),
//              dRaeumeFertig (rooms "E" or "L" / iRaeume * 100), stLetzterScan (max stZeit of its
//              scans, '' without scans), stFehler ('' or why the order could not be read or evaluated).
//  P_Raum      stAuftrag, lRaumID (T_Raum.lID), lIdRB, stRaumNr, stBezeichnung (Quarn's room name),
//              stStatus ("N", "E", "L"), iErwartet (Quarn's objects standing in the room),
//              iAmPlatz ("1 OK" rows of the room), iGescannt (scan lines of the room),
//              dProzent, stLetzterScan, stGebaeudeteil (the building and floor above the room in
//              Quarn's building structure, "Hauptgebäude / Erdgeschoss"; '' where it has none).
//  P_Scan      stAuftrag, stInvNr, stRaum, stArtNr, Datum, Uhrzeit, stZeit, stDatei (name of the
//              scanner file, from T_Dateien by lDatID).
//  P_Diff      stAuftrag, stRaumNr (the room of lRaumID), stSollInvNR, stIstInvNR, stTyp,
//              stBeschreibung, stArtNr, stZiel, stQuelle, stQuarn, Datum, Uhrzeit, stZeit:
//              the order's difference list as it stands, or as a fresh evaluation made it.
//
// Lists across orders (one table each; the command line's `projekt --liste` names):
//
//  L_Verschoben      ("verschoben") an object missing in one order ("3b") whose number was
//                    scanned in another order's room other than its own: stInvNr, stBeschreibung,
//                    stArtNr, stAuftragSoll, stRaumSoll, stAuftragIst, stRaumIst, Datum, Uhrzeit, stZeit.
//  L_Doppelt         ("doppelt") every scan of a number scanned in more than one order: stInvNr,
//                    stAuftrag, stRaum, Datum, Uhrzeit, stZeit, stDatei, iAuftraege (orders that
//                    scanned it), iRang (1 for the latest scan of the number, 2 ...).
//  L_Zuviel          ("zuviel") "2b" rows that no other order expects: stAuftrag, stRaum, stInvNr,
//                    stArtNr, stQuarn (Quarn's room of the object), Datum, Uhrzeit, stZeit.
//  L_Unbekannt       ("unbekannt") each "2c" number once: stInvNr, stArtNr (of its first scan),
//                    stAuftraege (the orders, "A, B"), stRaum (room of its first scan), iScans, Datum, stZeit.
//  L_Fehlend         ("fehlend") "3b" numbers that no order scanned: stInvNr, stBeschreibung,
//                    stArtNr, stAuftrag, stRaum.
//  L_Ungeprueft      ("ungeprueft") rooms of the building structure in no order: lIdRB, stRaumNr,
//                    stBezeichnung, iErwartet, stPruefung ("nicht geprüft").
//  L_Ueberschneidung ("ueberschneidung") rooms in more than one order: lIdRB, stRaumNr,
//                    stBezeichnung, stAuftraege ("A, B"), iAuftraege.
//  L_Hinweis         ("hinweise") what needs attention: stAuftrag ('' for files without an
//                    order), stArt (kHinweis... below), stText (a German sentence saying what
//                    and where), stDatei.
//
// Quarn's names of the articles that the scans of L_Unbekannt carry:
//
//  P_Artikel   stArtNr, stBeschreibung (the article's name in Quarn; '' where Quarn has no article of
//              that number): one row per article number of L_Unbekannt.

#include <string>
#include <vector>

namespace qi {

class Database;

/// How an order's figures were obtained (P_Auftrag.stStand).
inline constexpr const char* kStandAktuell = "aktuell";              ///< its difference list fits its data
inline constexpr const char* kStandNeu = "neu ausgewertet";          ///< its data changed after the list was made
inline constexpr const char* kStandNie = "nie ausgewertet";          ///< no difference list yet
inline constexpr const char* kStandFehlt = "Datei fehlt";            ///< the order database is not at its place
inline constexpr const char* kStandFehler = "nicht lesbar";          ///< reading or evaluating it failed (stFehler)

/// Kinds of L_Hinweis rows.
inline constexpr const char* kHinweisNieAusgewertet = "nie ausgewertet";
inline constexpr const char* kHinweisVeraltet = "Auswertung veraltet";
inline constexpr const char* kHinweisRaeumeN = "Räume ohne Scandaten";
inline constexpr const char* kHinweisDateiFehlt = "Scannerdatei fehlt";
inline constexpr const char* kHinweisAuftragFehlt = "Auftragsdatei fehlt";
inline constexpr const char* kHinweisNichtLesbar = "nicht lesbar";
inline constexpr const char* kHinweisGesichert = "gesicherte Kopie";
inline constexpr const char* kHinweisOhneAuftrag = "Datei ohne Auftrag";

/// The text of rooms in L_Ungeprueft.
inline constexpr const char* kNichtGeprueft = "nicht geprüft";

/// Creates the tables above in an empty database.
void createProjectResultSchema(Database& db);

/// Indexes P_Scan and P_Diff by their numbers, once: only the correction proposals look rows up
/// by number, so the overview does not make the indexes for every result.
void indexNumbers(Database& db);

/// The table of a list by its command-line name ("verschoben" → "L_Verschoben"); empty when unknown.
std::string listTable(const std::string& listName);
/// The command-line names of the lists, in the order above ("verschoben", ... "hinweise").
std::vector<std::string> listNames();

} // namespace qi
