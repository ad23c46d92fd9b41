// Who-is-typing texts, the typist table and the dots image of the typing view model.
#include "HostTestMain.h"
#include "ManualAnimationDriver.h"

#include "TypingViewModel.h"

#include <QDir>
#include <QImage>
#include <QLabel>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTranslator>

namespace {

CIncidentCommunication typist(const QString& id, const QString& name = QString(),
                              const QColor& color = QColor())
{
    CIncidentCommunication communication;
    communication.senderId = id;
    communication.senderName = name;
    communication.nameKnown = !name.isEmpty();
    communication.nameColor = color;
    return communication;
}

// The line is "<p ...><span>TEXT</span>&nbsp;<span ...><img src="URL"></span></p>".
QString textPart(const QString& line)
{
    static const QRegularExpression pattern(QStringLiteral("^<p[^>]*><span>(.*)</span>&nbsp;<span"));
    return pattern.match(line).captured(1);
}

QString imagePart(const QString& line)
{
    static const QRegularExpression pattern(QStringLiteral("<img src=\"([^\"]*)\">"));
    return pattern.match(line).captured(1);
}

const QString kAnnaMarkup = QStringLiteral("<span style=\"font-weight:600; color:#3366cc;\">Anna</span>");

} // namespace

class TestTypingViewModel : public QObject
{
    Q_OBJECT

private slots:
    void textNamesTheTypists_data()
    {
        QTest::addColumn<QList<CIncidentCommunication>>("typists");
        QTest::addColumn<QString>("expected");
        QTest::newRow("one known") << QList<CIncidentCommunication>{typist("p1", "Anna", QColor("#3366CC"))}
                                   << kAnnaMarkup + " is typing message...";
        QTest::newRow("one unknown") << QList<CIncidentCommunication>{typist("p2")}
                                     << "<b>Someone</b> is typing message...";
        QTest::newRow("several, untranslated")
            << QList<CIncidentCommunication>{typist("p1", "Anna", QColor("#3366cc")), typist("p2")}
            << "%s are typing messages";
    }

    void textNamesTheTypists()
    {
        QFETCH(QList<CIncidentCommunication>, typists);
        QFETCH(QString, expected);

        TypingViewModel model;
        QSignalSpy spy(&model, &TypingViewModel::typingDataChanged);
        // The untranslated several-typists text has no argument marker; the toolkit says so, and the text
        // shows as it stands.
        if (typists.size() > 1)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QString::arg: Argument missing"));
        for (const CIncidentCommunication& communication : typists)
            model.setTyping(communication, true);

        QCOMPARE(model.typistCount(), typists.size());
        QCOMPARE(spy.size(), typists.size());
        QCOMPARE(textPart(spy.last().at(0).toString()), expected);
    }

    void translationWithAnArgumentReceivesTheNames()
    {
        QTranslator german;
        QVERIFY(german.load(QStringLiteral("newsReader_de"),
                            QDir(QCoreApplication::applicationDirPath()).filePath("../translations")));
        QCoreApplication::installTranslator(&german);
        auto removeTranslator = qScopeGuard([&german] { QCoreApplication::removeTranslator(&german); });

        TypingViewModel model;
        QSignalSpy spy(&model, &TypingViewModel::typingDataChanged);
        model.setTyping(typist("p1", "Anna", QColor("#3366cc")), true);
        model.setTyping(typist("p2", "Ben", QColor("#aa2200")), true);
        const QString text = textPart(spy.last().at(0).toString());

        // Both names in the table's own order, then the established "and some others", joined by commas.
        const QString ben = QStringLiteral("<span style=\"font-weight:600; color:#aa2200;\">Ben</span>");
        const QString others = QObject::tr("and some others");
        QVERIFY2(text.contains(kAnnaMarkup) && text.contains(ben), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral(", ") + others), qPrintable(text));
        QVERIFY(!text.contains(QStringLiteral("%s")));
        QVERIFY(!text.contains(QStringLiteral("%1")));
    }

    void imageIsEmptyBeforeTheFirstFrameThenADecodablePng()
    {
        ManualAnimationDriver clock;
        TypingViewModel model;
        QSignalSpy spy(&model, &TypingViewModel::typingDataChanged);
        model.setTyping(typist("p1", "Anna", QColor("#3366cc")), true);
        QCOMPARE(spy.size(), 1);
        QCOMPARE(imagePart(spy.at(0).at(0).toString()), QStringLiteral("data:image/png;base64,"));

        // Every animation step emits a new line with the current frame.
        clock.setTime(0);
        const qsizetype before = spy.size();
        clock.setTime(60);
        QCOMPARE(spy.size(), before + 1);
        clock.setTime(75);
        QCOMPARE(spy.size(), before + 2);

        const QString url = imagePart(spy.last().at(0).toString());
        QVERIFY(url.startsWith(QStringLiteral("data:image/png;base64,")));
        const QByteArray png = QByteArray::fromBase64(url.mid(22).toLatin1());
        QImage frame;
        QVERIFY(frame.loadFromData(png, "PNG"));
        QCOMPARE(frame.size(), QSize(128, 12));

        // At 75 ms the first dot is half way up: its centre is at y = 9 - 6 * 0.5 = 6. The later dots start
        // from real timers, so only their columns are known: each is drawn once, between y = 3 and y = 9.
        const QColor accent = CVantrelApp::GetColor(42);
        auto isDot = [&](int x, int y) { return frame.pixelColor(x, y).alpha() > 128; };
        QVERIFY(isDot(4, 6));
        QVERIFY(!isDot(4, 10));
        QVERIFY(!isDot(4, 2));
        const QColor drawn = frame.pixelColor(4, 6);
        QVERIFY(qAbs(drawn.red() - accent.red()) <= 2 && qAbs(drawn.green() - accent.green()) <= 2 &&
                qAbs(drawn.blue() - accent.blue()) <= 2);
        for (int x : {14, 24}) {
            int rows = 0;
            for (int y = 0; y < frame.height(); ++y)
                rows += isDot(x, y) ? 1 : 0;
            QVERIFY2(rows >= 2 && rows <= 5, qPrintable(QString::number(rows)));
            QVERIFY(!isDot(x, 0) && !isDot(x, 11));
        }
        QVERIFY(!isDot(34, 9));
    }

    void repeatedEventOnlyProlongsAndStopOfUnknownTypistRebuilds()
    {
        TypingViewModel model;
        QSignalSpy spy(&model, &TypingViewModel::typingDataChanged);
        model.setTyping(typist("p1", "Anna", QColor("#3366cc")), true);
        QCOMPARE(spy.size(), 1);
        model.setTyping(typist("p1", "Anna renamed", QColor("#000000")), true);
        QCOMPARE(spy.size(), 1);
        QCOMPARE(model.typistCount(), 1);

        model.setTyping(typist("nobody"), false);
        QCOMPARE(model.typistCount(), 1);
        QCOMPARE(spy.size(), 2);
        // The stored record is the first one: the repeat did not replace it.
        QCOMPARE(textPart(spy.last().at(0).toString()), kAnnaMarkup + " is typing message...");

        model.setTyping(typist("p1"), false);
        QCOMPARE(model.typistCount(), 0);
        QCOMPARE(spy.last().at(0).toString(), QString());
        QVERIFY(model.currentFrame().isNull());
    }

    void typistsExpireSixSecondsAfterTheirLastEvent()
    {
        TypingViewModel model;
        QStringList lines;
        connect(&model, &TypingViewModel::typingDataChanged, this,
                [&lines](const QString& line) { lines << line; });

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QString::arg: Argument missing"));
        model.setTyping(typist("early", "Anna", QColor("#3366cc")), true);
        model.setTyping(typist("late"), true);
        QTest::qWait(3000);
        model.setTyping(typist("early", "Anna", QColor("#3366cc")), true);

        // "late" expires at 6 s; "early" was prolonged to 9 s.
        QTRY_COMPARE_WITH_TIMEOUT(model.typistCount(), 1, 4500);
        QVERIFY(textPart(lines.last()).startsWith(kAnnaMarkup));
        QTRY_COMPARE_WITH_TIMEOUT(model.typistCount(), 0, 4500);
        QTRY_COMPARE(lines.last(), QString());
    }

    void labelShowsTheLine()
    {
        ManualAnimationDriver clock;
        TypingViewModel model;
        QLabel label;
        label.setTextFormat(Qt::RichText);
        connect(&model, &TypingViewModel::typingDataChanged, &label, &QLabel::setText);
        model.setTyping(typist("p1", "Anna", QColor("#3366cc")), true);
        clock.setTime(75);
        label.adjustSize();
        const QImage shot = label.grab().toImage();
        // Anna's name is drawn in her colour somewhere on the label.
        bool foundNameColour = false;
        for (int y = 0; y < shot.height() && !foundNameColour; ++y) {
            for (int x = 0; x < shot.width() && !foundNameColour; ++x) {
                const QColor c = shot.pixelColor(x, y);
                foundNameColour =
                    qAbs(c.red() - 0x33) < 24 && qAbs(c.green() - 0x66) < 24 && qAbs(c.blue() - 0xcc) < 24;
            }
        }
        QVERIFY(foundNameColour);
        QVERIFY(label.text().contains(QStringLiteral("data:image/png;base64,iVBOR")));
        if (!qEnvironmentVariableIsEmpty("NEWSREADER_PNG_DIR"))
            shot.save(QDir(qEnvironmentVariable("NEWSREADER_PNG_DIR")).filePath("typing-label.png"));
    }
};

HOST_TEST_MAIN(TestTypingViewModel)
#include "tst_typingviewmodel.moc"
