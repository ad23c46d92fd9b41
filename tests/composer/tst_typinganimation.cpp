// The timing of the typing dots, on a manual animation clock.
#include "HostTestMain.h"
#include "ManualAnimationDriver.h"

#include "TypingAnimation.h"
#include "TypingDotAnimation.h"

class TestTypingAnimation : public QObject
{
    Q_OBJECT

private slots:
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

HOST_TEST_MAIN(TestTypingAnimation)
#include "tst_typinganimation.moc"
