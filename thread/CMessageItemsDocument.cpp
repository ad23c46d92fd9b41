#include "CMessageItemsDocument.h"

#include "AttachmentLinks.h"
#include "CBlockIdentification.h"
#include "CColorIndexes.h"
#include "CFrameTreeSplicer.h"
#include "CMarkdownInserter.h"
#include "CMessageBody.h"
#include "CMessageGroups.h"
#include "CResourceGuard.h"
#include "CShellImageList.h"
#include "CVantrelApp.h"
#include "HostFiles.h"
#include "HostText.h"
#include "MessageFormatProperties.h"
#include "QTextDocumentLayout.h"
#include "QtHelpersImages.h"
#include "TextImageHandler.h"
#include "WatcherAliases.h"

#include <QGuiApplication>
#include <QLocale>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QTextDocumentFragment>
#include <QTextTable>
#include <QThread>
#include <QUrl>

#include <algorithm>

namespace {

using namespace newsReader::MessageFormatProperties;

// Message table.
constexpr qreal kTableBorder = 1.0;
constexpr qreal kMessageBottomMargin = 16.0;
constexpr qreal kOwnRightMargin = 16.0;
constexpr qreal kOwnLeftMargin = 100.0;
constexpr qreal kOtherRightMargin = 100.0;
constexpr qreal kAvatarRightPadding = 10.0;
constexpr qreal kAvatarSize = 40.0;
constexpr qreal kBubbleHorizontalPadding = 13.0;
constexpr qreal kBubbleVerticalPadding = 7.0;
constexpr qreal kCornerRadius = 12.0;
constexpr qreal kSquareCorner = 0.0;
constexpr int kBubbleColumn = 1;
constexpr int kAvatarColumn = 0;

// Bubble content.
constexpr int kBoldWeight = 700;
constexpr int kNormalWeight = 400;
constexpr qreal kAuthorPointSize = 10.0;
constexpr qreal kAuthorBottomMargin = 7.0;
constexpr qreal kFirstAttachmentTopMargin = 7.0;
constexpr qreal kAttachmentBottomMargin = 7.0;
constexpr qreal kAttachmentNamePadding = 5.0;
constexpr qreal kFileNamePointSize = 10.0;
constexpr qreal kSmallPointSize = 8.0;
constexpr qreal kDeletedPointSize = 9.0;
constexpr qreal kFooterTopMargin = 7.0;
constexpr qreal kStatusImageSize = 16.0;
constexpr int kStatusArtworkSize = 16;
constexpr int kShellIconSize = 128;
// Shell icons are drawn at 128 pixels; tiles show them at 32 device-independent pixels, sharp on every
// screen.
constexpr qreal kShellIconPixelRatio = 4.0;

// Progress rings.
constexpr int kRingSize = 32;
constexpr qreal kRingPenWidth = 4.0;
constexpr qreal kRingInset = 2.0;
constexpr int kRingStartAngle = 90 * 16;
constexpr qreal kSixteenthsPerTurn = 16.0 * 360.0;
constexpr int kRingIconSize = 16;
constexpr int kComplete = 100;

const char* const kAttachmentTableProperty = "attachmentTableId";

QColor hostColor(CColorIndexes index)
{
    return CVantrelApp::GetColor(index);
}

QTextCharFormat smallSecondaryFormat()
{
    QTextCharFormat format;
    format.setFontPointSize(kSmallPointSize);
    format.setForeground(hostColor(clrSecondaryText));
    format.setVerticalAlignment(QTextCharFormat::AlignBaseline);
    return format;
}

CBlockIdentification* identificationOf(const QTextBlock& block)
{
    return dynamic_cast<CBlockIdentification*>(block.userData());
}

bool isAsciiLetter(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool isAsciiAlnum(QChar c)
{
    return isAsciiLetter(c) || (c >= u'0' && c <= u'9');
}

bool isWordChar(QChar c)
{
    return isAsciiAlnum(c) || c == u'_';
}

QImage scaledStatusArtwork(const QString& name)
{
    return qtHelpers::images::image(name).scaled(kStatusArtworkSize, kStatusArtworkSize, Qt::KeepAspectRatio,
                                                 Qt::SmoothTransformation);
}

} // namespace

const QString CMessageItemsDocument::AvatarImage = QStringLiteral("AvatarSingle");
const QString CMessageItemsDocument::DeliveredImage = QStringLiteral("delivered");
const QString CMessageItemsDocument::NotDeliveredImage = QStringLiteral("not-delivered");
const QString CMessageItemsDocument::DeliveryFailedImage = QStringLiteral("delivery-failed");

CMessageItemsDocument::CMessageItemsDocument()
    : QTextDocument(nullptr)
{
    qRegisterMetaType<CMessageItemIndex>("CMessageItemIndex");
    setDocumentLayout(new newsReader::QTextDocumentLayout(this));
    // A thread view is never edited by the user; keeping undo history for every message would only cost
    // memory.
    setUndoRedoEnabled(false);
    addFixedResources();
}

CMessageItemsDocument::~CMessageItemsDocument() = default;

void CMessageItemsDocument::addFixedResources()
{
    addResource(ImageResource, QUrl(AvatarImage), qtHelpers::images::svgData(QStringLiteral("AvatarSingle")));
    addResource(ImageResource, QUrl(DeliveredImage), scaledStatusArtwork(QStringLiteral("ico-delivered")));
    addResource(ImageResource, QUrl(NotDeliveredImage),
                scaledStatusArtwork(QStringLiteral("ico-delivering")));
    addResource(ImageResource, QUrl(DeliveryFailedImage),
                scaledStatusArtwork(QStringLiteral("ico-delivery-failed")));
}

void CMessageItemsDocument::clear()
{
    m_register.clear();
    QTextDocument::clear();
    addFixedResources();
}

QVariant CMessageItemsDocument::loadResource(int type, const QUrl& name)
{
    if (type != ImageResource)
        return {};
    const QImage image = CResourceGuard::embeddedImage(name);
    if (image.isNull())
        return {};
    // Pixmaps on the GUI thread and images elsewhere, as the toolkit's own loading gives them.
    const bool onGuiThread =
        QCoreApplication::instance() && QCoreApplication::instance()->thread() == QThread::currentThread();
    const QVariant picture = onGuiThread ? QVariant(QPixmap::fromImage(image)) : QVariant(image);
    addResource(type, name, picture);
    return picture;
}

bool CMessageItemsDocument::hasImage(const QString& name) const
{
    return !resource(ImageResource, QUrl(name)).isNull();
}

// The body counts as HTML when it matches <([A-Za-z][A-Za-z0-9]*)\b[^>]*>(.*?)<\/\1> : an element, the first
// '>' after its name, and its closing tag later on the same line. Written out by hand because the expression
// backtracks quadratically on long runs of unclosed tags; this gives the same answer in O(n log n).
bool CMessageItemsDocument::isHtmlBody(const QString& body)
{
    const QStringView text(body);
    const qsizetype n = text.size();

    QHash<QStringView, QList<qsizetype>> closings;
    for (qsizetype i = 0; i + 1 < n; ++i) {
        if (text[i] != u'<' || text[i + 1] != u'/')
            continue;
        qsizetype j = i + 2;
        while (j < n && isAsciiAlnum(text[j]))
            ++j;
        if (j > i + 2 && j < n && text[j] == u'>')
            closings[text.sliced(i + 2, j - i - 2)].append(i);
    }
    if (closings.isEmpty())
        return false;

    qsizetype nextGreater = -1; // the first '>' at or after the last place looked from
    qsizetype nextNewline = -1;
    for (qsizetype i = 0; i + 1 < n; ++i) {
        if (text[i] != u'<' || !isAsciiLetter(text[i + 1]))
            continue;
        qsizetype k = i + 2;
        while (k < n && isAsciiAlnum(text[k]))
            ++k;
        if (k < n && isWordChar(text[k]))
            continue; // no word boundary after the name
        if (nextGreater < k) {
            nextGreater = text.indexOf(u'>', k);
            if (nextGreater < 0)
                return false; // no later element can be closed either
        }
        const qsizetype contentStart = nextGreater + 1;
        if (nextNewline < contentStart) {
            nextNewline = text.indexOf(u'\n', contentStart);
            if (nextNewline < 0)
                nextNewline = n;
        }
        const auto found = closings.constFind(text.sliced(i + 1, k - i - 1));
        if (found == closings.cend())
            continue;
        const auto close = std::lower_bound(found->cbegin(), found->cend(), contentStart);
        if (close != found->cend() && *close < nextNewline)
            return true;
    }
    return false;
}

CMessageItemIndex CMessageItemsDocument::appendMessage(const CIncidentCommunication& message)
{
    return insertMessage(message, CMessageGroups::endCursor(this), true);
}

CMessageItemIndex CMessageItemsDocument::prependMessage(const CIncidentCommunication& message)
{
    if (!firstMessageFrame())
        return appendMessage(message);
    return insertMessage(message, CMessageGroups::startCursor(this), true);
}

QTextFrame* CMessageItemsDocument::firstMessageFrame() const
{
    return CMessageGroups::firstMessage(this);
}

CMessageItemIndex CMessageItemsDocument::insertMessage(const CIncidentCommunication& message,
                                                       const QTextCursor& at, bool registerIt)
{
    if (m_register.contains(message.id))
        return {};

    const bool own = !message.fromOtherParty;
    QTextCursor cursor(at);
    CFrameTreeSplicer frameTree(this);
    cursor.beginEditBlock();

    QTextTableFormat tableFormat;
    tableFormat.setAlignment(own ? Qt::AlignRight : Qt::AlignLeft);
    tableFormat.setBorder(kTableBorder);
    tableFormat.setBorderStyle(QTextFrameFormat::BorderStyle_None);
    tableFormat.setBackground(Qt::transparent);
    tableFormat.setCellPadding(0);
    tableFormat.setCellSpacing(0);
    tableFormat.setPadding(0);
    tableFormat.setBottomMargin(kMessageBottomMargin);
    tableFormat.setRightMargin(own ? kOwnRightMargin : kOtherRightMargin);
    tableFormat.setLeftMargin(own ? kOwnLeftMargin : 0.0);
    QTextTable* table = cursor.insertTable(1, 2, tableFormat);

    if (!own) {
        QTextTableCell avatarCell = table->cellAt(0, kAvatarColumn);
        QTextTableCellFormat avatarFormat = avatarCell.format().toTableCellFormat();
        avatarFormat.setRightPadding(kAvatarRightPadding);
        avatarFormat.setVerticalAlignment(QTextCharFormat::AlignBottom);
        avatarCell.setFormat(avatarFormat);
        QTextImageFormat avatar;
        avatar.setName(AvatarImage);
        avatar.setWidth(kAvatarSize);
        avatar.setHeight(kAvatarSize);
        avatar.setProperty(TintColor, message.getNameColor());
        avatar.setProperty(Tint, true);
        avatarCell.firstCursorPosition().insertImage(avatar);
    }

    QTextTableCell bubble = table->cellAt(0, kBubbleColumn);
    QTextTableCellFormat bubbleFormat = bubble.format().toTableCellFormat();
    bubbleFormat.setVerticalAlignment(QTextCharFormat::AlignTop);
    bubbleFormat.setBackground(hostColor(own ? clrBubbleOwn : clrBubbleOther));
    bubbleFormat.setLeftPadding(kBubbleHorizontalPadding);
    bubbleFormat.setRightPadding(kBubbleHorizontalPadding);
    bubbleFormat.setTopPadding(kBubbleVerticalPadding);
    bubbleFormat.setBottomPadding(kBubbleVerticalPadding);
    bubbleFormat.setProperty(TopLeftRadius, kCornerRadius);
    bubbleFormat.setProperty(TopRightRadius, kCornerRadius);
    // The corner next to the avatar (or, for own messages, next to the page edge) stays square.
    bubbleFormat.setProperty(BottomRightRadius, own ? kSquareCorner : kCornerRadius);
    bubbleFormat.setProperty(BottomLeftRadius, own ? kCornerRadius : kSquareCorner);
    bubbleFormat.setProperty(Shadow, true);
    bubble.setFormat(bubbleFormat);

    QTextCursor content = bubble.firstCursorPosition();
    insertAuthorLine(content, message);
    for (qsizetype i = 0; i < message.attachments.size(); ++i)
        insertAttachmentTable(content, message.attachments.at(i), i == 0);
    insertBody(content, message);
    insertFooter(content, message);
    if (table)
        frameTree.attach(table->firstPosition() - 1, table->lastPosition());
    cursor.endEditBlock();

    CMessageItemIndex result{table, message};
    if (registerIt && table && !message.id.isEmpty())
        m_register.add(result);
    else if (table)
        m_register.addUnregistered(result);
    emit contentsChanged();
    return result;
}

void CMessageItemsDocument::insertAuthorLine(QTextCursor& cursor, const CIncidentCommunication& message)
{
    if (message.senderName.isEmpty())
        return;
    QTextCharFormat nameFormat;
    nameFormat.setFontWeight(kBoldWeight);
    nameFormat.setFontPointSize(kAuthorPointSize);
    const QColor nameColor = message.getNameColor();
    if (nameColor.isValid())
        nameFormat.setForeground(nameColor);
    QTextBlockFormat blockFormat = cursor.blockFormat();
    blockFormat.setBottomMargin(kAuthorBottomMargin);
    cursor.setBlockFormat(blockFormat);
    cursor.insertText(message.senderName, nameFormat);
}

QString CMessageItemsDocument::extensionIcon(const CIncidentAttachment& attachment)
{
    const QString extension = getFileNameExtension(attachment.fileName, false);
    if (!hasImage(extension)) {
        QPixmap icon = CShellImageList::instance()->getShellImage(attachment.fileName, kShellIconSize);
        icon.setDevicePixelRatio(kShellIconPixelRatio);
        addResource(ImageResource, QUrl(extension), icon);
    }
    return extension;
}

void CMessageItemsDocument::insertAttachmentTable(QTextCursor& cursor, const CIncidentAttachment& attachment,
                                                  bool first)
{
    QTextTableFormat tableFormat;
    tableFormat.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    tableFormat.setBorder(0);
    tableFormat.setBorderStyle(QTextFrameFormat::BorderStyle_None);
    tableFormat.setBackground(Qt::transparent);
    tableFormat.setCellPadding(0);
    tableFormat.setCellSpacing(0);
    tableFormat.setPadding(0);
    tableFormat.setBottomMargin(kAttachmentBottomMargin);
    tableFormat.setTopMargin(first ? kFirstAttachmentTopMargin : 0.0);
    QTextTable* table = cursor.insertTable(1, 2, tableFormat);
    table->setProperty(kAttachmentTableProperty, attachment.id);

    const QString icon = extensionIcon(attachment);
    QTextCursor iconCursor = table->cellAt(0, 0).firstCursorPosition();
    QTextBlockFormat iconBlock = iconCursor.blockFormat();
    iconBlock.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    iconCursor.setBlockFormat(iconBlock);
    QTextImageFormat iconFormat;
    iconFormat.setName(icon);
    iconCursor.insertImage(iconFormat);
    iconCursor.block().setUserData(
        new CBlockIdentification(CBlockIdentification::AttachmentIcon, attachment));

    QTextTableCell nameCell = table->cellAt(0, 1);
    QTextTableCellFormat nameCellFormat = nameCell.format().toTableCellFormat();
    nameCellFormat.setVerticalAlignment(QTextCharFormat::AlignTop);
    nameCellFormat.setLeftPadding(kAttachmentNamePadding);
    nameCell.setFormat(nameCellFormat);

    QTextCursor nameCursor = nameCell.firstCursorPosition();
    QTextBlockFormat nameBlock = nameCursor.blockFormat();
    nameBlock.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    nameBlock.setNonBreakableLines(true);
    nameCursor.setBlockFormat(nameBlock);
    QTextCharFormat nameFormat;
    nameFormat.setFontPointSize(kFileNamePointSize);
    if (!attachment.noLink) {
        nameFormat.setAnchor(true);
        nameFormat.setAnchorHref(newsReader::attachLink(attachment));
        nameFormat.setUnderlineStyle(QTextCharFormat::SingleUnderline);
        nameFormat.setForeground(QGuiApplication::palette().color(QPalette::Link));
    }
    nameCursor.insertText(attachment.fileName, nameFormat);
    nameCursor.block().setUserData(
        new CBlockIdentification(CBlockIdentification::AttachmentLink, attachment));
    insertSizeLine(nameCursor, attachment, -1.0);

    cursor = table->lastCursorPosition();
    cursor.movePosition(QTextCursor::NextCharacter);
}

void CMessageItemsDocument::insertSizeLine(QTextCursor& cursor, const CIncidentAttachment& attachment,
                                           qreal bottomMargin)
{
    QTextBlockFormat blockFormat;
    blockFormat.setNonBreakableLines(true);
    blockFormat.setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    if (bottomMargin >= 0)
        blockFormat.setBottomMargin(bottomMargin);
    const QTextCharFormat charFormat = smallSecondaryFormat();
    cursor.insertBlock(blockFormat, charFormat);
    cursor.insertText(GetFormattedSize(attachment.size, 0), charFormat);
}

void CMessageItemsDocument::insertBody(QTextCursor& cursor, const CIncidentCommunication& message)
{
    const bool html = !message.deleted && isHtmlBody(message.text);
    // Markdown goes into the current block only when that block is still empty: inserted after the author
    // line it would otherwise run on in the same line as the name.
    const bool markdownAfterText = !html && !message.deleted && cursor.block().length() > 1;
    if (html || message.deleted || markdownAfterText)
        cursor.insertBlock(QTextBlockFormat(), QTextCharFormat());
    QTextBlockFormat blockFormat = cursor.blockFormat();
    blockFormat.setAlignment(Qt::AlignTop);
    cursor.setBlockFormat(blockFormat);

    if (message.deleted) {
        QTextCharFormat deletedFormat = cursor.blockCharFormat();
        deletedFormat.setFontItalic(true);
        deletedFormat.setFontWeight(kNormalWeight);
        deletedFormat.setFontPointSize(kDeletedPointSize);
        deletedFormat.setForeground(hostColor(clrSecondaryText));
        cursor.setBlockCharFormat(deletedFormat);
        cursor.insertText(QObject::tr("Message is deleted"), deletedFormat);
        return;
    }
    const CMessageBody body(message.text, html);
    switch (body.kind()) {
    case CMessageBody::Html:
        // Parsing against this document first resolves the body's resources the way the toolkit's own
        // insertion does; the body itself goes in exactly as received.
        QTextDocumentFragment::fromHtml(body.text(), this).toHtml();
        cursor.insertHtml(body.text());
        break;
    case CMessageBody::Markdown:
        CMarkdownInserter::insert(cursor, body.text());
        break;
    case CMessageBody::PlainText:
        cursor.insertText(body.text(), cursor.blockCharFormat());
        break;
    }
    if (body.shortened())
        insertShortenedNote(cursor, message.id);
}

void CMessageItemsDocument::insertShortenedNote(QTextCursor& cursor, const QString& messageId)
{
    QTextCharFormat note = smallSecondaryFormat();
    note.setFontItalic(true);
    cursor.insertBlock(QTextBlockFormat(), note);
    cursor.insertText(QObject::tr("This message is long: only its beginning is shown.") + QLatin1Char(' '),
                      note);
    QTextCharFormat link = note;
    link.setAnchor(true);
    link.setAnchorHref(CMessageBody::wholeTextLink(messageId));
    link.setFontUnderline(true);
    link.setForeground(hostColor(clrLink));
    cursor.insertText(QObject::tr("Show the whole message"), link);
}

void CMessageItemsDocument::insertFooter(QTextCursor& cursor, const CIncidentCommunication& message)
{
    QTextBlockFormat blockFormat;
    blockFormat.setNonBreakableLines(true);
    blockFormat.setAlignment(Qt::AlignRight | Qt::AlignBottom);
    blockFormat.setTopMargin(kFooterTopMargin);
    const QTextCharFormat charFormat = smallSecondaryFormat();
    cursor.insertBlock(blockFormat, charFormat);
    cursor.insertText(QLocale::system().toString(message.time, QLocale::LongFormat), charFormat);
    if (message.editVersion > 1) {
        QTextCharFormat edited = charFormat;
        edited.setFontItalic(true);
        cursor.insertText(QLatin1Char(' ') + QObject::tr("(edited)"), edited);
    }
    if (!message.fromOtherParty) {
        cursor.insertText(QStringLiteral("  "), charFormat);
        cursor.insertImage(deliveryImage(Delivered));
        cursor.block().setUserData(new CBlockIdentification(CBlockIdentification::MessageFooter, {}));
    }
}

CMessageItemIndex CMessageItemsDocument::replaceMessage(const CMessageItemIndex& old,
                                                        const CIncidentCommunication& message)
{
    if (!old.isValid())
        return appendMessage(message);
    const QTextCursor at = old.frame->firstCursorPosition();
    removeMessage(old);
    return insertMessage(message, at, true);
}

void CMessageItemsDocument::updateMessage(const CMessageItemIndex& old, const CIncidentCommunication& message)
{
    if (!old.isValid())
        return;
    QTextCursor at = old.frame->firstCursorPosition();
    at.movePosition(QTextCursor::PreviousCharacter);
    insertMessage(message, at, true);
    removeMessage(old);
}

void CMessageItemsDocument::removeMessage(const CMessageItemIndex& index)
{
    if (!index.isValid())
        return;
    // A cursor made from a block and moved inside an edit block asks nothing of the layout, which may not
    // have seen the document yet.
    const int start = index.frame->firstPosition() - 1;
    QTextCursor cursor(QTextDocument::findBlock(start));
    CFrameTreeSplicer frameTree(this);
    cursor.beginEditBlock();
    cursor.setPosition(start);
    cursor.setPosition(index.frame->lastPosition(), QTextCursor::KeepAnchor);
    cursor.deleteChar();
    frameTree.detached();
    m_register.forget(index);
    cursor.endEditBlock();
}

CMessageItemIndex CMessageItemsDocument::messageIndex(const QString& id) const
{
    return m_register.find(id);
}

CMessageItemIndex CMessageItemsDocument::findOlderVersion(const CIncidentCommunication& message) const
{
    return m_register.olderVersion(message);
}

void CMessageItemsDocument::updatePartyNames(std::function<WatcherAliases(const QString& authorId)> aliasesOf)
{
    if (!aliasesOf)
        return;
    QList<CMessageItemIndex> renewed;
    const QList<CMessageItemIndex> registered = m_register.all();
    for (const CMessageItemIndex& index : registered) {
        if (index.message.nameKnown)
            continue;
        const WatcherAliases aliases = aliasesOf(index.message.senderId);
        if (!aliases.isValid())
            continue;
        CIncidentCommunication named = index.message;
        named.deducePartyName(aliases);
        if (!index.isValid())
            continue;
        const QTextCursor at = index.frame->firstCursorPosition();
        removeMessage(index);
        renewed.append(insertMessage(named, at, false));
    }
    for (const CMessageItemIndex& index : std::as_const(renewed)) {
        if (index.isValid() && !index.message.id.isEmpty())
            m_register.add(index);
    }
    aliasesOf = nullptr;
}

QTextCursor CMessageItemsDocument::endCursor()
{
    return CMessageGroups::endCursor(this);
}

QRectF CMessageItemsDocument::frameRect(const CMessageItemIndex& index) const
{
    if (!index.isValid())
        return {};
    return documentLayout()->frameBoundingRect(index.frame);
}

QRectF CMessageItemsDocument::anchorRect(const QString& href) const
{
    const QTextBlock block = findBlockWithAnchor(href);
    if (!block.isValid())
        return {};
    return documentLayout()->blockBoundingRect(block);
}

QRectF CMessageItemsDocument::attachmentRect(const QString& attachmentId) const
{
    QTextBlock block = findAttachmentLinkBlock(attachmentId);
    if (!block.isValid()) {
        // A tile that became a thumbnail: the picture carries the link.
        const auto showsThumbnail = [&](const QTextBlock& candidate) {
            for (auto it = candidate.begin(); !it.atEnd(); ++it) {
                const QString href = it.fragment().charFormat().anchorHref();
                if (newsReader::isAttachLink(href) && newsReader::attachmentIdFromLink(href) == attachmentId)
                    return true;
            }
            return false;
        };
        block = findBlock(m_register.holderOf(attachmentId).frame, kBubbleColumn, showsThumbnail);
    }
    return block.isValid() ? documentLayout()->blockBoundingRect(block) : QRectF();
}

// --- delivery states ---------------------------------------------------------------------------------------

void CMessageItemsDocument::setDeliveryStatus(const CMessageItemIndex& index, DeliveryStatus status,
                                              const QString& sendAgainLink)
{
    if (!index.isValid())
        return;
    setDeliveryStatusForFrame(index.frame, status, sendAgainLink);
}

void CMessageItemsDocument::setDeliveryStatusForFrame(QTextTable* table, DeliveryStatus status,
                                                      const QString& sendAgainLink)
{
    const QTextBlock footer = findBlock(table, kBubbleColumn, [](const QTextBlock& block) {
        const CBlockIdentification* id = identificationOf(block);
        return id && id->kind == CBlockIdentification::MessageFooter;
    });
    if (footer.isValid()) {
        // From pending to delivered the mark changes in place, without laying the thread out again.
        replaceLastCharacter(footer, deliveryImage(status));
        const bool noted = footer.text().contains(QChar::LineSeparator);
        if (noted || status == DeliveryFailed) {
            // Moved inside an edit block, so that the cursor does not ask the layout where it stands.
            QTextCursor cursor(footer);
            cursor.beginEditBlock();
            writeNotSentNote(cursor, footer, status == DeliveryFailed, sendAgainLink);
            cursor.endEditBlock();
        }
    }
    // The failure tint deliberately outlives later states: it goes only when the message's table is rebuilt.
    if (status == DeliveryFailed) {
        QTextTableFormat format = table->format();
        format.setBackground(hostColor(clrFailureTint));
        table->setFormat(format);
    }
}

// The note is the footer's first line, ended by a line break inside the block: the footer stays one tagged
// block whose last character is the status image, and the note never runs on into the time.
void CMessageItemsDocument::writeNotSentNote(QTextCursor& cursor, const QTextBlock& footer, bool failed,
                                             const QString& link)
{
    const int lineEnd = int(footer.text().indexOf(QChar::LineSeparator));
    if (lineEnd >= 0) {
        cursor.setPosition(footer.position());
        cursor.setPosition(footer.position() + lineEnd + 1, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
    }
    if (!failed)
        return;
    cursor.setPosition(footer.position());
    QTextCharFormat note = smallSecondaryFormat();
    note.setFontWeight(kBoldWeight);
    note.setForeground(hostColor(clrWindowText));
    cursor.insertText(QObject::tr("Not sent"), note);
    if (!link.isEmpty()) {
        cursor.insertText(QStringLiteral(" \u00b7 "), smallSecondaryFormat());
        QTextCharFormat anchor = note;
        anchor.setAnchor(true);
        anchor.setAnchorHref(link);
        anchor.setFontUnderline(true);
        anchor.setForeground(hostColor(clrLink));
        cursor.insertText(QObject::tr("Send again"), anchor);
    }
    cursor.insertText(QString(QChar::LineSeparator), smallSecondaryFormat());
}

QTextImageFormat CMessageItemsDocument::deliveryImage(DeliveryStatus status)
{
    QString name;
    switch (status) {
    case NotDelivered:
        name = NotDeliveredImage;
        break;
    case Delivered:
        name = DeliveredImage;
        break;
    case DeliveryFailed:
        name = DeliveryFailedImage;
        break;
    }
    QTextImageFormat format;
    format.setVerticalAlignment(QTextCharFormat::AlignBaseline);
    format.setWidth(kStatusImageSize);
    format.setHeight(kStatusImageSize);
    format.setName(name);
    return format;
}

// --- attachment tiles --------------------------------------------------------------------------------------

QString CMessageItemsDocument::makeProgressImage(int percent, const QString& fileName, bool cancellable)
{
    const QString extension = getFileNameExtension(fileName, false);
    const QString name = percent < kComplete
                             ? QStringLiteral("progress%1-%2")
                                   .arg(percent)
                                   .arg(cancellable ? QStringLiteral("cancellable") : extension)
                             : extension;
    if (hasImage(name))
        return name;

    // Drawn in units of the ring's size on a pixmap of the view's pixel density: sharp on every screen, and
    // the same size in the layout as the icon it replaces.
    const QRectF area(0, 0, kRingSize, kRingSize);
    QPixmap ring((area.size() * m_pixelRatio).toSize());
    ring.setDevicePixelRatio(m_pixelRatio);
    ring.fill(Qt::transparent);
    if (percent < kComplete) {
        QPainter painter(&ring);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setPen(
            QPen(QBrush(hostColor(clrAccent)), kRingPenWidth, Qt::SolidLine, Qt::RoundCap, Qt::BevelJoin));
        const QRectF bounds = area.adjusted(kRingInset, kRingInset, -kRingInset, -kRingInset);
        painter.drawArc(bounds, kRingStartAngle, int(percent * -kSixteenthsPerTurn / 100.0));
        if (cancellable) {
            painter.drawPixmap(area.toRect(),
                               qtHelpers::images::pixmap(QStringLiteral("ico-stop-download"), -1, true));
        } else {
            const QImage source = qvariant_cast<QImage>(resource(ImageResource, QUrl(extension)));
            const int iconPixels = qRound(kRingIconSize * m_pixelRatio);
            QImage icon = source.isNull() ? source
                                          : source.scaled(iconPixels, iconPixels, Qt::KeepAspectRatio,
                                                          Qt::SmoothTransformation);
            if (!icon.isNull()) {
                icon.setDevicePixelRatio(m_pixelRatio);
                const QSizeF iconSize = icon.deviceIndependentSize();
                painter.drawImage(QPointF(kRingSize / 2.0 - iconSize.width() / 2.0,
                                          kRingSize / 2.0 - iconSize.height() / 2.0),
                                  icon);
            }
        }
    }
    QImage ringImage = ring.toImage();
    ringImage.setDevicePixelRatio(m_pixelRatio);
    addResource(ImageResource, QUrl(name), ringImage);
    return name;
}

void CMessageItemsDocument::setDevicePixelRatio(qreal ratio)
{
    if (ratio > 0)
        m_pixelRatio = ratio;
}

// Puts `image` in place of the block's last character (its icon or mark). All of it happens inside an edit
// block: a cursor moved outside one asks the layout where it stands, which lays out everything above it.
void CMessageItemsDocument::replaceLastCharacter(const QTextBlock& block, const QTextImageFormat& image)
{
    const int at = block.position() + block.length() - 2;
    if (at < block.position())
        return;
    QTextCharFormat shown;
    for (auto it = block.begin(); !it.atEnd(); ++it)
        shown = it.fragment().charFormat();
    // A picture of the same size takes the old one's place without moving a line.
    auto* layout = dynamic_cast<newsReader::QTextDocumentLayout*>(documentLayout());
    const bool sameSize = layout && shown.isImageFormat() &&
                          layout->imageHandler()->intrinsicSize(this, at, shown) ==
                              layout->imageHandler()->intrinsicSize(this, at, image);
    const auto swap = [&] {
        QTextCursor cursor(block);
        cursor.beginEditBlock();
        cursor.setPosition(at);
        cursor.setPosition(at + 1, QTextCursor::KeepAnchor);
        if (sameSize)
            cursor.setCharFormat(image);
        else
            cursor.insertImage(image);
        cursor.endEditBlock();
    };
    if (!sameSize || !layout->changeInPlace(swap))
        swap();
}

void CMessageItemsDocument::setAttachProgress(const QString& attachmentId, int percent)
{
    const QTextBlock block = findAttachmentIconBlock(attachmentId);
    const CBlockIdentification* id = identificationOf(block);
    if (!block.isValid() || !id)
        return;
    const CIncidentAttachment attachment = id->attachment;
    QTextImageFormat format;
    format.setName(makeProgressImage(percent, attachment.fileName, true));
    if (percent < kComplete) {
        format.setAnchor(true);
        format.setAnchorHref(newsReader::abortLink(attachment));
    }
    replaceLastCharacter(block, format);
}

void CMessageItemsDocument::setAttachUploadProgress(const CMessageItemIndex& index,
                                                    const QString& attachmentId, int percent)
{
    if (!index.isValid())
        return;
    const QTextBlock block = findBlock(index.frame, kAvatarColumn, [&](const QTextBlock& candidate) {
        const CBlockIdentification* id = identificationOf(candidate);
        return id && id->kind == CBlockIdentification::AttachmentIcon && id->attachment.id == attachmentId;
    });
    const CBlockIdentification* id = identificationOf(block);
    if (!block.isValid() || !id)
        return;
    QTextImageFormat format;
    format.setName(makeProgressImage(percent, id->attachment.fileName, false));
    replaceLastCharacter(block, format);
}

void CMessageItemsDocument::setContentsThumbnail(const CMessageItemIndex& index, const QString& attachmentId,
                                                 const QPixmap& thumbnail)
{
    QTextTable* table = findAttachmentTable(index, attachmentId);
    if (!table)
        return;
    const QTextBlock link = findBlock(table, 1, [&](const QTextBlock& candidate) {
        const CBlockIdentification* id = identificationOf(candidate);
        return id && id->kind == CBlockIdentification::AttachmentLink && id->attachment.id == attachmentId;
    });
    const CBlockIdentification* id = identificationOf(link);
    if (!link.isValid() || !id)
        return;
    const CIncidentAttachment attachment = id->attachment;

    QTextCursor cursor = table->firstCursorPosition();
    cursor.movePosition(QTextCursor::PreviousCharacter);
    cursor.setPosition(table->lastPosition(), QTextCursor::KeepAnchor);

    const QString name = newsReader::thumbnailName(attachmentId);
    if (!hasImage(name)) {
        // At its own size in device-independent pixels: a thumbnail made for a dense screen stays as large.
        QImage picture = thumbnail.toImage();
        picture.setDevicePixelRatio(thumbnail.devicePixelRatio());
        addResource(ImageResource, QUrl(name), picture);
    }

    // The tile's table goes as a whole: the frame tree stays current, and the document is not rescanned.
    CFrameTreeSplicer frameTree(this);
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    frameTree.detached();
    cursor.insertBlock();
    QTextImageFormat image;
    image.setName(name);
    image.setAnchor(true);
    image.setAnchorHref(newsReader::attachLink(attachment));
    cursor.insertImage(image);
    insertSizeLine(cursor, attachment, kAttachmentBottomMargin);
    // Whatever followed the tile (the body) keeps a line of its own instead of running on after the size.
    if (!cursor.atBlockEnd())
        cursor.insertBlock(QTextBlockFormat(), QTextCharFormat());
    cursor.endEditBlock();
}

// --- searches ----------------------------------------------------------------------------------------------

QTextBlock CMessageItemsDocument::findBlockInFrame(QTextFrame* frame, const BlockPredicate& predicate) const
{
    if (auto* table = qobject_cast<QTextTable*>(frame)) {
        for (int column = 0; column < table->columns(); ++column) {
            const QTextBlock found = findBlock(table, column, predicate);
            if (found.isValid())
                return found;
        }
        return {};
    }
    return findBlockFrom(frame->begin(), predicate);
}

QTextBlock CMessageItemsDocument::findBlockFrom(QTextFrame::iterator it,
                                                const BlockPredicate& predicate) const
{
    for (; !it.atEnd(); ++it) {
        if (QTextFrame* child = it.currentFrame()) {
            const QTextBlock found = findBlockInFrame(child, predicate);
            if (found.isValid())
                return found;
        } else if (predicate(it.currentBlock())) {
            return it.currentBlock();
        }
    }
    return {};
}

QTextBlock CMessageItemsDocument::findBlock(QTextTable* table, int column,
                                            const BlockPredicate& predicate) const
{
    if (!table || column < 0 || column >= table->columns())
        return {};
    const QTextTableCell cell = table->cellAt(0, column);
    return findBlockFrom(cell.begin(), predicate);
}

QTextBlock CMessageItemsDocument::findInDocument(const BlockPredicate& predicate) const
{
    const QList<QTextTable*> tables = CMessageGroups::messages(this);
    for (QTextTable* table : tables) {
        const QTextBlock found = findBlock(table, kBubbleColumn, predicate);
        if (found.isValid())
            return found;
    }
    return {};
}

QTextBlock CMessageItemsDocument::findBlockWithAnchor(const QString& href) const
{
    return findInDocument([&](const QTextBlock& block) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            if (it.fragment().charFormat().anchorHref() == href)
                return true;
        }
        return false;
    });
}

QTextBlock CMessageItemsDocument::findAttachmentLinkBlock(const QString& attachmentId) const
{
    return findAttachmentBlock(attachmentId, CBlockIdentification::AttachmentLink);
}

QTextBlock CMessageItemsDocument::findAttachmentIconBlock(const QString& attachmentId) const
{
    return findAttachmentBlock(attachmentId, CBlockIdentification::AttachmentIcon);
}

QTextBlock CMessageItemsDocument::findAttachmentBlock(const QString& attachmentId, int kind) const
{
    const auto isTileBlock = [&](const QTextBlock& block) {
        const CBlockIdentification* id = identificationOf(block);
        return id && id->kind == kind && id->attachment.id == attachmentId;
    };
    const CMessageItemIndex holder = m_register.holderOf(attachmentId);
    return holder.isValid() ? findBlock(holder.frame, kBubbleColumn, isTileBlock) : QTextBlock();
}

QTextTable* CMessageItemsDocument::findAttachmentTable(const CMessageItemIndex& index,
                                                       const QString& attachmentId) const
{
    if (!index.isValid())
        return nullptr;
    const QTextTableCell bubble = index.frame->cellAt(0, kBubbleColumn);
    const QList<QTextFrame*> children = index.frame->childFrames();
    for (QTextFrame* child : children) {
        if (index.frame->cellAt(child->firstPosition()) != bubble)
            continue;
        if (child->property(kAttachmentTableProperty).toString() == attachmentId)
            return qobject_cast<QTextTable*>(child);
    }
    return nullptr;
}
