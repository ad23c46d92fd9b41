// Who is typing and how it shows: the text naming the typists and their expiry, and the timing of the typing
// dots, on a manual animation clock.
#include "HostTestMain.h"

#include "ManualAnimationDriver.h"
#include "TypingAnimation.h"
#include "TypingDotAnimation.h"
#include "TypingViewModel.h"

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
    static const QRegularExpression pattern("^<p[^>]*><span>(.*)</span>&nbsp;<span");
    return pattern.match(line).captured(1);
}

const QString kAnna = QStringLiteral("<span style=\"font-weight:600; color:#3366cc;\">Anna</span>");

} // namespace

class TestTyping : public QObject
{
    Q_OBJECT

private slots:
    void textNamesTheTypists_data()
    {
        QTest::addColumn<QList<CIncidentCommunication>>("typists");
        QTest::addColumn<bool>("german");
        QTest::addColumn<QString>("expected");
        const auto anna = typist("p1", "Anna", QColor("#3366CC"));
        QTest::newRow("one known") << QList{anna} << false << kAnna + " is typing message...";
        QTest::newRow("one unknown") << QList{typist("p2")} << false << "<b>Someone</b> is typing message...";
        // The untranslated text has no argument marker and shows as it stands; a translation receives the
        // names, then the established "and some others".
        QTest::newRow("several") << QList{anna, typist("p2")} << false << "%s are typing messages";
        QTest::newRow("several, German") << QList{anna, typist("p3", "Ben", QColor("#aa2200"))} << true
                                         << "<span style=\"font-weight:600; color:#aa2200;\">Ben</span>, ";
    }

    void textNamesTheTypists()
    {
        QFETCH(QList<CIncidentCommunication>, typists);
        QFETCH(bool, german);
        QFETCH(QString, expected);
        QTranslator translator;
        if (german) {
            QVERIFY(translator.load("newsReader_de",
                                    QCoreApplication::applicationDirPath() + "/../translations"));
            QCoreApplication::installTranslator(&translator);
        } else if (typists.size() > 1) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QString::arg: Argument missing"));
        }
        TypingViewModel model;
        QSignalSpy spy(&model, &TypingViewModel::typingDataChanged);
        for (const CIncidentCommunication& communication : typists)
            model.setTyping(communication, true);
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(spy.size(), typists.size());
        const QString text = textPart(spy.last().at(0).toString());
        QVERIFY2(german ? text.contains(expected) && text.contains(kAnna + ", ") : text == expected,
                 qPrintable(text));
    }

    void typistsExpireSixSecondsAfterTheirLastEvent()
    {
        TypingViewModel model;
        QSignalSpy spy(&model, &TypingViewModel::typingDataChanged);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QString::arg: Argument missing"));
        model.setTyping(typist("early", "Anna", QColor("#3366cc")), true);
        model.setTyping(typist("late"), true);
        // A repeated event only prolongs: no new line, the first record stays.
        model.setTyping(typist("early", "Anna renamed"), true);
        QCOMPARE(spy.size(), 2);
        QTest::qWait(3000);
        model.setTyping(typist("early", "Anna renamed"), true);
        model.setTyping(typist("nobody"), false);
        QCOMPARE(model.typistCount(), 2);
        QTRY_COMPARE_WITH_TIMEOUT(model.typistCount(), 1, 4500);
        QCOMPARE(textPart(spy.last().at(0).toString()), kAnna + " is typing message...");
        model.setTyping(typist("early"), false);
        QCOMPARE(spy.last().at(0).toString(), QString());
        QVERIFY(model.currentFrame().isNull());
    }

    void dotRisesFallsAndRests_data()
    {
        QTest::addColumn<int>("time");
        QTest::addColumn<double>("expected");
        QTest::newRow("half way up") << 75 << 0.5;
        QTest::newRow("near the top") << 140 << 140.0 / 150.0;
        QTest::newRow("half way down") << 225 << 0.5;
        QTest::newRow("end of the rest") << 690 << 0.0;
        QTest::newRow("tenth cycle falling") << 9 * 700 + 225 << 0.5;
    }

    void dotRisesFallsAndRests()
    {
        QFETCH(int, time);
        QFETCH(double, expected);
        TypingAnimation animation;
        QList<qreal> last;
        connect(&animation, &TypingAnimation::changed, this,
                [&last](const QList<qreal>& values) { last = values; });
        animation.startDots(1);
        // Hold the dot and move it to the moment under test; every move reports the collected heights.
        animation.dots().at(0)->pause();
        animation.dots().at(0)->setCurrentTime(time);
        QCOMPARE(last.size(), 1);
        QVERIFY2(qAbs(last.at(0) - expected) < 1e-6, qPrintable(QString::number(last.at(0))));
    }

    void laterDotsStartOneStaggerApartAndAGoneDotIsLeftOut()
    {
        ManualAnimationDriver clock;
        TypingAnimation animation;
        QList<qreal> last;
        connect(&animation, &TypingAnimation::changed, this,
                [&last](const QList<qreal>& values) { last = values; });
        animation.startDots(3);
        clock.setTime(0);
        clock.setTime(50);
        QCOMPARE(last.size(), 3);
        QVERIFY(last.at(0) > 0.2);
        QCOMPARE(last.at(1), 0.0);
        // The later dots start from real single-shot timers, 100 ms and 200 ms after the first.
        const QList<QPointer<TypingDotAnimation>> dots = animation.dots();
        QCOMPARE(dots.at(1)->state(), QAbstractAnimation::Stopped);
        QTRY_COMPARE(dots.at(1)->state(), QAbstractAnimation::Running);
        QCOMPARE(dots.at(2)->state(), QAbstractAnimation::Stopped);
        QTRY_COMPARE(dots.at(2)->state(), QAbstractAnimation::Running);

        delete dots.at(1).data();
        clock.step(30);
        QCOMPARE(last.size(), 2);
    }
};

HOST_TEST_MAIN(TestTyping)
#include "tst_typing.moc"
