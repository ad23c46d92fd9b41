// The new conversation dialog against the simulated support server: sign-in first, validation, the busy
// page, success, failure, cancel.
#include "HostTestMain.h"

#include "CNewIncidentDialog.h"
#include "ChatServiceApi.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>

namespace {

const QString kSubjectBalloon = "Please specify a subject of your inquiry to start chat with support.";
const QString kMessageBalloon = "Please specify a message to start chat with support.";
const QString kTooLongBalloon = "The message is too long, please make it shorter.";

QStringList balloonTexts()
{
    QStringList texts;
    for (const HostControl::Event& event : HostControl::events("balloon"))
        texts.append(event.details.value("text").toString());
    return texts;
}

// Keeps the dialog out of exec(): loaded, shown and driven by clicks like the host's own run would be.
struct OpenDialog
{
    CNewIncidentDialog dialog{nullptr};
    QSignalSpy created{&dialog, &CNewIncidentDialog::newIncidentCreated};

    OpenDialog()
    {
        dialog.ensureLoaded();
        dialog.show();
    }
    template<class T = QWidget>
    T* control(const char* name) const
    {
        return dialog.findChild<T*>(QString::fromLatin1(name));
    }
    int page() const { return control<QStackedWidget>("stackedWidget")->currentIndex(); }
    void clickOk() { QTest::mouseClick(dialog.okButton(), Qt::LeftButton); }
    void fill(const QString& subject, const QString& message)
    {
        control<QLineEdit>("subjectEdit")->setText(subject);
        control<QPlainTextEdit>("messageEdit")->setPlainText(message);
    }
};

} // namespace

class TestNewIncidentDialog : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::resetForTests();
        HostControl::setShowBalloons(false);
        HostControl::setMessageLengthLimit(4000);
    }

    void showsTheFormOnceSignedIn_data()
    {
        QTest::addColumn<bool>("signedIn");
        QTest::addColumn<bool>("signInSucceeds");
        QTest::newRow("already signed in") << true << true;
        QTest::newRow("signs in first") << false << true;
        QTest::newRow("wrong password") << false << false;
    }

    void showsTheFormOnceSignedIn()
    {
        QFETCH(bool, signedIn);
        QFETCH(bool, signInSucceeds);
        HostControl::setSignedIn(signedIn);
        OpenDialog open;
        if (!signedIn) {
            QCOMPARE(open.page(), int(CNewIncidentDialog::SignInPage));
            QCOMPARE(open.dialog.okButton()->text(), "Sign in");
            QCOMPARE(open.dialog.cancelButton()->text(), "&Cancel");
            // OK submits the sign-in form; the subject and message are not looked at yet.
            open.control<QLineEdit>("signInEmail")->setText("alex.morgan@example.com");
            open.control<QLineEdit>("signInPassword")->setText("secret");
            HostControl::scriptSignInResult(signInSucceeds, signInSucceeds ? QString() : "Wrong password");
            open.clickOk();
            QVERIFY(balloonTexts().isEmpty());
            QTRY_VERIFY(open.dialog.okButton()->isEnabled());
            if (!signInSucceeds) {
                QCOMPARE(open.page(), int(CNewIncidentDialog::SignInPage));
                return;
            }
        }
        QTRY_COMPARE(open.page(), int(CNewIncidentDialog::FormPage));
        QVERIFY(!open.control("createAccountLink")->isVisible());
        const QDialogButtonBox plain(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        QCOMPARE(open.dialog.okButton()->text(), plain.button(QDialogButtonBox::Ok)->text());
        QCOMPARE(open.dialog.cancelButton()->text(), plain.button(QDialogButtonBox::Cancel)->text());
    }

    void validatesInOrder_data()
    {
        QTest::addColumn<QString>("subject");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("limit");
        QTest::addColumn<QString>("balloon");
        QTest::newRow("both empty") << QString() << QString() << 4000 << kSubjectBalloon;
        QTest::newRow("subject of spaces") << QString("   ") << QString("hello") << 4000 << kSubjectBalloon;
        QTest::newRow("message of white space")
            << QString("Printer") << QString(" \n\t ") << 4000 << kMessageBalloon;
        QTest::newRow("too long") << QString("Printer") << QString("eleven char") << 10 << kTooLongBalloon;
    }

    void validatesInOrder()
    {
        QFETCH(QString, subject);
        QFETCH(QString, message);
        QFETCH(int, limit);
        QFETCH(QString, balloon);
        HostControl::setMessageLengthLimit(limit);
        OpenDialog open;
        open.fill(subject, message);
        QString counter;
        ChatServiceApi::checkCommunicationLength(message.trimmed(), counter);
        QCOMPARE(open.control<QLabel>("charsTypedLabel")->text(), counter);
        open.clickOk();
        QCOMPARE(balloonTexts(), QStringList{balloon});
        QCOMPARE(HostControl::events("balloon").first().details.value("widget").toString(),
                 balloon == kSubjectBalloon ? "subjectEdit" : "messageEdit");
        QCOMPARE(open.page(), int(CNewIncidentDialog::FormPage));
        QTest::qWait(20);
        QCOMPARE(open.created.count(), 0);
    }

    void createsTheConversationBehindABusyPage_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("created") << 0;
        QTest::newRow("server error, then a second try") << 500;
        QTest::newRow("cancelled while it runs") << -1;
    }

    void createsTheConversationBehindABusyPage()
    {
        QFETCH(int, status);
        HostControl::setHoldRequests(true);
        OpenDialog open;
        open.fill("  Printer jams  ", "\n It jams on page two. \n");
        open.clickOk();
        QCOMPARE(open.page(), int(CNewIncidentDialog::BusyPage));
        QVERIFY(!open.dialog.okButton()->isEnabled());
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);
        const HostControl::Request request = HostControl::pendingRequests().first();
        QVERIFY(request.body.contains("It jams on page two.\""));
        if (status < 0) {
            // Escape closes the dialog and abandons the request: nothing is created, nothing is said.
            QTest::keyClick(&open.dialog, Qt::Key_Escape);
            QVERIFY(!open.dialog.isVisible());
            HostControl::releaseAllRequests();
            QTest::qWait(50);
            QCOMPARE(open.created.count(), 0);
            QVERIFY(balloonTexts().isEmpty());
            return;
        }
        if (status) {
            QVERIFY(HostControl::failRequest(request.id, status, "Internal error"));
            QTRY_VERIFY(open.dialog.okButton()->isEnabled());
            QCOMPARE(open.page(), int(CNewIncidentDialog::FormPage));
            QCOMPARE(balloonTexts(),
                     QStringList{"Sorry, we couldn't start chat with Support. Please try again "
                                 "later. Error reason: Internal error"});
            HostControl::setHoldRequests(false);
            open.clickOk();
        } else {
            QVERIFY(HostControl::releaseRequest(request.id));
        }
        QTRY_COMPARE(open.created.count(), 1);
        const auto entity = open.created.first().first().value<EntityDto::EntityDto>();
        QCOMPARE(entity.attributeValue("SUBJECT").toString(), "Printer jams");
        QVERIFY(!open.dialog.isVisible());
    }
};

HOST_TEST_MAIN(TestNewIncidentDialog)
#include "tst_newincidentdialog.moc"
