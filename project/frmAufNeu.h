#pragma once
// The new-order dialog: the order's name ("Bezeichnung") and the employee who
// creates it ("Mitarbeiter"). It keeps both texts for its caller; a cancelled
// dialog leaves the name empty.

#include <QDialog>

#include <string>

class QLabel;
class QLineEdit;
class QPushButton;

namespace qi {

class frmAufNeu : public QDialog {
    Q_OBJECT
public:
    explicit frmAufNeu(QWidget* parent = nullptr);

    /// Clears the stored name (done when the dialog is made).
    void Form_Load();
    /// Stores name and employee and closes the dialog; with an empty name box it stays open.
    void pbOk_Click();
    /// Closes the dialog with the stored name left empty.
    void pbCancel_Click();

    /// The order name entered (empty when cancelled).
    std::string stName;
    /// The employee entered.
    std::string stPerson;

    QLabel* Label1;
    QLabel* Label2;
    QLineEdit* txName;
    QLineEdit* edPerson;
    QPushButton* pbOk;
    QPushButton* pbCancel;
};

} // namespace qi
