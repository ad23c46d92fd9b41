#pragma once
// The links that attachment tiles of the thread document carry, and how a clicked href is read back.
// "attach://<id>?name=<file name>" opens or saves the file; "abort://<id>" cancels its download. This is
// the one place that knows the format; the plugin only calls these functions.

#include "CIncidentAttachment.h"

#include <QString>

namespace newsReader {

// The href of a tile's name and of its thumbnail. A "#" in the file name stays in the query as "%23".
QString attachLink(const CIncidentAttachment& attachment);
// The href of a cancellable progress ring.
QString abortLink(const CIncidentAttachment& attachment);

// Both tests are case-sensitive on the scheme, as the document writes it.
bool isAttachLink(const QString& href);
bool isAbortLink(const QString& href);

// The attachment id of either kind of link (for an attachment link the URL host, as the URL parser
// normalises it); empty for anything else.
QString attachmentIdFromLink(const QString& href);

// Splits an attachment link; returns false and leaves both outputs untouched for anything else.
bool parseAttachLink(const QString& href, QString& id, QString& name);

} // namespace newsReader
