// The thread document's structure, register, replacement semantics, searches and bad input.
#include "HostTestMain.h"

#include "CBlockIdentification.h"
#include "CMessageBody.h"
#include "CMessageItemsDocument.h"
#include "MessageFormatProperties.h"
#include "WatcherAliases.h"

#include <QRandomGenerator>
#include <QRegularExpression>
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
        QList<QTextTable*> tables;
        for (QTextFrame* f : doc.rootFrame()->childFrames())
            if (auto* t = qobject_cast<QTextTable*>(f))
                tables << t;
        return tables;
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
        const QTextTableFormat tf = index.frame->format();
        QCOMPARE(tf.alignment() & Qt::AlignHorizontal_Mask, Qt::AlignLeft);
        QCOMPARE(tf.leftMargin(), 0.0);
        QCOMPARE(tf.rightMargin(), 100.0);
        QCOMPARE(tf.bottomMargin(), 16.0);
        QCOMPARE(index.frame->rows(), 1);
        QCOMPARE(index.frame->columns(), 2);

        const QTextTableCell avatar = index.frame->cellAt(0, 0);
        QCOMPARE(avatar.format().toTableCellFormat().rightPadding(), 10.0);
        QCOMPARE(avatar.format().verticalAlignment(), QTextCharFormat::AlignBottom);
        const QTextCharFormat image = avatar.firstCursorPosition().block().begin().fragment().charFormat();
        QVERIFY(image.isImageFormat());
        QCOMPARE(image.toImageFormat().name(), QStringLiteral("AvatarSingle"));
        QCOMPARE(image.toImageFormat().width(), 40.0);
        QCOMPARE(image.colorProperty(TintColor), QColor("#3a7bd5"));
        QVERIFY(image.boolProperty(Tint));

        const QTextCharFormat bubble = index.frame->cellAt(0, 1).format();
        QCOMPARE(bubble.background().color(), CVantrelApp::GetColor(clrBubbleOther));
        QCOMPARE(bubble.doubleProperty(TopLeftRadius), 12.0);
        QCOMPARE(bubble.doubleProperty(BottomRightRadius), 12.0);
        QCOMPARE(bubble.doubleProperty(BottomLeftRadius), 0.0);
        QVERIFY(bubble.boolProperty(Shadow));
        QCOMPARE(bubble.toTableCellFormat().leftPadding(), 13.0);
        QCOMPARE(bubble.toTableCellFormat().topPadding(), 7.0);

        const QTextBlock author = index.frame->cellAt(0, 1).firstCursorPosition().block();
        QCOMPARE(author.text(), QStringLiteral("Anna"));
        QCOMPARE(author.blockFormat().bottomMargin(), 7.0);
        QCOMPARE(author.begin().fragment().charFormat().fontWeight(), 700);
        QVERIFY(!bubbleText(index.frame).contains(QChar::ObjectReplacementCharacter)); // no status image
    }

    void buildsAnOwnBubbleOnTheRightWithItsStatus()
    {
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message("m1", false));
        const QTextTableFormat tf = index.frame->format();
        QCOMPARE(tf.alignment() & Qt::AlignHorizontal_Mask, Qt::AlignRight);
        QCOMPARE(tf.leftMargin(), 100.0);
        QCOMPARE(tf.rightMargin(), 16.0);
        QCOMPARE(index.frame->cellAt(0, 0).firstCursorPosition().block().length(), 1); // empty avatar cell
        const QTextCharFormat bubble = index.frame->cellAt(0, 1).format();
        QCOMPARE(bubble.background().color(), CVantrelApp::GetColor(clrBubbleOwn));
        QCOMPARE(bubble.doubleProperty(BottomRightRadius), 0.0);
        QCOMPARE(bubble.doubleProperty(BottomLeftRadius), 12.0);
        const QTextBlock footer = index.frame->cellAt(0, 1).lastCursorPosition().block();
        auto* tag = dynamic_cast<CBlockIdentification*>(footer.userData());
        QVERIFY(tag);
        QCOMPARE(tag->kind, qint32(CBlockIdentification::MessageFooter));
        QVERIFY(
            footer.text().startsWith(QLocale::system().toString(message("m1").time, QLocale::LongFormat)));
        QVERIFY(footer.text().endsWith(QStringLiteral("  ") + QChar::ObjectReplacementCharacter));
        QCOMPARE(footer.blockFormat().alignment() & Qt::AlignHorizontal_Mask, Qt::AlignRight);
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

    void registerRefusesDuplicatesAndIgnoresEmptyIds()
    {
        CMessageItemsDocument doc;
        QVERIFY(doc.appendMessage(message("m1")).isValid());
        const int length = doc.characterCount();
        QVERIFY(!doc.appendMessage(message("m1")).isValid());
        QCOMPARE(doc.characterCount(), length);
        QVERIFY(doc.appendMessage(message("")).isValid());
        QVERIFY(doc.appendMessage(message("")).isValid());
        QCOMPARE(messageTables(doc).size(), 3);
        QVERIFY(!doc.messageIndex("").isValid());
        QVERIFY(doc.messageIndex("m1").isValid());
        doc.clear();
        QVERIFY(!doc.messageIndex("m1").isValid());
        QVERIFY(doc.appendMessage(message("m1")).isValid());
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

    void removeDeletesTheTableAndItsEntry()
    {
        CMessageItemsDocument doc;
        const CMessageItemIndex a = doc.appendMessage(message("a"));
        doc.appendMessage(message("b"));
        doc.removeMessage(a);
        QCOMPARE(messageTables(doc).size(), 1);
        QVERIFY(!doc.messageIndex("a").isValid());
        doc.removeMessage(a); // already gone: nothing happens
        QCOMPARE(messageTables(doc).size(), 1);
    }

    void findsOlderVersionsAndRefreshesUnresolvedNames()
    {
        CMessageItemsDocument doc;
        CIncidentCommunication v1 = message("v1");
        v1.versionKey = "k";
        v1.nameKnown = false;
        v1.senderId = "p7";
        v1.senderName = "p7";
        doc.appendMessage(v1);
        CIncidentCommunication v2 = v1;
        v2.id = "v2";
        v2.editVersion = 2;
        QCOMPARE(doc.findOlderVersion(v2).message.id, QStringLiteral("v1"));
        QVERIFY(!doc.findOlderVersion(v1).isValid());

        doc.updatePartyNames([](const QString& id) {
            WatcherAliases aliases;
            aliases.id = id;
            aliases.displayName = "Resolved Name";
            return aliases;
        });
        const CMessageItemIndex renewed = doc.messageIndex("v1");
        QVERIFY(renewed.isValid());
        QVERIFY(bubbleText(renewed.frame).contains("Resolved Name"));
        QCOMPARE(messageTables(doc).size(), 1);
    }

    void searchesReachIntoNestedTables()
    {
        CMessageItemsDocument doc;
        doc.appendMessage(
            message("a", true,
                    "<table><tr><td>x</td><td><a href=\"https://deep.example\">deep</a></td></tr></table>"));
        const QTextBlock block = doc.findBlockWithAnchor("https://deep.example");
        QVERIFY(block.isValid());
        QCOMPARE(block.text(), QStringLiteral("deep"));
        QVERIFY(!doc.findBlockWithAnchor("https://deep.example/").isValid());
        doc.setTextWidth(400);
        QVERIFY(!doc.anchorRect("https://deep.example").isEmpty());
        QVERIFY(doc.anchorRect("nothing").isEmpty());
    }

    void decidesHtmlByAClosedElement_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<bool>("html");
        QTest::newRow("bold") << "a <b>word</b> here" << true;
        QTest::newRow("lone br") << "line<br>line" << false;
        QTest::newRow("bare brackets") << "1 < 2 > 0" << false;
        QTest::newRow("closed on the next line") << "<b>a\nb</b>" << false;
        QTest::newRow("attributes across lines") << "<p\nclass=x>t</p>" << true;
        QTest::newRow("different case") << "<b>x</B>" << false;
        QTest::newRow("underscore name") << "<a_b>x</a_b>" << false;
        QTest::newRow("nested") << "<div><span>x</span>" << true;
    }
    void decidesHtmlByAClosedElement()
    {
        QFETCH(QString, body);
        QFETCH(bool, html);
        QCOMPARE(CMessageItemsDocument::isHtmlBody(body), html);
    }

    void htmlDecisionAgreesWithTheExpression()
    {
        const QRegularExpression expression(R"(<([A-Za-z][A-Za-z0-9]*)\b[^>]*>(.*?)<\/\1>)");
        const QString alphabet = QStringLiteral("<>/ab1_ \n\r\u00e4");
        QRandomGenerator random(20240506);
        for (int round = 0; round < 20000; ++round) {
            QString body;
            const int length = random.bounded(1, 24);
            for (int i = 0; i < length; ++i)
                body += alphabet.at(random.bounded(alphabet.size()));
            QVERIFY2(CMessageItemsDocument::isHtmlBody(body) == expression.match(body).hasMatch(),
                     qPrintable(body.toUtf8().toPercentEncoding()));
        }
    }

    void survivesHostileBodies_data()
    {
        QTest::addColumn<QString>("body");
        QTest::newRow("1 MB of text") << QString(1 << 20, QChar('x'));
        QTest::newRow("1 MB of angle brackets") << QString(1 << 20, QChar('<'));
        QTest::newRow("1 MB of unclosed tags") << QStringLiteral("<a ").repeated((1 << 20) / 3);
        QTest::newRow("1 MB of open tags") << QStringLiteral("<b>").repeated((1 << 20) / 3);
        QTest::newRow("deeply nested html") << QStringLiteral("<div>").repeated(2000) + "x</div>";
        QTest::newRow("unclosed html") << QStringLiteral("<b>bold</b><i><table><tr><td>open");
        QString list;
        for (int i = 0; i < 3000; ++i)
            list += QStringLiteral("- item %1\n").arg(i);
        QTest::newRow("thousands of list items") << list;
    }
    void survivesHostileBodies()
    {
        QFETCH(QString, body);
        CMessageItemsDocument doc;
        const CMessageItemIndex index = doc.appendMessage(message("m", true, body));
        QVERIFY(index.isValid());
        QVERIFY(doc.characterCount() > 1);
    }

    void clearRestoresTheFixedResourcesOnly()
    {
        CMessageItemsDocument doc;
        doc.addResource(QTextDocument::ImageResource, QUrl("progress40-cancellable"),
                        QImage(4, 4, QImage::Format_ARGB32));
        doc.clear();
        for (const char* name : {"AvatarSingle", "delivered", "not-delivered", "delivery-failed"})
            QVERIFY2(!doc.resource(QTextDocument::ImageResource, QUrl(name)).isNull(), name);
        QCOMPARE(doc.resource(QTextDocument::ImageResource, QUrl("AvatarSingle")).userType(),
                 QMetaType::QByteArray);
        QVERIFY(doc.resource(QTextDocument::ImageResource, QUrl("progress40-cancellable")).isNull());
    }

    // Bodies whose size or shape would take the layout longer than a moment: shown shortened with a link to
    // the whole text, or as plain text; never lost, and a later version replaces them as usual.
    void bodiesTooLongOrTooComplexAreShownShortenedOrPlain_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<bool>("shortened");
        QTest::addColumn<bool>("rich");
        const QString paragraph = QStringLiteral("Some **bold** words in a paragraph.\n\n");
        QTest::newRow("ordinary markdown") << paragraph.repeated(10) << false << true;
        QTest::newRow("ordinary html") << QStringLiteral("<p>Some <b>bold</b> words</p>") << false << true;
        QTest::newRow("long markdown") << paragraph.repeated(3000) << true << true;
        QTest::newRow("one long word") << QString(300000, QLatin1Char('w')) << true << false;
        QTest::newRow("nested tables")
            << QStringLiteral("<table><tr><td>").repeated(20) + QStringLiteral("deep") +
                   QStringLiteral("</td></tr></table>").repeated(20)
            << false << false;
        QTest::newRow("nested divs") << QStringLiteral("<div>").repeated(3000) + QStringLiteral("x</div>")
                                     << false << false;
        QTest::newRow("deep list") << [] {
            QString text;
            for (int i = 0; i < 60; ++i)
                text += QString(i * 2, QLatin1Char(' ')) + QStringLiteral("- **level**\n");
            return text;
        }() << false << false;
        QTest::newRow("many pictures")
            << QStringLiteral("<p><img src=\"missing.png\"> <b>x</b></p>").repeated(300) << false << false;
        QTest::newRow("table rows") << QStringLiteral("| a | **b** |\n|---|---|\n") +
                                           QStringLiteral("| 1 | **2** |\n").repeated(600)
                                    << false << false;
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
