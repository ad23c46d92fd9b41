#include "AttachmentLinks.h"

#include <QUrl>
#include <QUrlQuery>

#include <algorithm>

namespace newsReader {

namespace {

const QLatin1String kAttachScheme("attach://");
const QLatin1String kAbortScheme("abort://");
const QLatin1String kNameItem("name");
// Carries a name that is not valid Unicode (a lone surrogate), as hexadecimal UTF-16 code units.
const QLatin1String kUtf16NameItem("name16");
// The start of a host that carries an id as hexadecimal UTF-16 code units. An id written as a plain host
// never starts like this, so the two forms cannot be mistaken for each other.
const QLatin1String kEncodedIdPrefix("x--");
// The URL parser refuses longer host labels.
constexpr int kMaxLabelLength = 63;
constexpr int kHexDigitsPerUnit = 4;

// The link as it has always been written: exact for plain host-like ids and ordinary names.
QString plainLink(const QString& id, const QString& name)
{
    const QString text = kAttachScheme + id + QStringLiteral("?name=%1").arg(name);
    QByteArray encoded = QUrl(text, QUrl::TolerantMode).toEncoded(QUrl::FullyEncoded);
    // Left alone, a "#" in the file name would start a fragment and cut the name short on the way back.
    encoded.replace('#', "%23");
    return QString::fromLatin1(encoded);
}

QString toHex(const QString& text)
{
    QString hex;
    hex.reserve(text.size() * kHexDigitsPerUnit);
    for (const QChar c : text)
        hex += QStringLiteral("%1").arg(c.unicode(), kHexDigitsPerUnit, 16, QLatin1Char('0'));
    return hex;
}

// Empty with `ok` false when `hex` is not what toHex writes.
QString fromHex(QStringView hex, bool& ok)
{
    const auto isHexDigit = [](QChar c) {
        return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) ||
               (c >= QLatin1Char('a') && c <= QLatin1Char('f'));
    };
    ok = hex.size() % kHexDigitsPerUnit == 0 && std::all_of(hex.begin(), hex.end(), isHexDigit);
    QString text;
    text.reserve(hex.size() / kHexDigitsPerUnit);
    for (qsizetype i = 0; ok && i < hex.size(); i += kHexDigitsPerUnit)
        text += QChar(hex.mid(i, kHexDigitsPerUnit).toUShort(&ok, 16));
    return ok ? text : QString();
}

QString encodedIdHost(const QString& id)
{
    QString host = kEncodedIdPrefix;
    const QString hex = toHex(id);
    for (qsizetype at = 0; at < hex.size();) {
        if (at > 0)
            host += QLatin1Char('.');
        const qsizetype room = kMaxLabelLength - (at == 0 ? kEncodedIdPrefix.size() : 0);
        host += QStringView(hex).mid(at, room);
        at += room;
    }
    return host;
}

QString idFromHost(const QString& host)
{
    if (!host.startsWith(kEncodedIdPrefix))
        return host;
    QString hex = host.mid(kEncodedIdPrefix.size());
    hex.remove(QLatin1Char('.'));
    bool ok = false;
    const QString id = fromHex(hex, ok);
    return ok ? id : host;
}

QString nameFromQuery(const QUrlQuery& query)
{
    if (query.hasQueryItem(kUtf16NameItem)) {
        bool ok = false;
        return fromHex(query.queryItemValue(kUtf16NameItem), ok);
    }
    return query.queryItemValue(kNameItem, QUrl::FullyDecoded);
}

void readLink(const QString& href, QString& id, QString& name)
{
    const QUrl url(href);
    id = idFromHost(url.host(QUrl::FullyDecoded));
    name = nameFromQuery(QUrlQuery(url));
}

bool survives(const QString& href, const QString& id, const QString& name)
{
    if (!isAttachLink(href))
        return false;
    QString readId;
    QString readName;
    readLink(href, readId, readName);
    return readId == id && readName == name;
}

} // namespace

QString attachLink(const CIncidentAttachment& attachment)
{
    const QString& id = attachment.id;
    const QString& name = attachment.fileName;
    const bool plainId = !id.startsWith(kEncodedIdPrefix);
    const QString plain = plainLink(id, name);
    if (plainId && survives(plain, id, name))
        return plain;

    // The URL parser would change the id or the name: whichever does not survive travels encoded.
    const QString idOnly = plainLink(id, QString());
    const QString host = plainId && survives(idOnly, id, QString()) ? QUrl(idOnly).host(QUrl::FullyEncoded)
                                                                    : encodedIdHost(id);
    const QString encoded = kAttachScheme + host + QLatin1Char('?') + kNameItem + QLatin1Char('=') +
                            QString::fromLatin1(QUrl::toPercentEncoding(name));
    // Lone surrogates and noncharacters (U+FFFF and the like) do not come back from percent-encoding.
    if (survives(encoded, id, name))
        return encoded;
    return kAttachScheme + host + QLatin1Char('?') + kUtf16NameItem + QLatin1Char('=') + toHex(name);
}

QString thumbnailName(const QString& attachmentId)
{
    const QString plain = attachmentId + QStringLiteral("-thumbnail");
    // Resources are looked up by URL, and the URL parser takes "x y" and "x%20y" or "%41" and "A" for the
    // same: only an id it keeps as written names its picture plainly.
    if (!attachmentId.startsWith(kEncodedIdPrefix) &&
        QUrl(plain).toEncoded(QUrl::FullyEncoded) == plain.toUtf8())
        return plain;
    return kEncodedIdPrefix + toHex(attachmentId) + QStringLiteral("-thumbnail");
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
        return idFromHost(QUrl(href).host(QUrl::FullyDecoded));
    if (isAbortLink(href))
        return href.mid(kAbortScheme.size());
    return {};
}

bool parseAttachLink(const QString& href, QString& id, QString& name)
{
    if (!isAttachLink(href))
        return false;
    readLink(href, id, name);
    return true;
}

} // namespace newsReader
