// QInventur: stocktaking orders beside Quarn.

#include "FileSystem.h"
#include "FirstStart.h"
#include "ProgramVersion.h"
#include "ProgramWindows.h"
#include "QtUserInteraction.h"
#include "ReportViewer.h"
#include "frmFehler.h"
#include "frmMain.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <cstdio>
#include <cstring>

int main(int argc, char** argv)
{
    // "--version" is answered before any window system is needed.
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--version") == 0) {
            std::printf("%s\n", qi::versionLine().c_str());
            return 0;
        }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("QInventur"));
    // Where the windows' sizes and places are kept between runs.
    QApplication::setOrganizationName(QStringLiteral("QInventur"));
    QApplication::setApplicationVersion(QString::fromStdString(qi::programVersion()));

    // The program speaks German, and so do Qt's own dialogs (the file dialog) where their translation is installed.
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    QTranslator qtTexts;
    if (qtTexts.load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                     QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&qtTexts);

    qi::QtUserInteraction ui;
    qi::installFrmFehler(ui);
    qi::installReportPreview(ui);
    // An installed program keeps its writable files in the user's own program folder; on its first
    // start without a project it asks for one, and ends quietly when the user cancels.
    const qi::ProgramFolders folders = qi::programFolders(qi::programFolder());
    if (qi::needsProjectChoice(folders) && !qi::chooseFirstProject(folders, ui))
        return 0;
    qi::frmMain window(ui, folders);
    qi::connectWindows(window);
    ui.setParent(&window);
    window.Form_Load();
    window.show();
    return app.exec();
}
