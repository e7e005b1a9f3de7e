#include "CAuftragDb.h"

#include "JetSql.h"

namespace qi {

namespace {
constexpr JetSql kDelAllRaum{"DELETE * FROM T_Raum;", "DELETE FROM T_Raum"};
constexpr JetSql kDelAllInvListe{"DELETE * FROM T_Invliste;", "DELETE FROM T_Invliste"};
constexpr JetSql kDelAllDiffListe{"DELETE * FROM T_DifferenzListe;", "DELETE FROM T_Differenzliste"};
} // namespace

bool CAuftragDb::DelAllRaumRec() { return executeDelete(kDelAllRaum.sqlite); }
bool CAuftragDb::DelAllInvListe() { return executeDelete(kDelAllInvListe.sqlite); }
bool CAuftragDb::DelAllDiffListe() { return executeDelete(kDelAllDiffListe.sqlite); }

// The remaining statements follow in this file.
bool CAuftragDb::WriteReihenfolgeDiffListe() { return problem("WriteReihenfolgeDiffListe"); }
bool CAuftragDb::WriteReihenfolgeDatInventur() { return problem("WriteReihenfolgeDatInventur"); }
bool CAuftragDb::RaumVorhanden(const std::string&) { return problem("RaumVorhanden"); }
bool CAuftragDb::RaumImAuftrag(const std::string&) { return problem("RaumImAuftrag"); }
bool CAuftragDb::MakeInvListbyRoom(const std::string&) { return problem("MakeInvListbyRoom"); }
bool CAuftragDb::SetStatusRoomsByDB() { return problem("SetStatusRoomsByDB"); }
bool CAuftragDb::ResetStatusRooms() { return problem("ResetStatusRooms"); }
bool CAuftragDb::MakeIstInvOk() { return problem("MakeIstInvOk"); }
bool CAuftragDb::MakeIstScanExtra() { return problem("MakeIstScanExtra"); }
bool CAuftragDb::GetRaumGefunden() { return problem("GetRaumGefunden"); }
bool CAuftragDb::GetRaumSoll() { return problem("GetRaumSoll"); }
bool CAuftragDb::WriteIst() { return problem("WriteIst"); }
bool CAuftragDb::CountArtikelIst(const std::string&, std::int16_t&) { return problem("CountArtikelIst"); }
bool CAuftragDb::MakeListNeu() { return problem("MakeListNeu"); }
bool CAuftragDb::MakeListVerschoben() { return problem("MakeListVerschoben"); }
bool CAuftragDb::MakeListFehlend() { return problem("MakeListFehlend"); }

} // namespace qi
