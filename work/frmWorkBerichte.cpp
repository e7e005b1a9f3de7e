#include "frmWork.h"

#include "ReportMenus.h"

namespace qi {

// The menus "&Berichte" and "&Fehlerlisten (Auftragsbereich)".

void frmWork::mnuReportFkt_Click(int /*index*/) {}
void frmWork::mnuFehlerFkt_Click(int /*index*/) {}

} // namespace qi
