// QInventur: stocktaking orders beside Quarn.

#include "FileSystem.h"
#include "ProgramWindows.h"
#include "QtUserInteraction.h"
#include "ReportViewer.h"
#include "frmFehler.h"
#include "frmMain.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("QInventur"));
    // Where the windows' sizes and places are kept between runs.
    QApplication::setOrganizationName(QStringLiteral("QInventur"));
    QApplication::setApplicationVersion(QStringLiteral(QINVENTUR_VERSION));

    // The program speaks German, and so do Qt's own dialogs (the file dialog) where their translation is installed.
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    QTranslator qtTexts;
    if (qtTexts.load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                     QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&qtTexts);

    qi::QtUserInteraction ui;
    qi::installFrmFehler(ui);
    qi::installReportPreview(ui);
    qi::frmMain window(ui, qi::programFolder());
    qi::connectWindows(window);
    ui.setParent(&window);
    window.Form_Load();
    window.show();
    return app.exec();
}
