#include "LabelWindows.h"

#include "QTreeGebStruCtrl.h"
#include "ReportPageView.h"
#include "ReportPreview.h"
#include "ReportPrinting.h"
#include "frmRaumWindow.h"
#include "frmWorkWindow.h"
#include "LabelDialog.h"

#include <QDialogButtonBox>
#include <QMenu>
#include <QMenuBar>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace qi {

namespace {

QString qs(const std::string& s) { return QString::fromStdString(s); }

/// Screen pixels per point of the pages in the preview.
constexpr double kPreviewZoom = 1.25;

QString nodeText(const GebNode& node)
{
    return qs(node.stBezeichnung.empty() ? node.stNr : node.stBezeichnung);
}

} // namespace

LabelPreview::LabelPreview(LabelSheets sheets, const std::string& title, UserInteraction& ui, QWidget* parent)
    : QDialog(parent), sheets_(std::move(sheets))
{
    sheets_.setTitle(title);
    setWindowTitle(qs(title));
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    area_ = new QScrollArea(this);
    area_->setBackgroundRole(QPalette::Dark);
    auto* pages = new QWidget(area_);
    auto* column = new QVBoxLayout(pages);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    for (int page = 0; page < sheets_.pageCount(); ++page) {
        auto* view = new ReportPageView(sheets_, pages);
        view->showPage(page, kPreviewZoom * 72.0 / view->logicalDpiY());
        // Each page whole, one below the other; the desk as wide as the window.
        view->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        column->addWidget(view);
        pageViews_.push_back(view);
    }
    area_->setWidget(pages);
    area_->setWidgetResizable(true);
    layout->addWidget(area_);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* print = buttons->addButton(QStringLiteral("&Drucken …"), QDialogButtonBox::ActionRole);
    QPushButton* close = buttons->addButton(QStringLiteral("&Schließen"), QDialogButtonBox::RejectRole);
    connect(print, &QPushButton::clicked, this, [this, &ui] { printLabelSheets(sheets_, ui, this); });
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    layout->addWidget(buttons);
    const int width = pageViews_.empty() ? 0 : pageViews_.front()->sizeHint().width();
    resize(std::min(width + 60, 1000), 800);
}

LabelPreview::~LabelPreview() = default;

bool printLabelSheets(const LabelSheets& sheets, UserInteraction& ui, QWidget* parent)
{
    QPrinter printer(QPrinter::HighResolution);
    preparePrinter(sheets, printer);
    QPrintDialog dialog(&printer, parent);
    dialog.setWindowTitle(QStringLiteral("Drucken"));
    dialog.setMinMax(1, sheets.pageCount());
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, true);
    dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    return printSheetsOn(sheets, printer, ui);
}

bool printSheetsOn(const LabelSheets& sheets, QPrinter& printer, UserInteraction& ui)
{
    return printWithProgress(sheets, printer, ui, "frmEtiketten.Print");
}

void connectLabelCommands(LabelCommands& commands, UserInteraction& ui, QWidget* parent)
{
    commands.chooseLabels = [parent](const LabelDialogRequest& r) { return LabelDialog::ask(r, parent); };
    commands.showSheets = [&ui, parent](LabelSheets sheets, const std::string& title) {
        auto* preview = new LabelPreview(std::move(sheets), title, ui, parent);
        preview->show();
    };
    commands.printSheets = [&ui, parent](LabelSheets sheets, const std::string& title) {
        sheets.setTitle(title);
        printLabelSheets(sheets, ui, parent);
    };
    commands.showWalkList = [&ui, parent](std::unique_ptr<Report> report) {
        auto* preview = new ReportPreview(std::move(report), ui, parent);
        preview->show();
    };
}

QMenu* installLabelMenu(frmWorkWindow& window, const Settings& settings, UserInteraction& ui)
{
    QMenu* menu = window.menuBar()->addMenu(qs(labelmenu::Caption));
    menu->setObjectName(QStringLiteral("mnuEtiketten"));
    frmWorkWindow* w = &window;
    const Settings* s = &settings;
    UserInteraction* u = &ui;
    // Each entry runs on the order of the window and the building component it has now.
    const auto commandsOf = [w, s, u]() {
        auto commands = std::make_shared<LabelCommands>(*s, *u, w->form().f_QGebDb);
        connectLabelCommands(*commands, *u, w);
        return commands;
    };
    QObject::connect(menu->addAction(qs(labelmenu::Raumetiketten)), &QAction::triggered, w, [w, commandsOf] {
        commandsOf()->roomLabelsOfOrder(w->form().f_DBAuftrag, orderNameOf(w->form().f_DBAuftrag));
    });
    QObject::connect(menu->addAction(qs(labelmenu::Objektetiketten)), &QAction::triggered, w, [w, commandsOf] {
        auto commands = commandsOf();
        // The new inventory as the evaluation finds it now; an order open read-only keeps its last one.
        if (!w->form().readOnly())
            commands->evaluate = [w] { return w->form().ReportDifferenzListe(); };
        commands->objectLabelsOfOrder(w->form().f_DBAuftrag, orderNameOf(w->form().f_DBAuftrag));
    });
    QObject::connect(menu->addAction(qs(labelmenu::Begehungsliste)), &QAction::triggered, w, [w, commandsOf] {
        commandsOf()->walkListOfOrder(w->form().f_DBAuftrag, orderNameOf(w->form().f_DBAuftrag));
    });
    return menu;
}

QMenu* installRoomLabelEntries(frmRaumWindow& window, QGebDb* geb, const Settings& settings, UserInteraction& ui)
{
    auto* menu = new QMenu(&window);
    menu->setObjectName(QStringLiteral("mnuRaumEtiketten"));
    QAction* labels = menu->addAction(qs(labelmenu::Raumetiketten));
    QAction* walk = menu->addAction(qs(labelmenu::Begehungsliste));
    frmRaumWindow* w = &window;
    const Settings* s = &settings;
    UserInteraction* u = &ui;
    auto node = std::make_shared<std::optional<GebNode>>();
    const auto commandsOf = [w, s, u, geb]() {
        auto commands = std::make_shared<LabelCommands>(*s, *u, geb);
        connectLabelCommands(*commands, *u, w);
        return commands;
    };
    QObject::connect(labels, &QAction::triggered, w, [node, commandsOf] {
        if (*node)
            commandsOf()->roomLabelsOfNode((*node)->lId, nodeText(**node).toStdString());
    });
    QObject::connect(walk, &QAction::triggered, w, [node, commandsOf] {
        if (*node)
            commandsOf()->walkListOfNode((*node)->lId, nodeText(**node).toStdString());
    });
    window.tvGeb->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(window.tvGeb, &QWidget::customContextMenuRequested, w, [w, menu, node](const QPoint& pos) {
        const QTreeWidgetItem* item = w->tvGeb->itemAt(pos);
        *node = item ? std::optional<GebNode>(QTreeGebStruCtrl::NodeOfItem(item)) : w->tvGeb->SelectedNode();
        if (!*node)
            return;
        menu->popup(w->tvGeb->viewport()->mapToGlobal(pos));
    });
    return menu;
}

} // namespace qi
