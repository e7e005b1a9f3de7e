#include "CommandLine.h"

#include <algorithm>
#include <utility>

namespace qi::cli {

namespace {

constexpr std::string_view kProgram = "qinventur-cli";
constexpr std::string_view kProjekt = "--projekt";

std::vector<CommandInfo> makeCommands()
{
    std::vector<CommandInfo> c;
    c.push_back({"auftraege", "auftraege", "Aufträge des Projekts auflisten",
                 "Listet die Aufträge des Projekts auf, einen je Zeile: Name, erstellt, geändert und\n"
                 "Ersteller, durch Tabulatoren getrennt. Die erste Zeile nennt die Spalten.\n",
                 0, 0, {}, {}, {kSuccess, kFailure, kBadArguments, kProjectUnusable},
                 {"qinventur-cli auftraege", "qinventur-cli --projekt /srv/quarn/Nord auftraege"}});
    c.push_back({"projekt", "projekt [--liste LISTE]", "Übersicht über alle Aufträge des Projekts",
                 "Zeigt, wie weit die Inventur des ganzen Projekts ist, ohne einen Auftrag zu ändern:\n"
                 "Aufträge, deren Daten sich seit ihrer Differenzliste geändert haben, werden in einer\n"
                 "privaten Kopie neu ausgewertet. Der Befehl arbeitet auch, während ein anderes\n"
                 "Programm das Projekt bearbeitet.\n"
                 "\n"
                 "Ohne --liste: eine Zeile je Auftrag des Auftragsverzeichnisses, durch Tabulatoren\n"
                 "getrennt, mit einer Kopfzeile: Auftrag, Stand der Auswertung, Räume mit Status N, E\n"
                 "und L, Anteil der fertigen Räume (E oder L) in Prozent, Scannerdateien, Scans,\n"
                 "erwartete Objekte (laut Quarn in allen Räumen des Auftrags), davon am Platz gefunden,\n"
                 "Anteil gefunden in Prozent, die Objekte je Kategorie der Differenzliste (1, 2a, 2b,\n"
                 "2c, 3a, 3b) und der letzte Scan. Die letzte Zeile \"Projekt\" zählt alle Aufträge\n"
                 "zusammen.\n"
                 "\n"
                 "Mit --liste: eine Liste über die Aufträge hinweg, eine Zeile je Eintrag, durch\n"
                 "Tabulatoren getrennt, mit einer Kopfzeile. LISTE ist eine von:\n"
                 "  verschoben       Objekte, die in ihrem Auftrag fehlen (3b) und im Raum eines\n"
                 "                   anderen Auftrags gescannt wurden\n"
                 "  doppelt          jeder Scan einer Nummer, die in mehreren Aufträgen gescannt wurde\n"
                 "  zuviel           zuviel im Auftrag (2b), und kein anderer Auftrag erwartet es\n"
                 "  unbekannt        Nummern, die Quarn nicht kennt (2c), jede einmal\n"
                 "  fehlend          Objekte, die fehlen (3b) und in keinem Auftrag gescannt wurden\n"
                 "  ungeprueft       Räume der Gebäudestruktur, die keinem Auftrag gehören\n"
                 "  ueberschneidung  Räume, die mehreren Aufträgen gehören\n"
                 "  hinweise         was Aufmerksamkeit braucht (nie ausgewertet, veraltet, Räume\n"
                 "                   ohne Scandaten, fehlende Dateien, gesicherte Kopien, Dateien\n"
                 "                   ohne Auftrag)\n"
                 "\n"
                 "Optionen:\n"
                 "  --liste LISTE  statt der Übersicht diese Liste\n",
                 0, 0, {"--liste"}, {}, {kSuccess, kFailure, kBadArguments, kProjectUnusable},
                 {"qinventur-cli projekt", "qinventur-cli projekt --liste verschoben",
                  "qinventur-cli --projekt /srv/quarn/Nord projekt --liste fehlend"}});
    c.push_back({"korrekturen",
                 "korrekturen [--annehmen|--ablehnen|--offen NUMMER... [--art ART] [--kommentar TEXT]] "
                 "[--export ORDNER [--format xlsx|csv]]",
                 "Korrekturliste für Quarn: Vorschläge ansehen, entscheiden, ausgeben",
                 "Die Korrekturliste schlägt aus den Zahlen des ganzen Projekts (siehe \"projekt --help\")\n"
                 "vor, was in Quarn zu berichtigen ist, einen Vorschlag je Objekt und Art:\n"
                 "  Standort ändern  gefunden in einem anderen Raum als dem laut Quarn\n"
                 "  Neu erfassen     eine Nummer, die Quarn nicht kennt\n"
                 "  Fehlt            laut Quarn in einem geprüften Raum, in keinem Auftrag gefunden\n"
                 "  Klären           in mehreren Aufträgen in verschiedenen Räumen gescannt\n"
                 "Die Entscheidungen stehen in \"QInventurKorrekturen.db\" im Projektordner. QInventur\n"
                 "ändert die Daten von Quarn nicht.\n"
                 "\n"
                 "Ohne Optionen: listet die Vorschläge auf, einen je Zeile, durch Tabulatoren getrennt,\n"
                 "mit einer Kopfzeile: Art, Inventar-Nr., Raum alt (laut Quarn), Raum neu (bei Klären\n"
                 "alle Räume der Scans), Aufträge, Entscheidung, Kommentar und Person. Ein Vorschlag,\n"
                 "dessen Angaben sich seit der Entscheidung geändert haben, steht als \"geändert – bitte\n"
                 "prüfen\" mit der bisherigen Entscheidung in Klammern.\n"
                 "\n"
                 "Mit --annehmen, --ablehnen oder --offen: entscheidet die Vorschläge zu den\n"
                 "Inventarnummern, alle zusammen oder, wenn eine Nummer keinen Vorschlag hat, keinen.\n"
                 "Hat eine Nummer Vorschläge zweier Arten, nennt --art die Art. Entscheiden braucht das\n"
                 "Projekt: Bearbeitet es ein anderes Programm, wird nichts entschieden.\n"
                 "\n"
                 "Mit --export: schreibt die angenommenen Vorschläge für den Datenimport von Quarn in\n"
                 "den Ordner, als \"Korrekturen.xlsx\" (ein Blatt je Art) oder als CSV-Dateien je Art\n"
                 "(\"Korrekturen_Standort.csv\", \"Korrekturen_Neu.csv\", \"Korrekturen_Fehlt.csv\",\n"
                 "\"Korrekturen_Klaeren.csv\"; Semikolons, UTF-8). Die Spalten nennt die README.\n"
                 "\n"
                 "Optionen:\n"
                 "  --annehmen        die Vorschläge annehmen\n"
                 "  --ablehnen        die Vorschläge ablehnen\n"
                 "  --offen           die Entscheidung zurücknehmen\n"
                 "  --art ART         nur Vorschläge dieser Art: standort, neu, fehlt oder klaeren\n"
                 "  --kommentar TEXT  ein Kommentar zur Entscheidung\n"
                 "  --export ORDNER   die angenommenen Vorschläge in diesen Ordner schreiben\n"
                 "  --format xlsx|csv die Art der Dateien von --export (ohne --format: xlsx)\n",
                 0, -1, {"--art", "--kommentar", "--export", "--format"}, {"--annehmen", "--ablehnen", "--offen"},
                 {kSuccess, kFailure, kBadArguments, kProjectUnusable, kReadOnly, kProposalUnknown},
                 {"qinventur-cli korrekturen", "qinventur-cli korrekturen --annehmen 100234 100235 --kommentar \"umgezogen\"",
                  "qinventur-cli korrekturen --ablehnen 100240 --art standort",
                  "qinventur-cli korrekturen --export /daten/quarn --format csv"}});
    c.push_back({"anlegen", "anlegen NAME [--mitarbeiter WER]", "Auftrag anlegen",
                 "Legt den Auftrag NAME an, wie \"Auftrag Neu\" im Hauptfenster: seine Datenbank\n"
                 "\"Inventur\\NAME.mdb\" im Projektordner, kopiert aus \"QAuftrag.mdb\", und seine Zeile\n"
                 "im Auftragsverzeichnis. Der Name muss ein Dateiname sein können; abgewiesen werden\n"
                 "\".\" und \"..\", die Zeichen < > : \" / \\ | ? *, Steuerzeichen, Gerätenamen wie CON,\n"
                 "NUL oder COM1, ein Punkt oder Leerzeichen am Ende und Namen über 243 Bytes.\n"
                 "\n"
                 "Optionen:\n"
                 "  --mitarbeiter WER  der Mitarbeiter, der den Auftrag anlegt (Ersteller)\n",
                 1, 1, {"--mitarbeiter"}, {},
                 {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderExists, kNameRefused, kReadOnly},
                 {"qinventur-cli anlegen \"Lager Süd\" --mitarbeiter Meier"}});
    c.push_back({"loeschen", "loeschen NAME", "Auftrag löschen",
                 "Löscht den Auftrag NAME: seine Zeile im Auftragsverzeichnis und seine Datenbank,\n"
                 "die zuvor im Ordner \"Inventur\\Gesichert\" gesichert wird (siehe \"gesichert --help\").\n"
                 "Der Ordner \"Inventur\" bleibt. Ein Auftrag, dessen Datenbank nicht im Ordner\n"
                 "\"Inventur\" des Projekts liegt, wird weder gelöscht noch geöffnet.\n",
                 1, 1, {}, {}, {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderUnknown, kReadOnly},
                 {"qinventur-cli loeschen \"Lager Süd\""}});
    c.push_back({"raeume", "raeume NAME [--setzen [RAUM[:L|:N] ...] [--datei DATEI] [--alle]]",
                 "Räume eines Auftrags auflisten oder festlegen",
                 "Ohne --setzen: listet die Räume des Auftrags auf, einen je Zeile: Raum, Status,\n"
                 "Datum, Anzahl und Datei, durch Tabulatoren getrennt, mit einer Kopfzeile. Der\n"
                 "Auftrag wird dabei nur gelesen. Wurde ein Befehl, der ihn änderte, abgebrochen,\n"
                 "zeigt er den Stand vor diesem Befehl, gelesen aus einer privaten Kopie.\n"
                 "\n"
                 "Mit --setzen: legt die Räume des Auftrags fest und speichert sie, wie es die\n"
                 "Raumauswahl beim Schließen tut: Die Differenzliste wird geleert, T_Raum neu\n"
                 "geschrieben und der Status der Räume aus den Scandaten gesetzt. Die Räume stehen\n"
                 "als Raumnummern hinter dem Namen, in einer Datei (--datei) oder sind alle Räume der\n"
                 "Gebäudestruktur (--alle). Ein neuer Raum bekommt den Status N, ein Raum des\n"
                 "Auftrags behält seinen; RAUM:L markiert einen Raum (L), RAUM:N nimmt die\n"
                 "Markierung zurück.\n"
                 "\n"
                 "Optionen:\n"
                 "  --setzen       die Räume festlegen, statt sie aufzulisten\n"
                 "  --datei DATEI  Raumnummern aus der Datei, eine je Zeile, auch mit :L oder :N\n"
                 "                 (leere Zeilen und Zeilen, die mit # beginnen, zählen nicht)\n"
                 "  --alle         alle Räume der Gebäudestruktur\n",
                 1, -1, {"--datei"}, {"--setzen", "--alle"},
                 {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderUnknown, kRoomUnknown, kReadOnly},
                 {"qinventur-cli raeume \"Lager Süd\"", "qinventur-cli raeume \"Lager Süd\" --setzen 1.01 1.02 1.03:L",
                  "qinventur-cli raeume \"Lager Süd\" --setzen --datei raeume.txt",
                  "qinventur-cli raeume \"Lager Süd\" --setzen --alle"}});
    c.push_back({"hinzufuegen", "hinzufuegen NAME DATEI... [--konflikt behalten|verwerfen]",
                 "Scannerdateien hinzufügen",
                 "Fügt dem Auftrag die Scannerdateien hinzu, wie \"Hinzufügen\" im Auftragsfenster, mit\n"
                 "allen Prüfungen und Meldungen: Räume, die nicht zum Auftrag gehören, Daten\n"
                 "verschiedener Tage, bereits eingelesene Räume und schon hinzugefügte Dateien weisen\n"
                 "eine Datei ab. Die Dateien werden nicht kopiert; der Auftrag merkt sich ihren Pfad.\n"
                 "\n"
                 "Ein Objekt, das in zwei Räumen eingescannt wurde, entscheidet --konflikt: behalten\n"
                 "behält das erste Auftreten, verwerfen ersetzt es durch das zweite. Ohne --konflikt\n"
                 "hält ein solcher Konflikt den Befehl an.\n"
                 "\n"
                 "Wird eine Datei abgewiesen oder hält ein Konflikt den Befehl an, bleibt der Auftrag,\n"
                 "wie er vor dem Befehl war: Keine der Dateien ist dann hinzugefügt.\n"
                 "\n"
                 "Optionen:\n"
                 "  --konflikt behalten|verwerfen  die Entscheidung für Objekte, die in zwei Räumen\n"
                 "                                 eingescannt wurden\n",
                 2, -1, {"--konflikt"}, {},
                 {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderUnknown, kNoRooms, kRoomsNotInOrder,
                  kSeveralDays, kRoomsAlreadyRead, kFileAlreadyAdded, kUnresolvedConflict, kFileMissing, kReadOnly},
                 {"qinventur-cli hinzufuegen \"Lager Süd\" /daten/scan1.dat /daten/scan2.dat",
                  "qinventur-cli hinzufuegen \"Lager Süd\" /daten/scan3.dat --konflikt verwerfen"}});
    c.push_back({"entfernen", "entfernen NAME DATEINAME [--konflikt behalten|verwerfen]",
                 "Scannerdatei entfernen und neu einlesen",
                 "Entfernt die Scannerdatei DATEINAME (ihr Name ohne Ordner) aus dem Auftrag und liest\n"
                 "die Scandaten aus den übrigen Dateien neu ein, wie \"Entfernen\" im Auftragsfenster.\n"
                 "Objekte, die in zwei Räumen eingescannt wurden, entscheidet dabei wieder --konflikt\n"
                 "(siehe \"hinzufuegen --help\"). Fehlt eine Datei an ihrem Ort, enthält eine Datei\n"
                 "Räume einer vorhergehenden oder hält ein Konflikt den Befehl an, bleibt der Auftrag,\n"
                 "wie er vor dem Befehl war.\n"
                 "\n"
                 "Optionen:\n"
                 "  --konflikt behalten|verwerfen  die Entscheidung für Objekte, die in zwei Räumen\n"
                 "                                 eingescannt wurden\n",
                 2, 2, {"--konflikt"}, {},
                 {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderUnknown, kRoomsAlreadyRead,
                  kUnresolvedConflict, kFileMissing, kReadOnly},
                 {"qinventur-cli entfernen \"Lager Süd\" scan2.dat --konflikt behalten"}});
    c.push_back({"neu-einlesen", "neu-einlesen NAME [--konflikt behalten|verwerfen]",
                 "Scandaten aus allen Dateien neu einlesen",
                 "Liest die Scandaten des Auftrags aus allen seinen Scannerdateien neu ein, wie\n"
                 "\"Auswertung aktualisieren\" im Auftragsfenster. Objekte, die in zwei Räumen\n"
                 "eingescannt wurden, entscheidet dabei wieder --konflikt (siehe \"hinzufuegen\n"
                 "--help\"). Fehlt eine Datei an ihrem Ort, enthält eine Datei Räume einer\n"
                 "vorhergehenden oder hält ein Konflikt den Befehl an, bleibt der Auftrag, wie er vor\n"
                 "dem Befehl war.\n"
                 "\n"
                 "Optionen:\n"
                 "  --konflikt behalten|verwerfen  die Entscheidung für Objekte, die in zwei Räumen\n"
                 "                                 eingescannt wurden\n",
                 1, 1, {"--konflikt"}, {},
                 {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderUnknown, kRoomsAlreadyRead,
                  kUnresolvedConflict, kFileMissing, kReadOnly},
                 {"qinventur-cli neu-einlesen \"Lager Süd\" --konflikt verwerfen"}});
    c.push_back({"auswerten", "auswerten NAME", "Differenzliste erstellen",
                 "Erstellt die Differenzliste des Auftrags neu, wie es jeder Differenzbericht und jede\n"
                 "Fehlerliste zuerst tut, und gibt die Anzahl der Objekte je Kategorie aus:\n"
                 "Kategorie und Anzahl, durch einen Tabulator getrennt, mit einer Kopfzeile.\n",
                 1, 1, {}, {}, {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderUnknown, kReadOnly},
                 {"qinventur-cli auswerten \"Lager Süd\""}});
    c.push_back({"bericht",
                 "bericht (NAME BERICHT | --projekt-weit PROJEKTBERICHT) --ausgabe PFAD [--format pdf|xlsx|csv]",
                 "Bericht oder Fehlerliste schreiben",
                 "Schreibt einen Bericht oder eine Fehlerliste des Auftrags in eine Datei, mit derselben\n"
                 "Vorbereitung wie die Menüs des Auftragsfensters (Differenzberichte und Fehlerlisten\n"
                 "erstellen zuerst die Differenzliste neu). BERICHT ist einer von:\n"
                 "  artikel             Berichte: Artikel (Artikelaufstellung)\n"
                 "  raumerfassung       Berichte: Raumerfassung (Raumliste)\n"
                 "  inventur            Berichte: Inventur (Inventurliste)\n"
                 "  inventurauswertung  Berichte: Inventurauswertung (Differenzliste)\n"
                 "  differenz           Berichte: Differenz (Differenzliste)\n"
                 "  neu                 Fehlerlisten: Neues Inventar\n"
                 "  verschoben          Fehlerlisten: Verschobenes Inventar\n"
                 "  fehlend             Fehlerlisten: Fehlendes Inventar\n"
                 "\n"
                 "Wie im Auftragsfenster kürzt eine Fehlerliste die Differenzliste des Auftrags auf\n"
                 "ihre Zeilen; der nächste Differenzbericht, die nächste Fehlerliste oder \"auswerten\"\n"
                 "erstellen sie wieder vollständig.\n"
                 "\n"
                 "Mit --projekt-weit statt NAME und BERICHT: ein Bericht über alle Aufträge des\n"
                 "Projekts, aus denselben Zahlen wie \"projekt\" (siehe \"projekt --help\"). Kein Auftrag\n"
                 "wird dabei geändert; der Befehl arbeitet auch, während ein anderes Programm das\n"
                 "Projekt bearbeitet. PROJEKTBERICHT ist einer von:\n"
                 "  gesamtauswertung    die Zahlen jedes Auftrags und des Projekts, dann die Listen\n"
                 "                      über die Aufträge hinweg (Berichtsdatei invgesamt.rpt)\n"
                 "  fortschritt         je Auftrag und Raum: erwartet, am Platz gefunden, gescannt,\n"
                 "                      Anteil gefunden, letzter Scan (Berichtsdatei invfortschritt.rpt)\n"
                 "  protokoll           das Inventurprotokoll zum Unterschreiben: die Zahlen je\n"
                 "                      Kategorie, die Vorschläge der Korrekturliste je Art und\n"
                 "                      Entscheidung, die angenommenen Korrekturen und die Zeilen für\n"
                 "                      die Unterschriften (Berichtsdatei invprotokoll.rpt)\n"
                 "\n"
                 "Optionen:\n"
                 "  --ausgabe PFAD         die Datei, die geschrieben wird (eine vorhandene wird ersetzt)\n"
                 "  --format pdf|xlsx|csv  die Art der Datei: pdf die gedruckten Seiten, xlsx eine\n"
                 "                         Tabelle, csv Zeilen mit Semikolons in UTF-8; ohne --format\n"
                 "                         nach der Endung von PFAD\n"
                 "  --projekt-weit PROJEKTBERICHT  ein Bericht über alle Aufträge, statt NAME und BERICHT\n",
                 2, 2, {"--ausgabe", "--format", "--projekt-weit"}, {},
                 {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderUnknown},
                 {"qinventur-cli bericht \"Lager Süd\" differenz --format pdf --ausgabe differenz.pdf",
                  "qinventur-cli bericht \"Lager Süd\" fehlend --ausgabe fehlend.csv",
                  "qinventur-cli bericht --projekt-weit gesamtauswertung --ausgabe gesamtauswertung.pdf",
                  "qinventur-cli bericht --projekt-weit fortschritt --ausgabe fortschritt.xlsx",
                  "qinventur-cli bericht --projekt-weit protokoll --ausgabe inventurprotokoll.pdf"}});
    c.push_back({"export", "export NAME --ausgabe ORDNER [--format pdf|xlsx|csv]",
                 "alle Berichte und Fehlerlisten schreiben",
                 "Schreibt alle Berichte und Fehlerlisten des Auftrags (siehe \"bericht --help\") in den\n"
                 "Ordner ORDNER, der angelegt wird, wenn es ihn nicht gibt: je eine Datei\n"
                 "BERICHT.FORMAT, zum Beispiel differenz.pdf. Vorhandene Dateien werden ersetzt. Die\n"
                 "Fehlerlisten kommen zuletzt: danach enthält die Differenzliste die Zeilen der\n"
                 "fehlenden Objekte.\n"
                 "\n"
                 "Optionen:\n"
                 "  --ausgabe ORDNER       der Ordner für die Dateien\n"
                 "  --format pdf|xlsx|csv  die Art der Dateien (ohne --format: pdf)\n",
                 1, 1, {"--ausgabe", "--format"}, {},
                 {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderUnknown},
                 {"qinventur-cli export \"Lager Süd\" --ausgabe berichte", 
                  "qinventur-cli export \"Lager Süd\" --ausgabe berichte --format xlsx"}});
    c.push_back({"etiketten",
                 "etiketten (raeume (NAME | --knoten ID | --alle) | objekte (NAME --neu | --datei DATEI | "
                 "--von NUMMER --bis NUMMER)) --layout LAYOUT --ausgabe PFAD [--start N] [--kopien N] "
                 "[--symbologie code128|datamatrix|qr]",
                 "Raum- oder Objektetiketten als PDF schreiben",
                 "Schreibt Etiketten mit Barcode als PDF auf Bögen des Layouts LAYOUT. Die Layouts sind\n"
                 "Textdateien im Ordner \"Etiketten\" der Vorlage \"Leeres Projekt\"; ein falscher Name\n"
                 "nennt die vorhandenen.\n"
                 "\n"
                 "etiketten raeume: je Raum ein Etikett mit der Raumnummer als Code 128, so wie der\n"
                 "Scanner sie an der Tür lesen muss, der Nummer groß, dem Namen des Raums, Gebäude und\n"
                 "Geschoss. Die Räume des Auftrags NAME, die Räume unter dem Knoten ID der\n"
                 "Gebäudestruktur (Liegenschaft, Gebäude oder Geschoss) oder mit --alle alle Räume, je\n"
                 "nach Raumnummer sortiert.\n"
                 "\n"
                 "etiketten objekte: je Inventarnummer ein Etikett, als Code 128 oder mit --symbologie\n"
                 "als DataMatrix oder QR-Code. Die Nummern, die der Auftrag NAME gefunden hat und die\n"
                 "Quarn nicht kennt (--neu, Kategorie 2c der letzten Auswertung), die Nummern einer\n"
                 "Textdatei (eine je Zeile, Leerzeilen zählen nicht, doppelte Nummern werden doppelt\n"
                 "gedruckt) oder ein Bereich wie --von I0100000 --bis I0100199 (gleicher Anfang, gleich\n"
                 "viele Ziffern, führende Nullen bleiben). Höchstens 100.000 Etiketten auf einmal.\n"
                 "\n"
                 "Optionen:\n"
                 "  --knoten ID       die Räume unter diesem Knoten der Gebäudestruktur (lId)\n"
                 "  --alle            alle Räume der Gebäudestruktur\n"
                 "  --neu             die Nummern des Auftrags, die Quarn nicht kennt\n"
                 "  --datei DATEI     die Nummern dieser Textdatei\n"
                 "  --von NUMMER      die erste Nummer des Bereichs\n"
                 "  --bis NUMMER      die letzte Nummer des Bereichs\n"
                 "  --layout LAYOUT   der Etikettenbogen (Name oder Dateiname des Layouts)\n"
                 "  --ausgabe PFAD    die PDF-Datei; eine vorhandene wird ersetzt\n"
                 "  --start N         der erste freie Platz auf dem ersten Bogen (ohne: 1)\n"
                 "  --kopien N        so oft wird jedes Etikett gedruckt, 1 bis 99 (ohne: 1)\n"
                 "  --symbologie ART  code128, datamatrix oder qr (nur objekte; ohne: code128)\n",
                 1, 2, {"--knoten", "--datei", "--von", "--bis", "--layout", "--ausgabe", "--start", "--kopien",
                        "--symbologie"},
                 {"--alle", "--neu"},
                 {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderUnknown, kRoomUnknown},
                 {"qinventur-cli etiketten raeume \"Lager Süd\" --layout A4-3x8 --ausgabe tueren.pdf",
                  "qinventur-cli etiketten raeume --knoten 3 --layout A4-3x8 --ausgabe eg.pdf --start 5",
                  "qinventur-cli etiketten objekte \"Lager Süd\" --neu --layout A4-4x10 --ausgabe neu.pdf",
                  "qinventur-cli etiketten objekte --von I0100000 --bis I0100199 --layout A4-4x10 "
                  "--ausgabe bereich.pdf --symbologie datamatrix"}});
    c.push_back({"begehungsliste", "begehungsliste (NAME | --knoten ID) --ausgabe PFAD [--format pdf|xlsx|csv]",
                 "Begehungsliste schreiben",
                 "Schreibt die Begehungsliste: je Raum eine neue Seite mit Raumnummer, Name, Gebäude,\n"
                 "Geschoss und Raumverantwortlichem, darunter die Objekte, die Quarn im Raum erwartet\n"
                 "(Inventar-Nr., Artikel, Beschreibung, Bemerkung) mit einem Kästchen zum Abhaken. Für\n"
                 "die Räume des Auftrags NAME oder die Räume unter dem Knoten ID der Gebäudestruktur.\n"
                 "Die Berichtsdatei ist \"invbegehung.rpt\" (im Ordner \"Report\" des Projekts, sonst der\n"
                 "Vorlage). Der Auftrag wird nur gelesen.\n"
                 "\n"
                 "Optionen:\n"
                 "  --knoten ID            die Räume unter diesem Knoten statt der eines Auftrags\n"
                 "  --ausgabe PFAD         die Datei; eine vorhandene wird ersetzt\n"
                 "  --format pdf|xlsx|csv  die Art der Datei (ohne --format: die Endung von PFAD)\n",
                 0, 1, {"--knoten", "--ausgabe", "--format"}, {},
                 {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderUnknown, kRoomUnknown},
                 {"qinventur-cli begehungsliste \"Lager Süd\" --ausgabe begehung.pdf",
                  "qinventur-cli begehungsliste --knoten 3 --ausgabe begehung.xlsx"}});
    c.push_back({"archiv", "archiv NAME", "Scandaten in einer Datei zusammenfassen",
                 "Fasst die Scandaten des Auftrags in einer Datei zusammen, wie \"Scandaten\n"
                 "zusammenfassen\" im Auftragsfenster: \"Inventur\\NAME.dat\" im Projektordner, eine Zeile\n"
                 "je eingescanntem Objekt im Format der Scannerdateien. Eine vorhandene Datei wird\n"
                 "ersetzt.\n",
                 1, 1, {}, {}, {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderUnknown, kReadOnly},
                 {"qinventur-cli archiv \"Lager Süd\""}});
    c.push_back({"gesichert", "gesichert", "gesicherte Auftragsdatenbanken auflisten",
                 "Bevor das Programm die Datenbank eines Auftrags ersetzt (ein neuer Auftrag, dessen\n"
                 "Datei es schon gibt, auch in anderer Groß- und Kleinschreibung) oder löscht (ein\n"
                 "gelöschter Auftrag), sichert es sie im Ordner \"Inventur\\Gesichert\" des Projekts,\n"
                 "unter dem Namen des Auftrags und der Zeit der Sicherung, zum Beispiel\n"
                 "\"EG 2026-11-25 17-31-05.mdb\". Dieser Befehl listet sie auf, eine je Zeile: Datei,\n"
                 "Auftrag, Datum der Sicherung, Scans und Dateien (Zeilen der Scandaten und der\n"
                 "Scannerdateien, \"?\" wenn die Datei keine lesbare Auftragsdatenbank ist), durch\n"
                 "Tabulatoren getrennt, mit einer Kopfzeile. Die Dateien werden nur gelesen.\n",
                 0, 0, {}, {}, {kSuccess, kFailure, kBadArguments, kProjectUnusable},
                 {"qinventur-cli gesichert"}});
    c.push_back({"wiederherstellen", "wiederherstellen DATEI NAME", "gesicherte Auftragsdatenbank zurückholen",
                 "Holt die gesicherte Datenbank DATEI (ihr Name, wie \"gesichert\" ihn auflistet, oder\n"
                 "ihr Pfad im Ordner \"Inventur\\Gesichert\") als neuen Auftrag NAME zurück: eine Kopie\n"
                 "wird \"Inventur\\NAME.mdb\", das Auftragsverzeichnis bekommt eine Zeile für den Auftrag.\n"
                 "Die gesicherte Datei bleibt. Den Namen prüft der Befehl wie \"anlegen\"; gibt es einen\n"
                 "Auftrag dieses Namens schon, wird nichts geändert. Rückgabewert 14: Die Datei gibt es\n"
                 "nicht, oder sie ist keine gesicherte Datei des Projekts.\n",
                 2, 2, {}, {},
                 {kSuccess, kFailure, kBadArguments, kProjectUnusable, kOrderExists, kNameRefused, kFileMissing,
                  kReadOnly},
                 {"qinventur-cli wiederherstellen \"EG 2026-11-25 17-31-05.mdb\" \"EG alt\""}});
    return c;
}

/// Every command that opens a project may also find none to work on.
std::vector<CommandInfo> withNoProjectCode(std::vector<CommandInfo> all)
{
    for (CommandInfo& c : all)
        if (std::find(c.exitCodes.begin(), c.exitCodes.end(), kProjectUnusable) != c.exitCodes.end())
            c.exitCodes.push_back(kNoProject);
    return all;
}

/// Options that stand instead of a command's arguments: given, the command takes none.
constexpr std::pair<std::string_view, std::string_view> kInsteadOfArguments[] = {{"bericht", "--projekt-weit"}};

bool contains(const std::vector<std::string_view>& list, std::string_view s)
{
    return std::find(list.begin(), list.end(), s) != list.end();
}

/// True when some command takes the option with a value (so that the value can be told from
/// an argument before the command is known).
bool takesValue(std::string_view option)
{
    if (option == kProjekt)
        return true;
    for (const CommandInfo& c : commands())
        if (contains(c.valueOptions, option))
            return true;
    return false;
}

bool isFlag(std::string_view option)
{
    for (const CommandInfo& c : commands())
        if (contains(c.flags, option))
            return true;
    return false;
}

std::string codeLines(const std::vector<ExitCode>& codes)
{
    std::string out;
    for (const ExitCodeInfo& info : kExitCodes)
        if (std::find(codes.begin(), codes.end(), info.code) != codes.end())
            out += (info.code < 10 ? "   " : "  ") + std::to_string(info.code) + "  " + std::string(info.meaning) + "\n";
    return out;
}

std::string exampleLines(const std::vector<std::string_view>& examples)
{
    std::string out;
    for (std::string_view e : examples)
        out += "  " + std::string(e) + "\n";
    return out;
}

} // namespace

const std::vector<CommandInfo>& commands()
{
    static const std::vector<CommandInfo> all = withNoProjectCode(makeCommands());
    return all;
}

const CommandInfo* findCommand(std::string_view name)
{
    for (const CommandInfo& c : commands())
        if (c.name == name)
            return &c;
    return nullptr;
}

std::string Invocation::option(const std::string& name, const std::string& fallback) const
{
    const auto it = options.find(name);
    return it == options.end() ? fallback : it->second;
}

Invocation parseCommandLine(const std::vector<std::string>& arguments)
{
    Invocation inv;
    std::vector<std::string> words;
    std::vector<std::pair<std::string, std::string>> given; // options in the order given
    bool optionsEnded = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& a = arguments[i];
        if (optionsEnded || a.size() < 2 || a[0] != '-') {
            words.push_back(a);
            continue;
        }
        if (a == "--") {
            optionsEnded = true;
            continue;
        }
        if (a == "--help" || a == "-h") {
            inv.help = true;
            continue;
        }
        if (a == "--version") {
            inv.version = true;
            continue;
        }
        const std::size_t eq = a.find('=');
        const std::string name = a.substr(0, eq);
        if (takesValue(name)) {
            std::string value;
            if (eq != std::string::npos)
                value = a.substr(eq + 1);
            else if (i + 1 < arguments.size())
                value = arguments[++i];
            else
                throw UsageError("Die Option " + name + " braucht einen Wert.");
            given.emplace_back(name, value);
        } else if (isFlag(name) && eq == std::string::npos) {
            given.emplace_back(name, std::string());
        } else {
            throw UsageError("Die Option " + a + " gibt es nicht.");
        }
    }

    if (!words.empty()) {
        inv.command = words.front();
        inv.args.assign(words.begin() + 1, words.end());
    }
    if (inv.command == "hilfe") {
        inv.help = true;
        inv.command = inv.args.empty() ? std::string() : inv.args.front();
        inv.args.clear();
    }
    const CommandInfo* known = inv.command.empty() ? nullptr : findCommand(inv.command);
    if (!inv.command.empty() && !known)
        throw UsageError("Den Befehl '" + inv.command + "' gibt es nicht.");

    for (const auto& [name, value] : given) {
        if (name == kProjekt) {
            inv.projekt = value;
            continue;
        }
        if (!known || !(contains(known->valueOptions, name) || contains(known->flags, name)))
            throw UsageError("Die Option " + name +
                             (known ? " gibt es für den Befehl " + inv.command + " nicht." : " gehört zu einem Befehl."));
        if (inv.options.count(name) || inv.flags.count(name))
            throw UsageError("Die Option " + name + " ist zweimal angegeben.");
        if (contains(known->flags, name))
            inv.flags.insert(name);
        else
            inv.options[name] = value;
    }
    if (inv.help || inv.version)
        return inv;
    if (!known)
        throw UsageError("Es fehlt ein Befehl.");
    const int n = int(inv.args.size());
    for (const auto& [command, option] : kInsteadOfArguments)
        if (known->name == command && inv.options.count(std::string(option))) {
            if (n > 0)
                throw UsageError("Mit " + std::string(option) + " nimmt der Befehl " + inv.command +
                                 " keine Argumente.");
            return inv;
        }
    if (n < known->minArgs)
        throw UsageError("Es fehlt ein Argument.");
    if (known->maxArgs >= 0 && n > known->maxArgs)
        throw UsageError("Zu viele Argumente.");
    return inv;
}

std::string overallHelp()
{
    std::string out;
    out += "qinventur-cli: Inventuraufträge ohne Fenster bearbeiten, mit denselben Datenbanken und\n"
           "Meldungen wie QInventur, für Skripte und regelmäßige Läufe.\n"
           "\n"
           "Aufruf:\n"
           "  qinventur-cli [--projekt ORDNER] BEFEHL [ARGUMENTE] [OPTIONEN]\n"
           "  qinventur-cli BEFEHL --help\n"
           "  qinventur-cli --help\n"
           "  qinventur-cli --version\n"
           "\n"
           "Das Projekt ist das aktuelle Projekt aus \"Quarn.ini\" im Programmordner, wie beim\n"
           "Programm QInventur, oder der Ordner hinter --projekt. Ohne --projekt arbeitet\n"
           "qinventur-cli nur, wenn \"Quarn.ini\" einen Projektordner nennt, den es gibt und der\n"
           "Dateien enthält; sonst legt es nirgends etwas an und endet mit dem Rückgabewert 16.\n"
           "\n"
           "Befehle:\n";
    for (const CommandInfo& c : commands()) {
        std::string line = "  " + std::string(c.name);
        line.resize(std::max<std::size_t>(17, line.size() + 1), ' ');
        out += line + std::string(c.summary) + "\n";
    }
    out += "\n"
           "Optionen für alle Befehle:\n"
           "  --projekt ORDNER  der Projektordner (statt des Projekts aus \"Quarn.ini\")\n"
           "  --help, -h        diese Hilfe, oder mit einem Befehl dessen Hilfe\n"
           "  --version         die Version des Programms\n"
           "\n"
           "Meldungen stehen auf der Standardfehlerausgabe als \"[Titel] Text\", mit den Worten der\n"
           "Fenster; Listen stehen auf der Standardausgabe. Auf einem Terminal zeigen lange\n"
           "Einlese- und Auswertungsläufe eine Fortschrittszeile.\n"
           "\n"
           "Rückgabewerte:\n";
    std::vector<ExitCode> all;
    for (const ExitCodeInfo& info : kExitCodes)
        all.push_back(info.code);
    out += codeLines(all);
    out += "\n"
           "Beispiele:\n";
    out += exampleLines({"qinventur-cli auftraege", "qinventur-cli anlegen \"Lager Süd\" --mitarbeiter Meier",
                         "qinventur-cli raeume \"Lager Süd\" --setzen 1.01 1.02 1.03:L",
                         "qinventur-cli hinzufuegen \"Lager Süd\" /daten/scan1.dat --konflikt behalten",
                         "qinventur-cli bericht \"Lager Süd\" differenz --ausgabe differenz.pdf",
                         "qinventur-cli projekt",
                         "qinventur-cli bericht --projekt-weit gesamtauswertung --ausgabe gesamtauswertung.pdf",
                         "qinventur-cli export \"Lager Süd\" --ausgabe berichte",
                         "qinventur-cli raeume --help"});
    return out;
}

std::string commandHelp(const CommandInfo& command)
{
    std::string out = std::string(kProgram) + " " + std::string(command.name) + ": " + std::string(command.summary) +
                      "\n\nAufruf:\n  " + std::string(kProgram) + " [--projekt ORDNER] " +
                      std::string(command.synopsis) + "\n\n" + std::string(command.description);
    out += "\nRückgabewerte:\n" + codeLines(command.exitCodes);
    out += "\n" + std::string(command.examples.size() == 1 ? "Beispiel:\n" : "Beispiele:\n") +
           exampleLines(command.examples);
    return out;
}

} // namespace qi::cli
