#include "LabelWindows.h"

#include "QTreeGebStruCtrl.h"
#include "ReportPreview.h"
#include "frmRaumWindow.h"
#include "frmWorkWindow.h"
#include "LabelDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPageLayout>
#include <QPainter>
#include <QPixmap>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace qi {

namespace {

QString qs(const std::string& s) { return QString::fromStdString(s); }

/// Screen pixels per point of the preview.
constexpr double kPreviewZoom = 1.25;

QString nodeText(const GebNode& node)
{
    return qs(node.stBezeichnung.empty() ? node.stNr : node.stBezeichnung);
}

} // namespace

LabelPreview::LabelPreview(LabelSheets sheets, const std::string& title, QWidget* parent)
    : QDialog(parent), sheets_(std::move(sheets))
{
    setWindowTitle(qs(title));
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    area_ = new QScrollArea(this);
    auto* pages = new QWidget(area_);
    auto* column = new QVBoxLayout(pages);
    const double mmToPt = 72.0 / 25.4;
    const int width = int(sheets_.layout().pageWidthMm * mmToPt * kPreviewZoom);
    const int height = int(sheets_.layout().pageHeightMm * mmToPt * kPreviewZoom);
    for (int page = 0; page < sheets_.pageCount(); ++page) {
        QPixmap pixmap(width, height);
        pixmap.fill(Qt::white);
        {
            QPainter painter(&pixmap);
            painter.setRenderHint(QPainter::Antialiasing, false);
            sheets_.paint(painter, page, kPreviewZoom);
            painter.setPen(Qt::gray);
            painter.drawRect(0, 0, width - 1, height - 1);
        }
        auto* label = new QLabel(pages);
        label->setPixmap(pixmap);
        column->addWidget(label);
    }
    area_->setWidget(pages);
    layout->addWidget(area_);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* print = buttons->addButton(QStringLiteral("&Drucken …"), QDialogButtonBox::ActionRole);
    QPushButton* close = buttons->addButton(QStringLiteral("&Schließen"), QDialogButtonBox::RejectRole);
    connect(print, &QPushButton::clicked, this, [this, title] { printLabelSheets(sheets_, title, this); });
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    layout->addWidget(buttons);
    resize(std::min(width + 60, 1000), 800);
}

LabelPreview::~LabelPreview() = default;

void printLabelSheets(const LabelSheets& sheets, const std::string& title, QWidget* parent)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(qs(title));
    printer.setFullPage(true);
    printer.setPageLayout(QPageLayout(
        QPageSize(QSizeF(sheets.layout().pageWidthMm, sheets.layout().pageHeightMm), QPageSize::Millimeter),
        QPageLayout::Portrait, QMarginsF()));
    printer.setFromTo(1, sheets.pageCount());
    QPrintDialog dialog(&printer, parent);
    dialog.setWindowTitle(QStringLiteral("Drucken"));
    if (dialog.exec() != QDialog::Accepted)
        return;
    QPainter painter(&printer);
    const double unitsPerPoint = printer.resolution() / 72.0;
    const int first = std::max(printer.fromPage(), 1) - 1;
    const int last = printer.toPage() > 0 ? std::min(printer.toPage(), sheets.pageCount()) : sheets.pageCount();
    for (int page = first; page < last; ++page) {
        if (page > first)
            printer.newPage();
        sheets.paint(painter, page, unitsPerPoint);
    }
}

void connectLabelCommands(LabelCommands& commands, UserInteraction& ui, QWidget* parent)
{
    commands.chooseLabels = [parent](const LabelDialogRequest& r) { return LabelDialog::ask(r, parent); };
    commands.showSheets = [parent](LabelSheets sheets, const std::string& title) {
        auto* preview = new LabelPreview(std::move(sheets), title, parent);
        preview->show();
    };
    commands.printSheets = [parent](LabelSheets sheets, const std::string& title) {
        printLabelSheets(sheets, title, parent);
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
