#include "frmWork.h"

#include "QuarnHost.h"

namespace qi {

// The evaluation run, the article tally and the inventory list.

bool frmWork::ReportDifferenzListe() { return false; }
bool frmWork::MakeArtikelAufstellung() { return false; }
bool frmWork::MakeInvListe() { return false; }
bool frmWork::MakeArtikelIst() { return false; }

} // namespace qi
