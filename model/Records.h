#pragma once
// One plain record class per table: public fields named like the columns, in
// column order, field lID (the table's AutoNumber key, 0 = not stored) first.
// A new record holds its Init values; CopyFrom copies every field, the
// memory-only ones (fields without a column) included.

#include "JetDate.h"

#include <cstdint>
#include <string>

namespace qi {

/// One order of the project (row of T_Auftrag in the order register).
class CAuftragRec {
public:
    CAuftragRec() { Init(); }
    std::int32_t lID;
    std::string stBezeichung; ///< order name; spelled one letter short on purpose
    std::string stPfad;       ///< "\Inventur\" + name + ".mdb", relative to the project folder
    JetDate erstellt;
    JetDate letzte_Aenderung;
    std::string stErsteller;
    std::string stEditor;
    std::int16_t bOffen; ///< memory only: the order is open in the work window
    /// Resets every field but the two dates, which keep their values.
    void Init();
    void CopyFrom(const CAuftragRec& src) { *this = src; }
};

/// One line of the article tally (T_Artikelliste).
class CArtikellisteRec {
public:
    CArtikellisteRec() { Init(); }
    std::int32_t lID;
    std::string stArtikel;
    std::int16_t iAnzSoll;
    std::int16_t iAnzIst;
    std::string stBeschreibung;
    std::string stAuftrag;
    void Init();
    void CopyFrom(const CArtikellisteRec& src) { *this = src; }
};

/// One scanner data file of the order (T_Dateien).
class CDateienRec {
public:
    CDateienRec() { Init(); }
    std::int32_t lID;
    std::string stName;
    std::string Datum;
    std::string stPfad;
    void Init();
    void CopyFrom(const CDateienRec& src) { *this = src; }
};

/// One scanned line (T_DatInventur).
class CDatInventurRec {
public:
    CDatInventurRec() { Init(); }
    std::int32_t lID;
    std::string stMitarbNr;
    std::string stAuftragsNr;
    std::string Datum;
    std::string Uhrzeit;
    std::string stRaum;
    std::string stInvNr;
    std::string stArtNr;
    std::string stArtName; ///< memory only: the host's article name, shown in the conflict dialog
    std::string stTaet;
    std::int16_t iReihenfolge;
    std::int32_t lDatID;
    void Init();
    void CopyFrom(const CDatInventurRec& src) { *this = src; }
};

/// One line of the difference list (T_Differenzliste).
class CDifferenzlisteRec {
public:
    CDifferenzlisteRec() { Init(); }
    std::int32_t lID;
    std::int32_t lRaumID;
    std::string stSollInvNR;
    std::string stIstInvNR;
    std::string stBeschreibung;
    std::string stZiel;
    std::string stQuelle;
    std::string stQuarn;
    std::string stArtNr;
    std::string Datum;
    std::string Uhrzeit;
    std::int16_t iMarke; ///< memory only: a number the caller may keep with the line
    std::string stTyp;   ///< category; "0" in a new record
    void Init();
    void CopyFrom(const CDifferenzlisteRec& src) { *this = src; }
};

/// One line of the inventory list (T_Invliste).
class CInvlisteRec {
public:
    CInvlisteRec() { Init(); }
    std::int32_t lID;
    std::string stRaumNr;
    std::string stInvNr;
    std::string stBeschreibung;
    std::string stArtNr;
    std::int16_t iRFolge;
    std::string Datum;
    std::string Uhrzeit;
    void Init();
    void CopyFrom(const CInvlisteRec& src) { *this = src; }
};

/// One room of the order (T_Raum).
class CRaumRec {
public:
    CRaumRec() { Init(); }
    std::int32_t lID;
    std::int32_t lIdRB;
    std::string stRaumNr;
    std::string ststatus; ///< "N", "E" or "L"
    std::string stAuftrag;
    std::int32_t lDatID;
    std::string Datum;
    std::string Uhrzeit; ///< written to the table, never read back
    std::int16_t iAnzahl;
    void Init();
    void CopyFrom(const CRaumRec& src) { *this = src; }
};

} // namespace qi
