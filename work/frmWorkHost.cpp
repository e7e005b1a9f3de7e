#include "frmWork.h"

#include "QuarnHost.h"
#include "frmWorkSupport.h"

namespace qi {

// Quarn's components as the work window uses them: created and opened once per
// window, on first use, with the project's host database setting.

void frmWork::ensureHost()
{
    if (f_GebDb)
        return;
    auto host = std::make_unique<QObjektDb>();
    if (!host->Open(settings_.gstAppPfad, settings_.objectDatabase()))
        throw Failure(host->LastError());
    host->SetTablePrefix(settings_.tablePrefix());
    f_GebDb = std::move(host);
}

void frmWork::ensureArtikelDb()
{
    if (f_ArtikelDb)
        return;
    auto articles = std::make_unique<QArtikelDb>();
    if (!articles->Open(settings_.gstAppPfad, settings_.objectDatabase()))
        throw Failure(articles->LastError());
    articles->SetTablePrefix(settings_.tablePrefix());
    f_ArtikelDb = std::move(articles);
}

QGebDb& frmWork::ensureGebDb()
{
    if (f_QGebDb)
        return *f_QGebDb;
    auto geb = std::make_unique<QGebDb>();
    if (!geb->Open(settings_.gstAppPfad, settings_.buildingDatabase()))
        throw Failure(geb->LastError());
    if (!geb->OpenObjects(settings_.objectDatabase(), settings_.tablePrefix()))
        throw Failure(geb->LastError());
    ownGebDb_ = std::move(geb);
    f_QGebDb = ownGebDb_.get();
    return *f_QGebDb;
}

} // namespace qi
