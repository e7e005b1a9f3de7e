#pragma once
// The window "Korrekturliste": the proposals for Quarn made from the project result that the
// overview shows, with their decisions. Filters by kind, order, building part, room and
// decision keep the rows wanted; a click on a heading sorts. The rows selected are accepted,
// rejected or left open at once, with the comment written beside the buttons and the user's
// name. The foot counts the proposals per kind and decision; the tab "Verlauf" keeps the
// decisions whose proposal disappeared. A program that may only look at the project opens the
// decisions read-only: the buttons that decide are out of use and the status line says why.
// Everything works from the keyboard: Tab reaches every control, the labels and buttons have
// their mnemonics, the return key in the list changes nothing, and after a decision the
// keyboard is back in the list.

#include "CorrectionExport.h"
#include "CorrectionTable.h"
#include "Settings.h"

#include <QMainWindow>

#include <memory>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;
class QTreeWidget;

namespace qi {

class Database;
class UserInteraction;

class CorrectionListWindow : public QMainWindow {
    Q_OBJECT
public:
    /// The window for the project of `settings` (read-only when settings.readOnly); every
    /// message goes through `ui`. The decisions database is opened here.
    CorrectionListWindow(UserInteraction& ui, const Settings& settings, QWidget* parent = nullptr);
    ~CorrectionListWindow() override;

    /// Makes the proposals of `result` and shows them with their decisions (filters and
    /// selection stay where they can).
    void showResult(std::shared_ptr<Database> result);
    /// Shows `proposals` with their decisions (what showResult does with the proposals it made).
    void showProposals(std::vector<Proposal> proposals);
    /// Decides the rows selected, at once, with the comment field's text; the comment field is
    /// emptied after. Nothing when nothing is selected or the decisions are read-only.
    void decideSelected(const std::string& entscheidung);

    /// Writes the accepted proposals for Quarn's data import (CorrectionExport.h) into the folder
    /// of the file the save dialog names, and says which files it wrote.
    void exportAccepted(CorrectionFormat format);
    /// Shows the "Inventurprotokoll" of the result shown in the preview window.
    void showProtocol();

    /// True when the decisions can only be looked at.
    bool readOnly() const { return readOnly_; }
    /// The proposals with their decisions, as shown before the filters.
    const std::vector<ReviewedProposal>& rows() const { return rows_; }
    /// The filters as the boxes hold them.
    CorrectionFilter filter() const;

    QComboBox* cbArt;
    QComboBox* cbAuftrag;
    QComboBox* cbGebaeudeteil;
    QLineEdit* txRaum;
    QComboBox* cbEntscheidung;
    QTabWidget* tabs;
    QTreeWidget* lvVorschlaege;
    QTreeWidget* lvVerlauf;
    QLineEdit* txKommentar;
    QPushButton* pbAnnehmen;
    QPushButton* pbAblehnen;
    QPushButton* pbOffen;
    /// The accepted proposals as an Excel workbook or CSV files, and the protocol to sign.
    QPushButton* pbExcel;
    QPushButton* pbCsv;
    QPushButton* pbProtokoll;
    QPushButton* pbSchliessen;
    QLabel* lbZaehler;
    QLabel* lbAngezeigt;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildWindow();
    /// Reads the decisions anew and shows every list.
    void reload();
    /// Fills the list with the rows the filters keep; the selection stays where it can.
    void refilter();
    void fillChoices(QComboBox& box, const std::vector<std::string>& choices);
    void updateButtons();
    void setStatus(const QString& text);

    UserInteraction& ui_;
    Settings settings_;
    bool readOnly_ = false;
    /// Why nothing can be decided (read-only, or the database could not be opened), or empty.
    QString notDecidable_;
    std::unique_ptr<CorrectionDecisions> decisions_;
    std::shared_ptr<Database> result_;
    std::vector<Proposal> proposals_;
    std::vector<ReviewedProposal> rows_;
    std::vector<Decision> history_;
};

} // namespace qi
