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
        QCOMPARE(first->format().topMargin(), 7.0);
        QCOMPARE(second->format().topMargin(), 0.0);
        QCOMPARE(first->format().bottomMargin(), 7.0);
        QVERIFY(!doc.findAttachmentTable(index, "nope"));
        QVERIFY(!doc.findAttachmentTable(CMessageItemIndex{}, "a1"));
    }

    void firstTileKeepsItsMarginWithoutAuthor()
    {
        CMessageItemsDocument doc;
        CIncidentCommunication m = message({attachment("a1", "x.zip")});
        m.senderName.clear();
        const CMessageItemIndex index = doc.appendMessage(m);
        QCOMPARE(doc.findAttachmentTable(index, "a1")->format().topMargin(), 7.0);
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

    void ringArcFollowsThePercentage_data()
    {
        QTest::addColumn<qreal>("ratio");
        QTest::newRow("100 %") << 1.0;
        QTest::newRow("200 %") << 2.0;
    }
    void ringArcFollowsThePercentage()
    {
        QFETCH(qreal, ratio);
        CMessageItemsDocument doc;
        doc.setDevicePixelRatio(ratio);
        const QImage zero =
            doc.resource(QTextDocument::ImageResource, QUrl(doc.makeProgressImage(0, "f.zzz", false)))
                .value<QImage>();
        const QImage half =
            doc.resource(QTextDocument::ImageResource, QUrl(doc.makeProgressImage(50, "f.zzz", false)))
                .value<QImage>();
        // As many pixels as the screen shows, in the place of a 32-unit icon.
        QCOMPARE(half.size(), QSize(32, 32) * ratio);
        QCOMPARE(half.deviceIndependentSize(), QSizeF(32, 32));
        const QColor accent = CVantrelApp::GetColor(clrAccent);
        // Clockwise from the top: the right half is drawn, the left half is not.
        QCOMPARE(half.pixelColor(QPoint(30, 16) * ratio).rgb(), accent.rgb());
        QCOMPARE(half.pixelColor(QPoint(2, 16) * ratio).alpha(), 0);
        QCOMPARE(zero.pixelColor(QPoint(30, 16) * ratio).alpha(), 0);
    }

    void uploadProgressFindsNothingInTheAvatarColumn()
    {
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message({attachment("a1", "a.pdf")}, false));
        const QString before = doc.toHtml();
        doc.setAttachUploadProgress(index, "a1", 30);
        QCOMPARE(doc.toHtml(), before);
    }

    void thumbnailReplacesTheTileOnce()
    {
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message({attachment("a#1", "pic.png")}));
        // Made for a screen at 200 %: it keeps its size in the thread.
        QPixmap thumbnail(60, 40);
        thumbnail.setDevicePixelRatio(2.0);
        thumbnail.fill(Qt::green);
        doc.setContentsThumbnail(index, "a#1", thumbnail);
        QCOMPARE(doc.resource(QTextDocument::ImageResource, QUrl("a#1-thumbnail"))
                     .value<QImage>()
                     .deviceIndependentSize(),
                 QSizeF(30, 20));
        QVERIFY(!doc.findAttachmentTable(index, "a#1"));
        QVERIFY(!doc.findAttachmentLinkBlock("a#1").isValid());
        const QString href = newsReader::attachLink(attachment("a#1", "pic.png"));
        const QTextBlock image = doc.findBlockWithAnchor(href);
        QVERIFY(image.isValid());
        QCOMPARE(image.begin().fragment().charFormat().toImageFormat().name(),
                 QStringLiteral("a#1-thumbnail"));
        QCOMPARE(image.next().text(), GetFormattedSize(2048, 0));
        QCOMPARE(image.next().blockFormat().bottomMargin(), 7.0);
        QVERIFY(image.next().next().text().contains("see attached"));

        const QString after = doc.toHtml();
        doc.setContentsThumbnail(index, "a#1", thumbnail);
        QCOMPARE(doc.toHtml(), after);
    }

    // Ids the URL parser reads as one ("x y" and "x%20y", "%41" and "A") each keep their own tile, progress
    // ring and picture, and each picture carries the link of its own attachment.
    void idsTheUrlParserConfusesKeepTheirOwnTiles()
    {
        const QStringList ids = {"x y", "x%20y", "%41", "A", "http://X", "http://x", "user@host", "host"};
        QList<CIncidentAttachment> attachments;
        for (const QString& id : ids)
            attachments << attachment(id, "pic.png");
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message(attachments));
        for (const QString& id : ids) {
            QVERIFY2(doc.attachmentRect(id).isValid(), qPrintable(id));
            doc.setAttachProgress(id, 40);
            QCOMPARE(doc.findBlockWithAnchor(newsReader::abortLink(attachment(id, "pic.png"))),
                     doc.findAttachmentIconBlock(id));
            doc.setAttachProgress(id, 100);
        }
        for (int i = 0; i < ids.size(); ++i) {
            QPixmap thumbnail(8, 8);
            thumbnail.fill(QColor::fromHsv(i * 40, 255, 255));
            doc.setContentsThumbnail(index, ids.at(i), thumbnail);
        }
        for (int i = 0; i < ids.size(); ++i) {
            const QTextBlock image = doc.findBlockWithAnchor(newsReader::attachLink(attachments.at(i)));
            QVERIFY2(image.isValid(), qPrintable(ids.at(i)));
            QCOMPARE(doc.attachmentRect(ids.at(i)), doc.documentLayout()->blockBoundingRect(image));
            const QString name = image.begin().fragment().charFormat().toImageFormat().name();
            const QImage picture = doc.resource(QTextDocument::ImageResource, QUrl(name)).value<QImage>();
            QCOMPARE(picture.pixel(0, 0), QColor::fromHsv(i * 40, 255, 255).rgb());
        }
    }

    void fileNamesWithEverySpecialCharacterBuild()
    {
        CMessageItemsDocument doc;
        const QString name = QString::fromUtf8("<>:\"/\\|?*#%; \t\u00e4\u4e2d\U0001F600.tar.gz");
        const CMessageItemIndex index = doc.appendMessage(message({attachment("s1", name)}));
        QVERIFY(index.isValid());
        QCOMPARE(doc.findAttachmentLinkBlock("s1").text(), name);
        QString id, parsed;
        QVERIFY(newsReader::parseAttachLink(
            doc.findAttachmentLinkBlock("s1").begin().fragment().charFormat().anchorHref(), id, parsed));
        QCOMPARE(parsed, name);
    }
};

HOST_TEST_MAIN(TestAttachmentTiles)
#include "tst_attachmenttiles.moc"
