#pragma once
// One page of a paged document (a laid-out report, a sheet of labels) on screen, at a zoom,
// on a grey desk.

#include "PagedDocument.h"

#include <QWidget>

#include <memory>

namespace qi {

class ReportPageView : public QWidget {
    Q_OBJECT
public:
    /// Room around the page, in pixels.
    static constexpr int kMargin = 16;

    explicit ReportPageView(const PagedDocument& document, QWidget* parent = nullptr);
    ~ReportPageView() override;

    /// Shows page `page` (0-based) at `zoom` (1.0 = printed size); the view takes the page's size.
    void showPage(int page, double zoom);
    int page() const { return page_; }
    double zoom() const { return zoom_; }
    /// The page's size in pixels at the zoom shown.
    QSize pageSize() const;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const PagedDocument& document_;
    std::unique_ptr<PagePainting> painter_;
    int page_ = 0;
    double zoom_ = 1.0;
};

} // namespace qi
