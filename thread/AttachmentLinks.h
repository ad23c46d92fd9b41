#pragma once
// The links that attachment tiles of the thread document carry, and how a clicked href is read back.
// "attach://<id>?name=<file name>" opens or saves the file; "abort://<id>" cancels its download. This is
// the one place that knows the format; the plugin only calls these functions.
//
// Ids and names come from the server and may hold anything. Where the URL parser would change one (host
// normalisation of the id: case, numbers read as addresses, "user@", "/", spaces; "&", "%" or NUL in a
// name), that part travels encoded instead: the id as a host "x--" followed by its UTF-16 code units in
// hexadecimal (split into labels the parser accepts), the name fully percent-encoded, or, when even that
// does not come back (lone surrogates, noncharacters), as hexadecimal UTF-16 in the query item "name16".
// Everything else keeps the plain form, so reading a link back always gives exactly the id and name it was
// made from.

#include "CIncidentAttachment.h"

#include <QString>

namespace newsReader {

// The href of a tile's name and of its thumbnail. A "#" in the file name stays in the query as "%23".
// Always plain ASCII, unchanged by a trip through QUrl and back with QUrl::FullyEncoded.
QString attachLink(const CIncidentAttachment& attachment);
// The name of the image resource that holds the attachment's thumbnail: "<id>-thumbnail", or the id's
// encoded form in place of an id that the URL parser would take for another one.
QString thumbnailName(const QString& attachmentId);
// The href of a cancellable progress ring.
QString abortLink(const CIncidentAttachment& attachment);

// Both tests are case-sensitive on the scheme, as the document writes it.
bool isAttachLink(const QString& href);
bool isAbortLink(const QString& href);

// The attachment id of either kind of link, exactly as it was written into the link; empty for anything else.
QString attachmentIdFromLink(const QString& href);

// Splits an attachment link; returns false and leaves both outputs untouched for anything else.
bool parseAttachLink(const QString& href, QString& id, QString& name);

} // namespace newsReader
