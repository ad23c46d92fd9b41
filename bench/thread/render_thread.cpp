// Renders the demonstration thread at 100 % and 200 % device pixel ratio to PNG files, so that corners,
// shadows, margins and alignment can be checked by eye.
//   render_thread [output folder]   (default: the current folder)

#include "CMessageItemsDocument.h"
#include "CVantrelApp.h"
#include "HostControl.h"
#include "SampleThread.h"

#include <QAbstractTextDocumentLayout>
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QTextStream>

namespace {

constexpr qreal kPageWidth = 560.0;

QImage render(CMessageItemsDocument& document, qreal ratio)
{
    document.setTextWidth(kPageWidth);
    const QSizeF size = document.documentLayout()->documentSize();
    QImage image((size * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(CVantrelApp::GetColor(clrThreadBackground));
    QPainter painter(&image);
    document.drawContents(&painter);
    return image;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi, true);
    CVantrelApp app(argc, argv);
    HostControl::resetForTests();
    const QDir out(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::currentPath());

    CMessageItemsDocument document;
    SampleThread::fill(document);
    QTextStream console(stdout);
    for (const qreal ratio : {1.0, 2.0}) {
        const QString path = out.filePath(QStringLiteral("thread-%1.png").arg(int(ratio * 100)));
        if (!render(document, ratio).save(path)) {
            console << "could not write " << path << Qt::endl;
            return 1;
        }
        console << path << Qt::endl;
    }
    return 0;
}
