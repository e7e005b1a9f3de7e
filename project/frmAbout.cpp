#include "frmAbout.h"

#include "ProgramVersion.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace qi {

namespace {
constexpr const char* kVersionDesign = "Version :  ";

QString twoDigits(int n) { return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0')); }
} // namespace

frmAbout::frmAbout(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(QStringLiteral("Info über ..."));
    lbTitel = new QLabel(QStringLiteral("Quarn - Inventurauftrag Quarn 4"), this);
    QFont f = lbTitel->font();
    f.setBold(true);
    lbTitel->setFont(f);
    txVersion = new QLabel(QString::fromUtf8(kVersionDesign), this);
    lbBuild = new QLabel(this);
    lbBuild->setTextInteractionFlags(Qt::TextSelectableByMouse);
    pbOk = new QPushButton(QStringLiteral("&Schließen"), this);
    pbOk->setDefault(true);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lbTitel);
    layout->addWidget(txVersion);
    layout->addWidget(lbBuild);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(pbOk);
    layout->addLayout(buttons);

    connect(pbOk, &QPushButton::clicked, this, &QDialog::accept);
    Form_Load();
}

void frmAbout::Form_Load()
{
    txVersion->setText(QString::fromUtf8(kVersionDesign) + QString::number(QI_VERSION_MAJOR) + QLatin1Char('.') +
                       twoDigits(QI_VERSION_MINOR) + QLatin1Char('.') + twoDigits(QI_VERSION_PATCH));
    lbBuild->setText(QString::fromStdString(versionLine()));
}

} // namespace qi
