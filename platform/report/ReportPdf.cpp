#include "AtomicFile.h"
#include "FileSystem.h"
#include "PagedDocument.h"
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

void writePagesPdf(const PagedDocument& document, const std::string& path,
                   const std::function<void(int page, int pages)>& progress)
{
    const int pages = document.pageCount();
    try {
        AtomicFile file(path);
        OutputDevice device(file);
        {
            QPdfWriter writer(&device);
            writer.setResolution(int(kLayoutDpi));
            writer.setPageLayout(document.pageLayout());
            writer.setTitle(QString::fromStdString(document.documentTitle()));
            writer.setCreator(QStringLiteral("QInventur"));
            QPainter painter;
            if (!painter.begin(&writer))
                throw cannotWrite(path);
            const std::unique_ptr<PagePainting> painting = document.pagePainter(kLayoutDpi, kLayoutDpi / 72.0, false);
            for (int page = 0; page < pages; ++page) {
                if (page > 0)
                    writer.newPage();
                painting->paint(painter, page);
                if (progress)
                    progress(page + 1, pages);
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

void Report::writePdf(const std::string& path) const { writePagesPdf(*this, path, pageProgress_); }

} // namespace qi
