#include "LabelDialog.h"

#include "LabelContent.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace qi {

namespace {

QString qs(const std::string& s) { return QString::fromStdString(s); }

} // namespace

LabelDialog::LabelDialog(const LabelDialogRequest& request, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(qs(request.title));
    auto* layout = new QVBoxLayout(this);
    lbWhat = new QLabel(qs(request.what), this);
    layout->addWidget(lbWhat);

    auto* form = new QFormLayout;
    cbLayout = new QComboBox(this);
    for (const std::string& name : request.layouts)
        cbLayout->addItem(qs(name));
    form->addRow(QStringLiteral("Etiketten&format:"), cbLayout);
    spStart = new QSpinBox(this);
    spStart->setRange(1, 999);
    form->addRow(QStringLiteral("&Startposition auf dem ersten Bogen:"), spStart);
    spKopien = new QSpinBox(this);
    spKopien->setRange(1, kMaxCopies);
    form->addRow(QStringLiteral("&Kopien je Etikett:"), spKopien);
    cbSymbologie = nullptr;
    if (request.symbology) {
        cbSymbologie = new QComboBox(this);
        for (Symbology s : {Symbology::Code128, Symbology::DataMatrix, Symbology::QrCode})
            cbSymbologie->addItem(qs(symbologyDisplayName(s)), int(s));
        form->addRow(QStringLiteral("&Barcode:"), cbSymbologie);
    }
    layout->addLayout(form);

    auto* output = new QGroupBox(QStringLiteral("Ausgabe"), this);
    auto* outputs = new QVBoxLayout(output);
    rbVorschau = new QRadioButton(QStringLiteral("&Vorschau"), output);
    rbPdf = new QRadioButton(QStringLiteral("&PDF speichern"), output);
    rbDrucken = new QRadioButton(QStringLiteral("&Drucken"), output);
    rbVorschau->setChecked(true);
    outputs->addWidget(rbVorschau);
    outputs->addWidget(rbPdf);
    outputs->addWidget(rbDrucken);
    layout->addWidget(output);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Abbrechen"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

LabelDialogAnswer LabelDialog::answer() const
{
    LabelDialogAnswer a;
    a.choice.layout = cbLayout->currentText().toStdString();
    a.choice.start = spStart->value();
    a.choice.copies = spKopien->value();
    if (cbSymbologie)
        a.choice.symbology = Symbology(cbSymbologie->currentData().toInt());
    a.output = rbPdf->isChecked() ? LabelOutput::Pdf : rbDrucken->isChecked() ? LabelOutput::Print : LabelOutput::Preview;
    return a;
}

std::optional<LabelDialogAnswer> LabelDialog::ask(const LabelDialogRequest& request, QWidget* parent)
{
    LabelDialog dialog(request, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.answer();
}

} // namespace qi
