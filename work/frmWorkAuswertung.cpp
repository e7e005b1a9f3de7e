#include "frmWork.h"

#include "Categories.h"
#include "IndexesSetAside.h"
#include "JetSql.h"
#include "LinkedDatabase.h"
#include "QuarnHost.h"
#include "ReportDatabase.h"
#include "ReportMenus.h"
#include "RunCache.h"
#include "SqlName.h"
#include "frmWorkSupport.h"

#include <array>
#include <exception>
#include <optional>
#include <unordered_map>

// The evaluation run (the difference list), the article tally and the inventory list.
//
// The statements that read Quarn's tables are those of the report database: its links
// are attached to the order's own connection for the time of a run, so that the order
// tables are written and Quarn's read through the links in one transaction. A run
// stopped by an error keeps what it wrote until then.

namespace qi {

namespace {

constexpr const char* kEvaluationTitle = "Auswertung";

namespace step {
constexpr const char* Soll = "Sollbestand der Räume";
constexpr const char* InvOk = "Objekte am richtigen Platz";
constexpr const char* ScanExtra = "Zusätzlich erfasste Objekte";
constexpr const char* ArtikelIst = "Artikeldaten der erfassten Objekte";
constexpr const char* Gefunden = "Verschobene Objekte";
constexpr const char* Quarn = "Standorte in Quarn";
constexpr const char* Bemerkung = "Bemerkungen der Objekte";
} // namespace step

// ------------------------------------------------------------ location of unexplained scans

// Rows without a Soll number and without a source room take the location of the scanned
// number in Quarn; a number Quarn does not know gives Null, as the outer join does.
constexpr std::array<JetSql, 3> kQuarnOrt{{
    {R"jet(UPDATE t_Differenzliste LEFT JOIN T_IObjekt ON t_Differenzliste.stIstInvNR =  T_IObjekt.stName SET t_Differenzliste.stQuarn = [T_IObjekt]![stOrt] WHERE (((t_Differenzliste.stSollInvNR)="") AND ((t_Differenzliste.stQuelle)=""));)jet",
     "UPDATE t_Differenzliste SET stQuarn = (SELECT o.stOrt FROM T_IObjekt AS o WHERE o.stName = "
     "t_Differenzliste.stIstInvNR ORDER BY o.lId LIMIT 1) WHERE stSollInvNR = '' AND stQuelle = ''"},
    {R"jet(UPDATE t_Differenzliste LEFT JOIN T_TObjekt ON t_Differenzliste.stIstInvNR =  T_TObjekt.stName SET t_Differenzliste.stQuarn = [T_TObjekt]![stOrt] WHERE (((t_Differenzliste.stSollInvNR)="") AND ((t_Differenzliste.stQuelle)=""));)jet",
     "UPDATE t_Differenzliste SET stQuarn = (SELECT o.stOrt FROM T_TObjekt AS o WHERE o.stName = "
     "t_Differenzliste.stIstInvNR ORDER BY o.lId LIMIT 1) WHERE stSollInvNR = '' AND stQuelle = ''"},
    {R"jet(UPDATE t_Differenzliste LEFT JOIN T_BObjekt ON t_Differenzliste.stIstInvNR =  T_BObjekt.stName SET t_Differenzliste.stQuarn = [T_BObjekt]![stOrt] WHERE (((t_Differenzliste.stSollInvNR)="") AND ((t_Differenzliste.stQuelle)=""));)jet",
     "UPDATE t_Differenzliste SET stQuarn = (SELECT o.stOrt FROM T_BObjekt AS o WHERE o.stName = "
     "t_Differenzliste.stIstInvNR ORDER BY o.lId LIMIT 1) WHERE stSollInvNR = '' AND stQuelle = ''"},
}};
constexpr JetSql kQuarnNull{
    R"jet(UPDATE t_Differenzliste SET t_Differenzliste.stQuarn = "" WHERE IsNull(t_Differenzliste.stQuarn);)jet",
    "UPDATE t_Differenzliste SET stQuarn = '' WHERE stQuarn IS NULL"};
constexpr JetSql kNichtInQuarn{
    R"jet(UPDATE t_Differenzliste SET t_Differenzliste.stTyp = "2c Nicht in Quarn erfasst" WHERE (t_Differenzliste.stSollInvNR="") AND (t_Differenzliste.stQuarn="" ) AND (t_Differenzliste.stQuelle="" );)jet",
    "UPDATE t_Differenzliste SET stTyp = '2c Nicht in Quarn erfasst' "
    "WHERE stSollInvNR = '' AND stQuarn = '' AND stQuelle = ''"};

// The remark of the object, from the INVENTAR object table whatever the module: first by
// the Soll number, then by the scanned number, which wins where both match. Only rows with
// a matching object (variant 0) are written; Quarn keeps an inventory number once.
// The list's rows look their objects up by number ("+" keeps the list's own index out of the
// join): an order is a few rooms of a building whose objects are many. A row whose scanned
// number is its Soll number gets its remark from the second statement alone, which writes the
// same object's remark over it.
constexpr JetSql kBemerkungSoll{
    R"jet(UPDATE t_Differenzliste LEFT JOIN T_IObjekt ON t_Differenzliste.stSollInvNR = T_IObjekt.stName SET t_Differenzliste.stObjBemerkung = [T_IObjekt]![stBemerkung] WHERE (((T_IObjekt.iVariante)=0)))jet",
    "UPDATE t_Differenzliste SET stObjBemerkung = o.stBemerkung FROM T_IObjekt AS o "
    "WHERE o.stName = +t_Differenzliste.stSollInvNR AND o.iVariante = 0"
    " AND coalesce(t_Differenzliste.stSollInvNR = t_Differenzliste.stIstInvNR, 0) = 0"};
constexpr JetSql kBemerkungIst{
    R"jet(UPDATE t_Differenzliste LEFT JOIN T_IObjekt ON t_Differenzliste.stIstInvNR = T_IObjekt.stName SET t_Differenzliste.stObjBemerkung = [T_IObjekt]![stBemerkung] WHERE (((T_IObjekt.iVariante)=0)))jet",
    "UPDATE t_Differenzliste SET stObjBemerkung = o.stBemerkung FROM T_IObjekt AS o "
    "WHERE o.stName = +t_Differenzliste.stIstInvNR AND o.iVariante = 0"};

// ------------------------------------------------------------ article tally

// Per article and order: the Quarn objects whose location is a room of the order. The
// right join keeps rooms without objects and objects without article; their groups have
// no article number. Jet returns the groups in the order of their keys.
constexpr std::array<JetSql, 3> kArtikelSoll{{
    {R"jet(SELECT T_IArtikel.stArtNr, Count(T_IObjekt.stName) AS iSoll, T_IArtikel.stName AS  stBeschreibung, t_Raum.stAuftrag FROM T_IArtikel RIGHT JOIN  (t_Raum LEFT JOIN T_IObjekt ON t_Raum.stRaumNr = T_IObjekt.stOrt) ON T_IArtikel.lId = T_IObjekt.lArtikelId GROUP BY T_IArtikel.stArtNr, T_IArtikel.stName, t_Raum.stAuftrag)jet",
     "SELECT a.stArtNr AS stArtNr, count(o.stName) AS iSoll, a.stName AS stBeschreibung, r.stAuftrag AS stAuftrag "
     "FROM t_Raum AS r LEFT JOIN T_IObjekt AS o ON r.stRaumNr = o.stOrt LEFT JOIN T_IArtikel AS a ON a.lId = o.lArtikelId "
     "GROUP BY a.stArtNr, a.stName, r.stAuftrag ORDER BY a.stArtNr, a.stName, r.stAuftrag"},
    {R"jet(SELECT T_TArtikel.stArtNr, Count(T_TObjekt.stName) AS iSoll, T_TArtikel.stName AS  stBeschreibung, t_Raum.stAuftrag FROM T_TArtikel RIGHT JOIN  (t_Raum LEFT JOIN T_TObjekt ON t_Raum.stRaumNr = T_TObjekt.stOrt) ON T_TArtikel.lId = T_TObjekt.lArtikelId GROUP BY T_TArtikel.stArtNr, T_TArtikel.stName, t_Raum.stAuftrag)jet",
     "SELECT a.stArtNr AS stArtNr, count(o.stName) AS iSoll, a.stName AS stBeschreibung, r.stAuftrag AS stAuftrag "
     "FROM t_Raum AS r LEFT JOIN T_TObjekt AS o ON r.stRaumNr = o.stOrt LEFT JOIN T_TArtikel AS a ON a.lId = o.lArtikelId "
     "GROUP BY a.stArtNr, a.stName, r.stAuftrag ORDER BY a.stArtNr, a.stName, r.stAuftrag"},
    {R"jet(SELECT T_BArtikel.stArtNr, Count(T_BObjekt.stName) AS iSoll, T_BArtikel.stName AS  stBeschreibung, t_Raum.stAuftrag FROM T_BArtikel RIGHT JOIN  (t_Raum LEFT JOIN T_BObjekt ON t_Raum.stRaumNr = T_BObjekt.stOrt) ON T_BArtikel.lId = T_BObjekt.lArtikelId GROUP BY T_BArtikel.stArtNr, T_BArtikel.stName, t_Raum.stAuftrag)jet",
     "SELECT a.stArtNr AS stArtNr, count(o.stName) AS iSoll, a.stName AS stBeschreibung, r.stAuftrag AS stAuftrag "
     "FROM t_Raum AS r LEFT JOIN T_BObjekt AS o ON r.stRaumNr = o.stOrt LEFT JOIN T_BArtikel AS a ON a.lId = o.lArtikelId "
     "GROUP BY a.stArtNr, a.stName, r.stAuftrag ORDER BY a.stArtNr, a.stName, r.stAuftrag"},
}};

/// The run-time error of a Null where a value is needed.
constexpr const char* kNullUse = "Unzulässige Verwendung von Null";
/// The run-time error of a module for which no statement exists.
constexpr const char* kNoModule = "Ungültiger Prozeduraufruf oder ungültiges Argument";

/// The statement for the module; outside 0..2 there is none.
const JetSql& forModule(const std::array<JetSql, 3>& statements, std::int16_t modul)
{
    if (modul < 0 || modul > 2)
        throw Failure(kNoModule);
    return statements[std::size_t(modul)];
}

std::string textOf(const Value& v)
{
    if (isNull(v))
        throw Failure(kNullUse);
    return toText(v);
}

/// Schema name of Quarn's object database on the order's connection during a run.
constexpr const char* kObjectsSchema = "qi_sollbestand";


/// A database file attached to a connection under a name, detached when the object goes.
class AttachedFile {
public:
    AttachedFile(Database& db, const std::string& file, const std::string& schema) : db_(db), schema_(schema)
    {
        db_.execute("ATTACH DATABASE ?1 AS " + sqlName(schema_), {file});
        // Quarn's objects are read in the order of their rooms, most of them once per run.
        db_.executeScript("PRAGMA " + sqlName(schema_) + ".cache_size = " + std::to_string(-kRunCacheKiB));
    }
    ~AttachedFile()
    {
        try {
            db_.execute("DETACH DATABASE " + sqlName(schema_));
            db_.releaseMemory();
        } catch (...) {
            // The connection goes on without it being detached; nothing of the run depends on it.
        }
    }
    AttachedFile(const AttachedFile&) = delete;
    AttachedFile& operator=(const AttachedFile&) = delete;

private:
    Database& db_;
    std::string schema_;
};

/// The order's connection with the report database's links attached, and the one
/// transaction of a run (kept on errors, see KeptTransaction). The report database is
/// read when the run begins, since files can't be attached inside a transaction; an
/// error there is raised where the run opens the report database (links()), so that a
/// run stopped by it has done what comes before. The same holds for Quarn's object
/// database (`objectsFile`, when given), attached as kObjectsSchema for the Soll rows.
class LinkedRun {
public:
    LinkedRun(CAuftragDb& order, const Settings& settings, const std::string& objectsFile = {})
    {
        try {
            Database* db = order.database();
            if (!db)
                throw Failure(kNoObject);
            links_ = LinkedDatabase::open(reportDatabasePath(settings))->attachTo(*db);
        } catch (const std::exception&) {
            error_ = std::current_exception();
        }
        if (!objectsFile.empty()) {
            try {
                Database* db = order.database();
                if (!db)
                    throw Failure(kNoObject);
                objects_.emplace(*db, objectsFile, kObjectsSchema);
            } catch (const std::exception&) {
                objectsError_ = std::current_exception();
            }
        }
        cache_.emplace(order.database(), kRunCacheKiB);
        tx_.emplace(order);
    }
    /// The report database's links; raises the error of reading them.
    void links() const
    {
        if (error_)
            std::rethrow_exception(error_);
    }
    /// Quarn's object database as kObjectsSchema; raises the error of attaching it.
    void objects() const
    {
        if (objectsError_)
            std::rethrow_exception(objectsError_);
    }
    void commit() { tx_->commit(); }

private:
    std::unique_ptr<LinkAttachment> links_;
    std::exception_ptr error_;
    std::optional<AttachedFile> objects_;
    std::exception_ptr objectsError_;
    std::optional<RunCache> cache_;
    // Declared after the links and the cache: the transaction ends before they go.
    std::optional<KeptTransaction> tx_;
};

} // namespace

// ---------------------------------------------------------------- evaluation run

bool frmWork::ReportDifferenzListe()
{
    const Database::Turning painting = keepPainting();
    ui_.setBusy(true);
    ProgressScope progress(*this, kEvaluationTitle);
    try {
        // Quarn's object database is opened before the run begins, to be attached with the
        // links; an error there is raised where the Soll rows need it.
        std::exception_ptr gebError;
        QGebDb* geb = nullptr;
        std::string objectsFile;
        try {
            geb = &ensureGebDb();
            objectsFile = geb->ObjectsFile();
        } catch (const std::exception&) {
            gebError = std::current_exception();
        }
        std::optional<LinkedRun> run;
        run.emplace(f_DBAuftrag, settings_, objectsFile);
        // A false flag of the order database ends the run with its failure text.
        const auto ok = [this](bool flag) { check(flag, f_DBAuftrag); };

        ok(f_DBAuftrag.DelAllDiffListe());
        ok(f_DBAuftrag.ReadAllRaumRec2Coll(f_collRooms));

        if (gebError)
            std::rethrow_exception(gebError);
        // The Soll rows of a room are written by one statement, the room's objects in the order
        // of their keys, as Quarn answers them for the room; a room without objects gets one row.
        // The list is empty now. Its indexes are made once its Soll rows are in and the objects in
        // place have their Ist numbers: most of its rows and most of their numbers. Both steps
        // read the list in storage order only.
        Database& orderDb = *f_DBAuftrag.database();
        IndexesSetAside listIndexes(orderDb, "T_Differenzliste");
        std::string sollSql;
        CDifferenzlisteRec rec;
        const std::int64_t rooms = f_collRooms.Count();
        std::int64_t done = 0;
        for (const CRaumRec& room : f_collRooms) {
            ui_.reportStep(step::Soll, done++, rooms);
            if (room.ststatus == "N")
                continue;
            if (sollSql.empty()) {
                run->objects();
                sollSql = "INSERT INTO T_Differenzliste (lRaumID, stSollInvNR, stBeschreibung, stArtNr, stTyp) "
                          "SELECT ?2, q.stName, q.stBeschreibung, q.stArtNr, ?3 FROM (" +
                          geb->ObjectsOfRoomQuery(kObjectsSchema) + ") AS q ORDER BY q.lId";
            }
            if (orderDb.execute(sollSql, {std::int64_t{room.lIdRB}, std::int64_t{room.lID}, std::string(category::k3b)}) == 0) {
                // Every room is listed, also one where Quarn expects nothing.
                rec.Init();
                rec.lRaumID = room.lID;
                ok(f_DBAuftrag.AddNewDifferenzlisteRec(&rec));
            }
        }
        ui_.reportStep(step::Soll, rooms, rooms);

        ui_.reportStep(step::InvOk, 0, 0);
        ok(f_DBAuftrag.MakeIstInvOk());
        listIndexes.restore();
        ui_.reportStep(step::ScanExtra, 0, 0);
        ok(f_DBAuftrag.MakeIstScanExtra());
        ui_.reportStep(step::ArtikelIst, 0, 0);
        ok(MakeArtikelIst());
        ui_.reportStep(step::Gefunden, 0, 0);
        ok(f_DBAuftrag.GetRaumGefunden());

        run->links();
        Database& db = *f_DBAuftrag.database();
        ui_.reportStep(step::Quarn, 0, 0);
        db.execute(forModule(kQuarnOrt, settings_.giModul).sqlite);
        db.execute(kQuarnNull.sqlite);
        db.execute(kNichtInQuarn.sqlite);
        ui_.reportStep(step::Bemerkung, 0, 0);
        db.execute(kBemerkungSoll.sqlite);
        db.execute(kBemerkungIst.sqlite);

        run->commit();
        run.reset();
        progress.end();
        ui_.processEvents();
        ui_.setBusy(false);
        return true;
    } catch (const std::exception& e) {
        progress.end();
        ui_.showError("frmWork.ReportDifferenzListe", e.what());
        return false;
    }
}

// ---------------------------------------------------------------- article tally

bool frmWork::MakeArtikelAufstellung()
{
    const Database::Turning painting = keepPainting();
    try {
        bool counted = false;
        {
            LinkedRun run(f_DBAuftrag, settings_);
            check(f_DBAuftrag.DelAllArtikellisteRec(), f_DBAuftrag);

            run.links();
            Database& db = *f_DBAuftrag.database();
            Recordset rows = db.query(forModule(kArtikelSoll, settings_.giModul).sqlite);
            CArtikellisteRec rec;
            for (rows.moveFirst(); !rows.eof(); rows.moveNext()) {
                // A group without an article (a room without objects, an object without article).
                if (isNull(rows.field("stArtNr")))
                    continue;
                rec.Init();
                rec.stArtikel = toText(rows.field("stArtNr"));
                rec.iAnzSoll = toInt16(rows.field("iSoll"));
                rec.stBeschreibung = textOf(rows.field("stBeschreibung"));
                rec.stAuftrag = textOf(rows.field("stAuftrag"));
                check(f_DBAuftrag.AddNewArtikellisteRec(&rec), f_DBAuftrag);
            }
            counted = f_DBAuftrag.WriteIst();
            run.commit();
        }
        ui_.processEvents();
        ui_.showReport(reportFileOf(settings_, kArtikelReportFile), reportDatabasePath(settings_),
                       std::string(kArtikelReportTitle));
        return counted;
    } catch (const std::exception& e) {
        ui_.showError("frmWork.MakeArtikelAufstellung", e.what());
        return false;
    }
}

// ---------------------------------------------------------------- inventory list

bool frmWork::MakeInvListe()
{
    const Database::Turning painting = keepPainting();
    try {
        KeptTransaction tx(f_DBAuftrag);
        check(f_DBAuftrag.ReadAllRaumRec2Coll(f_collRooms), f_DBAuftrag);
        check(f_DBAuftrag.DelAllInvListe(), f_DBAuftrag);
        for (const CRaumRec& room : f_collRooms)
            check(f_DBAuftrag.MakeInvListbyRoom(room.stRaumNr), f_DBAuftrag);

        CInvlisteRecColl lines;
        check(f_DBAuftrag.ReadAllInvlisteRec2Coll(lines), f_DBAuftrag);
        ensureArtikelDb();
        // One lookup per article number: a list repeats the same articles many times.
        std::unordered_map<std::string, std::optional<std::string>> descriptions;
        for (CInvlisteRec& line : lines) {
            auto found = descriptions.find(line.stArtNr);
            if (found == descriptions.end())
                found = descriptions.emplace(line.stArtNr, f_ArtikelDb->FindDescription(line.stArtNr)).first;
            if (found->second)
                line.stBeschreibung = *found->second;
            check(f_DBAuftrag.EditInvlisteRec(&line), f_DBAuftrag);
        }
        tx.commit();
        ui_.processEvents();
        return true;
    } catch (const std::exception& e) {
        ui_.showError("frmWork.MakeInvListe", e.what());
        return false;
    }
}

// ---------------------------------------------------------------- article data of the scans

bool frmWork::MakeArtikelIst()
{
    try {
        ensureHost();
        const QObjektDb::LookupBatch lookups(*f_GebDb);
        // Only the lines the walk may complete are read: the list holds a Soll row for every
        // object of the order's rooms, and those carry their article already.
        CDifferenzlisteRecColl lines;
        check(f_DBAuftrag.ReadDifferenzlisteOhneArtNr2Coll(lines), f_DBAuftrag);
        CDifferenzlisteRec* line = nullptr;
        lines.ResetIndex();
        while (lines.GetNext(line)) {
            if (!line->stArtNr.empty() || line->stIstInvNR.empty())
                continue;
            if (const auto object = f_GebDb->FindByInvNr(line->stIstInvNR)) {
                line->stArtNr = object->stArtNr;
                line->stBeschreibung = object->stBeschreibung;
                check(f_DBAuftrag.EditDifferenzlisteRec(line), f_DBAuftrag);
            }
        }
        return true;
    } catch (const std::exception& e) {
        ui_.showError("frmWork.MakeArtikelIst", e.what());
        return false;
    }
}

} // namespace qi
