#include "CAuftragDb.h"

#include "JetCollation.h"
#include "JetSql.h"

#include <algorithm>
#include <map>
#include <vector>

#include <cstdint>
#include <limits>
#include <memory>

// The reconciliation of Soll and Ist data, the room status and the list statements.
// Each statement is kept in its Jet form beside the SQLite text that is run; every
// value (room, inventory or article number) is bound, never joined into the text.
// Where the Jet form walks rows one by one, the SQLite form may do the same work in
// one set-based statement; rows the engine would return in no defined order are taken
// in the order they were stored (lID).

namespace qi {

namespace {

constexpr JetSql kDelAllRaum{"DELETE * FROM T_Raum;", "DELETE FROM T_Raum"};
constexpr JetSql kDelAllInvListe{"DELETE * FROM T_Invliste;", "DELETE FROM T_Invliste"};
constexpr JetSql kDelAllDiffListe{"DELETE * FROM T_DifferenzListe;", "DELETE FROM T_Differenzliste"};

// ------------------------------------------------------------ print order of the list

// Each pass numbers its rows by description (ties in storage order), continuing the
// counter of the passes before (?1); numbers past the 16-bit range are not written. A
// row with both numbers empty belongs to passes 2 and 3; pass 3 runs last, so its
// number stays.
constexpr JetSql kDiffPass1{
    R"jet(SELECT t_Differenzliste.*, t_Differenzliste.stSollInvNR, t_Differenzliste.stIstInvNR From t_Differenzliste Where (((t_Differenzliste.stSollInvNR) <> "") And  ((t_Differenzliste.stIstInvNR) <> "")) ORDER BY t_Differenzliste.stBeschreibung;)jet",
    "UPDATE T_Differenzliste SET iReihenfolge = ?1 + p.n FROM (SELECT lID, ROW_NUMBER() OVER "
    "(ORDER BY stBeschreibung, lID) AS n FROM T_Differenzliste WHERE stSollInvNR <> '' AND stIstInvNR <> '') AS p "
    "WHERE T_Differenzliste.lID = p.lID AND ?1 + p.n <= 32767"};
constexpr JetSql kDiffPass2{
    R"jet(SELECT t_Differenzliste.* From t_Differenzliste Where (((t_Differenzliste.stSollInvNR)  = "")) ORDER BY t_Differenzliste.stBeschreibung;)jet",
    "UPDATE T_Differenzliste SET iReihenfolge = ?1 + p.n FROM (SELECT lID, ROW_NUMBER() OVER "
    "(ORDER BY stBeschreibung, lID) AS n FROM T_Differenzliste WHERE stSollInvNR = '') AS p "
    "WHERE T_Differenzliste.lID = p.lID AND ?1 + p.n <= 32767"};
constexpr JetSql kDiffPass3{
    R"jet(SELECT t_Differenzliste.* From t_Differenzliste Where (((t_Differenzliste.stIstInvNR)  = "")) ORDER BY t_Differenzliste.stBeschreibung;)jet",
    "UPDATE T_Differenzliste SET iReihenfolge = ?1 + p.n FROM (SELECT lID, ROW_NUMBER() OVER "
    "(ORDER BY stBeschreibung, lID) AS n FROM T_Differenzliste WHERE stIstInvNR = '') AS p "
    "WHERE T_Differenzliste.lID = p.lID AND ?1 + p.n <= 32767"};
// The number of rows of each pass: the counter runs on over all three.
constexpr std::string_view kDiffPassRows =
    "SELECT (SELECT count(*) FROM T_Differenzliste WHERE stSollInvNR <> '' AND stIstInvNR <> ''), "
    "(SELECT count(*) FROM T_Differenzliste WHERE stSollInvNR = ''), "
    "(SELECT count(*) FROM T_Differenzliste WHERE stIstInvNR = '')";

// ------------------------------------------------------------ lines of each room

// The rooms met in the scans and, for each, its lines. In SQLite one pass over the
// lines in room order finds the rooms whose lines are not yet numbered 1, 2, 3 ... in
// storage order (new lines carry 0; gaps, doubles, lines out of order); only their
// lines are written, since for every other room the numbering would write the numbers
// it already has.
constexpr JetSql kScanRooms{
    R"jet(SELECT T_DatInventur.stRaum From t_DatInventur GROUP BY t_DatInventur.stRaum;)jet",
    "SELECT stRaum, iReihenfolge, lID FROM T_DatInventur ORDER BY stRaum, iReihenfolge, lID"};
// The lines of a room numbered from 1, in storage order.
constexpr JetSql kScanLinesOfRoom{
    R"jet(SELECT t_DatInventur.iReihenfolge, t_DatInventur.stRaum, t_DatInventur.stInvNr From t_DatInventur WHERE t_DatInventur.stRaum=")jet"
    R"jet(" + room + ")jet"
    R"jet(";)jet",
    "UPDATE T_DatInventur SET iReihenfolge = ?2 WHERE lID = ?1"};

// ------------------------------------------------------------ rooms

constexpr JetSql kRaumVorhanden{
    R"jet(SELECT T_DatInventur.stRaum From t_DatInventur WHERE t_DatInventur.stRaum=")jet"
    R"jet(" + room + ")jet"
    R"jet(";)jet",
    "SELECT 1 FROM T_DatInventur WHERE stRaum = ?1 LIMIT 1"};
constexpr JetSql kRaumImAuftrag{
    R"jet(SELECT T_Raum.stRaumNr From T_Raum WHERE T_Raum.stRaumNr=")jet"
    R"jet(" + room + ")jet"
    R"jet(";)jet",
    "SELECT 1 FROM T_Raum WHERE stRaumNr = ?1 LIMIT 1"};

constexpr JetSql kMakeInvListbyRoom{
    R"jet(INSERT INTO T_InvListe ( stRaumNr, stInvNR, iRFolge, stArtNr,Datum, Uhrzeit )SELECT DISTINCTROW t_DatInventur.stRaum, t_DatInventur.stInvNr, t_DatInventur.iReihenfolge, t_DatInventur.stArtNr, t_DatInventur.Datum, t_DatInventur.Uhrzeit From t_DatInventur GROUP BY t_DatInventur.stRaum, t_DatInventur.stInvNr, t_DatInventur.iReihenfolge, t_DatInventur.stInvNr, t_DatInventur.stArtNr, t_DatInventur.Datum, t_DatInventur.Uhrzeit HAVING (((t_DatInventur.stRaum)=")jet"
    R"jet(" + room + ")jet"
    R"jet("));)jet",
    "INSERT INTO T_Invliste (stRaumNr, stInvNr, iRFolge, stArtNr, Datum, Uhrzeit) "
    "SELECT stRaum, stInvNr, iReihenfolge, stArtNr, Datum, Uhrzeit FROM T_DatInventur WHERE stRaum = ?1 "
    "GROUP BY stRaum, stInvNr, iReihenfolge, stArtNr, Datum, Uhrzeit ORDER BY min(lID)"};

// Every room with scans takes the values of its first (date, data file) group. In SQLite
// the groups of all rooms are read at once, in the order of their keys; the rooms are then
// walked in storage order and only those whose values change are written.
constexpr JetSql kStatusGroupsOfRoom{
    R"jet(SELECT t_DatInventur.stRaum, t_DatInventur.Datum, t_DatInventur.lDatId, Count('S') as Sum  From t_DatInventur GROUP BY t_DatInventur.stRaum, t_DatInventur.Datum, t_DatInventur.lDatId HAVING (((t_DatInventur.stRaum)=")jet"
    R"jet(" + stRaumNr + ")jet"
    R"jet("));)jet",
    "SELECT stRaum, Datum, lDatID, count(*) AS Sum FROM T_DatInventur GROUP BY stRaum, Datum, lDatID "
    "ORDER BY stRaum, Datum, lDatID"};
constexpr std::string_view kRoomsInStorageOrder =
    "SELECT lID, stRaumNr, ststatus, Datum, lDatID, iAnzahl FROM T_Raum ORDER BY lID";
constexpr std::string_view kSetRoomStatus =
    "UPDATE T_Raum SET ststatus = 'E', Datum = ?2, lDatID = ?3, iAnzahl = ?4 WHERE lID = ?1";

// Every room back to "N". The date is cleared twice and the time is left as it is.
constexpr JetSql kResetStatusRooms{
    R"jet(SELECT t_Raum.* From t_Raum ;)jet",
    "UPDATE T_Raum SET ststatus = 'N', Datum = '', Datum = '', iAnzahl = 0, lDatID = 0"};

// ------------------------------------------------------------ article tally

constexpr std::string_view kArticles = "SELECT lID, stArtikel FROM T_Artikelliste ORDER BY lID";
constexpr std::string_view kWriteIst = "UPDATE T_Artikelliste SET iAnzIst = ?2 WHERE lID = ?1";
// The blank after the article number is part of the statement; the comparison ignores trailing blanks.
constexpr JetSql kCountArtikelIst{
    R"jet(SELECT Count(T_Artikelliste.iAnzIst) AS [AnzahlIst] FROM T_Artikelliste INNER JOIN T_DatInventur ON T_Artikelliste.stArtikel = T_DatInventur.stArtNr GROUP BY T_Artikelliste.stArtikel HAVING T_Artikelliste.stArtikel = ')jet"
    R"jet(" + article + ")jet"
    R"jet( ';)jet",
    "SELECT count(a.iAnzIst) AS AnzahlIst FROM T_Artikelliste AS a JOIN T_DatInventur AS s "
    "ON a.stArtikel = s.stArtNr WHERE a.stArtikel = ?1 || ' ' GROUP BY a.stArtikel"};

// ------------------------------------------------------------ reconciliation

constexpr JetSql kMakeIstInvOk{
    R"jet(UPDATE T_DatInventur RIGHT JOIN (T_Raum RIGHT JOIN T_Differenzliste ON T_Raum.lID = T_Differenzliste.lRaumId) ON T_DatInventur.stInvNr = T_Differenzliste.stSollInvNR SET T_Differenzliste.stIstInvNR = [T_DatInventur].[stInvNr], T_Differenzliste.Datum = [T_DatInventur].[Datum], T_Differenzliste.Uhrzeit = [T_DatInventur].[Uhrzeit], T_Differenzliste.stTyp="1 OK" WHERE (([T_DatInventur]![stRaum]=[T_Raum]![stRaumNr]));)jet",
    "UPDATE T_Differenzliste SET stIstInvNR = s.stInvNr, Datum = s.Datum, Uhrzeit = s.Uhrzeit, stTyp = '1 OK' "
    "FROM T_Raum AS r, T_DatInventur AS s WHERE r.lID = T_Differenzliste.lRaumID "
    "AND s.stInvNr = T_Differenzliste.stSollInvNR AND s.stRaum = r.stRaumNr"};

// "Not In" over the joined column: no difference row carries the number as its Ist number.
constexpr JetSql kMakeIstScanExtra{
    R"jet(INSERT INTO T_Differenzliste ( stIstInvNR, lRaumId, Datum, Uhrzeit,stTyp ) SELECT T_DatInventur.stInvNr, T_Raum.lId,T_DatInventur.Datum, T_DatInventur.Uhrzeit, "2b Zuviel im Auftrag (gehört in einen Raum außerhalb des Auftrags)" FROM (T_DatInventur LEFT JOIN T_Differenzliste ON T_DatInventur.stInvNr = T_Differenzliste.stIstInvNR) INNER JOIN T_Raum ON T_DatInventur.stRaum = T_Raum.stRaumNr WHERE (((T_DatInventur.stInvNr) Not In ([T_Differenzliste]![stIstInvNR])));)jet",
    "INSERT INTO T_Differenzliste (stIstInvNR, lRaumID, Datum, Uhrzeit, stTyp) "
    "SELECT s.stInvNr, r.lID, s.Datum, s.Uhrzeit, '2b Zuviel im Auftrag (gehört in einen Raum außerhalb des Auftrags)' "
    "FROM T_DatInventur AS s JOIN T_Raum AS r ON s.stRaum = r.stRaumNr "
    "WHERE NOT EXISTS (SELECT 1 FROM T_Differenzliste AS d WHERE d.stIstInvNR = s.stInvNr) ORDER BY s.lID, r.lID"};

// A Soll row still without Ist whose object was scanned anywhere.
constexpr JetSql kGefundenZiel{
    R"jet(UPDATE T_DatInventur INNER JOIN T_Differenzliste ON T_DatInventur.stInvNr = T_Differenzliste.stSollInvNR SET T_Differenzliste.stZiel = [T_DatInventur].[stRaum], T_Differenzliste.Datum = [T_DatInventur].[Datum], T_Differenzliste.Uhrzeit = [T_DatInventur].[Uhrzeit], [T_Differenzliste].[stTyp] ="3a Fehlt im Raum (verschoben in anderen Raum des Auftrags)" WHERE (((T_Differenzliste.stIstInvNR)=""));)jet",
    "UPDATE T_Differenzliste SET stZiel = s.stRaum, Datum = s.Datum, Uhrzeit = s.Uhrzeit, "
    "stTyp = '3a Fehlt im Raum (verschoben in anderen Raum des Auftrags)' FROM T_DatInventur AS s "
    "WHERE s.stInvNr = T_Differenzliste.stSollInvNR AND T_Differenzliste.stIstInvNR = ''"};
// The row whose Ist number is the Soll number of a row with a target room takes that
// row's room. Of several such rows the one stored last wins. No rows are added. The rows
// with a target room are few: they are found by reading the list in storage order and then
// sorted, rather than by walking the whole list in the order of its Soll numbers.
constexpr JetSql kGefundenQuelle{
    R"jet(UPDATE t_Raum INNER JOIN (T_Differenzliste LEFT JOIN t_Differenzliste AS  T_Differenzliste_1 ON T_Differenzliste.stSollInvNR = T_Differenzliste_1.stIstInvNR)  ON t_Raum.lID = T_Differenzliste.lRaumId SET T_Differenzliste_1.stQuelle =  [t_Raum]![stRaumNr],T_Differenzliste_1.stTyp="2a Zuviel im Raum (verschoben aus anderem Raum des Auftrags)"  WHERE (((T_Differenzliste.stZiel)<>""));)jet",
    "UPDATE T_Differenzliste SET stQuelle = m.stRaumNr, stTyp = '2a Zuviel im Raum (verschoben aus anderem Raum des Auftrags)' "
    "FROM (SELECT nr, stRaumNr FROM (SELECT d.stSollInvNR AS nr, r.stRaumNr AS stRaumNr, ROW_NUMBER() OVER "
    "(PARTITION BY d.stSollInvNR ORDER BY d.lID DESC) AS k FROM T_Differenzliste AS d NOT INDEXED JOIN T_Raum AS r "
    "ON r.lID = d.lRaumID WHERE d.stZiel <> '') WHERE k = 1) AS m WHERE T_Differenzliste.stIstInvNR = m.nr"};
constexpr JetSql kGefundenQuarn{
    R"jet(UPDATE t_Raum INNER JOIN (T_Differenzliste LEFT JOIN t_Differenzliste AS  T_Differenzliste_1 ON T_Differenzliste.stSollInvNR = T_Differenzliste_1.stIstInvNR)  ON t_Raum.lID = T_Differenzliste.lRaumId SET T_Differenzliste_1.stQuarn =  [t_Raum]![stRaumNr],T_Differenzliste_1.stTyp="2a Zuviel im Raum (verschoben aus anderem Raum des Auftrags)"  WHERE (((T_Differenzliste.stZiel)<>""));)jet",
    "UPDATE T_Differenzliste SET stQuarn = m.stRaumNr, stTyp = '2a Zuviel im Raum (verschoben aus anderem Raum des Auftrags)' "
    "FROM (SELECT nr, stRaumNr FROM (SELECT d.stSollInvNR AS nr, r.stRaumNr AS stRaumNr, ROW_NUMBER() OVER "
    "(PARTITION BY d.stSollInvNR ORDER BY d.lID DESC) AS k FROM T_Differenzliste AS d NOT INDEXED JOIN T_Raum AS r "
    "ON r.lID = d.lRaumID WHERE d.stZiel <> '') WHERE k = 1) AS m WHERE T_Differenzliste.stIstInvNR = m.nr"};
// stQuarn keeps only rooms outside the order.
constexpr JetSql kGefundenQuarnLeeren{
    R"jet(UPDATE t_Differenzliste INNER JOIN t_Raum ON t_Differenzliste.stQuarn = t_Raum.stRaumNr SET t_Differenzliste.stQuarn = "";)jet",
    "UPDATE T_Differenzliste SET stQuarn = '' "
    "WHERE EXISTS (SELECT 1 FROM T_Raum AS r WHERE r.stRaumNr = T_Differenzliste.stQuarn)"};

// Ist-only rows in storage order; the walk ends at the first one without an Ist number.
constexpr JetSql kRaumSollRows{
    R"jet(SELECT T_Differenzliste.stIstInvNR, T_Differenzliste.stSollInvNR, T_Differenzliste.stZiel From T_Differenzliste WHERE (((T_Differenzliste.stSollInvNR)=""));)jet",
    "SELECT lID, stIstInvNR FROM T_Differenzliste WHERE stSollInvNR = '' ORDER BY lID"};
// The room of the first Soll row expecting the number.
constexpr JetSql kRaumSollOfNumber{
    R"jet(SELECT T_Differenzliste.stSollInvNR, T_Raum.stRaumNr  FROM T_Raum LEFT JOIN T_Differenzliste ON T_Raum.lID = T_Differenzliste.lRaumId WHERE (((T_Differenzliste.stSollInvNR)=")jet"
    R"jet(" + stIstInvNR + ")jet"
    R"jet("));)jet",
    "SELECT r.stRaumNr FROM T_Differenzliste AS d JOIN T_Raum AS r ON r.lID = d.lRaumID "
    "WHERE d.stSollInvNR = ?1 ORDER BY d.lID LIMIT 1"};
constexpr std::string_view kSetZiel = "UPDATE T_Differenzliste SET stZiel = ?2 WHERE lID = ?1";

// ------------------------------------------------------------ error lists

constexpr JetSql kMakeListNeu{
    R"jet(DELETE T_Differenzliste.*, T_Differenzliste.stZiel, T_Differenzliste.stSollInvNR From T_Differenzliste WHERE (((T_Differenzliste.stSollInvNR)<>"")) OR (((T_Differenzliste.stQuelle)<>"")) OR (((T_Differenzliste.stIstInvNR)=""));)jet",
    "DELETE FROM T_Differenzliste WHERE stSollInvNR <> '' OR stQuelle <> '' OR stIstInvNR = ''"};
constexpr JetSql kMakeListVerschoben{
    R"jet(DELETE T_Differenzliste.*, T_Differenzliste.stZiel, T_Differenzliste.stSollInvNR From T_Differenzliste WHERE (((T_Differenzliste.stZiel)="")) OR (((T_Differenzliste.stsollInvNR)=""));)jet",
    "DELETE FROM T_Differenzliste WHERE stZiel = '' OR stSollInvNR = ''"};
constexpr JetSql kMakeListFehlend{
    R"jet(DELETE T_Differenzliste.*, T_Differenzliste.stTyp From T_Differenzliste WHERE (((T_Differenzliste.stTyp)<>"3b Fehlt im Auftrag (bisher). Könnte noch in diesem oder in anderem Auftrag auftauchen.")))jet",
    "DELETE FROM T_Differenzliste WHERE stTyp <> "
    "'3b Fehlt im Auftrag (bisher). Könnte noch in diesem oder in anderem Auftrag auftauchen.'"};

/// Runs `body`; an error of the engine (or a missing database) goes to `onError` with its description.
template <class Body, class OnError>
bool guarded(Body&& body, OnError&& onError)
{
    try {
        return body();
    } catch (const NoDatabase&) {
        return onError(std::string(kNoObject));
    } catch (const DbError& e) {
        return onError(e.description());
    } catch (const std::exception& e) {
        return onError(std::string(e.what()));
    }
}

/// Keeps what a walk wrote before it failed, as if each row had been written on its own.
void keepWritten(std::unique_ptr<Database::Transaction>& tx)
{
    if (!tx)
        return;
    try {
        tx->commit();
    } catch (const DbError&) {
        // Nothing more to keep: the guard rolls back.
    }
}

} // namespace

bool CAuftragDb::DelAllRaumRec() { return executeDelete(kDelAllRaum.sqlite); }
bool CAuftragDb::DelAllInvListe() { return executeDelete(kDelAllInvListe.sqlite); }
bool CAuftragDb::DelAllDiffListe() { return executeDelete(kDelAllDiffListe.sqlite); }

bool CAuftragDb::WriteReihenfolgeDiffListe()
{
    std::unique_ptr<Database::Transaction> tx;
    return guarded(
        [&] {
            Database& d = db();
            Recordset passRows = d.query(kDiffPassRows);
            passRows.moveFirst();
            tx = std::make_unique<Database::Transaction>(d);
            std::int64_t counter = 0;
            const JetSql* const passes[] = {&kDiffPass1, &kDiffPass2, &kDiffPass3};
            for (std::size_t i = 0; i < 3; ++i) {
                d.execute(passes[i]->sqlite, {counter});
                // Past 32767 the 16-bit counter overflows; the rows numbered so far keep their numbers.
                counter = checkedInt16(counter + toLong(passRows.field(i)));
            }
            tx->commit();
            return true;
        },
        [&](const std::string& description) {
            keepWritten(tx);
            ui_.messageBox("CAuftragDb.WriteReihenfolgeDiffListe\r\n" + description, MsgButtons::Ok,
                           MsgIcon::Critical, kProgramName);
            return false;
        });
}

bool CAuftragDb::WriteReihenfolgeDatInventur()
{
    std::unique_ptr<Database::Transaction> tx;
    return guarded(
        [&] {
            Database& d = db();
            struct Line {
                std::int64_t id;
                std::int64_t number;
            };
            std::vector<std::vector<Line>> todo;
            std::vector<Line> room;
            bool inOrder = true;
            std::string current;
            const auto closeRoom = [&] {
                // A room with more lines than the 16-bit counter reaches is never in order; its
                // numbering overflows after the lines before have been numbered.
                if (!inOrder)
                    todo.push_back(std::move(room));
                room.clear();
                inOrder = true;
            };
            Statement& lines = d.prepare(kScanRooms.sqlite);
            lines.bindAll({});
            while (lines.step()) {
                const std::string_view raum = lines.columnText(0);
                const Line line{lines.columnInt(2), lines.columnInt(1)};
                if (raum != current) {
                    if (!room.empty() && !jetEqual(raum, current))
                        closeRoom();
                    current.assign(raum);
                }
                if (line.number != std::int64_t(room.size()) + 1 || (!room.empty() && room.back().id > line.id))
                    inOrder = false;
                room.push_back(line);
            }
            lines.reset();
            if (!room.empty())
                closeRoom();
            if (todo.empty())
                return true;
            tx = std::make_unique<Database::Transaction>(d);
            Statement& write = d.prepare(kScanLinesOfRoom.sqlite);
            for (auto& r : todo) {
                std::sort(r.begin(), r.end(), [](const Line& x, const Line& y) { return x.id < y.id; });
                std::int16_t counter = 0;
                for (const Line& line : r) {
                    incrementInt16(counter);
                    if (line.number == counter)
                        continue;
                    write.bindAll({line.id, std::int64_t{counter}});
                    write.step();
                }
            }
            write.reset();
            tx->commit();
            return true;
        },
        [&](const std::string& description) {
            // Lines numbered before the failure stay numbered.
            keepWritten(tx);
            return problem(description);
        });
}

bool CAuftragDb::RaumVorhanden(const std::string& room)
{
    return guarded([&] { return !db().query(kRaumVorhanden.sqlite, {room}).empty(); },
                   [&](const std::string& description) { return problem(description); });
}

bool CAuftragDb::RaumImAuftrag(const std::string& room)
{
    return guarded([&] { return !db().query(kRaumImAuftrag.sqlite, {room}).empty(); },
                   [&](const std::string& description) { return problem(description); });
}

bool CAuftragDb::MakeInvListbyRoom(const std::string& room)
{
    return guarded(
        [&] {
            db().execute(kMakeInvListbyRoom.sqlite, {room});
            return true;
        },
        [&](const std::string& description) { return problem(description); });
}

bool CAuftragDb::SetStatusRoomsByDB()
{
    std::unique_ptr<Database::Transaction> tx;
    return guarded(
        [&] {
            Database& d = db();
            struct Group {
                Value datum, datId, sum;
            };
            const auto before = [](const std::string& a, const std::string& b) { return jetCompare(a, b) < 0; };
            std::map<std::string, Group, decltype(before)> firstGroup(before);
            Statement& groups = d.prepare(kStatusGroupsOfRoom.sqlite);
            groups.bindAll({});
            while (groups.step())
                firstGroup.try_emplace(toText(groups.column(0)), Group{groups.column(1), groups.column(2), groups.column(3)});
            groups.reset();
            if (firstGroup.empty())
                return true;

            const Recordset rooms = d.query(kRoomsInStorageOrder);
            tx = std::make_unique<Database::Transaction>(d);
            for (const auto& room : rooms.rows()) {
                const auto g = firstGroup.find(toText(room[1]));
                if (g == firstGroup.end())
                    continue;
                const Group& v = g->second;
                if (toText(room[2]) == "E" && room[3] == v.datum && room[4] == v.datId && room[5] == v.sum)
                    continue;
                // A count beyond the 16-bit column fails here; the rooms before keep their status.
                d.execute(kSetRoomStatus, {room[0], v.datum, v.datId, v.sum});
            }
            tx->commit();
            return true;
        },
        [&](const std::string& description) {
            keepWritten(tx);
            return problem(description);
        });
}

bool CAuftragDb::runStatements(std::initializer_list<std::string_view> statements)
{
    // LastError stays as it was: these statements report through the "Problem" message.
    // Each statement stands on its own: those before a failing one stay applied.
    return guarded(
        [&] {
            for (const std::string_view sql : statements)
                db().execute(sql);
            return true;
        },
        [&](const std::string& description) { return problem(description); });
}

bool CAuftragDb::ResetStatusRooms() { return runStatements({kResetStatusRooms.sqlite}); }

bool CAuftragDb::MakeIstInvOk() { return runStatements({kMakeIstInvOk.sqlite}); }

bool CAuftragDb::MakeIstScanExtra() { return runStatements({kMakeIstScanExtra.sqlite}); }

bool CAuftragDb::GetRaumGefunden()
{
    return runStatements({kGefundenZiel.sqlite, kGefundenQuelle.sqlite, kGefundenQuarn.sqlite,
                          kGefundenQuarnLeeren.sqlite});
}

bool CAuftragDb::GetRaumSoll()
{
    std::unique_ptr<Database::Transaction> tx;
    return guarded(
        [&] {
            Database& d = db();
            tx = std::make_unique<Database::Transaction>(d);
            Recordset rows = d.query(kRaumSollRows.sqlite);
            for (rows.moveFirst(); !rows.eof(); rows.moveNext()) {
                const std::string ist = toText(rows.field("stIstInvNR"));
                if (ist.empty())
                    break;
                const Value room = d.scalar(kRaumSollOfNumber.sqlite, {ist});
                if (!isNull(room))
                    d.execute(kSetZiel, {rows.field("lID"), room});
            }
            tx->commit();
            return true;
        },
        [&](const std::string& description) {
            // Rows given their room before the failure keep it.
            keepWritten(tx);
            return problem(description);
        });
}

bool CAuftragDb::WriteIst()
{
    std::unique_ptr<Database::Transaction> tx;
    return guarded(
        [&] {
            Database& d = db();
            tx = std::make_unique<Database::Transaction>(d);
            Recordset articles = d.query(kArticles);
            for (articles.moveFirst(); !articles.eof(); articles.moveNext()) {
                // An article whose count fails has reported it and keeps the counter's 0.
                std::int16_t counter = 0;
                CountArtikelIst(toText(articles.field("stArtikel")), counter);
                d.execute(kWriteIst, {articles.field("lID"), std::int64_t{counter}});
            }
            tx->commit();
            return true;
        },
        [&](const std::string& description) {
            // Articles already counted stay counted.
            keepWritten(tx);
            return problem(description);
        });
}

bool CAuftragDb::CountArtikelIst(const std::string& article, std::int16_t& counter)
{
    return guarded(
        [&] {
            const Recordset rs = db().query(kCountArtikelIst.sqlite, {article});
            if (!rs.empty())
                counter = toInt16(rs.field("AnzahlIst"));
            return true;
        },
        [&](const std::string& description) { return problem(description); });
}

bool CAuftragDb::MakeListNeu() { return executeDelete(kMakeListNeu.sqlite); }
bool CAuftragDb::MakeListVerschoben() { return executeDelete(kMakeListVerschoben.sqlite); }
bool CAuftragDb::MakeListFehlend() { return executeDelete(kMakeListFehlend.sqlite); }

} // namespace qi
