#include "LabelSheets.h"

namespace qi {

struct LabelSheets::Impl {
    LabelLayout layout;
    std::vector<Label> labels;
    int start = 1;
    int copies = 1;
};

LabelLayout readLabelLayout(const std::string& path) { throw LabelError("Die Datei '" + path + "' kann nicht gelesen werden."); }
std::vector<std::string> labelLayoutNames(const std::string&) { return {}; }
std::string labelLayoutDir(const std::string& templateDir) { return templateDir + "/Etiketten"; }
LabelLayout findLabelLayout(const std::string&, const std::string& name)
{
    throw LabelError("Das Etikettenformat '" + name + "' gibt es nicht.");
}

LabelSheets::LabelSheets(LabelLayout layout, std::vector<Label> labels, int startPosition, int copies)
    : d_(std::make_unique<Impl>(Impl{std::move(layout), std::move(labels), startPosition, copies}))
{
}
LabelSheets::~LabelSheets() = default;
LabelSheets::LabelSheets(LabelSheets&&) noexcept = default;
LabelSheets& LabelSheets::operator=(LabelSheets&&) noexcept = default;

const LabelLayout& LabelSheets::layout() const { return d_->layout; }
int LabelSheets::printedCount() const { return int(d_->labels.size()) * d_->copies; }
int LabelSheets::pageCount() const
{
    const int per = d_->layout.labelsPerPage();
    const int n = d_->start - 1 + printedCount();
    return per > 0 ? (n + per - 1) / per : 0;
}
int LabelSheets::pageOf(int i) const { return (d_->start - 1 + i) / d_->layout.labelsPerPage(); }
RectMm LabelSheets::labelRect(int) const { return {}; }
const Label& LabelSheets::printedLabel(int i) const { return d_->labels[std::size_t(i / d_->copies)]; }
RectMm LabelSheets::barcodeRect(int) const { return {}; }
std::vector<double> LabelSheets::fontSizes(int) const { return {}; }
std::vector<std::string> LabelSheets::drawnLines(int) const { return {}; }
void LabelSheets::paint(QPainter&, int, double) const {}
void LabelSheets::writePdf(const std::string& path, const std::function<void(int, int)>&) const
{
    throw LabelError("Die Datei '" + path + "' kann nicht geschrieben werden.");
}

} // namespace qi
