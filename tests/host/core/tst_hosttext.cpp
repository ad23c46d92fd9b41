// Text helpers: human-readable sizes and elided strings.

#include "HostTestMain.h"
#include "HostText.h"

#include <QFontMetrics>

namespace {

const QChar ellipsis(0x2026);
constexpr unsigned long long KB = 1024;
constexpr unsigned long long MB = KB * KB;
constexpr unsigned long long GB = MB * KB;

} // namespace

class TestHostText : public QObject
{
    Q_OBJECT

private slots:
    void formattedSizeReadsLikeAFileManager_data()
    {
        QTest::addColumn<qulonglong>("size");
        QTest::addColumn<qulonglong>("flags");
        QTest::addColumn<QString>("expected");
        QTest::newRow("nothing") << 0ull << 0ull << "0 bytes";
        QTest::newRow("one byte") << 1ull << 0ull << "1 byte";
        QTest::newRow("just below a KB") << 1023ull << 0ull << "1023 bytes";
        QTest::newRow("one KB") << KB << 0ull << "1.0 KB";
        QTest::newRow("one and a half KB") << 1536ull << 0ull << "1.5 KB";
        QTest::newRow("hundred KB has no decimal") << 100 * KB << 0ull << "100 KB";
        QTest::newRow("99.96 KB rounds to 100") << 102359ull << 0ull << "100 KB";
        QTest::newRow("rounding carries into MB") << MB - 1 << 0ull << "1.0 MB";
        QTest::newRow("4.1 GB") << qulonglong(4.1 * GB) << 0ull << "4.1 GB";
        QTest::newRow("whole units") << 1536ull << 1ull << "2 KB";
        QTest::newRow("whole units leave bytes alone") << 5ull << 1ull << "5 bytes";
    }
    void formattedSizeReadsLikeAFileManager()
    {
        QFETCH(qulonglong, size);
        QFETCH(qulonglong, flags);
        QFETCH(QString, expected);
        QCOMPARE(GetFormattedSize(size, flags), expected);
    }

    void longTextIsElidedWhereAsked_data()
    {
        QTest::addColumn<int>("flags");
        QTest::newRow("right") << 0;
        QTest::newRow("middle") << 1;
        QTest::newRow("left") << 2;
    }
    void longTextIsElidedWhereAsked()
    {
        QFETCH(int, flags);
        const QFont font;
        const QFontMetrics metrics(font);
        const QString text = QStringLiteral("Important messages from the vendor about your subscription");
        const int width = metrics.horizontalAdvance(text) / 3;

        const QString elided = GetDottedString(text, font, width, flags, 0);
        QVERIFY(elided.length() < text.length());
        QVERIFY(elided.contains(ellipsis));
        QVERIFY(metrics.horizontalAdvance(elided) <= width);

        const QString head = text.left(3);
        const QString tail = text.right(3);
        switch (flags) {
        case 0:
            QVERIFY(elided.startsWith(head));
            QVERIFY(elided.endsWith(ellipsis));
            break;
        case 1:
            QVERIFY(elided.startsWith(head));
            QVERIFY(elided.endsWith(tail));
            break;
        default:
            QVERIFY(elided.startsWith(ellipsis));
            QVERIFY(elided.endsWith(tail));
        }
    }

    void shortTextIsKeptWholeAndMinimumCharactersSurviveANarrowWidth()
    {
        const QFont font;
        const QString shortText = QStringLiteral("Offers");
        QCOMPARE(GetDottedString(shortText, font, QFontMetrics(font).horizontalAdvance(shortText), 0, 0),
                 shortText);
        const QString text = QStringLiteral("attachment-name.pdf");
        QCOMPARE(GetDottedString(text, font, 1, 0, 4), QStringLiteral("atta") + ellipsis);
        QCOMPARE(GetDottedString(text, font, 1, 2, 4), ellipsis + QStringLiteral(".pdf"));
        QCOMPARE(GetDottedString(text, font, 1, 1, 4),
                 QStringLiteral("at") + ellipsis + QStringLiteral("df"));
        QCOMPARE(GetDottedString(QStringLiteral("abc"), font, 1, 0, 4), QStringLiteral("abc"));
    }
};

HOST_TEST_MAIN(TestHostText)
#include "tst_hosttext.moc"
