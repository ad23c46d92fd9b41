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
    void keepsHashInsideTheQuery()
    {
        QCOMPARE(attachLink(attachment("x1", "a#b.txt")), QStringLiteral("attach://x1?name=a%23b.txt"));
    }

    void namesSurviveTheRoundTrip_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("hash") << "a#b.txt";
        QTest::newRow("spaces") << "my report 2024.pdf";
        QTest::newRow("umlauts") << QString::fromUtf8("Übersicht-größe.xlsx");
        QTest::newRow("cyrillic") << QString::fromUtf8("отчёт.docx");
        QTest::newRow("specials") << "a=c+d?f;g,h'i(j)[k]{l}!~$@^.txt";
        QTest::newRow("percent") << "100%.txt";
    }
    void namesSurviveTheRoundTrip()
    {
        QFETCH(QString, name);
        const QString href = attachLink(attachment("id42", name));
        QVERIFY(isAttachLink(href));
        QVERIFY2(!href.contains(' '), qPrintable(href));
        for (const QChar c : href)
            QVERIFY2(c.unicode() < 128, qPrintable(href)); // non-ASCII letters are percent-encoded
        QString id = "untouched", parsed = "untouched";
        QVERIFY(parseAttachLink(href, id, parsed));
        QCOMPARE(id, QStringLiteral("id42"));
        QCOMPARE(parsed, name);
        QCOMPARE(attachmentIdFromLink(href), QStringLiteral("id42"));
    }

    void ampersandEndsTheNameInTheQuery()
    {
        // The query is written from the raw name, so "&" separates query items on the way back.
        QString id, name;
        QVERIFY(parseAttachLink(attachLink(attachment("x", "a&b.txt")), id, name));
        QCOMPARE(name, QStringLiteral("a"));
    }

    void idComesBackAsTheParserNormalisesHosts()
    {
        const QString href = attachLink(attachment("AbC9", "f.txt"));
        QString id, name;
        QVERIFY(parseAttachLink(href, id, name));
        QCOMPARE(id, QStringLiteral("abc9"));
        QCOMPARE(attachmentIdFromLink(href), QStringLiteral("abc9"));
    }

    void abortLinkCarriesTheIdUnencoded()
    {
        const QString href = abortLink(attachment("Id 7", "f.txt"));
        QCOMPARE(href, QStringLiteral("abort://Id 7"));
        QVERIFY(isAbortLink(href));
        QVERIFY(!isAttachLink(href));
        QCOMPARE(attachmentIdFromLink(href), QStringLiteral("Id 7"));
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
