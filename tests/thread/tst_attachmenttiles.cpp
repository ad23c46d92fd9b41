// Attachments in the thread: whatever a tile's id and name, its link gives them back exactly; tiles share
// icons per extension and show progress rings and thumbnails.
#include "HostTestMain.h"

#include "AttachmentLinks.h"
#include "CBlockIdentification.h"
#include "CMessageItemsDocument.h"
#include "HostText.h"

#include <QAbstractTextDocumentLayout>
#include <QTextTable>

using namespace newsReader;

class TestAttachmentTiles : public QObject
{
    Q_OBJECT

private:
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

        // A message shown without being registered (a conversation's opening message has no id of its own)
        // shows a download's progress too, until it goes.
        CIncidentCommunication opening = message({attachment("a4", "d.pdf")});
        opening.id.clear();
        const CMessageItemIndex unregistered = doc.insertMessage(opening, doc.endCursor(), false);
        doc.setAttachProgress("a4", 40);
        const QTextBlock tile = doc.findAttachmentIconBlock("a4");
        QVERIFY(tile.isValid());
        QCOMPARE(iconName(tile), QStringLiteral("progress40-cancellable"));
        QVERIFY(doc.attachmentRect("a4").isValid());
        doc.removeMessage(unregistered);
        doc.setAttachProgress("a4", 60);
        QVERIFY(!doc.findAttachmentIconBlock("a4").isValid());
        QVERIFY(!doc.attachmentRect("a4").isValid());

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
        QVERIFY(image.next().next().text().contains("see attached"));

        const QString after = doc.toHtml();
        doc.setContentsThumbnail(index, "a#1", thumbnail);
        QCOMPARE(doc.toHtml(), after);
    }

    // Whatever the server sends comes back exactly, also after the trip a click takes: the view turns the
    // href into a QUrl, the plugin encodes that fully and reads it.
    void idsAndNamesComeBackExactly_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        const QString plainName = QStringLiteral("f.txt");
        QTest::newRow("number") << "12345" << plainName;
        QTest::newRow("upper case") << "UPPER" << plainName;
        QTest::newRow("user at host") << "user@host" << plainName;
        QTest::newRow("slash") << "a/b" << plainName;
        QTest::newRow("space") << "a b" << plainName;
        QTest::newRow("empty") << "" << plainName;
        QTest::newRow("query and fragment") << "a?name=b#c" << plainName;
        QTest::newRow("percent") << "%41%00" << plainName;
        QTest::newRow("encoded look") << "x--0041" << plainName;
        QTest::newRow("ace") << "xn--nxasmq6b" << plainName;
        QTest::newRow("non-ASCII") << QString::fromUtf8("Ärger-отчёт-报告") << plainName;
        QTest::newRow("lone surrogate") << QString(QChar(0xd800)) << QString(QChar(0xdc00));
        QTest::newRow("noncharacters") << QString(QChar(0x4941)) << QString(2, QChar(0xffff)) + QChar(0xfdd0);
        QTest::newRow("very long") << QString(5000, QLatin1Char('A')) + QStringLiteral("\U0001F600")
                                   << QString(5000, 'n');
        QTest::newRow("ampersand") << "id42"
                                   << "a&b.txt";
        QTest::newRow("NUL") << "id42" << QStringLiteral("a%00b") + QChar(0) + QStringLiteral("c");
        QTest::newRow("specials") << "id42"
                                  << "a=c+d?f;g,h'i(j)[k]{l}!~$@^.txt";
        QTest::newRow("both hostile") << "A&B"
                                      << "&%00%";
    }
    void idsAndNamesComeBackExactly()
    {
        QFETCH(QString, id);
        QFETCH(QString, name);
        const QString href = attachLink(attachment(id, name));
        QVERIFY2(isAttachLink(href), qPrintable(href));
        QVERIFY2(!isAbortLink(href), qPrintable(href));
        for (const QChar c : href)
            QVERIFY2(c.unicode() > 32 && c.unicode() < 127, qPrintable(href));
        const QString clicked = QString::fromUtf8(QUrl(href).toEncoded(QUrl::FullyEncoded));
        for (const QString& link : {href, clicked}) {
            QString readId = "untouched", readName = "untouched";
            QVERIFY(parseAttachLink(link, readId, readName));
            QCOMPARE(readId, id);
            QCOMPARE(readName, name);
            QCOMPARE(attachmentIdFromLink(link), id);
        }
    }
};

HOST_TEST_MAIN(TestAttachmentTiles)
#include "tst_attachmenttiles.moc"
