#include "ReportPageView.h"

#include <QPainter>
#include <QPaintEvent>

#include <cmath>

namespace qi {

namespace {

const QColor kDesk(0x7d, 0x84, 0x8c);
const QColor kShadow(0, 0, 0, 60);

} // namespace

ReportPageView::ReportPageView(const PagedDocument& document, QWidget* parent)
    : QWidget(parent), document_(document)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(QStringLiteral("Berichtsseite"));
}

ReportPageView::~ReportPageView() = default;

void ReportPageView::showPage(int page, double zoom)
{
    page_ = page;
    if (!painter_ || zoom != zoom_) {
        zoom_ = zoom;
        const double dpi = logicalDpiY();
        painter_ = document_.pagePainter(dpi, dpi / 72.0 * zoom_, true);
    }
    resize(sizeHint());
    update();
}

QSize ReportPageView::pageSize() const
{
    const double k = logicalDpiY() / 72.0 * zoom_;
    return {int(std::lround(document_.pageWidth() * k)), int(std::lround(document_.pageHeight() * k))};
}

QSize ReportPageView::sizeHint() const { return pageSize() + QSize(2 * kMargin, 2 * kMargin); }

void ReportPageView::paintEvent(QPaintEvent* event)
{
    QPainter p(this);
    p.fillRect(event->rect(), kDesk);
    const QRect sheet(QPoint(std::max(kMargin, (width() - pageSize().width()) / 2), kMargin), pageSize());
    p.fillRect(sheet.translated(3, 3), kShadow);
    p.fillRect(sheet, Qt::white);
    if (!painter_)
        return;
    p.setClipRect(sheet);
    p.translate(sheet.topLeft());
    painter_->paint(p, page_);
}

} // namespace qi
