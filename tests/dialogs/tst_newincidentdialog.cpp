// The new conversation dialog against the simulated support server: sign-in first, validation, the busy
// page, success, failure, cancel.
#include "HostTestMain.h"

#include "CBusyStateCtl.h"
#include "CNewIncidentDialog.h"
#include "ChatServiceApi.h"
#include "SignInControl.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTimer>

namespace {

const QString kSubjectBalloon =
    QStringLiteral("Please specify a subject of your inquiry to start chat with support.");
const QString kMessageBalloon = QStringLiteral("Please specify a message to start chat with support.");
constexpr int kMessageLimit = 4000;
const QString kTooLongBalloon = QStringLiteral("The message is too long, please make it shorter.");

QStringList balloonTexts()
{
    QStringList texts;
    for (const HostControl::Event& event : HostControl::events(QStringLiteral("balloon")))
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

    template<class T>
    T* control(const char* name) const
    {
        return dialog.findChild<T*>(QString::fromLatin1(name));
    }
    int page() const { return control<QStackedWidget>("stackedWidget")->currentIndex(); }
    QLineEdit* subject() const { return control<QLineEdit>("subjectEdit"); }
    QPlainTextEdit* message() const { return control<QPlainTextEdit>("messageEdit"); }
    QLabel* counter() const { return control<QLabel>("charsTypedLabel"); }

    void fill(const QString& subjectText, const QString& messageText)
    {
        subject()->setText(subjectText);
        message()->setPlainText(messageText);
    }
};

QString counterFor(const QString& text)
{
    QString counter;
    ChatServiceApi::checkCommunicationLength(text, counter);
    return counter;
}

} // namespace

class TestNewIncidentDialog : public QObject
{
    Q_OBJECT

    void savePicture(QWidget* widget, const QString& name)
    {
        const QString folder = qEnvironmentVariable("NEWSREADER_PNG_DIR");
        if (!folder.isEmpty())
            QVERIFY(widget->grab().save(QDir(folder).filePath(name)));
    }

private slots:
    void init()
    {
        HostControl::resetForTests();
        HostControl::setShowBalloons(false);
        HostControl::setMessageLengthLimit(kMessageLimit);
    }

    void signedInUserStartsOnTheForm()
    {
        OpenDialog open;
        QCOMPARE(open.page(), int(CNewIncidentDialog::FormPage));
        QVERIFY(open.control<QWidget>("PART_TitleArea")->isVisible());
        QCOMPARE(open.control<QLabel>("PART_DialogCaption")->text(), QStringLiteral("Write us a message!"));
        QCOMPARE(open.control<QLabel>("PART_DialogCaption")->font().pointSizeF(), 14.5);
        QVERIFY(!open.control<QLabel>("createAccountLink")->isVisible());
        QVERIFY(open.dialog.okButton()->isVisible());
        QVERIFY(open.dialog.okButton()->isEnabled());
        QVERIFY(open.dialog.cancelButton()->isEnabled());
        QVERIFY(open.dialog.okButton()->text() != QStringLiteral("Sign in"));
        QCOMPARE(open.counter()->text(), counterFor(QString()));
        QCOMPARE(open.dialog.palette().color(QPalette::Window), CVantrelApp::GetColor(34));
        open.dialog.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&open.dialog));
        QCOMPARE(QApplication::focusWidget(), open.subject());
        open.fill(QStringLiteral("Printer"), QStringLiteral("It jams."));
        savePicture(&open.dialog, QStringLiteral("new-incident-form.png"));
    }

    void signedOutUserSignsInFirst()
    {
        HostControl::setSignedIn(false);
        OpenDialog open;
        QCOMPARE(open.page(), int(CNewIncidentDialog::SignInPage));
        QVERIFY(!open.control<QWidget>("PART_TitleArea")->isVisible());
        QVERIFY(open.control<QLabel>("createAccountLink")->isVisible());
        QCOMPARE(open.dialog.okButton()->text(), QStringLiteral("Sign in"));
        QVERIFY(!open.dialog.okButton()->isEnabled());
        QCOMPARE(open.dialog.cancelButton()->text(), QStringLiteral("&Cancel"));
        QVERIFY(open.dialog.cancelButton()->isEnabled());
        savePicture(&open.dialog, QStringLiteral("new-incident-sign-in.png"));

        // OK submits the sign-in form; the subject and message are not looked at yet.
        open.control<QLineEdit>("signInEmail")->setText(QStringLiteral("alex.morgan@example.com"));
        open.control<QLineEdit>("signInPassword")->setText(QStringLiteral("secret"));
        QVERIFY(open.dialog.okButton()->isEnabled());
        HostControl::scriptSignInResult(true);
        QTest::mouseClick(open.dialog.okButton(), Qt::LeftButton);
        QVERIFY(balloonTexts().isEmpty());
        QVERIFY(ticketRequests().isEmpty());

        QTRY_COMPARE(open.page(), int(CNewIncidentDialog::FormPage));
        QVERIFY(open.control<QWidget>("PART_TitleArea")->isVisible());
        QVERIFY(!open.control<QLabel>("createAccountLink")->isVisible());
        QVERIFY(open.dialog.okButton()->isVisible());
        QVERIFY(open.dialog.okButton()->isEnabled());
        QVERIFY(open.dialog.okButton()->text() != QStringLiteral("Sign in"));
        const QDialogButtonBox plain(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        QCOMPARE(open.dialog.okButton()->text(), plain.button(QDialogButtonBox::Ok)->text());
        QCOMPARE(open.dialog.cancelButton()->text(), plain.button(QDialogButtonBox::Cancel)->text());
        QVERIFY(open.dialog.isVisible());

        // Once on the form, OK validates.
        QTest::mouseClick(open.dialog.okButton(), Qt::LeftButton);
        QCOMPARE(balloonTexts(), QStringList{kSubjectBalloon});
    }

    void failedSignInStaysOnTheSignInPage()
    {
        HostControl::setSignedIn(false);
        OpenDialog open;
        open.control<QLineEdit>("signInEmail")->setText(QStringLiteral("who@example.com"));
        open.control<QLineEdit>("signInPassword")->setText(QStringLiteral("wrong"));
        HostControl::scriptSignInResult(false, QStringLiteral("Wrong password"));
        QTest::mouseClick(open.dialog.okButton(), Qt::LeftButton);
        QVERIFY(!open.dialog.okButton()->isEnabled());
        QTRY_VERIFY(open.dialog.okButton()->isEnabled());
        QCOMPARE(open.page(), int(CNewIncidentDialog::SignInPage));
        QVERIFY(open.dialog.isVisible());
    }

    void createAccountLinkAndCancelStayInsideTheSignInControl()
    {
        HostControl::setSignedIn(false);
        OpenDialog open;
        auto* link = open.control<QLabel>("createAccountLink");
        emit link->linkActivated(QStringLiteral("#create"));
        QVERIFY(!link->isVisible());
        QCOMPARE(open.dialog.okButton()->text(), QStringLiteral("Create account"));

        // Cancel first steps back to signing in, then closes.
        QTest::mouseClick(open.dialog.cancelButton(), Qt::LeftButton);
        QVERIFY(open.dialog.isVisible());
        QVERIFY(link->isVisible());
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
        QTest::addColumn<QString>("at");
        QTest::newRow("both empty") << ""
                                    << "" << 4000 << kSubjectBalloon << "subjectEdit";
        QTest::newRow("subject of spaces") << "   "
                                           << "hello" << 4000 << kSubjectBalloon << "subjectEdit";
        QTest::newRow("no message") << "Printer"
                                    << "" << 4000 << kMessageBalloon << "messageEdit";
        QTest::newRow("message of white space") << "Printer"
                                                << " \n\t " << 4000 << kMessageBalloon << "messageEdit";
        QTest::newRow("too long") << "Printer"
                                  << "eleven char" << 10 << kTooLongBalloon << "messageEdit";
        QTest::newRow("too long and no subject") << ""
                                                 << "eleven char" << 10 << kSubjectBalloon << "subjectEdit";
    }

    void validatesInOrder()
    {
        QFETCH(QString, subject);
        QFETCH(QString, message);
        QFETCH(int, limit);
        QFETCH(QString, balloon);
        QFETCH(QString, at);
        HostControl::setMessageLengthLimit(limit);
        OpenDialog open;
        open.dialog.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&open.dialog));
        open.fill(subject, message);
        QTest::mouseClick(open.dialog.okButton(), Qt::LeftButton);

        const QList<HostControl::Event> balloons = HostControl::events(QStringLiteral("balloon"));
        QCOMPARE(balloons.size(), 1);
        QCOMPARE(balloons[0].details.value("text").toString(), balloon);
        QCOMPARE(balloons[0].details.value("widget").toString(), at);
        QCOMPARE(balloons[0].details.value("icon").toInt(), int(QMessageBox::Critical));
        if (balloon != kTooLongBalloon)
            QCOMPARE(QApplication::focusWidget()->objectName(), at);
        QCOMPARE(open.page(), int(CNewIncidentDialog::FormPage));
        QVERIFY(open.dialog.isVisible());
        QVERIFY(open.dialog.okButton()->isEnabled());
        QTest::qWait(20);
        QVERIFY(ticketRequests().isEmpty());
    }

    void counterFollowsEveryKeystroke()
    {
        OpenDialog open;
        QCOMPARE(open.counter()->text(), counterFor(QString()));
        const QString typed = QStringLiteral("  Hi there");
        QString sofar;
        for (const QChar c : typed) {
            QTest::keyClick(open.message(), c.toLatin1());
            sofar += c;
            QCOMPARE(open.counter()->text(), counterFor(sofar.trimmed()));
        }
        QTest::keyClick(open.message(), Qt::Key_Backspace);
        QCOMPARE(open.counter()->text(), counterFor(QStringLiteral("Hi ther")));
        HostControl::setMessageLengthLimit(5);
        QTest::keyClick(open.message(), 'x');
        QCOMPARE(open.counter()->text(), counterFor(QStringLiteral("Hi therx")));
        QVERIFY(open.counter()->text().endsWith(QStringLiteral("5")));
    }

    void createsTheConversationBehindABusyPage()
    {
        HostControl::setHoldRequests(true);
        OpenDialog open;
        QSignalSpy created(&open.dialog, &CNewIncidentDialog::newIncidentCreated);
        QSignalSpy finished(&open.dialog, &QDialog::finished);
        open.fill(QStringLiteral("  Printer jams  "), QStringLiteral("\n It jams on page two. \n"));
        QTest::mouseClick(open.dialog.okButton(), Qt::LeftButton);

        QCOMPARE(open.page(), int(CNewIncidentDialog::BusyPage));
        QVERIFY(!open.dialog.okButton()->isEnabled());
        QCOMPARE(open.control<CBusyStateCtl>("busyStateCtl")->busyText(),
                 QStringLiteral("Creating new communication..."));
        savePicture(&open.dialog, QStringLiteral("new-incident-busy.png"));
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);
        const HostControl::Request request = HostControl::pendingRequests().first();
        QVERIFY(request.path.contains(QStringLiteral("tickets")));
        QVERIFY(request.body.contains("Printer jams\""));
        QVERIFY(request.body.contains("It jams on page two.\""));
        QCOMPARE(created.count(), 0);

        QVERIFY(HostControl::releaseRequest(request.id));
        QTRY_COMPARE(created.count(), 1);
        const auto entity = created.first().first().value<EntityDto::EntityDto>();
        QVERIFY(!entity.id.isEmpty());
        QCOMPARE(entity.attributeValue(QStringLiteral("SUBJECT")).toString(), QStringLiteral("Printer jams"));
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toInt(), 0);
        QVERIFY(!open.dialog.isVisible());
        QCOMPARE(open.page(), int(CNewIncidentDialog::FormPage));
        QVERIFY(balloonTexts().isEmpty());
    }

    void failureShowsTheReasonAndKeepsTheForm_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("reason");
        QTest::newRow("timeout") << 504 << "timeout";
        QTest::newRow("server error") << 500 << "Internal error";
    }

    void failureShowsTheReasonAndKeepsTheForm()
    {
        QFETCH(int, status);
        QFETCH(QString, reason);
        HostControl::setHoldRequests(true);
        OpenDialog open;
        QSignalSpy created(&open.dialog, &CNewIncidentDialog::newIncidentCreated);
        open.fill(QStringLiteral("Printer"), QStringLiteral("It jams."));
        QTest::mouseClick(open.dialog.okButton(), Qt::LeftButton);
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);
        QVERIFY(HostControl::failRequest(HostControl::pendingRequests().first().id, status, reason));

        QTRY_VERIFY(open.dialog.okButton()->isEnabled());
        QCOMPARE(open.page(), int(CNewIncidentDialog::FormPage));
        const QList<HostControl::Event> balloons = HostControl::events(QStringLiteral("balloon"));
        QCOMPARE(balloons.size(), 1);
        QCOMPARE(balloons[0].details.value("text").toString(),
                 "Sorry, we couldn't start chat with Support. Please try again later. Error reason: " +
                     reason);
        QCOMPARE(balloons[0].details.value("widget").toString(), QStringLiteral("messageEdit"));
        QCOMPARE(created.count(), 0);
        QVERIFY(open.dialog.isVisible());

        // The form is kept: a second try goes through.
        HostControl::setHoldRequests(false);
        QTest::mouseClick(open.dialog.okButton(), Qt::LeftButton);
        QTRY_COMPARE(created.count(), 1);
        QVERIFY(!open.dialog.isVisible());
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
        QTest::mouseClick(open.dialog.okButton(), Qt::LeftButton);
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);
        // A server that never answers: waiting changes nothing, Cancel still works.
        QTest::qWait(100);
        QCOMPARE(open.page(), int(CNewIncidentDialog::BusyPage));
        QVERIFY(open.dialog.cancelButton()->isEnabled());

        if (escape)
            QTest::keyClick(&open.dialog, Qt::Key_Escape);
        else
            QTest::mouseClick(open.dialog.cancelButton(), Qt::LeftButton);
        QVERIFY(!open.dialog.isVisible());
        QCOMPARE(open.dialog.result(), int(QDialog::Rejected));

        HostControl::releaseAllRequests();
        QTest::qWait(50);
        QCOMPARE(created.count(), 0);
        QVERIFY(balloonTexts().isEmpty());
    }

    void oneMegabyteMessage()
    {
        // About a megabyte of ordinary prose, lines of 64 characters.
        const QString line =
            QStringLiteral("The printer jams on page two whenever duplex is switched on.  \n");
        const QString huge = line.repeated(1024 * 1024 / line.size());

        OpenDialog open;
        open.fill(QStringLiteral("Big"), huge);
        QCOMPARE(open.counter()->text(), counterFor(huge.trimmed()));
        QTest::mouseClick(open.dialog.okButton(), Qt::LeftButton);
        QCOMPARE(balloonTexts(), QStringList{kTooLongBalloon});
        QVERIFY(ticketRequests().isEmpty());

        // Where the server takes it, it goes through whole.
        HostControl::setMessageLengthLimit(2 * 1024 * 1024);
        QSignalSpy created(&open.dialog, &CNewIncidentDialog::newIncidentCreated);
        QTest::mouseClick(open.dialog.okButton(), Qt::LeftButton);
        QTRY_COMPARE(created.count(), 1);
        QCOMPARE(ticketRequests().size(), 1);
        QVERIFY(ticketRequests().first().body.size() > huge.size());
    }

    void runsThroughExecute()
    {
        CNewIncidentDialog dialog(nullptr);
        QSignalSpy created(&dialog, &CNewIncidentDialog::newIncidentCreated);
        QTimer::singleShot(0, &dialog, [&dialog] {
            dialog.findChild<QLineEdit*>(QStringLiteral("subjectEdit"))->setText(QStringLiteral("From exec"));
            dialog.findChild<QPlainTextEdit*>(QStringLiteral("messageEdit"))
                ->setPlainText(QStringLiteral("Hello"));
            dialog.okButton()->click();
        });
        QTimer::singleShot(5000, &dialog, &QDialog::reject); // never hang the test run
        QCOMPARE(dialog.Execute(), 0);
        QCOMPARE(created.count(), 1);
        QCOMPARE(dialog.size(), QSize(640, 480));
    }

    void aFormWithoutTheControlsIsAProgrammingError()
    {
        struct WrongForm : CNewIncidentDialog
        {
            using CNewIncidentDialog::CNewIncidentDialog;
            QString getFormResourceName() const override
            {
                return QStringLiteral("newsReader.mainScreen.ui");
            }
        };
        WrongForm dialog(nullptr);
        try {
            dialog.ensureLoaded();
            QFAIL("no error for a form without the dialog's controls");
        } catch (const std::runtime_error& error) {
            QCOMPARE(QString::fromUtf8(error.what()),
                     QStringLiteral("CKOLDialog (CNewIncidentDialog): no control found: signInControl"));
        }
    }
};

HOST_TEST_MAIN(TestNewIncidentDialog)
#include "tst_newincidentdialog.moc"
