// The new conversation dialog against the simulated support server: sign-in first, validation, the busy
// page, success, failure, cancel.
#include "HostTestMain.h"

#include "CBusyStateCtl.h"
#include "CNewIncidentDialog.h"
#include "ChatServiceApi.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>

namespace {

const QString kSubjectBalloon =
    QStringLiteral("Please specify a subject of your inquiry to start chat with support.");
const QString kMessageBalloon = QStringLiteral("Please specify a message to start chat with support.");
const QString kTooLongBalloon = QStringLiteral("The message is too long, please make it shorter.");
constexpr int kMessageLimit = 4000;

QList<HostControl::Event> balloons()
{
    return HostControl::events(QStringLiteral("balloon"));
}

QStringList balloonTexts()
{
    QStringList texts;
    for (const HostControl::Event& event : balloons())
        texts.append(event.details.value(QStringLiteral("text")).toString());
    return texts;
}

QList<HostControl::Request> ticketRequests()
{
    QList<HostControl::Request> requests;
    for (const HostControl::Request& request : HostControl::requestLog()) {
        if (request.path.contains(QStringLiteral("tickets")) && request.verb == "POST")
            requests.append(request);
    }
    return requests;
}

QString counterFor(const QString& text)
{
    QString counter;
    ChatServiceApi::checkCommunicationLength(text, counter);
    return counter;
}

// Keeps the dialog out of exec(): loaded, shown and driven by clicks like the host's own run would be.
struct OpenDialog
{
    CNewIncidentDialog dialog{nullptr};

    OpenDialog()
    {
        dialog.ensureLoaded();
        dialog.resize(CNewIncidentDialog::kInitialWidth, CNewIncidentDialog::kInitialHeight);
        dialog.show();
    }

    template<class T = QWidget>
    T* control(const char* name) const
    {
        return dialog.findChild<T*>(QString::fromLatin1(name));
    }
    int page() const { return control<QStackedWidget>("stackedWidget")->currentIndex(); }
    QPlainTextEdit* message() const { return control<QPlainTextEdit>("messageEdit"); }
    QString counter() const { return control<QLabel>("charsTypedLabel")->text(); }
    void clickOk() { QTest::mouseClick(dialog.okButton(), Qt::LeftButton); }

    void fill(const QString& subject, const QString& message)
    {
        control<QLineEdit>("subjectEdit")->setText(subject);
        this->message()->setPlainText(message);
    }

    void savePicture(const QString& name)
    {
        const QString folder = qEnvironmentVariable("NEWSREADER_PNG_DIR");
        if (!folder.isEmpty())
            QVERIFY(dialog.grab().save(QDir(folder).filePath(name)));
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
        HostControl::setMessageLengthLimit(kMessageLimit);
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
            QVERIFY(!open.control("PART_TitleArea")->isVisible());
            QVERIFY(open.control("createAccountLink")->isVisible());
            QCOMPARE(open.dialog.okButton()->text(), QStringLiteral("Sign in"));
            QVERIFY(!open.dialog.okButton()->isEnabled());
            open.savePicture(QStringLiteral("new-incident-sign-in.png"));

            // OK submits the sign-in form; the subject and message are not looked at yet.
            open.control<QLineEdit>("signInEmail")->setText(QStringLiteral("alex.morgan@example.com"));
            open.control<QLineEdit>("signInPassword")->setText(QStringLiteral("secret"));
            QVERIFY(open.dialog.okButton()->isEnabled());
            HostControl::scriptSignInResult(signInSucceeds, signInSucceeds ? QString() : "Wrong password");
            open.clickOk();
            QVERIFY(balloons().isEmpty());
            QVERIFY(ticketRequests().isEmpty());
            QVERIFY(!open.dialog.okButton()->isEnabled());
            QTRY_VERIFY(open.dialog.okButton()->isEnabled());
            if (!signInSucceeds) {
                QCOMPARE(open.page(), int(CNewIncidentDialog::SignInPage));
                QVERIFY(open.dialog.isVisible());
                return;
            }
        }

        QTRY_COMPARE(open.page(), int(CNewIncidentDialog::FormPage));
        QVERIFY(open.control("PART_TitleArea")->isVisible());
        QVERIFY(!open.control("createAccountLink")->isVisible());
        const QDialogButtonBox plain(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        QCOMPARE(open.dialog.okButton()->text(), plain.button(QDialogButtonBox::Ok)->text());
        QCOMPARE(open.dialog.cancelButton()->text(), plain.button(QDialogButtonBox::Cancel)->text());
        QCOMPARE(open.counter(), counterFor(QString()));
        open.fill(QStringLiteral("Printer"), QStringLiteral("It jams."));
        open.savePicture(QStringLiteral("new-incident-form.png"));
        // On the form, OK validates.
        open.fill(QString(), QString());
        open.clickOk();
        QCOMPARE(balloonTexts(), QStringList{kSubjectBalloon});
    }

    void cancelWhileCreatingAnAccountStepsBackFirst()
    {
        HostControl::setSignedIn(false);
        OpenDialog open;
        emit open.control<QLabel>("createAccountLink")->linkActivated(QStringLiteral("#create"));
        QTest::mouseClick(open.dialog.cancelButton(), Qt::LeftButton);
        QVERIFY(open.dialog.isVisible());
        QCOMPARE(open.dialog.okButton()->text(), QStringLiteral("Sign in"));
        QTest::mouseClick(open.dialog.cancelButton(), Qt::LeftButton);
        QVERIFY(!open.dialog.isVisible());
        QCOMPARE(open.dialog.result(), int(QDialog::Rejected));
    }

    void validatesInOrder_data()
    {
        QTest::addColumn<QString>("subject");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("limit");
        QTest::addColumn<QString>("balloon");
        auto row = [](const char* name, const char* subject, const char* message, int limit,
                      QString balloon) {
            QTest::newRow(name) << QString(subject) << QString(message) << limit << balloon;
        };
        row("both empty", "", "", kMessageLimit, kSubjectBalloon);
        row("subject of spaces", "   ", "hello", kMessageLimit, kSubjectBalloon);
        row("no message", "Printer", "", kMessageLimit, kMessageBalloon);
        row("message of white space", "Printer", " \n\t ", kMessageLimit, kMessageBalloon);
        row("too long", "Printer", "eleven char", 10, kTooLongBalloon);
        row("too long and no subject", "", "eleven char", 10, kSubjectBalloon);
    }

    void validatesInOrder()
    {
        QFETCH(QString, subject);
        QFETCH(QString, message);
        QFETCH(int, limit);
        QFETCH(QString, balloon);
        const QString at = balloon == kSubjectBalloon ? "subjectEdit" : "messageEdit";
        HostControl::setMessageLengthLimit(limit);
        OpenDialog open;
        open.dialog.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&open.dialog));
        open.fill(subject, message);
        open.clickOk();

        QCOMPARE(balloonTexts(), QStringList{balloon});
        const QVariantMap details = balloons()[0].details;
        QCOMPARE(details.value("widget").toString(), at);
        QCOMPARE(details.value("icon").toInt(), int(QMessageBox::Critical));
        if (balloon != kTooLongBalloon)
            QCOMPARE(QApplication::focusWidget()->objectName(), at);
        QCOMPARE(open.page(), int(CNewIncidentDialog::FormPage));
        QVERIFY(open.dialog.okButton()->isEnabled());
        QTest::qWait(20);
        QVERIFY(ticketRequests().isEmpty());
    }

    void counterFollowsEveryKeystroke()
    {
        OpenDialog open;
        QString typed;
        for (const QChar c : QStringLiteral("  Hi there")) {
            QTest::keyClick(open.message(), c.toLatin1());
            typed += c;
            QCOMPARE(open.counter(), counterFor(typed.trimmed()));
        }
        QTest::keyClick(open.message(), Qt::Key_Backspace);
        QCOMPARE(open.counter(), counterFor(QStringLiteral("Hi ther")));
        HostControl::setMessageLengthLimit(5);
        QTest::keyClick(open.message(), 'x');
        QCOMPARE(open.counter(), counterFor(QStringLiteral("Hi therx")));
        QVERIFY(open.counter().endsWith(QStringLiteral("5")));
    }

    void createsTheConversationBehindABusyPage_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("reason");
        QTest::newRow("created") << 0 << "";
        QTest::newRow("timeout") << 504 << "timeout";
        QTest::newRow("server error") << 500 << "Internal error";
    }

    void createsTheConversationBehindABusyPage()
    {
        QFETCH(int, status);
        QFETCH(QString, reason);
        HostControl::setHoldRequests(true);
        OpenDialog open;
        QSignalSpy created(&open.dialog, &CNewIncidentDialog::newIncidentCreated);
        QSignalSpy finished(&open.dialog, &QDialog::finished);
        open.fill(QStringLiteral("  Printer jams  "), QStringLiteral("\n It jams on page two. \n"));
        open.clickOk();

        QCOMPARE(open.page(), int(CNewIncidentDialog::BusyPage));
        QVERIFY(!open.dialog.okButton()->isEnabled());
        QCOMPARE(open.control<CBusyStateCtl>("busyStateCtl")->busyText(),
                 QStringLiteral("Creating new communication..."));
        open.savePicture(QStringLiteral("new-incident-busy.png"));
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);
        const HostControl::Request request = HostControl::pendingRequests().first();
        QVERIFY(request.body.contains("Printer jams\""));
        QVERIFY(request.body.contains("It jams on page two.\""));

        if (status) {
            QVERIFY(HostControl::failRequest(request.id, status, reason));
            QTRY_VERIFY(open.dialog.okButton()->isEnabled());
            QCOMPARE(open.page(), int(CNewIncidentDialog::FormPage));
            QCOMPARE(balloonTexts(),
                     QStringList{"Sorry, we couldn't start chat with Support. Please try again "
                                 "later. Error reason: " +
                                 reason});
            QCOMPARE(balloons()[0].details.value("widget").toString(), QStringLiteral("messageEdit"));
            QVERIFY(open.dialog.isVisible());
            QCOMPARE(created.count(), 0);
            // The form is kept: a second try goes through.
            HostControl::setHoldRequests(false);
            open.clickOk();
        } else {
            QVERIFY(HostControl::releaseRequest(request.id));
        }
        QTRY_COMPARE(created.count(), 1);
        const auto entity = created.first().first().value<EntityDto::EntityDto>();
        QVERIFY(!entity.id.isEmpty());
        QCOMPARE(entity.attributeValue(QStringLiteral("SUBJECT")).toString(), QStringLiteral("Printer jams"));
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toInt(), 0);
        QVERIFY(!open.dialog.isVisible());
        QCOMPARE(balloons().size(), status ? 1 : 0);
    }

    void cancelAbortsTheRunningRequest_data()
    {
        QTest::addColumn<bool>("escape");
        QTest::newRow("Cancel button") << false;
        QTest::newRow("Escape key") << true;
    }

    void cancelAbortsTheRunningRequest()
    {
        QFETCH(bool, escape);
        HostControl::setHoldRequests(true);
        OpenDialog open;
        QSignalSpy created(&open.dialog, &CNewIncidentDialog::newIncidentCreated);
        open.fill(QStringLiteral("Printer"), QStringLiteral("It jams."));
        open.clickOk();
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);
        // A server that never answers: waiting changes nothing, Cancel still works.
        QTest::qWait(100);
        QCOMPARE(open.page(), int(CNewIncidentDialog::BusyPage));
        if (escape)
            QTest::keyClick(&open.dialog, Qt::Key_Escape);
        else
            QTest::mouseClick(open.dialog.cancelButton(), Qt::LeftButton);
        QVERIFY(!open.dialog.isVisible());
        QCOMPARE(open.dialog.result(), int(QDialog::Rejected));

        HostControl::releaseAllRequests();
        QTest::qWait(50);
        QCOMPARE(created.count(), 0);
        QVERIFY(balloons().isEmpty());
    }

    void oneMegabyteMessage()
    {
        const QString line =
            QStringLiteral("The printer jams on page two whenever duplex is switched on.  \n");
        const QString huge = line.repeated(1024 * 1024 / line.size());
        OpenDialog open;
        open.fill(QStringLiteral("Big"), huge);
        QCOMPARE(open.counter(), counterFor(huge.trimmed()));
        open.clickOk();
        QCOMPARE(balloonTexts(), QStringList{kTooLongBalloon});
        QVERIFY(ticketRequests().isEmpty());

        // Where the server takes it, it goes through whole.
        HostControl::setMessageLengthLimit(2 * 1024 * 1024);
        QSignalSpy created(&open.dialog, &CNewIncidentDialog::newIncidentCreated);
        open.clickOk();
        QTRY_COMPARE(created.count(), 1);
        QCOMPARE(ticketRequests().size(), 1);
        QVERIFY(ticketRequests().first().body.size() > huge.size());
    }
};

HOST_TEST_MAIN(TestNewIncidentDialog)
#include "tst_newincidentdialog.moc"
