// Attachment and abort links: how a tile's href is written and read back.
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
    void plainIdsAndNamesKeepThePlainForm_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("href");
        QTest::newRow("hash") << "x1"
                              << "a#b.txt"
                              << "attach://x1?name=a%23b.txt";
        QTest::newRow("spaces") << "att-scan-log"
                                << "my report.pdf"
                                << "attach://att-scan-log?name=my%20report.pdf";
        QTest::newRow("percent") << "id42"
                                 << "100%.txt"
                                 << "attach://id42?name=100%25.txt";
        QTest::newRow("umlaut") << "id42" << QString::fromUtf8("ü.txt") << "attach://id42?name=%C3%BC.txt";
        QTest::newRow("no name") << "id42"
                                 << ""
                                 << "attach://id42?name=";
    }
    void plainIdsAndNamesKeepThePlainForm()
    {
        QFETCH(QString, id);
        QFETCH(QString, name);
        QFETCH(QString, href);
        QCOMPARE(attachLink(attachment(id, name)), href);
    }

    // Whatever the server sends comes back exactly, also after the trip a click takes: the view turns the
    // href into a QUrl, the plugin encodes that fully and reads it.
    void idsAndNamesComeBackExactly_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        const QString plainName = QStringLiteral("f.txt");
        QTest::newRow("number") << "12345" << plainName;
        QTest::newRow("hex number") << "0x1f" << plainName;
        QTest::newRow("address") << "127.0.0.1" << plainName;
        QTest::newRow("upper case") << "UPPER" << plainName;
        QTest::newRow("user at host") << "user@host" << plainName;
        QTest::newRow("slash") << "a/b" << plainName;
        QTest::newRow("leading hyphen") << "-lead" << plainName;
        QTest::newRow("trailing hyphen") << "trail-" << plainName;
        QTest::newRow("space") << "a b" << plainName;
        QTest::newRow("braces") << "{x}" << plainName;
        QTest::newRow("equals") << "a=b" << plainName;
        QTest::newRow("dots") << ".." << plainName;
        QTest::newRow("empty") << "" << plainName;
        QTest::newRow("query and fragment") << "a?name=b#c" << plainName;
        QTest::newRow("percent") << "%41%00" << plainName;
        QTest::newRow("encoded look") << "x--0041" << plainName;
        QTest::newRow("encoded look, upper") << "X--0041" << plainName;
        QTest::newRow("ace") << "xn--nxasmq6b" << plainName;
        QTest::newRow("non-ASCII") << QString::fromUtf8("Ärger-отчёт-报告") << plainName;
        QTest::newRow("lone surrogate") << QString(QChar(0xd800)) << QString(QChar(0xdc00));
        QTest::newRow("noncharacters") << QString(QChar(0x4941)) << QString(2, QChar(0xffff)) + QChar(0xfdd0);
        QTest::newRow("very long") << QString(5000, QLatin1Char('A')) + QStringLiteral("\U0001F600")
                                   << QString(5000, 'n');
        QTest::newRow("ampersand") << "id42"
                                   << "a&b.txt";
        QTest::newRow("escape") << "id42"
                                << "%41.txt";
        QTest::newRow("NUL") << "id42" << QStringLiteral("a%00b") + QChar(0) + QStringLiteral("c");
        QTest::newRow("query items") << "id42"
                                     << "a&name=b&name16=0041=#?+ c";
        QTest::newRow("spaces only") << "id42"
                                     << "   ";
        QTest::newRow("cyrillic") << "id42" << QString::fromUtf8("отчёт.docx");
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

    void abortLinkCarriesTheIdUnencoded_data()
    {
        QTest::addColumn<QString>("id");
        QTest::newRow("space") << "Id 7";
        QTest::newRow("attach link") << "attach://x?name=a";
        QTest::newRow("web") << "https://example.com/";
        QTest::newRow("empty") << "";
    }
    void abortLinkCarriesTheIdUnencoded()
    {
        QFETCH(QString, id);
        const QString href = abortLink(attachment(id, "f.txt"));
        QCOMPARE(href, QStringLiteral("abort://") + id);
        QVERIFY(isAbortLink(href));
        QVERIFY(!isAttachLink(href));
        QCOMPARE(attachmentIdFromLink(href), id);
    }

    void schemesAreCaseSensitive_data()
    {
        QTest::addColumn<QString>("href");
        QTest::newRow("upper attach") << "ATTACH://x1?name=a.txt";
        QTest::newRow("mixed attach") << "Attach://x1?name=a.txt";
        QTest::newRow("upper abort") << "ABORT://x1";
        QTest::newRow("web") << "https://example.com/?name=a.txt";
        QTest::newRow("empty") << "";
    }
    void schemesAreCaseSensitive()
    {
        QFETCH(QString, href);
        QVERIFY(!isAttachLink(href));
        QVERIFY(!isAbortLink(href));
        QVERIFY(attachmentIdFromLink(href).isEmpty());
        QString id = "keep", name = "keep";
        QVERIFY(!parseAttachLink(href, id, name));
        QCOMPARE(id, QStringLiteral("keep"));
        QCOMPARE(name, QStringLiteral("keep"));
    }
};

HOST_TEST_MAIN(TestAttachmentLinks)
#include "tst_attachmentlinks.moc"
