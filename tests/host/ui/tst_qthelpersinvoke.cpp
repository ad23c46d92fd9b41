#include "HostTestMain.h"
#include "QtHelpersInvoke.h"

#include <QPointer>
#include <QTest>

class TestQtHelpersInvoke : public QObject
{
    Q_OBJECT

private slots:
    void neverRunsInsideTheCall()
    {
        QObject context;
        bool ran = false;
        qtHelpers::invokeOnIdle(&context, [&] { ran = true; });
        QVERIFY(!ran);
        QVERIFY(QTest::qWaitFor([&] { return ran; }));
        bool ranWithoutContext = false;
        qtHelpers::invokeOnIdle(nullptr, [&] { ranWithoutContext = true; });
        QVERIFY(!ranWithoutContext);
        QVERIFY(QTest::qWaitFor([&] { return ranWithoutContext; }));
    }

    void skipsCallsWhoseContextIsGone()
    {
        auto* context = new QObject;
        QPointer<QObject> guard(context);
        int runs = 0;
        qtHelpers::invokeOnIdle(context, [&] {
            ++runs;
            delete context;
        });
        qtHelpers::invokeOnIdle(context, [&] { ++runs; });
        auto* deletedBeforeIdle = new QObject;
        qtHelpers::invokeOnIdle(deletedBeforeIdle, [&] { ++runs; });
        delete deletedBeforeIdle;
        QObject witness;
        bool witnessRan = false;
        qtHelpers::invokeOnIdle(&witness, [&] { witnessRan = true; });
        QVERIFY(QTest::qWaitFor([&] { return witnessRan; }));
        QVERIFY(guard.isNull());
        QCOMPARE(runs, 1);
    }
};

HOST_TEST_MAIN(TestQtHelpersInvoke)
#include "tst_qthelpersinvoke.moc"
