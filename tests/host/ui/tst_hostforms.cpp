#include "CBusyStateCtl.h"
#include "CFormRepository.h"
#include "HostColors.h"
#include "HostTestMain.h"
#include "QtHelpersImages.h"
#include "SignInControl.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QStackedWidget>
#include <QTest>
#include <QTextBrowser>
#include <QToolButton>

namespace {

const QString kMainScreen = QStringLiteral("newsReader.mainScreen.ui");
const QString kCreateIncident = QStringLiteral("communications.createIncident.ui");
const QSize kMainScreenSize(1000, 700);
const QSize kDialogFormSize(640, 420);

// Review images are written only when this variable names a folder.
QString reviewFolder()
{
    return qEnvironmentVariable("NEWSREADER_REVIEW_PNG_DIR");
}

void saveForReview(QWidget* widget, const QString& fileName)
{
    const QString folder = reviewFolder();
    if (folder.isEmpty())
        return;
    QDir().mkpath(folder);
    widget->grab().save(QDir(folder).filePath(fileName));
}

int distinctColours(const QImage& image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            colours.insert(image.pixel(x, y));
    return colours.size();
}

} // namespace

class TestHostForms : public QObject
{
    Q_OBJECT

private slots:
    void holdsEveryNamedControl_data()
    {
        QTest::addColumn<QString>("form");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("type");
        const QList<QPair<const char*, const char*>> mainControls = {
            {"stackedWidget", "QStackedWidget"},
            {"newsStack", "QStackedWidget"},
            {"messageListView", "QWidget"},
            {"typingLabel", "QLabel"},
            {"issueMessages", "QTextBrowser"},
            {"noNewsLabel", "QLabel"},
            {"pendingMessageLabel", "QLabel"},
            {"writeUsLabel", "QLabel"},
            {"issueTitle", "QLabel"},
            {"issueState", "QLabel"},
            {"issueStateButton", "QToolButton"},
            {"issueCreateDate", "QLabel"},
            {"sendButton", "QToolButton"},
            {"addAttachment", "QToolButton"},
            {"attachmentsList", "QListView"},
            {"messageEditor", "QTextEdit"},
            {"richTextToolbar", "QWidget"},
            {"charsTypedLabel", "QLabel"},
            {"messagesProgress", "QProgressBar"},
            {"inputAreaFrame", "QWidget"},
            {"inputAreaStack", "QStackedWidget"},
            {"noThreadStack", "QStackedWidget"},
            {"boldButton", "QToolButton"},
            {"italicButton", "QToolButton"},
            {"strikeOutButton", "QToolButton"},
            {"paragraphItemsCombo", "QComboBox"},
        };
        for (const auto& [name, type] : mainControls)
            QTest::addRow("main %s", name) << kMainScreen << name << type;
        const QList<QPair<const char*, const char*>> dialogControls = {
            {"signInControl", "SignInControl"}, {"createAccountLink", "QLabel"},
            {"messageEdit", "QPlainTextEdit"},  {"subjectEdit", "QLineEdit"},
            {"PART_TitleArea", "QWidget"},      {"PART_DialogCaption", "QLabel"},
            {"charsTypedLabel", "QLabel"},      {"stackedWidget", "QStackedWidget"},
            {"busyStateCtl", "CBusyStateCtl"},
        };
        for (const auto& [name, type] : dialogControls)
            QTest::addRow("dialog %s", name) << kCreateIncident << name << type;
    }

    void holdsEveryNamedControl()
    {
        QFETCH(QString, form);
        QFETCH(QString, name);
        QFETCH(QString, type);
        QString error;
        std::unique_ptr<QWidget> widget(CFormRepository::load(form, nullptr, &error));
        QVERIFY2(widget, qPrintable(error));
        const QList<QWidget*> matches = widget->findChildren<QWidget*>(name);
        QCOMPARE(matches.size(), 1);
        QVERIFY2(
            matches.first()->inherits(type.toLatin1()),
            qPrintable(QStringLiteral("%1 is a %2").arg(name, matches.first()->metaObject()->className())));
    }

    void mainScreenPagesAreInTheirPlaces()
    {
        std::unique_ptr<QWidget> form(CFormRepository::load(kMainScreen, nullptr));
        QVERIFY(form);
        auto* pages = form->findChild<QStackedWidget*>("stackedWidget");
        QCOMPARE(pages->count(), 4);
        QCOMPARE(pages->currentIndex(), 0);
        QVERIFY(pages->widget(0)->findChild<QLabel*>("noNewsLabel"));
        QVERIFY(pages->widget(0)->findChild<QLabel*>("writeUsLabel")->text().contains("href="));
        QVERIFY(pages->widget(2)->findChild<QStackedWidget*>("noThreadStack"));
        QCOMPARE(form->findChild<QStackedWidget*>("noThreadStack")->count(), 2);
        auto* newsStack = pages->widget(3)->findChild<QStackedWidget*>("newsStack");
        QVERIFY(newsStack);
        QCOMPARE(newsStack->count(), 1); // the plugin adds the web view behind the conversation page
        QVERIFY(newsStack->widget(0)->findChild<QTextBrowser*>("issueMessages"));
        auto* input = form->findChild<QStackedWidget*>("inputAreaStack");
        QCOMPARE(input->count(), 2);
        QCOMPARE(input->widget(0)->objectName(), QStringLiteral("inputAreaFrame"));
        auto* progress = form->findChild<QProgressBar*>("messagesProgress");
        QCOMPARE(progress->maximum(), 0);
        QVERIFY(!progress->isTextVisible());
        QVERIFY(form->findChild<QTextBrowser*>("issueMessages")->frameShape() == QFrame::NoFrame);
        QCOMPARE(form->findChild<QTextEdit*>("messageEditor")->placeholderText(),
                 QStringLiteral("Write a message"));
    }

    void composerToolbarIsComplete()
    {
        std::unique_ptr<QWidget> form(CFormRepository::load(kMainScreen, nullptr));
        auto* toolbar = form->findChild<QWidget*>("richTextToolbar");
        for (const char* name : {"boldButton", "italicButton", "strikeOutButton"}) {
            auto* button = toolbar->findChild<QToolButton*>(name);
            QVERIFY2(button, name);
            QVERIFY2(button->isCheckable(), name);
        }
        QVERIFY(toolbar->findChild<QComboBox*>("paragraphItemsCombo"));
        // Every tool button of the toolbar is named after a host image.
        for (QToolButton* button : toolbar->findChildren<QToolButton*>())
            QVERIFY2(qtHelpers::images::contains(button->objectName()), qPrintable(button->objectName()));
    }

    void dialogPagesAreInTheirPlaces()
    {
        std::unique_ptr<QWidget> form(CFormRepository::load(kCreateIncident, nullptr));
        QVERIFY(form);
        auto* pages = form->findChild<QStackedWidget*>("stackedWidget");
        QCOMPARE(pages->count(), 3);
        QVERIFY(pages->widget(0)->findChild<SignInControl*>("signInControl"));
        QVERIFY(pages->widget(0)->findChild<QLabel*>("createAccountLink")->text().contains("href="));
        QVERIFY(pages->widget(1)->findChild<QLineEdit*>("subjectEdit"));
        QVERIFY(pages->widget(1)->findChild<QPlainTextEdit*>("messageEdit"));
        QVERIFY(pages->widget(2)->findChild<CBusyStateCtl*>("busyStateCtl"));
        // The title area lies outside the pages so that hiding it leaves them alone.
        auto* title = form->findChild<QWidget*>("PART_TitleArea");
        QVERIFY(!pages->isAncestorOf(title));
        QVERIFY(title->isAncestorOf(form->findChild<QLabel*>("PART_DialogCaption")));
    }

    void rendersAtItsWorkingSize_data()
    {
        QTest::addColumn<QString>("form");
        QTest::addColumn<QString>("stack");
        QTest::addColumn<int>("page");
        QTest::addColumn<QSize>("size");
        QTest::newRow("main empty list") << kMainScreen << "stackedWidget" << 0 << kMainScreenSize;
        QTest::newRow("main folder") << kMainScreen << "stackedWidget" << 1 << kMainScreenSize;
        QTest::newRow("main no thread") << kMainScreen << "stackedWidget" << 2 << kMainScreenSize;
        QTest::newRow("main conversation") << kMainScreen << "stackedWidget" << 3 << kMainScreenSize;
        QTest::newRow("dialog sign-in") << kCreateIncident << "stackedWidget" << 0 << kDialogFormSize;
        QTest::newRow("dialog form") << kCreateIncident << "stackedWidget" << 1 << kDialogFormSize;
        QTest::newRow("dialog busy") << kCreateIncident << "stackedWidget" << 2 << kDialogFormSize;
    }

    void rendersAtItsWorkingSize()
    {
        QFETCH(QString, form);
        QFETCH(QString, stack);
        QFETCH(int, page);
        QFETCH(QSize, size);
        std::unique_ptr<QWidget> widget(CFormRepository::load(form, nullptr));
        QVERIFY(widget);
        widget->setPalette(hostPalette());
        widget->findChild<QStackedWidget*>(stack)->setCurrentIndex(page);
        if (auto* busy = widget->findChild<CBusyStateCtl*>("busyStateCtl"))
            busy->setBusyText(QStringLiteral("Creating new communication..."));
        if (auto* title = widget->findChild<QLabel*>("issueTitle")) {
            title->setText(QStringLiteral("Cannot restore my backup"));
            widget->findChild<QLabel*>("issueState")->setText(QStringLiteral("Open"));
            widget->findChild<QLabel*>("issueCreateDate")
                ->setText(QStringLiteral("Created 12 March 2026, 10:41"));
            widget->findChild<QLabel*>("charsTypedLabel")->setText(QStringLiteral("0 / 4000"));
            for (QToolButton* button : widget->findChildren<QToolButton*>())
                button->setIcon(qtHelpers::images::icon(button->objectName()));
            widget->findChild<QToolButton*>("sendButton")->setIcon(qtHelpers::images::icon("send-message"));
            widget->findChild<QToolButton*>("addAttachment")->setIcon(qtHelpers::images::icon("attachment"));
            widget->findChild<QTextEdit*>("messageEditor")->setMaximumHeight(64);
        }
        widget->resize(size);
        widget->show();
        QVERIFY(QTest::qWaitForWindowExposed(widget.get()));
        QCOMPARE(widget->size(), size);
        const QImage image = widget->grab().toImage();
        QVERIFY2(distinctColours(image) > 4, "the page renders blank");
        // Nothing of the visible page may be squeezed to nothing.
        QWidget* current = widget->findChild<QStackedWidget*>(stack)->currentWidget();
        for (QWidget* child : current->findChildren<QWidget*>()) {
            if (child->isVisibleTo(widget.get()) && !qobject_cast<QStackedWidget*>(child->parentWidget()))
                QVERIFY2(child->height() > 0 && child->width() > 0, qPrintable(child->objectName()));
        }
        saveForReview(widget.get(), QStringLiteral("%1-page%2.png").arg(form.section('.', 1, 1)).arg(page));
    }
};

HOST_TEST_MAIN(TestHostForms)
#include "tst_hostforms.moc"
