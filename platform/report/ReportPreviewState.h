#pragma once
// Where a report's preview stands: the page shown and the zoom. The preview
// window keeps one and shows what it says; tests drive it without a window.

#include <vector>

namespace qi {

class ReportPreviewState {
public:
    /// Zoom factors offered (1.0 = the page at its printed size).
    static const std::vector<double>& zoomSteps();
    static constexpr double kMinZoom = 0.25;
    static constexpr double kMaxZoom = 4.0;
    /// The smallest zoom at which a report's body type reads well on a screen; a page
    /// fitted to the window's width is not made smaller.
    static constexpr double kReadableZoom = 0.75;

    /// A preview of `pageCount` pages (at least one is shown) on its first page at 100 %.
    explicit ReportPreviewState(int pageCount);

    /// The page shown, 0-based.
    int page() const { return page_; }
    int pageCount() const { return pageCount_; }
    bool atFirst() const { return page_ == 0; }
    bool atLast() const { return page_ == pageCount_ - 1; }

    /// Each returns true when the page shown changed.
    bool first() { return goTo(0); }
    bool previous() { return goTo(page_ - 1); }
    bool next() { return goTo(page_ + 1); }
    bool last() { return goTo(pageCount_ - 1); }
    /// Goes to `page` (0-based), kept within the pages.
    bool goTo(int page);

    double zoom() const { return zoom_; }
    /// Sets the zoom, kept within kMinZoom and kMaxZoom.
    void setZoom(double zoom);
    /// The next larger or smaller of the zoom steps.
    void zoomIn();
    void zoomOut();

    /// The zoom at which a page of `pageExtent` points fills `viewExtent` pixels of a
    /// screen of `dpi` dots per inch, less a margin of `marginPx` on either side.
    static double fitZoom(double viewExtent, double pageExtent, double dpi, double marginPx);

private:
    int pageCount_;
    int page_ = 0;
    double zoom_ = 1.0;
};

} // namespace qi
