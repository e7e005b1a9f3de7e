#pragma once
// The About box: the program's name and its version.

#include <QDialog>

class QLabel;
class QPushButton;

namespace qi {

class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget* parent = nullptr);

    /// Sets the version label: "Version :  " + major + "." + minor "00" + "." + revision "00".
    void Form_Load();

    QLabel* lbTitel;
    QLabel* txVersion;
    QPushButton* pbOk;
};

} // namespace qi
