#include "AtomicFile.h"
#include "FileSystem.h"
#include "Report.h"
#include "ReportError.h"

#include <QIODevice>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

#include <optional>

namespace qi {

namespace {

/// The device the PDF writer writes into: the new content of the output file. A failure is
/// kept (the writer goes on regardless) and raised when the painting is done.
class OutputDevice : public QIODevice {
public:
    explicit OutputDevice(AtomicFile& file) : file_(file) { open(QIODevice::WriteOnly); }
    bool isSequential() const override { return true; }
    /// The first failure of a write.
    const std::optional<FileError>& failure() const { return failure_; }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* data, qint64 size) override
    {
        if (failure_)
            return -1;
        try {
            file_.write(std::string_view(data, std::size_t(size)));
            return size;
        } catch (const FileError& e) {
            failure_ = e;
            return -1;
        }
    }

private:
    AtomicFile& file_;
    std::optional<FileError> failure_;
};

} // namespace

void Report::writePdf(const std::string& path) const
{
    const ReportLayout& l = layout();
    try {
        AtomicFile file(path);
        OutputDevice device(file);
        {
            QPdfWriter writer(&device);
            writer.setResolution(int(kLayoutDpi));
            writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4),
                                             model().definition().landscape ? QPageLayout::Landscape
                                                                            : QPageLayout::Portrait,
                                             QMarginsF(0, 0, 0, 0)));
            writer.setTitle(
                QString::fromStdString(windowTitle().empty() ? model().definition().title : windowTitle()));
            writer.setCreator(QStringLiteral("QInventur"));
            QPainter painter;
            if (!painter.begin(&writer))
                throw cannotWrite(path);
            const PagePainter pages(l, kLayoutDpi, kLayoutDpi / 72.0, false);
            for (int page = 0; page < l.pageCount(); ++page) {
                if (page > 0)
                    writer.newPage();
                pages.paint(painter, page);
                if (pageProgress_)
                    pageProgress_(page + 1, l.pageCount());
            }
            painter.end();
        }
        if (device.failure())
            throw *device.failure();
        file.commit();
    } catch (const FileError& e) {
        throw ReportError(e.what());
    }
}

} // namespace qi
