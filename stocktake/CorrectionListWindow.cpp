#include "CorrectionListWindow.h"

#include "Database.h"
#include "FileSystem.h"
#include "ListView.h"
#include "ProjectReports.h"
#include "QtTexts.h"
#include "ReportPreview.h"
#include "UserInteraction.h"
#include "WindowState.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <QStatusBar>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace qi {

namespace {

constexpr const char* kWindowKey = "CorrectionListWindow";
/// The widest a column becomes when it is fitted to what it shows.
constexpr int kWidestColumn = 200;

/// What a row of the list stands for: its kind and number.
QString keyOf(const Proposal& p) { return QString::fromStdString(p.art) + QChar(u'\n') + QString::fromStdString(p.invNr); }

std::pair<std::string, std::string> splitKey(const QString& key)
{
    const qsizetype at = key.indexOf(QChar(u'\n'));
    return {key.left(at).toStdString(), key.mid(at + 1).toStdString()};
}

/// The box's text as a filter: empty for kAlle.
std::string filterText(const QComboBox& box)
{
    return box.currentIndex() <= 0 ? std::string() : box.currentText().toStdString();
}

void fitColumns(QTreeWidget& list)
{
    if (list.topLevelItemCount() == 0 || list.property("qiSized").toBool())
        return;
    for (int c = 0; c + 1 < list.columnCount(); ++c) {
        list.resizeColumnToContents(c);
        list.setColumnWidth(c, std::min(list.columnWidth(c), kWidestColumn));
    }
    list.setProperty("qiSized", true);
}

/// The decision's column is wide enough for its longest text, whatever the list first showed.
void fitDecisionColumn(QTreeWidget& list)
{
    const int wanted = list.fontMetrics().horizontalAdvance(QString::fromUtf8(kGeaendert)) + 16;
    if (list.columnWidth(korrcol::Entscheidung) < wanted)
        list.setColumnWidth(korrcol::Entscheidung, wanted);
}

} // namespace

CorrectionListWindow::CorrectionListWindow(UserInteraction& ui, const Settings& settings, QWidget* parent)
    : QMainWindow(parent), ui_(ui), settings_(settings), readOnly_(settings.readOnly)
{
    setWindowFlag(Qt::Window);
    buildWindow();
    try {
        decisions_ = std::make_unique<CorrectionDecisions>(settings_, readOnly_);
    } catch (const std::exception& e) {
        notDecidable_ = QString::fromStdString(e.what());
        ui_.showError("CorrectionListWindow", e.what());
    }
    if (readOnly_)
        notDecidable_ = QString::fromStdString(readOnlyStatusText(settings_.readOnlyReason));
    txKommentar->setEnabled(!readOnly_ && decisions_);
    setStatus(notDecidable_);
    updateButtons();
}

CorrectionListWindow::~CorrectionListWindow() = default;

void CorrectionListWindow::buildWindow()
{
    setWindowTitle(QStringLiteral("Korrekturliste"));
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);

    // The filters above the list, each with its label and mnemonic.
    auto* filters = new QGridLayout;
    const auto labelled = [&](const QString& text, QWidget* field, int column) {
        auto* label = new QLabel(text, central);
        label->setBuddy(field);
        filters->addWidget(label, 0, column);
        filters->addWidget(field, 1, column);
    };
    cbArt = new QComboBox(central);
    cbAuftrag = new QComboBox(central);
    cbGebaeudeteil = new QComboBox(central);
    txRaum = new QLineEdit(central);
    txRaum->setClearButtonEnabled(true);
    cbEntscheidung = new QComboBox(central);
    cbArt->setObjectName(QStringLiteral("cbArt"));
    cbAuftrag->setObjectName(QStringLiteral("cbAuftrag"));
    cbGebaeudeteil->setObjectName(QStringLiteral("cbGebaeudeteil"));
    txRaum->setObjectName(QStringLiteral("txRaum"));
    cbEntscheidung->setObjectName(QStringLiteral("cbEntscheidung"));
    labelled(QStringLiteral("Ar&t:"), cbArt, 0);
    labelled(QStringLiteral("Au&ftrag:"), cbAuftrag, 1);
    labelled(QStringLiteral("&Gebäudeteil:"), cbGebaeudeteil, 2);
    labelled(QStringLiteral("&Raum:"), txRaum, 3);
    labelled(QStringLiteral("&Entscheidung:"), cbEntscheidung, 4);
    for (int c = 0; c < 5; ++c)
        filters->setColumnStretch(c, 1);
    fillChoices(*cbArt, kindChoices());
    fillChoices(*cbAuftrag, {});
    fillChoices(*cbGebaeudeteil, {});
    fillChoices(*cbEntscheidung, decisionChoices());
    layout->addLayout(filters);

    tabs = new QTabWidget(central);
    lvVorschlaege = new QTreeWidget(tabs);
    lvVorschlaege->setObjectName(QStringLiteral("lvVorschlaege"));
    setUpListView(*lvVorschlaege, qtTexts(correctionHeadings()));
    lvVorschlaege->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lvVerlauf = new QTreeWidget(tabs);
    lvVerlauf->setObjectName(QStringLiteral("lvVerlauf"));
    setUpListView(*lvVerlauf, qtTexts(historyHeadings()));
    lvVerlauf->setSelectionMode(QAbstractItemView::SingleSelection);
    lvVerlauf->setToolTip(QStringLiteral("Entscheidungen, deren Vorschlag es nicht mehr gibt"));
    tabs->addTab(lvVorschlaege, QStringLiteral("&Vorschläge"));
    tabs->addTab(lvVerlauf, QStringLiteral("Ver&lauf"));
    layout->addWidget(tabs, 1);

    // The decision for the rows selected, with its comment.
    auto* decide = new QHBoxLayout;
    auto* commentLabel = new QLabel(QStringLiteral("&Kommentar:"), central);
    txKommentar = new QLineEdit(central);
    txKommentar->setObjectName(QStringLiteral("txKommentar"));
    commentLabel->setBuddy(txKommentar);
    pbAnnehmen = new QPushButton(QStringLiteral("&Annehmen"), central);
    pbAblehnen = new QPushButton(QStringLiteral("A&blehnen"), central);
    pbOffen = new QPushButton(QStringLiteral("&Offen"), central);
    pbExcel = new QPushButton(QStringLiteral("E&xcel…"), central);
    pbCsv = new QPushButton(QStringLiteral("&CSV…"), central);
    pbProtokoll = new QPushButton(QStringLiteral("Inventur&protokoll…"), central);
    pbSchliessen = new QPushButton(QStringLiteral("&Schließen"), central);
    pbExcel->setToolTip(QStringLiteral("Die angenommenen Korrekturen als Excel-Datei für Quarn speichern"));
    pbCsv->setToolTip(QStringLiteral("Die angenommenen Korrekturen als CSV-Dateien für Quarn speichern"));
    pbProtokoll->setToolTip(QStringLiteral("Das Inventurprotokoll zum Unterschreiben zeigen"));
    pbProtokoll->setEnabled(false);
    pbAnnehmen->setToolTip(QStringLiteral("Die ausgewählten Vorschläge annehmen (Alt+A)"));
    pbAblehnen->setToolTip(QStringLiteral("Die ausgewählten Vorschläge ablehnen (Alt+B)"));
    pbOffen->setToolTip(QStringLiteral("Die ausgewählten Vorschläge wieder offen lassen (Alt+O)"));
    decide->addWidget(commentLabel);
    decide->addWidget(txKommentar, 1);
    decide->addWidget(pbAnnehmen);
    decide->addWidget(pbAblehnen);
    decide->addWidget(pbOffen);
    decide->addSpacing(12);
    decide->addWidget(pbExcel);
    decide->addWidget(pbCsv);
    decide->addWidget(pbProtokoll);
    decide->addSpacing(12);
    decide->addWidget(pbSchliessen);
    layout->addLayout(decide);

    lbZaehler = new QLabel(central);
    lbZaehler->setObjectName(QStringLiteral("lbZaehler"));
    lbZaehler->setWordWrap(true);
    lbAngezeigt = new QLabel(central);
    lbAngezeigt->setObjectName(QStringLiteral("lbAngezeigt"));
    layout->addWidget(lbZaehler);
    layout->addWidget(lbAngezeigt);
    setCentralWidget(central);
    statusBar();

    // Tab goes through the filters, the tabs, the list, the comment and the buttons in the order
    // in which they were made above.

    for (QComboBox* box : {cbArt, cbAuftrag, cbGebaeudeteil, cbEntscheidung})
        connect(box, &QComboBox::currentIndexChanged, this, [this] { refilter(); });
    connect(txRaum, &QLineEdit::textChanged, this, [this] { refilter(); });
    connect(lvVorschlaege, &QTreeWidget::itemSelectionChanged, this, [this] { updateButtons(); });
    connect(pbAnnehmen, &QPushButton::clicked, this, [this] { decideSelected(kAngenommen); });
    connect(pbAblehnen, &QPushButton::clicked, this, [this] { decideSelected(kAbgelehnt); });
    connect(pbOffen, &QPushButton::clicked, this, [this] { decideSelected(kOffen); });
    connect(pbExcel, &QPushButton::clicked, this, [this] { exportAccepted(CorrectionFormat::Xlsx); });
    connect(pbCsv, &QPushButton::clicked, this, [this] { exportAccepted(CorrectionFormat::Csv); });
    connect(pbProtokoll, &QPushButton::clicked, this, &CorrectionListWindow::showProtocol);
    connect(tabs, &QTabWidget::currentChanged, this, [this] { updateButtons(); });
    connect(pbSchliessen, &QPushButton::clicked, this, &QWidget::close);
    resize(1100, 640);
    restoreWindowState(*this, kWindowKey);
}

void CorrectionListWindow::fillChoices(QComboBox& box, const std::vector<std::string>& choices)
{
    const QString current = box.currentIndex() > 0 ? box.currentText() : QString();
    const QSignalBlocker quiet(&box);
    box.clear();
    box.addItem(QString::fromUtf8(kAlle));
    box.addItems(qtTexts(choices));
    // A choice that is no longer offered stays until the user takes another, so that the
    // list does not suddenly show more than was asked.
    if (!current.isEmpty() && box.findText(current) < 0)
        box.addItem(current);
    box.setCurrentIndex(current.isEmpty() ? 0 : box.findText(current));
}

CorrectionFilter CorrectionListWindow::filter() const
{
    return {filterText(*cbArt), filterText(*cbAuftrag), filterText(*cbGebaeudeteil), txRaum->text().toStdString(),
            filterText(*cbEntscheidung)};
}

void CorrectionListWindow::showResult(std::shared_ptr<Database> result)
{
    result_ = std::move(result);
    pbProtokoll->setEnabled(result_ != nullptr && findProjectReport("protokoll") != nullptr);
    std::vector<Proposal> proposals;
    if (result_) {
        try {
            ui_.setBusy(true);
            proposals = makeProposals(*result_);
            ui_.setBusy(false);
        } catch (const std::exception& e) {
            ui_.setBusy(false);
            ui_.showError("CorrectionListWindow.showResult", e.what());
        }
    }
    showProposals(std::move(proposals));
}

void CorrectionListWindow::exportAccepted(CorrectionFormat format)
{
    FileDialogRequest request;
    request.title = "Korrekturen für Quarn speichern";
    if (format == CorrectionFormat::Xlsx) {
        request.filter = "Excel-Arbeitsmappe (*.xlsx)|*.xlsx";
        request.fileName = kCorrectionWorkbook;
    } else {
        request.filter = "CSV-Datei, Semikolon getrennt (*.csv)|*.csv";
        request.fileName = correctionCsvFile(kArtStandort);
    }
    if (folderExists(settings_.gstProjektPfad))
        request.startFolder = settings_.gstProjektPfad;
    const std::optional<std::string> chosen = ui_.saveFile(request);
    if (!chosen || chosen->empty())
        return;
    try {
        ui_.setBusy(true);
        const std::vector<std::string> written = exportCorrections(rows_, folderPart(*chosen), format);
        ui_.setBusy(false);
        ui_.messageBox(exportedText(written), MsgButtons::Ok, MsgIcon::Information, "Korrekturliste");
        setStatus(QString::fromStdString(exportedStatusText(written)));
    } catch (const std::exception& e) {
        ui_.setBusy(false);
        ui_.showError("CorrectionListWindow.exportAccepted", e.what());
    }
}

void CorrectionListWindow::showProtocol()
{
    const ProjectReport* protocol = findProjectReport("protokoll");
    if (!result_ || !protocol)
        return;
    try {
        ui_.setBusy(true);
        auto* preview = new ReportPreview(openProjectReport(settings_, *result_, *protocol), ui_, this);
        ui_.setBusy(false);
        preview->show();
        preview->raise();
        preview->activateWindow();
    } catch (const std::exception& e) {
        ui_.setBusy(false);
        ui_.showError("CorrectionListWindow.showProtocol", e.what());
    }
}

void CorrectionListWindow::showProposals(std::vector<Proposal> proposals)
{
    proposals_ = std::move(proposals);
    reload();
}

void CorrectionListWindow::reload()
{
    rows_.clear();
    history_.clear();
    if (decisions_) {
        try {
            rows_ = decisions_->review(proposals_);
            history_ = decisions_->history(proposals_);
        } catch (const std::exception& e) {
            ui_.showError("CorrectionListWindow.reload", e.what());
        }
    }
    if (rows_.empty() && !proposals_.empty()) {
        // Without their decisions the proposals are shown open.
        for (const Proposal& p : proposals_)
            rows_.push_back({p, kOffen, std::nullopt});
    }
    fillChoices(*cbAuftrag, orderChoices(rows_));
    fillChoices(*cbGebaeudeteil, buildingPartChoices(rows_));
    refilter();

    lvVerlauf->clear();
    QList<QTreeWidgetItem*> items;
    for (const Decision& d : history_)
        items << new ListViewItem(qtTexts(historyRow(d)));
    lvVerlauf->addTopLevelItems(items);
    sortAgain(*lvVerlauf);
    fitColumns(*lvVerlauf);
    tabs->setTabText(1, QStringLiteral("Ver&lauf (%1)").arg(history_.size()));
    lbZaehler->setText(QString::fromStdString(correctionCountsText(rows_)));
}

void CorrectionListWindow::refilter()
{
    QSet<QString> selected;
    for (const QTreeWidgetItem* item : lvVorschlaege->selectedItems())
        selected.insert(item->data(0, Qt::UserRole).toString());
    const QTreeWidgetItem* currentItem = lvVorschlaege->currentItem();
    const QString current = currentItem ? currentItem->data(0, Qt::UserRole).toString() : QString();

    const CorrectionFilter wanted = filter();
    {
        const QSignalBlocker quiet(lvVorschlaege);
        lvVorschlaege->clear();
        QList<QTreeWidgetItem*> items;
        for (const ReviewedProposal& row : rows_) {
            if (!correctionMatches(row, wanted))
                continue;
            auto* item = new ListViewItem(qtTexts(correctionRow(row)));
            item->setData(0, Qt::UserRole, keyOf(row.proposal));
            for (int c = 0; c < item->columnCount(); ++c)
                if (item->text(c).size() > 30)
                    item->setToolTip(c, item->text(c));
            items << item;
        }
        lvVorschlaege->addTopLevelItems(items);
        sortAgain(*lvVorschlaege);
        for (QTreeWidgetItem* item : items) {
            const QString key = item->data(0, Qt::UserRole).toString();
            if (key == current)
                lvVorschlaege->setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
            if (selected.contains(key))
                item->setSelected(true);
        }
    }
    fitColumns(*lvVorschlaege);
    fitDecisionColumn(*lvVorschlaege);
    tabs->setTabText(0, QStringLiteral("&Vorschläge (%1)").arg(lvVorschlaege->topLevelItemCount()));
    lbAngezeigt->setText(
        QString::fromStdString(shownRowsText(lvVorschlaege->topLevelItemCount(), int(rows_.size()))));
    updateButtons();
}

void CorrectionListWindow::decideSelected(const std::string& entscheidung)
{
    if (readOnly_ || !decisions_)
        return;
    std::vector<std::pair<std::string, std::string>> keys;
    for (const QTreeWidgetItem* item : lvVorschlaege->selectedItems())
        keys.push_back(splitKey(item->data(0, Qt::UserRole).toString()));
    if (keys.empty())
        return;
    try {
        ui_.setBusy(true);
        decisions_->decide(proposals_, keys, entscheidung, txKommentar->text().trimmed().toStdString(),
                           correctionPerson());
        ui_.setBusy(false);
    } catch (const std::exception& e) {
        ui_.setBusy(false);
        ui_.showError("CorrectionListWindow.decideSelected", e.what());
        reload();
        return;
    }
    txKommentar->clear();
    reload();
    setStatus(QString::fromStdString(decidedStatusText(int(keys.size()), entscheidung)));
    // The next rows are chosen in the list: the keyboard goes back there.
    lvVorschlaege->setFocus(Qt::OtherFocusReason);
}

void CorrectionListWindow::updateButtons()
{
    // The rows selected are decided only where they are seen.
    const bool decidable = !readOnly_ && decisions_ && tabs->currentIndex() == 0 &&
                           !lvVorschlaege->selectedItems().isEmpty();
    for (QPushButton* button : {pbAnnehmen, pbAblehnen, pbOffen})
        button->setEnabled(decidable);
}

void CorrectionListWindow::setStatus(const QString& text)
{
    statusBar()->showMessage(text);
}

void CorrectionListWindow::closeEvent(QCloseEvent* event)
{
    saveWindowState(*this, kWindowKey);
    event->accept();
}

} // namespace qi
