#include "frmFehler.h"

#include "QtUserInteraction.h"

#include <QGridLayout>
#include <QHBoxLayout>
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

    // The two occurrences one under the other in one frame, each with the option that decides for it.
    Frame2 = new QGroupBox(this);
    Frame2->setObjectName(QStringLiteral("Frame2"));

    lbMessage = label(this, "lbMessage", QStringLiteral("Bitte zwischen beiden Räumen entscheiden !"));
    Label1 = label(this, "Label1", QStringLiteral("Inventarnummer"));
    lbInvNr = label(this, "lbInvNr");
    Label2 = label(this, "Label2", QStringLiteral("Artikelnummer"));
    lbArtNr = label(this, "lbArtNr");
    Label4 = label(this, "Label4", QStringLiteral("Artikelbezeichnung"));
    lbArtName = label(this, "lbArtName");
    Label10 = label(Frame2, "Label10", QStringLiteral("Erstes Auftreten:"));
    Label11 = label(Frame2, "Label11", QStringLiteral("Zweites Auftreten:"));
    Label3 = label(Frame2, "Label3", QStringLiteral("Raum"));
    Label5 = label(Frame2, "Label5", QStringLiteral("Datei"));
    Label12 = label(Frame2, "Label12", QStringLiteral("Datum"));
    lbRNrAlt = label(Frame2, "lbRNrAlt");
    lbDatAlt = label(Frame2, "lbDatAlt");
    lbDatumAlt = label(Frame2, "lbDatumAlt");
    lbRNrNeu = label(Frame2, "lbRNrNeu");
    lbDatNeu = label(Frame2, "lbDatNeu");
    lbDatumNeu = label(Frame2, "lbDatumNeu");

    opBehalten = new QRadioButton(QStringLiteral("&behalten"), Frame2);
    opBehalten->setObjectName(QStringLiteral("opBehalten"));
    opBehalten->setToolTip(QStringLiteral("Das erste Auftreten behalten; die neue Erfassung wird verworfen"));
    opBehalten->setAccessibleName(QStringLiteral("Erstes Auftreten behalten"));
    opVerwerfen = new QRadioButton(QStringLiteral("&übernehmen"), Frame2);
    opVerwerfen->setObjectName(QStringLiteral("opVerwerfen"));
    opVerwerfen->setToolTip(QStringLiteral("Das zweite Auftreten übernehmen; das erste wird verworfen"));
    opVerwerfen->setAccessibleName(QStringLiteral("Zweites Auftreten übernehmen"));
    for (QLabel* l : {Label3, Label5, Label12})
        l->setStyleSheet(QStringLiteral("font-weight: bold"));
    auto* table = new QGridLayout(Frame2);
    table->setHorizontalSpacing(18);
    table->addWidget(Label3, 0, 1);
    table->addWidget(Label5, 0, 2);
    table->addWidget(Label12, 0, 3);
    table->addWidget(Label10, 1, 0);
    table->addWidget(lbRNrAlt, 1, 1);
    table->addWidget(lbDatAlt, 1, 2);
    table->addWidget(lbDatumAlt, 1, 3);
    table->addWidget(opBehalten, 1, 4);
    table->addWidget(Label11, 2, 0);
    table->addWidget(lbRNrNeu, 2, 1);
    table->addWidget(lbDatNeu, 2, 2);
    table->addWidget(lbDatumNeu, 2, 3);
    table->addWidget(opVerwerfen, 2, 4);
    table->setColumnStretch(2, 1);

    pbOk = new QPushButton(QStringLiteral("&OK"), this);
    pbOk->setObjectName(QStringLiteral("pbOk"));
    pbOk->setEnabled(false);
    pbOk->setDefault(true);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setInterval(500);

    auto* head = new QGridLayout;
    head->addWidget(Label1, 0, 0);
    head->addWidget(lbInvNr, 0, 1);
    head->addWidget(Label2, 1, 0);
    head->addWidget(lbArtNr, 1, 1);
    head->addWidget(Label4, 2, 0);
    head->addWidget(lbArtName, 2, 1);
    head->setColumnStretch(1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(pbOk);
    auto* layout = new QVBoxLayout(this);
    lbMessage->setStyleSheet(QStringLiteral("font-weight: bold"));
    layout->addWidget(lbMessage);
    layout->addLayout(head);
    layout->addWidget(Frame2);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

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

void frmFehler::reject()
{
    // Only pbOk ends the dialog (accept); the import waits for the user's decision.
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
