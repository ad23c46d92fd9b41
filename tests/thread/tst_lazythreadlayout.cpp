// Building and first painting of long threads: the frame tree kept current while appending, layout deferred
// while the document has no width, and a first paint that neither lays out the rest nor paints differently.
#include "HostTestMain.h"

#include "AttachmentLinks.h"
#include "CMessageGroups.h"
#include "CMessageItemsDocument.h"
#include "QTextDocumentLayout.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QtGui/private/qtextdocument_p.h>

#include <functional>

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
        // Every body starts with its message's id, so that a plain walk of the document can tell them apart.
        m.text = i % 3 == 0
                     ? QStringLiteral("<p>#%1 Some <b>HTML</b> text</p>").arg(m.id)
                     : QStringLiteral("#%1\n\n| a | b |\n|---|---|\n| 1 | 2 |\n\n- one\n- two").arg(m.id);
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
    // Steps: "append N", "prepend N" (messages numbered on from the last one made), "replace I",
    // "remove I", "thumbnail I" (of message I's file), "batch" (the rest in one edit block, as live updates
    // arrive), "reload N" (cleared and filled anew).
    void indexesAgreeWithAPlainWalkOfTheDocument_data()
    {
        QTest::addColumn<QStringList>("steps");
        QTest::newRow("appended past a section") << QStringList{"append 1100"};
        QTest::newRow("prepended past groups and a section") << QStringList{"append 40", "prepend 1050"};
        QTest::newRow("replaced and removed")
            << QStringList{"append 70",  "replace 4", "remove 9", "remove 31",
                           "replace 32", "remove 0",  "append 3", "replace 69"};
        QTest::newRow("in one edit block") << QStringList{"append 33", "batch",     "remove 9", "append 2",
                                                          "replace 5", "prepend 3", "remove 33"};
        QTest::newRow("thumbnails") << QStringList{"append 40",  "thumbnail 1",  "thumbnail 21",
                                                   "replace 21", "thumbnail 37", "remove 37"};
        QTest::newRow("reloaded") << QStringList{"append 50", "remove 3", "reload 45", "prepend 2"};
    }
    void indexesAgreeWithAPlainWalkOfTheDocument()
    {
        QFETCH(QStringList, steps);
        CMessageItemsDocument doc;
        QStringList shown; // ids in the order the document should show them
        int made = 0;
        QTextCursor batch(&doc);
        for (const QString& step : std::as_const(steps)) {
            const QString verb = step.section(u' ', 0, 0);
            const int n = step.section(u' ', 1, 1).toInt();
            const QString id = QStringLiteral("m%1").arg(n);
            if (verb == "append" || verb == "reload") {
                if (verb == "reload") {
                    doc.clear();
                    shown.clear();
                }
                for (int i = 0; i < n; ++i, ++made) {
                    doc.appendMessage(message(made));
                    shown << message(made).id;
                }
            } else if (verb == "prepend") {
                for (int i = 0; i < n; ++i, ++made) {
                    doc.prependMessage(message(made));
                    shown.prepend(message(made).id);
                }
            } else if (verb == "replace") {
                CIncidentCommunication edited = message(n);
                edited.id += "-v2";
                edited.text.replace(QStringLiteral("#%1").arg(id), QStringLiteral("#%1").arg(edited.id));
                doc.replaceMessage(doc.messageIndex(id), edited);
                shown.replace(shown.indexOf(id), edited.id);
            } else if (verb == "remove") {
                doc.removeMessage(doc.messageIndex(id));
                shown.removeOne(id);
            } else if (verb == "thumbnail") {
                QPixmap picture(60, 40);
                picture.fill(Qt::darkCyan);
                doc.setContentsThumbnail(doc.messageIndex(id), id + "-a", picture);
            } else if (verb == "batch") {
                batch.beginEditBlock();
            }
        }
        if (QTextDocumentPrivate::get(&doc)->isInEditBlock())
            batch.endEditBlock();
        doc.setTextWidth(kWidth);
        doc.documentLayout()->documentSize();

        // The plain walk: every table that shows a message, found by going through all frames.
        QList<QTextTable*> walked;
        const std::function<void(QTextFrame*)> walk = [&](QTextFrame* frame) {
            for (QTextFrame* child : frame->childFrames()) {
                auto* table = qobject_cast<QTextTable*>(child);
                if (table && table->columns() == 2)
                    walked << table;
                else if (!table)
                    walk(child);
            }
        };
        walk(doc.rootFrame());
        QStringList walkedIds;
        for (QTextTable* table : std::as_const(walked)) {
            QTextCursor cell(table->cellAt(0, 1).firstCursorPosition());
            cell.setPosition(table->cellAt(0, 1).lastPosition(), QTextCursor::KeepAnchor);
            const QString body = cell.selectedText();
            const qsizetype mark = body.indexOf(u'#');
            walkedIds << body.mid(mark + 1).section(QRegularExpression("[^A-Za-z0-9-]"), 0, 0);
        }
        QCOMPARE(walkedIds, shown);
        QCOMPARE(CMessageGroups::messages(&doc), walked);
        QCOMPARE(doc.firstMessageFrame(), walked.value(0));

        for (qsizetype i = 0; i < walked.size(); ++i) {
            const CMessageItemIndex index = doc.messageIndex(shown.at(i));
            QCOMPARE(index.frame.data(), walked.at(i));
            // The frames that group messages take no room: each message starts where the one above ends.
            const QRectF outline = layoutOf(doc)->tableBoundingRect(walked.at(i));
            QCOMPARE(outline.top(), i == 0 ? doc.documentMargin()
                                           : layoutOf(doc)->tableBoundingRect(walked.at(i - 1)).bottom());
            // A tile is found where a walk of the message's blocks finds its link.
            for (const CIncidentAttachment& attachment : index.message.attachments) {
                QRectF expected;
                for (QTextBlock block = doc.begin(); block.isValid() && expected.isNull();
                     block = block.next()) {
                    for (auto it = block.begin(); !it.atEnd(); ++it) {
                        if (newsReader::attachmentIdFromLink(it.fragment().charFormat().anchorHref()) ==
                            attachment.id)
                            expected = doc.documentLayout()->blockBoundingRect(block);
                    }
                }
                QCOMPARE(doc.attachmentRect(attachment.id), expected);
            }
        }

        // Inserting and removing a table makes the document rebuild its whole tree from the text: the tree
        // kept current through the changes is the same.
        const QStringList kept = frameTree(doc.rootFrame());
        QTextCursor cursor(doc.lastBlock());
        QTextTable* scratch = cursor.insertTable(1, 1);
        cursor.setPosition(scratch->firstPosition() - 1);
        cursor.setPosition(scratch->lastPosition() + 1, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
        QCOMPARE(frameTree(doc.rootFrame()), kept);
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
