#pragma once
// The conflict dialog "Fehler": one inventory number was scanned in two rooms,
// and the user decides which scan is kept. It shows the values the import fills
// in and hands back bVerwerfen; it touches no database.

#include "UserInteraction.h"

#include <QDialog>

class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QTimer;

namespace qi {

class QtUserInteraction;

class frmFehler : public QDialog {
    Q_OBJECT
public:
    explicit frmFehler(QWidget* parent = nullptr);

    /// Sets the nine value labels.
    void setInfo(const ConflictInfo& info);

    /// True when the second occurrence replaces the first; set by pbOk. The dialog ends
    /// only through pbOk: its close button and Escape leave it waiting for the choice.
    bool bVerwerfen = false;

    QLabel* lbMessage;
    QLabel *Label1, *lbInvNr;
    QLabel *Label2, *lbArtNr;
    QLabel *Label4, *lbArtName;
    QLabel *Label10, *Label11;
    QLabel *Label3, *Label5, *Label12;
    QLabel *lbRNrAlt, *lbDatAlt, *lbDatumAlt;
    QLabel *lbRNrNeu, *lbDatNeu, *lbDatumNeu;
    QGroupBox* Frame2;
    QRadioButton* opBehalten;
    QRadioButton* opVerwerfen;
    QPushButton* pbOk;
    QTimer* Timer1;

public slots:
    /// Closing and Escape decide nothing: the dialog stays until a choice is confirmed with pbOk.
    void reject() override;

protected:
    /// Activation: neither option is chosen, pbOk is disabled until one is.
    void showEvent(QShowEvent* event) override;

private:
    void optionClicked();
    void timerTick();
    void okClicked();
};

/// Shows the dialog modally with the values and returns its bVerwerfen.
bool showFrmFehler(QWidget* parent, const ConflictInfo& info);
/// Plugs the dialog into the program's user interaction.
void installFrmFehler(QtUserInteraction& ui);

} // namespace qi
