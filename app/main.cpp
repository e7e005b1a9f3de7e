// QInventur: stocktaking orders beside Quarn.

#include "FileSystem.h"
#include "QtUserInteraction.h"
#include "frmFehler.h"
#include "frmMain.h"

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("QInventur"));
    QApplication::setApplicationVersion(QStringLiteral(QINVENTUR_VERSION));

    qi::QtUserInteraction ui;
    qi::installFrmFehler(ui);
    qi::frmMain window(ui, qi::programFolder());
    ui.setParent(&window);
    window.Form_Load();
    window.show();
    return app.exec();
}
