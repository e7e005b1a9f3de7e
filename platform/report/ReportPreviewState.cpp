#include "ReportPreviewState.h"

#include <algorithm>

namespace qi {

const std::vector<double>& ReportPreviewState::zoomSteps()
{
    static const std::vector<double> steps{0.25, 0.5, 0.75, 1.0, 1.25, 1.5, 2.0, 3.0, 4.0};
    return steps;
}

ReportPreviewState::ReportPreviewState(int pageCount) : pageCount_(std::max(1, pageCount)) {}

bool ReportPreviewState::goTo(int page)
{
    const int to = std::clamp(page, 0, pageCount_ - 1);
    if (to == page_)
        return false;
    page_ = to;
    return true;
}

void ReportPreviewState::setZoom(double zoom) { zoom_ = std::clamp(zoom, kMinZoom, kMaxZoom); }

void ReportPreviewState::zoomIn()
{
    for (double step : zoomSteps())
        if (step > zoom_ + 1e-9) {
            zoom_ = step;
            return;
        }
}

void ReportPreviewState::zoomOut()
{
    const auto& steps = zoomSteps();
    for (auto it = steps.rbegin(); it != steps.rend(); ++it)
        if (*it < zoom_ - 1e-9) {
            zoom_ = *it;
            return;
        }
}

double ReportPreviewState::fitZoom(double viewExtent, double pageExtent, double dpi, double marginPx)
{
    if (pageExtent <= 0 || dpi <= 0)
        return 1.0;
    const double pagePx = pageExtent / 72.0 * dpi;
    return std::clamp((viewExtent - 2 * marginPx) / pagePx, kMinZoom, kMaxZoom);
}

} // namespace qi
