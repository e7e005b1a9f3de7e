// QInventur: stocktaking orders beside Quarn.

#include "QtUserInteraction.h"

#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("QInventur"));
    QApplication::setApplicationVersion(QStringLiteral(QINVENTUR_VERSION));
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("QInventur"));
    window.resize(640, 420);
    window.show();
    return app.exec();
}
