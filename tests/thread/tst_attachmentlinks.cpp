// Attachment links: whatever a tile's id and name, its href gives them back exactly.
#include "HostTestMain.h"

#include "AttachmentLinks.h"

using namespace newsReader;

class TestAttachmentLinks : public QObject
{
    Q_OBJECT

    static CIncidentAttachment attachment(const QString& id, const QString& name)
    {
        CIncidentAttachment a;
        a.id = id;
        a.fileName = name;
        return a;
    }

private slots:
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

HOST_TEST_MAIN(TestAttachmentLinks)
#include "tst_attachmentlinks.moc"
