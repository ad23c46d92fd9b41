// The thread document's body insertion: any body, as HTML or Markdown, with an attachment named from it, is
// inserted, laid out and painted, and the tile's operations find it.
// Input: one byte of switches (bit 0 HTML, bit 1 an attachment, bit 2 own message), then the body as UTF-8.
#include "CMessageItemsDocument.h"
#include "CVantrelApp.h"

#include <QAbstractTextDocumentLayout>
#include <QImage>
#include <QPainter>
#include <QPixmap>

namespace {

constexpr uint8_t kHtml = 1;
constexpr uint8_t kAttachment = 2;
constexpr uint8_t kOwn = 4;
constexpr int kWidth = 400;
constexpr int kPaintedHeight = 300;
constexpr int kThumbnailSize = 40;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Never destroyed: libFuzzer ends the process with exit(), after Qt's own globals may be gone.
    new CVantrelApp(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const uint8_t switches = data[0];
    QString body = QString::fromUtf8(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
    if (switches & kHtml)
        body.prepend(QStringLiteral("<p></p>"));

    CIncidentCommunication message;
    message.id = QStringLiteral("m1");
    message.versionKey = message.id;
    message.fromOtherParty = !(switches & kOwn);
    message.senderName = body.left(8);
    message.nameKnown = true;
    message.text = body;
    if (switches & kAttachment) {
        CIncidentAttachment attachment;
        attachment.id = body.left(6);
        attachment.fileName = body.mid(6, 12);
        attachment.mimeType = QStringLiteral("image/png");
        message.attachments.append(attachment);
    }

    CMessageItemsDocument document;
    document.setTextWidth(kWidth);
    const CMessageItemIndex index = document.appendMessage(message);
    document.setDeliveryStatus(index, CMessageItemsDocument::DeliveryStatus(qint8(switches)));
    for (const CIncidentAttachment& attachment : message.attachments) {
        document.setAttachProgress(attachment.id, switches % 101);
        document.attachmentRect(attachment.id);
        QPixmap thumbnail(kThumbnailSize, kThumbnailSize);
        thumbnail.fill(Qt::green);
        document.setContentsThumbnail(index, attachment.id, thumbnail);
        document.attachmentRect(attachment.id);
    }
    const QSizeF size_ = document.documentLayout()->documentSize();
    QImage canvas(kWidth, kPaintedHeight, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    const qreal bottom = std::max<qreal>(0, size_.height() - kPaintedHeight);
    painter.translate(0, -bottom);
    document.drawContents(&painter, QRectF(0, bottom, kWidth, kPaintedHeight));
    return 0;
}
