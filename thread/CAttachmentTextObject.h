#pragma once
// Text-object handler for attachments carried as custom objects in a text document (the attachment sits in
// the format's property UserObject + 1). It takes no room and draws nothing; the thread document builds its
// tiles from tables instead and does not register it.

#include <QObject>
#include <QTextObjectInterface>

class CAttachmentTextObject : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    static constexpr int AttachmentProperty = QTextFormat::UserObject + 1;

    explicit CAttachmentTextObject(QObject* parent = nullptr);

    QSizeF intrinsicSize(QTextDocument* doc, int posInDocument, const QTextFormat& format) override;
    void drawObject(QPainter* painter, const QRectF& rect, QTextDocument* doc, int posInDocument,
                    const QTextFormat& format) override;
};
