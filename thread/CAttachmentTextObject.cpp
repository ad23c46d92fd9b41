#include "CAttachmentTextObject.h"

#include "CIncidentAttachment.h"

#include <QVariant>

CAttachmentTextObject::CAttachmentTextObject(QObject* parent)
    : QObject(parent)
{
    qRegisterMetaType<CIncidentAttachment>("CIncidentAttachment");
}

QSizeF CAttachmentTextObject::intrinsicSize(QTextDocument*, int, const QTextFormat& format)
{
    QVariant value = format.property(AttachmentProperty);
    if (value.metaType() != QMetaType::fromType<CIncidentAttachment>())
        value.convert(QMetaType::fromType<CIncidentAttachment>());
    const CIncidentAttachment attachment = value.value<CIncidentAttachment>();
    Q_UNUSED(attachment)
    return {};
}

void CAttachmentTextObject::drawObject(QPainter*, const QRectF&, QTextDocument*, int, const QTextFormat&)
{}
