#include "FileSystem.h"
#include "Report.h"
#include "ReportError.h"

#include <QFile>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

namespace qi {

void Report::writePdf(const std::string& path) const
{
    const ReportLayout& l = layout();
    QFile file(QString::fromStdString(nativePath(path)));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw cannotWrite(path, file.errorString().toStdString());
    {
        QPdfWriter writer(&file);
        writer.setResolution(int(kLayoutDpi));
        writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4),
                                         model().definition().landscape ? QPageLayout::Landscape
                                                                        : QPageLayout::Portrait,
                                         QMarginsF(0, 0, 0, 0)));
        writer.setTitle(QString::fromStdString(windowTitle().empty() ? model().definition().title : windowTitle()));
        writer.setCreator(QStringLiteral("QInventur"));
        QPainter painter;
        if (!painter.begin(&writer))
            throw cannotWrite(path);
        const PagePainter pages(l, kLayoutDpi, kLayoutDpi / 72.0, false);
        for (int page = 0; page < l.pageCount(); ++page) {
            if (page > 0)
                writer.newPage();
            pages.paint(painter, page);
        }
        painter.end();
    }
    if (file.error() != QFileDevice::NoError || !file.flush())
        throw cannotWrite(path, file.errorString().toStdString());
    file.close();
}

} // namespace qi
