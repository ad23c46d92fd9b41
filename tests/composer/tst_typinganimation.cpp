// The timing of the typing dots, on a manual animation clock.
#include "HostTestMain.h"
#include "ManualAnimationDriver.h"

#include "TypingAnimation.h"
#include "TypingDotAnimation.h"

#include <QSignalSpy>
#include <QVariantAnimation>

class TestTypingAnimation : public QObject
{
    Q_OBJECT

private slots:
    void dotRisesFallsAndRests_data()
    {
        QTest::addColumn<int>("time");
        QTest::addColumn<double>("expected");
        QTest::newRow("start") << 0 << 0.0;
        QTest::newRow("half way up") << 75 << 0.5;
        QTest::newRow("near the top") << 140 << 140.0 / 150.0;
        QTest::newRow("half way down") << 225 << 0.5;
        QTest::newRow("resting") << 400 << 0.0;
        QTest::newRow("end of the rest") << 690 << 0.0;
        QTest::newRow("second cycle rising") << 775 << 0.5;
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
        QVERIFY(animation.isRunning());

        // Hold the dot and move it to the moment under test; every move reports the collected heights.
        TypingDotAnimation* dot = animation.dots().at(0);
        dot->pause();
        dot->setCurrentTime(time);
        if (time == 0) {
            QVERIFY(last.isEmpty() || qFuzzyIsNull(last.value(0)));
            return;
        }
        QCOMPARE(last.size(), 1);
        QVERIFY2(qAbs(last.at(0) - expected) < 1e-6, qPrintable(QString::number(last.at(0))));
    }

    void laterDotsStartOneStaggerApart()
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
        QCOMPARE(last.at(2), 0.0);
        const QList<QPointer<TypingDotAnimation>> dots = animation.dots();
        QCOMPARE(dots.at(1)->state(), QAbstractAnimation::Stopped);

        // The later dots start from real single-shot timers, 100 ms and 200 ms after the first.
        QTRY_COMPARE(dots.at(1)->state(), QAbstractAnimation::Running);
        QCOMPARE(dots.at(2)->state(), QAbstractAnimation::Stopped);
        QTRY_COMPARE(dots.at(2)->state(), QAbstractAnimation::Running);

        // From here on every step reports all three dots, each at its own phase.
        clock.step(40);
        QCOMPARE(last.size(), 3);
        QVERIFY(last.at(0) != last.at(1) || last.at(1) != last.at(2));
        for (qreal value : std::as_const(last))
            QVERIFY(value >= 0.0 && value <= 1.0);
    }

    void destroyedDotIsLeftOutAndTheOthersKeepTheirOrder()
    {
        ManualAnimationDriver clock;
        TypingAnimation animation;
        animation.startDots(3);
        QTRY_VERIFY(animation.dots().at(2)->state() == QAbstractAnimation::Running);

        QSignalSpy spy(&animation, &TypingAnimation::changed);
        delete animation.dots().at(1).data();
        clock.step(30);
        QVERIFY(!spy.isEmpty());
        const QList<qreal> values = spy.last().at(0).value<QList<qreal>>();
        QCOMPARE(values.size(), 2);

        // Dot 0 started first, so it is ahead of dot 2 in its cycle: compare with the survivors themselves.
        auto valueOf = [](TypingDotAnimation* dot) {
            auto* step = qobject_cast<QVariantAnimation*>(dot->currentAnimation());
            return step ? step->currentValue().toDouble() : 0.0;
        };
        QCOMPARE(values.at(0), valueOf(animation.dots().at(0)));
        QCOMPARE(values.at(1), valueOf(animation.dots().at(2)));
    }
};

HOST_TEST_MAIN(TestTypingAnimation)
#include "tst_typinganimation.moc"
