#include "frmFehler.h"

#include "QtUserInteraction.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

namespace qi {

namespace {

QLabel* label(QWidget* parent, const char* name, const QString& text = {})
{
    auto* l = new QLabel(text, parent);
    l->setObjectName(QString::fromLatin1(name));
    return l;
}

QString qs(const std::string& s) { return QString::fromStdString(s); }

/// Clears a radio button that belongs to an exclusive group.
void clearOption(QRadioButton* op)
{
    op->setAutoExclusive(false);
    op->setChecked(false);
    op->setAutoExclusive(true);
}

} // namespace

frmFehler::frmFehler(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmFehler"));
    setWindowTitle(QStringLiteral("Fehler"));
    setModal(true);

    lbMessage = label(this, "lbMessage", QStringLiteral("Bitte zwischen beiden Räumen entscheiden !"));
    Label1 = label(this, "Label1", QStringLiteral("Inventarnummer"));
    lbInvNr = label(this, "lbInvNr");
    Label2 = label(this, "Label2", QStringLiteral("Artikelnummer"));
    lbArtNr = label(this, "lbArtNr");
    Label4 = label(this, "Label4", QStringLiteral("Artikelbezeichnung"));
    lbArtName = label(this, "lbArtName");
    Label10 = label(this, "Label10", QStringLiteral("Erstes Auftreten:"));
    Label11 = label(this, "Label11", QStringLiteral("Zweites Auftreten:"));
    Label3 = label(this, "Label3", QStringLiteral("Raum"));
    Label5 = label(this, "Label5", QStringLiteral("Datei"));
    Label12 = label(this, "Label12", QStringLiteral("Datum"));
    lbRNrAlt = label(this, "lbRNrAlt");
    lbDatAlt = label(this, "lbDatAlt");
    lbDatumAlt = label(this, "lbDatumAlt");
    lbRNrNeu = label(this, "lbRNrNeu");
    lbDatNeu = label(this, "lbDatNeu");
    lbDatumNeu = label(this, "lbDatumNeu");

    Frame2 = new QGroupBox(this);
    Frame2->setObjectName(QStringLiteral("Frame2"));
    opBehalten = new QRadioButton(Frame2);
    opBehalten->setObjectName(QStringLiteral("opBehalten"));
    opVerwerfen = new QRadioButton(Frame2);
    opVerwerfen->setObjectName(QStringLiteral("opVerwerfen"));
    auto* frameLayout = new QVBoxLayout(Frame2);
    frameLayout->addWidget(opBehalten);
    frameLayout->addWidget(opVerwerfen);

    pbOk = new QPushButton(QStringLiteral("&OK"), this);
    pbOk->setObjectName(QStringLiteral("pbOk"));
    pbOk->setEnabled(false);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setInterval(500);

    auto* grid = new QGridLayout(this);
    grid->addWidget(lbMessage, 0, 0, 1, 5);
    grid->addWidget(Label1, 1, 0);
    grid->addWidget(lbInvNr, 1, 1, 1, 4);
    grid->addWidget(Label2, 2, 0);
    grid->addWidget(lbArtNr, 2, 1, 1, 4);
    grid->addWidget(Label4, 3, 0);
    grid->addWidget(lbArtName, 3, 1, 1, 4);
    grid->addWidget(Label3, 4, 1);
    grid->addWidget(Label5, 4, 2);
    grid->addWidget(Label12, 4, 3);
    grid->addWidget(Label10, 5, 0);
    grid->addWidget(lbRNrAlt, 5, 1);
    grid->addWidget(lbDatAlt, 5, 2);
    grid->addWidget(lbDatumAlt, 5, 3);
    grid->addWidget(Label11, 6, 0);
    grid->addWidget(lbRNrNeu, 6, 1);
    grid->addWidget(lbDatNeu, 6, 2);
    grid->addWidget(lbDatumNeu, 6, 3);
    grid->addWidget(Frame2, 5, 4, 2, 1);
    grid->addWidget(pbOk, 7, 4);

    connect(opBehalten, &QRadioButton::clicked, this, &frmFehler::optionClicked);
    connect(opVerwerfen, &QRadioButton::clicked, this, &frmFehler::optionClicked);
    connect(Timer1, &QTimer::timeout, this, &frmFehler::timerTick);
    connect(pbOk, &QPushButton::clicked, this, &frmFehler::okClicked);
}

void frmFehler::setInfo(const ConflictInfo& info)
{
    lbInvNr->setText(qs(info.stInvNr));
    lbArtNr->setText(qs(info.stArtNr));
    lbArtName->setText(qs(info.stArtName));
    lbRNrAlt->setText(qs(info.stRaumAlt));
    lbDatAlt->setText(qs(info.stDateiAlt));
    lbDatumAlt->setText(qs(info.stDatumAlt));
    lbRNrNeu->setText(qs(info.stRaumNeu));
    lbDatNeu->setText(qs(info.stDateiNeu));
    lbDatumNeu->setText(qs(info.stDatumNeu));
}

void frmFehler::showEvent(QShowEvent* event)
{
    clearOption(opBehalten);
    clearOption(opVerwerfen);
    pbOk->setEnabled(false);
    Timer1->start();
    QDialog::showEvent(event);
}

void frmFehler::optionClicked() { pbOk->setEnabled(true); }

void frmFehler::timerTick()
{
    // The modal loop keeps the window responsive; the timer only waits for the choice.
    if (opBehalten->isChecked() || opVerwerfen->isChecked())
        Timer1->stop();
}

void frmFehler::okClicked()
{
    bVerwerfen = opVerwerfen->isChecked();
    Timer1->stop();
    accept();
}

bool showFrmFehler(QWidget* parent, const ConflictInfo& info)
{
    frmFehler dialog(parent);
    dialog.setInfo(info);
    dialog.exec();
    return dialog.bVerwerfen;
}

void installFrmFehler(QtUserInteraction& ui) { ui.setConflictDialog(&showFrmFehler); }

} // namespace qi
