#include "frmWorkPlaceholder.h"

#include "CAuftragDb.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace qi {

frmWorkPlaceholder::frmWorkPlaceholder(CAuftragDb& db, QWidget* owner) : QDialog(owner), db_(db)
{
    setModal(false);
    auto* text = new QLabel(QString::fromStdString("Auftragsdatenbank: " + db.DbPath()), this);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    pbOk = new QPushButton(QStringLiteral("&OK"), this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(pbOk);
    layout->addLayout(buttons);
    resize(480, 160);
    connect(pbOk, &QPushButton::clicked, this, &QDialog::accept);
    connect(this, &QDialog::finished, this, &frmWorkPlaceholder::Form_Unload);
}

void frmWorkPlaceholder::Form_Unload()
{
    if (bFinished)
        return;
    db_.CloseDb();
    bFinished = true;
    emit unloaded();
}

} // namespace qi
