// The thread document's structure, register, replacement semantics and bad input.
#include "HostTestMain.h"

#include "CBlockIdentification.h"
#include "CMessageBody.h"
#include "CMessageGroups.h"
#include "CMessageItemsDocument.h"
#include "MessageFormatProperties.h"
#include "WatcherAliases.h"

#include <QSignalSpy>
#include <QTextBlock>
#include <QTextTable>

using namespace newsReader::MessageFormatProperties;

class TestMessageItemsDocument : public QObject
{
    Q_OBJECT

    static CIncidentCommunication message(const QString& id, bool other = true, const QString& text = "hello")
    {
        CIncidentCommunication m;
        m.id = id;
        m.versionKey = id;
        m.fromOtherParty = other;
        m.senderName = other ? "Anna" : "";
        m.nameColor = QColor("#3a7bd5");
        m.nameKnown = true;
        m.text = text;
        m.time = QDateTime(QDate(2024, 5, 6), QTime(7, 8));
        return m;
    }

    static QList<QTextTable*> messageTables(CMessageItemsDocument& doc)
    {
        return CMessageGroups::messages(&doc);
    }

    static QString bubbleText(QTextTable* table)
    {
        const QTextTableCell cell = table->cellAt(0, 1);
        QTextCursor c(table->document());
        c.setPosition(cell.firstPosition());
        c.setPosition(cell.lastPosition(), QTextCursor::KeepAnchor);
        return c.selectedText();
    }

private slots:
    void buildsTheOtherPartysBubbleOnTheLeft()
    {
        CMessageItemsDocument doc;
        QSignalSpy changed(&doc, &QTextDocument::contentsChanged);
        const CMessageItemIndex index = doc.appendMessage(message("m1", true));
        QVERIFY(index.isValid());
        QVERIFY(changed.count() >= 1);
        QCOMPARE(index.frame->format().alignment() & Qt::AlignHorizontal_Mask, Qt::AlignLeft);
        const QTextCharFormat image =
            index.frame->cellAt(0, 0).firstCursorPosition().block().begin().fragment().charFormat();
        QCOMPARE(image.toImageFormat().name(), QStringLiteral("AvatarSingle"));
        QCOMPARE(image.colorProperty(TintColor), QColor("#3a7bd5"));
        const QTextCharFormat bubble = index.frame->cellAt(0, 1).format();
        QCOMPARE(bubble.background().color(), CVantrelApp::GetColor(clrBubbleOther));
        QCOMPARE(bubble.doubleProperty(BottomLeftRadius), 0.0);
        const QTextBlock author = index.frame->cellAt(0, 1).firstCursorPosition().block();
        QCOMPARE(author.text(), QStringLiteral("Anna"));
        QCOMPARE(author.begin().fragment().charFormat().fontWeight(), 700);
        QVERIFY(!bubbleText(index.frame).contains(QChar::ObjectReplacementCharacter)); // no status image
    }

    void buildsAnOwnBubbleOnTheRightWithItsStatus()
    {
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message("m1", false));
        QCOMPARE(index.frame->format().alignment() & Qt::AlignHorizontal_Mask, Qt::AlignRight);
        QCOMPARE(index.frame->cellAt(0, 0).firstCursorPosition().block().length(), 1); // empty avatar cell
        QCOMPARE(index.frame->cellAt(0, 1).format().background().color(),
                 CVantrelApp::GetColor(clrBubbleOwn));
        const QTextBlock footer = index.frame->cellAt(0, 1).lastCursorPosition().block();
        auto* tag = dynamic_cast<CBlockIdentification*>(footer.userData());
        QVERIFY(tag);
        QCOMPARE(tag->kind, qint32(CBlockIdentification::MessageFooter));
        QVERIFY(
            footer.text().startsWith(QLocale::system().toString(message("m1").time, QLocale::LongFormat)));
        QVERIFY(footer.text().endsWith(QStringLiteral("  ") + QChar::ObjectReplacementCharacter));
    }

    void marksEditedAndDeletedMessages()
    {
        CMessageItemsDocument doc;
        CIncidentCommunication edited = message("e", true, "body text");
        edited.editVersion = 2;
        CIncidentCommunication deleted = message("d", true, "secret body");
        deleted.deleted = true;
        deleted.attachments << CIncidentAttachment{"a1", "f.pdf", 10, {}, {}, false};
        CIncidentCommunication plain = message("p");
        plain.editVersion = 1;
        QVERIFY(bubbleText(doc.appendMessage(edited).frame).contains(" (edited)"));
        QVERIFY(!bubbleText(doc.appendMessage(plain).frame).contains("(edited)"));
        const QString text = bubbleText(doc.appendMessage(deleted).frame);
        QVERIFY(text.contains("Message is deleted"));
        QVERIFY(!text.contains("secret body"));
        QVERIFY(text.contains("f.pdf"));
    }

    void replaceKeepsThePlaceAndUpdateDropsARegisteredId()
    {
        CMessageItemsDocument doc;
        doc.appendMessage(message("a", true, "first"));
        const CMessageItemIndex b = doc.appendMessage(message("b", true, "second"));
        doc.appendMessage(message("c", true, "third"));
        const CMessageItemIndex b2 = doc.replaceMessage(b, message("b", true, "second v2"));
        QVERIFY(b2.isValid());
        QVERIFY(b.frame.isNull());
        QList<QTextTable*> tables = messageTables(doc);
        QCOMPARE(tables.size(), 3);
        QVERIFY(bubbleText(tables.at(1)).contains("second v2"));

        // Same id again: the insertion is refused and the old table still goes.
        doc.updateMessage(b2, message("b", true, "second v3"));
        tables = messageTables(doc);
        QCOMPARE(tables.size(), 2);
        QVERIFY(bubbleText(tables.at(0)).contains("first"));
        QVERIFY(bubbleText(tables.at(1)).contains("third"));
        QVERIFY(!doc.messageIndex("b").isValid());

        // A locally built, unregistered message is put in place by the server's version.
        const CMessageItemIndex local =
            doc.insertMessage(message("", false, "local"), doc.endCursor(), false);
        doc.updateMessage(local, message("x", false, "server"));
        tables = messageTables(doc);
        QCOMPARE(tables.size(), 3);
        QVERIFY(bubbleText(tables.at(2)).contains("server"));
        QVERIFY(doc.messageIndex("x").isValid());

        QVERIFY(doc.replaceMessage(CMessageItemIndex{}, message("z", true, "appended")).isValid());
        QVERIFY(bubbleText(messageTables(doc).constLast()).contains("appended"));
    }

    void decidesHtmlByAClosedElement_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<bool>("html");
        QTest::newRow("bold") << "a <b>word</b> here" << true;
        QTest::newRow("lone br") << "line<br>line" << false;
        QTest::newRow("closed on the next line") << "<b>a\nb</b>" << false;
        QTest::newRow("attributes across lines") << "<p\nclass=x>t</p>" << true;
        QTest::newRow("different case") << "<b>x</B>" << false;
        QTest::newRow("nested") << "<div><span>x</span>" << true;
    }
    void decidesHtmlByAClosedElement()
    {
        QFETCH(QString, body);
        QFETCH(bool, html);
        QCOMPARE(CMessageItemsDocument::isHtmlBody(body), html);
    }

    // Bodies whose size or shape would take the layout longer than a moment: shown shortened with a link to
    // the whole text, or as plain text; never lost, and a later version replaces them as usual.
    void bodiesTooLongOrTooComplexAreShownShortenedOrPlain_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<bool>("shortened");
        QTest::addColumn<bool>("rich");
        const QString paragraph = QStringLiteral("Some **bold** words in a paragraph.\n\n");
        QTest::newRow("long markdown") << paragraph.repeated(3000) << true << true;
        QTest::newRow("one long word") << QString(300000, QLatin1Char('w')) << true << false;
        QTest::newRow("exactly the longest body shown whole")
            << QString(CMessageBody::MaxCharacters, QLatin1Char('w')) << false << false;
        QTest::newRow("nested tables")
            << QStringLiteral("<table><tr><td>").repeated(20) + QStringLiteral("deep") +
                   QStringLiteral("</td></tr></table>").repeated(20)
            << false << false;
        QTest::newRow("many pictures")
            << QStringLiteral("<p><img src=\"missing.png\"> <b>x</b></p>").repeated(300) << false << false;
    }

    void bodiesTooLongOrTooComplexAreShownShortenedOrPlain()
    {
        QFETCH(QString, body);
        QFETCH(bool, shortened);
        QFETCH(bool, rich);
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message("m1", true, body));
        QVERIFY(index.isValid());
        QCOMPARE(doc.messageIndex("m1").message.text, body);

        bool bold = false;
        bool note = false;
        int pictures = 0;
        int tables = 0;
        for (QTextBlock block = doc.begin(); block.isValid(); block = block.next()) {
            for (auto it = block.begin(); !it.atEnd(); ++it) {
                const QTextCharFormat format = it.fragment().charFormat();
                bold |= format.fontWeight() >= QFont::Bold && it.fragment().text() != QStringLiteral("Anna");
                note |= CMessageBody::messageIdFromWholeTextLink(format.anchorHref()) == QStringLiteral("m1");
                pictures +=
                    format.isImageFormat() && format.toImageFormat().name() != QStringLiteral("AvatarSingle");
            }
        }
        for (QTextFrame* frame : index.frame->childFrames())
            tables += qobject_cast<QTextTable*>(frame) != nullptr;
        QCOMPARE(note, shortened);
        QVERIFY(doc.toPlainText().size() <= CMessageBody::MaxCharacters + 500);
        if (!rich) {
            QVERIFY(!bold);
            QCOMPARE(pictures, 0);
            QCOMPARE(tables, 0);
        } else {
            QVERIFY(bold);
        }

        // A later version replaces it as usual.
        CIncidentCommunication edited = message("m1", true, QStringLiteral("short"));
        edited.editVersion = 2;
        doc.replaceMessage(doc.messageIndex("m1"), edited);
        QVERIFY(bubbleText(messageTables(doc).constFirst()).contains(QStringLiteral("short")));
        QCOMPARE(messageTables(doc).size(), 1);
    }

    void controlCharactersShowAsReplacementCharacters()
    {
        CMessageItemsDocument doc;
        doc.appendMessage(message("m1", true, QStringLiteral("a%1b%2c\tend").arg(QChar(0)).arg(QChar(0x1b))));
        const QString shown = doc.toPlainText();
        QVERIFY(!shown.contains(QChar(0)) && !shown.contains(QChar(0x1b)));
        QVERIFY(shown.contains(QStringLiteral("a\uFFFDb\uFFFDc\tend")));
    }
};

HOST_TEST_MAIN(TestMessageItemsDocument)
#include "tst_messageitemsdocument.moc"
