// Painting the thread's bubbles: the layout sampled from rendered pixels, and the delivery states of own
// messages (one status image swapped in place, and the failure tint that stays).
#include "HostTestMain.h"

#include "CMessageItemsDocument.h"
#include "QTextDocumentLayout.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QTextBlock>
#include <QTextList>
#include <QTextTable>

class TestBubblePainting : public QObject
{
    Q_OBJECT

private:
    static CIncidentCommunication message(bool other)
    {
        CIncidentCommunication m;
        m.id = other ? "o" : "s";
        m.fromOtherParty = other;
        m.text = "A line of text that is long enough for a bubble";
        m.time = QDateTime(QDate(2024, 1, 2), QTime(3, 4));
        return m;
    }

    static QImage render(QTextDocument& doc)
    {
        doc.setTextWidth(500);
        const QSize size = doc.documentLayout()->documentSize().toSize() + QSize(10, 10);
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(CVantrelApp::GetColor(clrThreadBackground));
        QPainter painter(&image);
        doc.drawContents(&painter);
        return image;
    }

    static QRectF bubbleRect(CMessageItemsDocument& doc, const CMessageItemIndex& index)
    {
        auto* layout = static_cast<newsReader::QTextDocumentLayout*>(doc.documentLayout());
        return layout->tableCellBoundingRect(index.frame, index.frame->cellAt(0, 1));
    }

    static CIncidentCommunication message(const QString& id, bool other)
    {
        CIncidentCommunication m;
        m.id = id;
        m.fromOtherParty = other;
        m.text = "text";
        m.time = QDateTime(QDate(2024, 5, 6), QTime(7, 8));
        return m;
    }

    static QStringList imagesIn(QTextTable* table)
    {
        QStringList names;
        for (QTextBlock b = table->document()->findBlock(table->firstPosition());
             b.isValid() && b.position() < table->lastPosition(); b = b.next()) {
            for (auto it = b.begin(); !it.atEnd(); ++it)
                if (it.fragment().charFormat().isImageFormat())
                    for (int i = 0; i < it.fragment().length(); ++i)
                        names << it.fragment().charFormat().toImageFormat().name();
        }
        return names;
    }

private slots:
    void roundsEveryCornerButTheOneNextToTheSender_data()
    {
        QTest::addColumn<bool>("other");
        QTest::addColumn<int>("squareCorner"); // 0 top-left, 1 top-right, 2 bottom-right, 3 bottom-left
        QTest::newRow("other party") << true << 3;
        QTest::newRow("own") << false << 2;
    }
    void roundsEveryCornerButTheOneNextToTheSender()
    {
        QFETCH(bool, other);
        QFETCH(int, squareCorner);
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message(other));
        const QImage image = render(doc);
        const QRect bubble = bubbleRect(doc, index).toRect();
        const QColor fill = CVantrelApp::GetColor(other ? clrBubbleOther : clrBubbleOwn);
        QCOMPARE(image.pixelColor(bubble.center()), fill);
        const QPoint corners[] = {bubble.topLeft() + QPoint(1, 1), bubble.topRight() + QPoint(-1, 1),
                                  bubble.bottomRight() + QPoint(-1, -1), bubble.bottomLeft() + QPoint(1, -1)};
        for (int i = 0; i < 4; ++i) {
            if (i == squareCorner)
                QCOMPARE(image.pixelColor(corners[i]), fill);
            else
                QVERIFY2(image.pixelColor(corners[i]) != fill, qPrintable(QString::number(i)));
        }
    }

    void shadowReachesRightAndBelowOnly()
    {
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message(false));
        const QImage image = render(doc);
        const QRectF bubble = bubbleRect(doc, index);
        const QColor page = CVantrelApp::GetColor(clrThreadBackground);
        const int midX = int(bubble.center().x());
        const int midY = int(bubble.center().y());
        QVERIFY(image.pixelColor(int(bubble.right()) + 2, midY) != page);
        QVERIFY(image.pixelColor(midX, int(bubble.bottom()) + 2) != page);
        QCOMPARE(image.pixelColor(int(bubble.right()) + 7, midY), page);
        QCOMPARE(image.pixelColor(midX, int(bubble.bottom()) + 7), page);
        QCOMPARE(image.pixelColor(midX, int(bubble.top()) - 3), page);
        QCOMPARE(image.pixelColor(int(bubble.left()) - 4, midY), page);
    }

    void failureTintLiesBeneathTheRoundedBubble()
    {
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message(false));
        doc.setDeliveryStatus(index, CMessageItemsDocument::DeliveryFailed);
        const QImage image = render(doc);
        const QRect bubble = bubbleRect(doc, index).toRect();
        auto* layout = static_cast<newsReader::QTextDocumentLayout*>(doc.documentLayout());
        const QRectF table = layout->tableBoundingRect(index.frame).adjusted(100, 0, -16, -16);
        // Inside the table's border and beyond the shadow's band the tint shows; the bubble itself is painted
        // over it.
        QCOMPARE(image.pixelColor(int(table.left()) + 1, bubble.center().y()),
                 CVantrelApp::GetColor(clrFailureTint));
        QCOMPARE(image.pixelColor(bubble.center()), CVantrelApp::GetColor(clrBubbleOwn));
        // The shared format collection is restored after painting.
        QCOMPARE(index.frame->format().background().color(), CVantrelApp::GetColor(clrFailureTint));
        QCOMPARE(index.frame->cellAt(0, 1).format().background().color(),
                 CVantrelApp::GetColor(clrBubbleOwn));
    }

    void markdownTablesHaveSingleBordersAndPaddedCells()
    {
        CIncidentCommunication m = message(true);
        m.text = "| A | B |\n|---|---|\n| 1 | 2 |";
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(m);
        const QImage image = render(doc);
        QTextTable* table = nullptr;
        for (QTextFrame* child : index.frame->childFrames())
            table = table ? table : qobject_cast<QTextTable*>(child);
        QVERIFY(table);
        auto* layout = static_cast<newsReader::QTextDocumentLayout*>(doc.documentLayout());
        const QRectF first = layout->tableCellBoundingRect(table, table->cellAt(0, 0));
        const QRectF last = layout->tableCellBoundingRect(table, table->cellAt(0, 1));
        // Just inside the top of the first row: a line where cells meet and at both ends, nothing else.
        const int y = int(first.top()) + 2;
        int lines = 0;
        bool onLine = false;
        for (int x = int(first.left()) - 4; x <= int(last.right()) + 4; ++x) {
            const bool dark = qGray(image.pixel(x, y)) < 200;
            lines += dark && !onLine;
            onLine = dark;
        }
        QCOMPARE(lines, 3);
        // The text keeps its distance from the lines.
        int inkLeft = -1;
        for (int x = int(first.left()) + 2; x < int(first.right()) && inkLeft < 0; ++x) {
            for (int row = int(first.top()) + 2; row < int(first.bottom()) - 2; ++row) {
                if (qGray(image.pixel(x, row)) < 128) {
                    inkLeft = x;
                    break;
                }
            }
        }
        QVERIFY2(inkLeft >= first.left() + 4, qPrintable(QString::number(inkLeft - first.left())));
    }

    void orderedListNumbersSitOnTheBaseline_data()
    {
        QTest::addColumn<QString>("body");
        QTest::newRow("plain item") << "1. Word\n2. Next";
        QTest::newRow("item that starts large")
            << "<ol><li><span style=\"font-size:28pt\">Big</span> word</li></ol>";
    }
    void orderedListNumbersSitOnTheBaseline()
    {
        QFETCH(QString, body);
        CIncidentCommunication m = message(true);
        m.text = body;
        CMessageItemsDocument doc;
        doc.appendMessage(m);
        const QImage image = render(doc);
        QTextBlock item = doc.begin();
        while (item.isValid() && !item.textList())
            item = item.next();
        QVERIFY(item.isValid());
        const QRectF block = doc.documentLayout()->blockBoundingRect(item);
        const QTextLine line = item.layout()->lineAt(0);
        const int baseline = qRound(block.top() + line.y() + line.ascent());
        // The number's ink, left of the item's text and within its first line, ends on the text's baseline.
        const QRectF text = line.naturalTextRect().translated(block.topLeft());
        int inkBottom = -1;
        for (int y = int(block.top() + line.y()); y < int(block.top() + line.y() + line.height()); ++y) {
            for (int x = int(text.left()) - 40; x < int(text.left()) - 1; ++x) {
                if (qGray(image.pixel(x, y)) < 128)
                    inkBottom = y;
            }
        }
        QVERIFY(inkBottom >= 0);
        QVERIFY2(qAbs(inkBottom + 1 - baseline) <= 1,
                 qPrintable(QStringLiteral("ink ends at %1, baseline %2").arg(inkBottom + 1).arg(baseline)));
    }

    void swapsTheSingleStatusImage_data()
    {
        QTest::addColumn<QList<int>>("statuses");
        QTest::addColumn<QString>("image");
        QTest::addColumn<bool>("tinted");
        QTest::addColumn<QString>("note"); // the footer's line above the time
        QTest::newRow("as built") << QList<int>{} << "delivered" << false << "";
        QTest::newRow("pending") << QList<int>{0} << "not-delivered" << false << "";
        QTest::newRow("twice the same") << QList<int>{0, 0} << "not-delivered" << false << "";
        QTest::newRow("failed") << QList<int>{2} << "delivery-failed" << true << "Not sent";
        QTest::newRow("failed twice") << QList<int>{2, 2} << "delivery-failed" << true << "Not sent";
        QTest::newRow("delivered after failing") << QList<int>{2, 1} << "delivered" << true << "";
        QTest::newRow("out of range") << QList<int>{7} << "" << false << "";
    }
    void swapsTheSingleStatusImage()
    {
        QFETCH(QList<int>, statuses);
        QFETCH(QString, image);
        QFETCH(bool, tinted);
        QFETCH(QString, note);
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message("m", false));
        for (int status : statuses)
            doc.setDeliveryStatus(index, CMessageItemsDocument::DeliveryStatus(status));
        QCOMPARE(imagesIn(index.frame), QStringList{image});
        QCOMPARE(index.frame->format().background().color() == CVantrelApp::GetColor(clrFailureTint), tinted);
        QTextImageFormat status;
        const QTextBlock footer = index.frame->cellAt(0, 1).lastCursorPosition().block();
        for (auto it = footer.begin(); !it.atEnd(); ++it)
            status = it.fragment().charFormat().toImageFormat(); // the footer's last fragment
        QVERIFY(footer.text().endsWith(QChar::ObjectReplacementCharacter));
        const QStringList lines = footer.text().split(QChar::LineSeparator);
        QCOMPARE(lines.size(), note.isEmpty() ? 1 : 2);
        QCOMPARE(lines.size() == 2 ? lines.first() : QString(), note);
        QCOMPARE(status.name(), image);
        QCOMPARE(status.width(), 16.0);
        QCOMPARE(status.verticalAlignment(), QTextCharFormat::AlignBaseline);
    }

    void otherPartyGetsOnlyTheTint()
    {
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message("m", true));
        const QString before = doc.toPlainText();
        doc.setDeliveryStatus(index, CMessageItemsDocument::DeliveryFailed);
        QCOMPARE(doc.toPlainText(), before);
        QCOMPARE(imagesIn(index.frame), QStringList{"AvatarSingle"});
        QCOMPARE(index.frame->format().background().color(), CVantrelApp::GetColor(clrFailureTint));
    }
};

HOST_TEST_MAIN(TestBubblePainting)
#include "tst_bubblepainting.moc"
