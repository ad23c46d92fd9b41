#pragma once
// The rich-text document that shows one support conversation as a column of chat bubbles. Every message is
// one two-column table (avatar and bubble), kept in runs under plain frames (CMessageGroups); the document
// remembers per message id where that table is, so that the plugin can later replace, remove or update a
// message, mark its delivery state and show attachment progress and thumbnails in it. It installs its own
// layout, which paints the rounded bubbles and draws its images. Owned by the plugin; reports no errors
// (unknown messages are ignored).

#include "CMessageItemIndex.h"
#include "CMessageRegister.h"

#include <QHash>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFormat>

#include <functional>
#include <optional>

class WatcherAliases;

class CMessageItemsDocument : public QTextDocument
{
    Q_OBJECT

public:
    // Fixed to int: a status the document is handed may lie outside the named values, and it then shows no
    // image instead of being an invalid enumeration value.
    enum DeliveryStatus : int
    {
        NotDelivered = 0,
        Delivered = 1,
        DeliveryFailed = 2,
    };
    Q_ENUM(DeliveryStatus)

    CMessageItemsDocument();
    ~CMessageItemsDocument() override;

    void clear() override;

    CMessageItemIndex appendMessage(const CIncidentCommunication& message);
    // Puts a message above the first one shown: older messages of a long thread arrive as the reader
    // scrolls up.
    CMessageItemIndex prependMessage(const CIncidentCommunication& message);
    // The outer table of the first message shown, or null.
    QTextFrame* firstMessageFrame() const;
    CMessageItemIndex insertMessage(const CIncidentCommunication& message, const QTextCursor& at,
                                    bool registerIt);
    CMessageItemIndex replaceMessage(const CMessageItemIndex& old, const CIncidentCommunication& message);
    // Inserts before it removes: a record whose id is already registered is refused, and the old message
    // still goes (used to put the server's version in place of a locally built, unregistered one).
    void updateMessage(const CMessageItemIndex& old, const CIncidentCommunication& message);
    void removeMessage(const CMessageItemIndex& index);

    CMessageItemIndex messageIndex(const QString& id) const;
    CMessageItemIndex findOlderVersion(const CIncidentCommunication& message) const;
    void updatePartyNames(std::function<WatcherAliases(const QString& authorId)> aliasesOf);

    // Where a message inserted comes last.
    QTextCursor endCursor();
    QRectF frameRect(const CMessageItemIndex& index) const;
    QRectF anchorRect(const QString& href) const;
    // The tile of an attachment (its link line, or its thumbnail), in document coordinates; invalid when the
    // document does not show it.
    QRectF attachmentRect(const QString& attachmentId) const;

    // An own message whose delivery failed says so above its time; given `sendAgainLink`, the note offers to
    // send it again through that link. Any other status takes the note away.
    void setDeliveryStatus(const CMessageItemIndex& index, DeliveryStatus status,
                           const QString& sendAgainLink = QString());

    void setContentsThumbnail(const CMessageItemIndex& index, const QString& attachmentId,
                              const QPixmap& thumbnail);
    void setAttachUploadProgress(const CMessageItemIndex& index, const QString& attachmentId, int percent);
    void setAttachProgress(const QString& attachmentId, int percent);
    // The device pixel ratio of the view that shows the document: pictures the document draws itself
    // (progress rings) are drawn with that many pixels per unit, at the same size.
    void setDevicePixelRatio(qreal ratio);
    qreal devicePixelRatio() const { return m_pixelRatio; }

    // Whether a body is shown as HTML (it holds some element with its matching closing tag on one line) or
    // as Markdown. Runs in time linear in the body's length, whatever the body holds.
    static bool isHtmlBody(const QString& body);

    // Names of the fixed image resources.
    static const QString AvatarImage;
    static const QString DeliveredImage;
    static const QString NotDeliveredImage;
    static const QString DeliveryFailedImage;

protected:
    // Message content names pictures, backgrounds and style sheets. Only pictures it carries itself (data:
    // URLs) are read here, within CResourceGuard's limits, and kept as resources so that each is decoded
    // once; picture files are left to the image handler, which reads them within the same limits. Nothing
    // else, no style sheet and no background, is ever read from disk.
    QVariant loadResource(int type, const QUrl& name) override;

private:
    friend class TestMessageItemsDocument;
    friend class TestAttachmentTiles;

    using BlockPredicate = std::function<bool(const QTextBlock&)>;

    void addFixedResources();
    void insertAuthorLine(QTextCursor& cursor, const CIncidentCommunication& message);
    void insertAttachmentTable(QTextCursor& cursor, const CIncidentAttachment& attachment, bool first);
    void insertBody(QTextCursor& cursor, const CIncidentCommunication& message);
    void insertFooter(QTextCursor& cursor, const CIncidentCommunication& message);
    void insertShortenedNote(QTextCursor& cursor, const QString& messageId);
    void insertSizeLine(QTextCursor& cursor, const CIncidentAttachment& attachment, qreal bottomMargin);
    QString extensionIcon(const CIncidentAttachment& attachment);

    void setDeliveryStatusForFrame(QTextTable* table, DeliveryStatus status,
                                   const QString& sendAgainLink = QString());
    void writeNotSentNote(QTextCursor& cursor, const QTextBlock& footer, bool failed, const QString& link);
    static QTextImageFormat deliveryImage(DeliveryStatus status);
    QString makeProgressImage(int percent, const QString& fileName, bool cancellable);
    bool hasImage(const QString& name) const;

    QTextBlock findBlock(QTextTable* table, int column, const BlockPredicate& predicate) const;
    QTextBlock findBlockInFrame(QTextFrame* frame, const BlockPredicate& predicate) const;
    // The first matching block from `it` to the end of its frame, searching nested frames on the way.
    QTextBlock findBlockFrom(QTextFrame::iterator it, const BlockPredicate& predicate) const;
    QTextBlock findInDocument(const BlockPredicate& predicate) const;
    QTextBlock findBlockWithAnchor(const QString& href) const;
    QTextBlock findAttachmentLinkBlock(const QString& attachmentId) const;
    QTextBlock findAttachmentIconBlock(const QString& attachmentId) const;
    QTextTable* findAttachmentTable(const CMessageItemIndex& index, const QString& attachmentId) const;

    void replaceLastCharacter(const QTextBlock& block, const QTextImageFormat& image);
    // The block of kind `kind` for the attachment, looked up in the message that holds it; none when no
    // message shown holds it.
    QTextBlock findAttachmentBlock(const QString& attachmentId, int kind) const;

    CMessageRegister m_register;
    qreal m_pixelRatio = 1.0;
};
