#include "AttachmentLinks.h"

#include <QUrl>
#include <QUrlQuery>

namespace newsReader {

namespace {

const QLatin1String kAttachScheme("attach://");
const QLatin1String kAbortScheme("abort://");
const QLatin1String kNameItem("name");

} // namespace

QString attachLink(const CIncidentAttachment& attachment)
{
    const QString text = kAttachScheme + attachment.id + QStringLiteral("?name=%1").arg(attachment.fileName);
    QByteArray encoded = QUrl(text, QUrl::TolerantMode).toEncoded(QUrl::FullyEncoded);
    // Left alone, a "#" in the file name would start a fragment and cut the name short on the way back.
    encoded.replace('#', "%23");
    return QString::fromLatin1(encoded);
}

QString abortLink(const CIncidentAttachment& attachment)
{
    return kAbortScheme + attachment.id;
}

bool isAttachLink(const QString& href)
{
    return href.startsWith(kAttachScheme, Qt::CaseSensitive);
}

bool isAbortLink(const QString& href)
{
    return href.startsWith(kAbortScheme, Qt::CaseSensitive);
}

QString attachmentIdFromLink(const QString& href)
{
    if (isAttachLink(href))
        return QUrl(href).host(QUrl::FullyDecoded);
    if (isAbortLink(href))
        return href.mid(kAbortScheme.size());
    return {};
}

bool parseAttachLink(const QString& href, QString& id, QString& name)
{
    if (!isAttachLink(href))
        return false;
    const QUrl url(href);
    id = url.host(QUrl::FullyDecoded);
    name = QUrlQuery(url).queryItemValue(kNameItem, QUrl::FullyDecoded);
    return true;
}

} // namespace newsReader
