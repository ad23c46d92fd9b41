// Delivery states of own messages: one status image swapped in place, and the failure tint that stays.
#include "HostTestMain.h"

#include "CMessageItemsDocument.h"

#include <QTextTable>

class TestMessageStates : public QObject
{
    Q_OBJECT

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

HOST_TEST_MAIN(TestMessageStates)
#include "tst_messagestates.moc"
