// Building and first painting of long threads: the frame tree kept current while appending, layout deferred
// while the document has no width, and a first paint that neither lays out the rest nor paints differently.
#include "HostTestMain.h"

#include "CMessageGroups.h"
#include "CMessageItemsDocument.h"
#include "QTextDocumentLayout.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QSignalSpy>

class TestLazyThreadLayout : public QObject
{
    Q_OBJECT

    static constexpr int kLongThread = 300;
    static constexpr qreal kWidth = 600.0;
    static constexpr int kViewportHeight = 700;
    static constexpr int kComplete = 100;

    static CIncidentCommunication message(int i)
    {
        CIncidentCommunication m;
        m.id = QStringLiteral("m%1").arg(i);
        m.fromOtherParty = i % 2 == 0;
        m.senderName = m.fromOtherParty ? "Anna Support" : "Me";
        m.nameColor = QColor("#3a7bd5");
        m.text = i % 3 == 0 ? QStringLiteral("<p>Some <b>HTML</b> text</p>")
                            : QStringLiteral("| a | b |\n|---|---|\n| 1 | 2 |\n\n- one\n- two");
        if (i % 4 == 1) {
            CIncidentAttachment a;
            a.id = m.id + "-a";
            a.fileName = "report.pdf";
            a.size = 1234;
            m.attachments << a;
        }
        m.time = QDateTime(QDate(2024, 1, 2), QTime(3, 4));
        return m;
    }

    static void fill(CMessageItemsDocument& doc, int count)
    {
        for (int i = 0; i < count; ++i) {
            const CMessageItemIndex index = doc.appendMessage(message(i));
            if (i % 5 == 3)
                doc.setDeliveryStatus(index, CMessageItemsDocument::DeliveryFailed);
        }
    }

    static QImage paintViewport(QTextDocument& doc)
    {
        QImage image(int(kWidth), kViewportHeight, QImage::Format_ARGB32_Premultiplied);
        image.fill(CVantrelApp::GetColor(clrThreadBackground));
        QPainter painter(&image);
        QAbstractTextDocumentLayout::PaintContext context;
        context.clip = QRectF(0, 0, kWidth, kViewportHeight);
        painter.setClipRect(context.clip);
        doc.documentLayout()->draw(&painter, context);
        return image;
    }

    // Every frame with its parent and children, as the document reports them.
    static QStringList frameTree(QTextFrame* frame)
    {
        QStringList lines;
        QStringList children;
        for (QTextFrame* child : frame->childFrames()) {
            // A child that does not name this frame as its parent shows up as a difference.
            children << QStringLiteral("%1%2")
                            .arg(child->firstPosition())
                            .arg(child->parentFrame() == frame ? "" : "?");
        }
        lines << QStringLiteral("%1-%2: %3")
                     .arg(frame->firstPosition())
                     .arg(frame->lastPosition())
                     .arg(children.join(u' '));
        for (QTextFrame* child : frame->childFrames())
            lines << frameTree(child);
        return lines;
    }

    static newsReader::QTextDocumentLayout* layoutOf(QTextDocument& doc)
    {
        return static_cast<newsReader::QTextDocumentLayout*>(doc.documentLayout());
    }

private slots:
    void appendedMessagesAreLinkedIntoTheFrameTreeAsAFullRescanWouldLinkThem()
    {
        CMessageItemsDocument doc;
        fill(doc, 20);
        doc.replaceMessage(doc.messageIndex("m4"), message(4));
        doc.appendMessage(message(99));
        // Several changes in one edit block, as live updates arrive.
        QTextCursor batch(&doc);
        batch.beginEditBlock();
        doc.removeMessage(doc.messageIndex("m9"));
        doc.appendMessage(message(100));
        doc.replaceMessage(doc.messageIndex("m5"), message(5));
        batch.endEditBlock();
        const QStringList built = frameTree(doc.rootFrame());
        QCOMPARE(CMessageGroups::messageCount(&doc), 21);

        // Inserting and removing a table makes the document rebuild its whole tree from the text.
        QTextCursor cursor(doc.lastBlock());
        QTextTable* scratch = cursor.insertTable(1, 1);
        cursor.setPosition(scratch->firstPosition() - 1);
        cursor.setPosition(scratch->lastPosition() + 1, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
        QCOMPARE(frameTree(doc.rootFrame()), built);
    }

    void anUnsizedDocumentLaysOutOnlyWhenAskedOrWhenTheEventLoopTurns()
    {
        CMessageItemsDocument doc;
        fill(doc, 3);
        QVERIFY(layoutOf(doc)->layoutPending());
        const QSizeF size = doc.documentLayout()->documentSize();
        QVERIFY(!layoutOf(doc)->layoutPending());
        QVERIFY(size.height() > 0);

        doc.appendMessage(message(3));
        QVERIFY(layoutOf(doc)->layoutPending());
        QTRY_VERIFY(!layoutOf(doc)->layoutPending());
        QVERIFY(layoutOf(doc)->dynamicDocumentSize().height() > size.height());

        CMessageItemsDocument sized;
        sized.setTextWidth(kWidth);
        fill(sized, 3);
        QVERIFY(!layoutOf(sized)->layoutPending());
    }

    void firstPaintOfALongThreadLeavesTheRestUnlaidAndPaintsAsAfterTheLayoutFinished()
    {
        CMessageItemsDocument doc;
        fill(doc, kLongThread);
        doc.setTextWidth(kWidth);
        const QImage first = paintViewport(doc);
        QVERIFY(layoutOf(doc)->layoutStatus() < kComplete);

        // Once finished, the layout asks for the whole area again (its own list numbers replace the
        // toolkit's).
        QSignalSpy repaint(doc.documentLayout(), &QAbstractTextDocumentLayout::update);
        doc.documentLayout()->documentSize(); // finishes the layout
        QVERIFY(std::any_of(repaint.cbegin(), repaint.cend(), [](const QList<QVariant>& arguments) {
            return arguments.first().toRectF().contains(QRectF(0, 0, kWidth, 1e6));
        }));
        QCOMPARE(layoutOf(doc)->layoutStatus(), kComplete);
        const QImage later = paintViewport(doc);
        QCOMPARE(first, later);
        // The viewport shows bubbles (and the failure tint of message m3), not just the page.
        QVERIFY(first.pixelColor(first.width() - 30, 40) != CVantrelApp::GetColor(clrThreadBackground) ||
                first.pixelColor(120, 40) != CVantrelApp::GetColor(clrThreadBackground));
    }
};

HOST_TEST_MAIN(TestLazyThreadLayout)
#include "tst_lazythreadlayout.moc"
