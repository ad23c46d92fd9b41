// Attachment tiles: icons shared per extension, progress rings, thumbnails.
#include "HostTestMain.h"

#include "AttachmentLinks.h"
#include "CBlockIdentification.h"
#include "CMessageItemsDocument.h"
#include "HostText.h"

#include <QAbstractTextDocumentLayout>
#include <QTextTable>

class TestAttachmentTiles : public QObject
{
    Q_OBJECT

    static CIncidentAttachment attachment(const QString& id, const QString& name)
    {
        CIncidentAttachment a;
        a.id = id;
        a.fileName = name;
        a.size = 2048;
        return a;
    }

    static CIncidentCommunication message(const QList<CIncidentAttachment>& attachments, bool other = true)
    {
        CIncidentCommunication m;
        m.id = "m";
        m.fromOtherParty = other;
        m.text = "see attached";
        m.attachments = attachments;
        return m;
    }

    static QString iconName(const QTextBlock& block)
    {
        QTextCursor c(block);
        c.movePosition(QTextCursor::EndOfBlock);
        c.movePosition(QTextCursor::PreviousCharacter, QTextCursor::KeepAnchor);
        return c.charFormat().toImageFormat().name();
    }
    static QString iconHref(const QTextBlock& block)
    {
        QTextCursor c(block);
        c.movePosition(QTextCursor::EndOfBlock);
        c.movePosition(QTextCursor::PreviousCharacter, QTextCursor::KeepAnchor);
        return c.charFormat().anchorHref();
    }

private slots:
    void buildsTilesWithSharedIconsAndLinks()
    {
        CMessageItemsDocument doc;
        CIncidentAttachment plain = attachment("a3", "notes.txt");
        plain.noLink = true;
        const CMessageItemIndex index =
            doc.appendMessage(message({attachment("a1", "One.PDF"), attachment("a2", "two.pdf"), plain}));
        const QTextBlock link = doc.findAttachmentLinkBlock("a1");
        QVERIFY(link.isValid());
        QCOMPARE(link.text(), QStringLiteral("One.PDF"));
        QCOMPARE(link.begin().fragment().charFormat().anchorHref(),
                 newsReader::attachLink(attachment("a1", "One.PDF")));
        QVERIFY(!doc.findAttachmentLinkBlock("a3").begin().fragment().charFormat().isAnchor());
        QCOMPARE(link.next().text(), GetFormattedSize(2048, 0));
        QCOMPARE(iconName(doc.findAttachmentIconBlock("a1")), QStringLiteral("pdf"));
        QCOMPARE(iconName(doc.findAttachmentIconBlock("a2")), QStringLiteral("pdf"));
        QVERIFY(!doc.resource(QTextDocument::ImageResource, QUrl("pdf")).isNull());

        QTextTable* first = doc.findAttachmentTable(index, "a1");
        QTextTable* second = doc.findAttachmentTable(index, "a2");
        QVERIFY(first && second);
        QCOMPARE(second->format().topMargin(), 0.0);
        QVERIFY(!doc.findAttachmentTable(index, "nope"));
        QVERIFY(!doc.findAttachmentTable(CMessageItemIndex{}, "a1"));
    }

    void progressRingsAreNamedAndShared()
    {
        CMessageItemsDocument doc;
        doc.appendMessage(message({attachment("a1", "a.pdf"), attachment("a2", "b.pdf")}));
        doc.setAttachProgress("a1", 40);
        const QVariant ring = doc.resource(QTextDocument::ImageResource, QUrl("progress40-cancellable"));
        QVERIFY(!ring.isNull());
        doc.setAttachProgress("a2", 40);
        QCOMPARE(doc.resource(QTextDocument::ImageResource, QUrl("progress40-cancellable"))
                     .value<QImage>()
                     .cacheKey(),
                 ring.value<QImage>().cacheKey());
        const QTextBlock icon = doc.findAttachmentIconBlock("a1");
        QCOMPARE(iconName(icon), QStringLiteral("progress40-cancellable"));
        QCOMPARE(iconHref(icon), QStringLiteral("abort://a1"));
        QCOMPARE(icon.length(), 2); // the ring replaced the icon

        doc.setAttachProgress("a1", 100);
        QCOMPARE(iconName(doc.findAttachmentIconBlock("a1")), QStringLiteral("pdf"));
        QVERIFY(iconHref(doc.findAttachmentIconBlock("a1")).isEmpty());

        QCOMPARE(doc.makeProgressImage(50, "c.pdf", false), QStringLiteral("progress50-pdf"));
        QCOMPARE(doc.makeProgressImage(120, "c.pdf", false), QStringLiteral("pdf"));
    }

    void thumbnailReplacesTheTileOnce()
    {
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message({attachment("a#1", "pic.png")}));
        QPixmap thumbnail(60, 40);
        thumbnail.fill(Qt::green);
        doc.setContentsThumbnail(index, "a#1", thumbnail);
        QVERIFY(!doc.findAttachmentTable(index, "a#1"));
        QVERIFY(!doc.findAttachmentLinkBlock("a#1").isValid());
        const QString href = newsReader::attachLink(attachment("a#1", "pic.png"));
        const QTextBlock image = doc.findBlockWithAnchor(href);
        QVERIFY(image.isValid());
        QCOMPARE(image.begin().fragment().charFormat().toImageFormat().name(),
                 QStringLiteral("a#1-thumbnail"));
        QCOMPARE(image.next().text(), GetFormattedSize(2048, 0));
        QVERIFY(image.next().next().text().contains("see attached"));

        const QString after = doc.toHtml();
        doc.setContentsThumbnail(index, "a#1", thumbnail);
        QCOMPARE(doc.toHtml(), after);
    }
};

HOST_TEST_MAIN(TestAttachmentTiles)
#include "tst_attachmenttiles.moc"
