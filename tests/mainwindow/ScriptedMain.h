#pragma once
// The main window with the user's part in its modal dialogs played from a script:
// the About box is read and closed, the new-order dialog is filled by the next step
// of the script (without one it is cancelled).

#include "frmAbout.h"
#include "frmAufNeu.h"
#include "frmMain.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace qi::test {

class ScriptedMain : public frmMain {
public:
    using frmMain::frmMain;
    std::deque<std::function<void(QDialog&)>> script;
    std::vector<std::string> dialogs;
    std::string aboutVersion, aboutButton, aboutLine, aboutBuild;

protected:
    void runModal(QDialog& dialog) override
    {
        dialogs.push_back(dialog.windowTitle().toStdString());
        if (auto* about = dynamic_cast<frmAbout*>(&dialog)) {
            aboutVersion = about->txVersion->text().toStdString();
            aboutButton = about->pbOk->text().toStdString();
            aboutLine = about->lbTitel->text().toStdString();
            aboutBuild = about->lbBuild->text().toStdString();
            about->pbOk->click();
            return;
        }
        if (script.empty()) {
            dialog.reject();
            return;
        }
        auto step = script.front();
        script.pop_front();
        step(dialog);
    }
};

/// A step of the script that enters an order name and an employee and confirms.
inline std::function<void(QDialog&)> enter(const std::string& name, const std::string& person = "Meier")
{
    return [=](QDialog& d) {
        auto& f = dynamic_cast<frmAufNeu&>(d);
        f.txName->setText(QString::fromStdString(name));
        f.edPerson->setText(QString::fromStdString(person));
        f.pbOk->click();
    };
}

inline std::function<void(QDialog&)> cancel()
{
    return [](QDialog& d) { dynamic_cast<frmAufNeu&>(d).pbCancel->click(); };
}

} // namespace qi::test
