// Attachment links: whatever id and name the server sends, the link gives both back exactly, also after the
// trip a click takes (href, QUrl, fully encoded text); any text at all read as a link is harmless.
// Input: one byte with the id's length in code units, then the id's and the name's UTF-16 code units.
#include "AttachmentLinks.h"

#include <QStringList>
#include <QUrl>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

// Raw code units, lone surrogates included: any string the server's JSON can hold.
QString codeUnits(const uint8_t* data, size_t bytes)
{
    QString text(qsizetype(bytes / sizeof(char16_t)), Qt::Uninitialized);
    std::memcpy(text.data(), data, size_t(text.size()) * sizeof(char16_t));
    return text;
}

void require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const size_t idBytes = std::min(size_t(data[0]) * sizeof(char16_t), size - 1);
    CIncidentAttachment attachment;
    attachment.id = codeUnits(data + 1, idBytes);
    attachment.fileName = codeUnits(data + 1 + idBytes, size - 1 - idBytes);

    const QString href = newsReader::attachLink(attachment);
    require(newsReader::isAttachLink(href) && !newsReader::isAbortLink(href));
    require(std::all_of(href.cbegin(), href.cend(),
                        [](QChar c) { return c.unicode() > 32 && c.unicode() < 127; }));
    const QString clicked = QString::fromUtf8(QUrl(href).toEncoded(QUrl::FullyEncoded));
    for (const QString& link : {href, clicked}) {
        QString id;
        QString name;
        require(newsReader::parseAttachLink(link, id, name));
        require(id == attachment.id);
        require(name == attachment.fileName);
        require(newsReader::attachmentIdFromLink(link) == attachment.id);
    }

    const QString abort = newsReader::abortLink(attachment);
    require(newsReader::isAbortLink(abort) && !newsReader::isAttachLink(abort));
    require(newsReader::attachmentIdFromLink(abort) == attachment.id);

    // Resources are looked up by URL: the name must be one the URL parser keeps as written.
    const QString thumbnail = newsReader::thumbnailName(attachment.id);
    require(QUrl(thumbnail).toEncoded(QUrl::FullyEncoded) == thumbnail.toUtf8());

    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const QStringList anyText = {text, QString(QStringLiteral("attach://") + text),
                                 QString(QStringLiteral("attach://x--") + text)};
    for (const QString& any : anyText) {
        QString id;
        QString name;
        newsReader::parseAttachLink(any, id, name);
        newsReader::attachmentIdFromLink(any);
    }
    return 0;
}
