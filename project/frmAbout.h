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

    /// Sets the version label: "Version :  " + major + "." + minor "00" + "." + revision "00";
    /// and the build's line below it ("QInventur 4.1.0 (git 219527d)").
    void Form_Load();

    QLabel* lbTitel;
    QLabel* txVersion;
    QLabel* lbBuild; ///< the version as "--version" prints it, with the commit of the build
    QPushButton* pbOk;
};

} // namespace qi
