#include "CKOLDialog.h"
#include "HostTestMain.h"

#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QStackedWidget>
#include <QTest>
#include <QTimer>

namespace {

// A dialog on the new-conversation form that keeps itself open on OK until told otherwise.
class ProbeDialog : public CKOLDialog
{
    Q_OBJECT
public:
    explicit ProbeDialog(const QString& form, bool modeless = false)
        : CKOLDialog(nullptr, modeless, QVariant(42), modeless)
        , m_form(form)
    {}

    int setupCalls = 0;
    int acceptCalls = 0;
    bool closeOnAccept = false;
    QLineEdit* subject = nullptr;

protected:
    QString getFormResourceName() const override { return m_form; }
    QSize getInitialSize() const override { return QSize(640, 480); }
    void setupUi() override
    {
        ++setupCalls;
        subject = findChild<QLineEdit*>("subjectEdit");
    }
    void onAccept() override
    {
        ++acceptCalls;
        if (closeOnAccept)
            CKOLDialog::onAccept();
    }

private:
    QString m_form;
};

} // namespace

class TestCKOLDialog : public QObject
{
    Q_OBJECT

private slots:
    void init() { HostControl::clearEvents(); }

    void loadsItsFormAboveTheButtonsOnce()
    {
        ProbeDialog dialog("communications.createIncident.ui");
        QVERIFY(dialog.ensureLoaded());
        QVERIFY(dialog.ensureLoaded());
        QCOMPARE(dialog.setupCalls, 1);
        QVERIFY(dialog.formWidget());
        QVERIFY(dialog.subject);
        QVERIFY(dialog.formWidget()->findChild<QStackedWidget*>("stackedWidget"));
        QVERIFY(dialog.okButton());
        QVERIFY(dialog.cancelButton());
        QVERIFY(dialog.okButton()->isDefault());
        QCOMPARE(dialog.argument(), QVariant(42));
        dialog.resize(640, 480);
        dialog.show();
        QVERIFY(dialog.formWidget()->geometry().bottom() <
                dialog.okButton()->mapTo(&dialog, QPoint(0, 0)).y());
    }

    void runsModallyAndRecordsTheResult_data()
    {
        QTest::addColumn<bool>("accept");
        QTest::addColumn<int>("result");
        QTest::newRow("ok") << true << int(QDialog::Accepted);
        QTest::newRow("cancel") << false << int(QDialog::Rejected);
    }

    void runsModallyAndRecordsTheResult()
    {
        QFETCH(bool, accept);
        QFETCH(int, result);
        ProbeDialog dialog("communications.createIncident.ui");
        dialog.closeOnAccept = true;
        QSize shownSize;
        QTimer::singleShot(0, &dialog, [&] {
            shownSize = dialog.size();
            (accept ? dialog.okButton() : dialog.cancelButton())->click();
        });
        QCOMPARE(dialog.Execute(), result);
        QCOMPARE(shownSize, QSize(640, 480));
        const auto events = HostControl::events("dialogExecuted");
        QCOMPARE(events.size(), 1);
        QVERIFY(events.first().details.value("class").toString().endsWith("ProbeDialog"));
        QCOMPARE(events.first().details.value("result").toInt(), result);
    }

    void withoutItsFormItDoesNotOpen()
    {
        CKOLDialog bare(nullptr, false, {}, false);
        QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("cannot load form"));
        QCOMPARE(bare.Execute(), int(QDialog::Rejected));
        QVERIFY(!bare.isVisible() && !bare.formWidget());
        QVERIFY(HostControl::events("dialogExecuted").isEmpty());
    }

    // A modeless dialog is shown at a fixed size and Execute() returns at once; Escape presses Cancel, which
    // does nothing while it is disabled; the result is recorded when the dialog finishes.
    void modelessDialogsReturnAtOnceAndRecordWhenTheyFinish()
    {
        ProbeDialog dialog("communications.createIncident.ui", true);
        QCOMPARE(dialog.Execute(), int(QDialog::Rejected));
        QVERIFY(dialog.isVisible() && !dialog.isModal());
        QCOMPARE(dialog.minimumSize(), dialog.maximumSize());
        QVERIFY(HostControl::events("dialogExecuted").isEmpty());
        dialog.cancelButton()->setEnabled(false);
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(dialog.isVisible());
        dialog.cancelButton()->setEnabled(true);
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
        const auto events = HostControl::events("dialogExecuted");
        QCOMPARE(events.size(), 1);
        QCOMPARE(events.first().details.value("result").toInt(), int(QDialog::Rejected));
    }
};

HOST_TEST_MAIN(TestCKOLDialog)
#include "tst_ckoldialog.moc"
