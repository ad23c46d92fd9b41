#include "SampleFileMaker.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QtEndian>

namespace {

constexpr int kPictureWidth = 480;
constexpr int kPictureHeight = 320;
constexpr int kPictureFontPx = 28;
constexpr int kJpegQuality = 85;
constexpr int kPdfResolution = 72;
constexpr int kPdfFontPt = 18;
constexpr quint32 kCrcPolynomial = 0xEDB88320u;

// ZIP record signatures and the fixed "version needed to extract" of a stored entry.
constexpr quint32 kLocalHeaderSignature = 0x04034b50u;
constexpr quint32 kCentralHeaderSignature = 0x02014b50u;
constexpr quint32 kEndOfCentralSignature = 0x06054b50u;
constexpr quint16 kZipVersion = 20;

void put16(QByteArray& out, quint16 value)
{
    char bytes[2];
    qToLittleEndian(value, bytes);
    out.append(bytes, 2);
}

void put32(QByteArray& out, quint32 value)
{
    char bytes[4];
    qToLittleEndian(value, bytes);
    out.append(bytes, 4);
}

} // namespace

bool SampleFileMaker::isKnownKind(const QString& kind)
{
    static const QStringList kinds{QStringLiteral("png"), QStringLiteral("jpg"),  QStringLiteral("jpeg"),
                                   QStringLiteral("pdf"), QStringLiteral("text"), QStringLiteral("txt"),
                                   QStringLiteral("zip")};
    return kinds.contains(kind);
}

QByteArray SampleFileMaker::make(const QString& kind, const QString& caption)
{
    if (kind == QLatin1String("png"))
        return picture(caption, "PNG");
    if (kind == QLatin1String("jpg") || kind == QLatin1String("jpeg"))
        return picture(caption, "JPG");
    if (kind == QLatin1String("pdf"))
        return pdf(caption);
    if (kind == QLatin1String("text") || kind == QLatin1String("txt"))
        return caption.toUtf8();
    if (kind == QLatin1String("zip"))
        return zip(QStringLiteral("readme.txt"), caption.toUtf8());
    return {};
}

QByteArray SampleFileMaker::picture(const QString& caption, const char* format)
{
    QImage image(kPictureWidth, kPictureHeight, QImage::Format_RGB32);
    QLinearGradient gradient(0, 0, kPictureWidth, kPictureHeight);
    gradient.setColorAt(0, QColor(0x2d, 0x6c, 0xdf));
    gradient.setColorAt(1, QColor(0x8e, 0x44, 0xad));
    QPainter painter(&image);
    painter.fillRect(image.rect(), gradient);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPixelSize(kPictureFontPx);
    painter.setFont(font);
    painter.drawText(image.rect(), Qt::AlignCenter | Qt::TextWordWrap, caption);
    painter.end();

    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format, kJpegQuality);
    return bytes;
}

QByteArray SampleFileMaker::pdf(const QString& caption)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(kPdfResolution);
        writer.setTitle(caption);
        QPainter painter(&writer);
        QFont font = painter.font();
        font.setPointSize(kPdfFontPt);
        painter.setFont(font);
        painter.drawText(QRect(QPoint(0, 0), writer.pageLayout().paintRectPixels(kPdfResolution).size()),
                         Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, caption);
    }
    return bytes;
}

// A ZIP archive with one stored (uncompressed) entry: enough for any unzip tool to open.
QByteArray SampleFileMaker::zip(const QString& entryName, const QByteArray& content)
{
    const QByteArray name = entryName.toUtf8();
    const quint32 crc = crc32(content);
    const auto size = quint32(content.size());

    QByteArray out;
    put32(out, kLocalHeaderSignature);
    put16(out, kZipVersion);
    put16(out, 0); // flags
    put16(out, 0); // stored
    put16(out, 0); // time
    put16(out, 0); // date
    put32(out, crc);
    put32(out, size);
    put32(out, size);
    put16(out, quint16(name.size()));
    put16(out, 0); // extra
    out.append(name);
    out.append(content);

    const auto centralOffset = quint32(out.size());
    put32(out, kCentralHeaderSignature);
    put16(out, kZipVersion); // made by
    put16(out, kZipVersion); // needed
    put16(out, 0);
    put16(out, 0);
    put16(out, 0);
    put16(out, 0);
    put32(out, crc);
    put32(out, size);
    put32(out, size);
    put16(out, quint16(name.size()));
    put16(out, 0); // extra
    put16(out, 0); // comment
    put16(out, 0); // disk
    put16(out, 0); // internal attributes
    put32(out, 0); // external attributes
    put32(out, 0); // offset of the local header
    out.append(name);
    const auto centralSize = quint32(out.size()) - centralOffset;

    put32(out, kEndOfCentralSignature);
    put16(out, 0);
    put16(out, 0);
    put16(out, 1);
    put16(out, 1);
    put32(out, centralSize);
    put32(out, centralOffset);
    put16(out, 0);
    return out;
}

quint32 SampleFileMaker::crc32(const QByteArray& data)
{
    quint32 crc = 0xFFFFFFFFu;
    for (const char byte : data) {
        crc ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (kCrcPolynomial & (0u - (crc & 1u)));
    }
    return ~crc;
}
