#pragma once
// The exit status of the command line program: 0 for success, one code for each kind
// of refusal and one for failures. Scripts rely on these numbers; --help lists them.

#include <string_view>

namespace qi::cli {

enum ExitCode : int {
    kSuccess = 0,
    kFailure = 1,           ///< a database, file or report could not be read or written
    kBadArguments = 2,      ///< unknown command or option, an argument missing or too many
    kProjectUnusable = 3,   ///< the project is not found or can't be set up
    kOrderUnknown = 4,      ///< no order of that name
    kOrderExists = 5,       ///< an order of that name exists already
    kNameRefused = 6,       ///< the name can't name an order
    kNoRooms = 7,           ///< the order has no rooms yet
    kRoomUnknown = 8,       ///< a room number Quarn's building structure does not know
    kRoomsNotInOrder = 9,   ///< a scanner file holds rooms that are not rooms of the order
    kSeveralDays = 10,      ///< a scanner file holds scans of different days
    kRoomsAlreadyRead = 11, ///< scans of a room of the file are held already
    kFileAlreadyAdded = 12, ///< a file of that name was added before
    kUnresolvedConflict = 13, ///< an object scanned in two rooms and no --konflikt given
    kFileMissing = 14,      ///< a scanner file is not there, or not a file of the order
    kReadOnly = 15,         ///< the project or the order may only be looked at
    kNoProject = 16,        ///< no project to work on: "Quarn.ini" names none (without --projekt), or its folder is empty
    kProposalUnknown = 17,  ///< no correction proposal of that number (or proposals of several kinds and no --art)
};

struct ExitCodeInfo {
    ExitCode code;
    std::string_view meaning; ///< German, for --help
};

/// Every exit code with its meaning, in the order of the codes.
inline constexpr ExitCodeInfo kExitCodes[] = {
    {kSuccess, "Erfolg"},
    {kFailure, "Fehler: eine Datenbank, Datei oder ein Bericht konnte nicht gelesen oder geschrieben werden"},
    {kBadArguments, "falscher Aufruf: unbekannter Befehl oder unbekannte Option, Argument fehlt oder zu viele"},
    {kProjectUnusable, "Projekt nicht gefunden oder nicht einzurichten"},
    {kOrderUnknown, "Auftrag unbekannt"},
    {kOrderExists, "Auftrag dieses Namens gibt es schon"},
    {kNameRefused, "Name als Auftragsname nicht zulässig"},
    {kNoRooms, "dem Auftrag sind noch keine Räume zugeordnet"},
    {kRoomUnknown, "Raum in der Gebäudestruktur unbekannt"},
    {kRoomsNotInOrder, "Datei enthält Räume, die nicht zum Auftrag gehören"},
    {kSeveralDays, "Datei enthält Daten verschiedener Tage"},
    {kRoomsAlreadyRead, "Räume der Datei sind bereits eingelesen"},
    {kFileAlreadyAdded, "Datei dieses Namens ist bereits hinzugefügt"},
    {kUnresolvedConflict, "Objekt in zwei Räumen eingescannt und kein --konflikt angegeben"},
    {kFileMissing, "Scannerdatei nicht vorhanden oder nicht im Auftrag"},
    {kReadOnly, "Projekt oder Auftrag nur zum Ansehen geöffnet (von einem anderen Programm bearbeitet oder schreibgeschützt)"},
    {kNoProject, "kein Projekt: ohne --projekt fehlt \"Quarn.ini\" oder nennt keinen Projektordner, den es gibt "
                 "und der Dateien enthält; oder der Ordner hinter --projekt ist leer"},
    {kProposalUnknown, "kein Vorschlag der Korrekturliste zu dieser Inventarnummer, oder Vorschläge mehrerer Arten "
                       "und kein --art angegeben"},
};

} // namespace qi::cli
