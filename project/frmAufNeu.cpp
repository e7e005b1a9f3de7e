#include "frmAufNeu.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace qi {

frmAufNeu::frmAufNeu(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(QStringLiteral("Neuer Auftrag"));
    Label1 = new QLabel(QStringLiteral("Bezeichnung"), this);
    Label2 = new QLabel(QStringLiteral("Mitarbeiter"), this);
    txName = new QLineEdit(this);
    edPerson = new QLineEdit(this);
    txName->setMinimumWidth(260);
    Label1->setBuddy(txName);
    Label2->setBuddy(edPerson);
    pbOk = new QPushButton(QStringLiteral("&OK"), this);
    pbCancel = new QPushButton(QStringLiteral("&Abbrechen"), this);
    pbOk->setDefault(true);

    auto* grid = new QGridLayout(this);
    grid->addWidget(Label1, 0, 0);
    grid->addWidget(txName, 0, 1);
    grid->addWidget(Label2, 1, 0);
    grid->addWidget(edPerson, 1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(pbOk);
    buttons->addWidget(pbCancel);
    grid->addLayout(buttons, 2, 0, 1, 2);

    connect(pbOk, &QPushButton::clicked, this, &frmAufNeu::pbOk_Click);
    connect(pbCancel, &QPushButton::clicked, this, &frmAufNeu::pbCancel_Click);
    Form_Load();
}

void frmAufNeu::Form_Load() { stName.clear(); }

void frmAufNeu::pbOk_Click()
{
    if (txName->text().isEmpty())
        return;
    stName = txName->text().toStdString();
    stPerson = edPerson->text().toStdString();
    accept();
}

void frmAufNeu::pbCancel_Click()
{
    stName.clear();
    reject();
}

} // namespace qi
