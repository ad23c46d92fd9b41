// The plugin's main screen as the host loads it: controls found and wired, initial state, composer keys,
// paste and height, the attachment list and the control lookup's fatal failures.
#include "HostTestMain.h"

#include "CAttachmentsModel.h"
#include "CCommunicationObjectModel.h"
#include "CControlLookup.h"
#include "CMessageItemsDocument.h"
#include "CNewsReaderPlugin.h"
#include "CNewsWebPage.h"
#include "CVantrelWebPage.h"
#include "CViewModelBase.h"
#include "ChatServiceApi.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFrame>
#include <QJsonObject>
#include <QLabel>
#include <QListView>
#include <QProgressBar>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>
#include <QWebEngineView>

#include <cmath>
#include <memory>
#include <stdexcept>

namespace {

const QSize kViewSize(900, 700);
// The page of "stackedWidget" that holds the selected conversation.
constexpr int kEntryPage = 3;

// The plugin's view, loaded the way the host loads it, shown and laid out.
struct LoadedScreen
{
    std::unique_ptr<CNewsReaderPlugin> plugin = std::make_unique<CNewsReaderPlugin>();
    QPointer<QWidget> view;

    LoadedScreen()
    {
        view = plugin->getPluginView(nullptr);
        if (!view)
            return;
        view->resize(kViewSize);
        view->show();
        if (!QTest::qWaitForWindowExposed(view))
            qWarning("The main screen was never exposed");
    }
    ~LoadedScreen() { delete view; }

    template<typename T>
    T* control(const char* name) const
    {
        return view ? view->findChild<T*>(QString::fromLatin1(name)) : nullptr;
    }
    // Shows the conversation page so that the composer is visible.
    void showComposer() const
    {
        control<QStackedWidget>("stackedWidget")->setCurrentIndex(kEntryPage);
        control<QStackedWidget>("newsStack")->setCurrentIndex(0);
    }
    CAttachmentsModel* attachments() const
    {
        return qobject_cast<CAttachmentsModel*>(control<QListView>("attachmentsList")->model());
    }
};

// Counts the presses of one key that reach a widget, e.g. ones its child left unhandled.
class KeyWitness : public QObject
{
public:
    explicit KeyWitness(int key)
        : m_key(key)
    {}
    int keyPresses = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == m_key)
            ++keyPresses;
        return false;
    }

private:
    const int m_key;
};

// A view model of another form, which lacks the main screen's controls.
class OtherFormModel : public CViewModelBase
{
public:
    QString getUiFormName() const override { return QStringLiteral("communications.createIncident.ui"); }
    void setupView() override { CControlLookup::find<QLabel>(this, QStringLiteral("typingLabel")); }
};

QString lookupFailure(const std::function<void()>& lookup)
{
    try {
        lookup();
    } catch (const std::runtime_error& error) {
        return QString::fromUtf8(error.what());
    }
    return QString();
}

qreal placeholderFloor(const QFont& font)
{
    QTextDocument placeholder;
    placeholder.setDefaultFont(font);
    placeholder.setPlainText(QStringLiteral("Write a message"));
    return 3 * placeholder.size().height();
}

QString numberedLines(int count)
{
    QStringList lines;
    for (int i = 1; i <= count; ++i)
        lines << QStringLiteral("line %1").arg(i);
    return lines.join(QLatin1Char('\n'));
}

} // namespace

class TestMainScreen : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::resetSwitches();
        HostControl::clearServer();
        HostControl::clearEvents();
        HostControl::setWindowsPE(false);
        HostControl::setCanUseWebEngine(false);
        QGuiApplication::clipboard()->clear();
    }

    void theLoadedViewHoldsEveryControl_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("type");
        const char* controls[][2] = {
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
        };
        for (const auto& control : controls)
            QTest::newRow(control[0]) << QString::fromLatin1(control[0]) << QString::fromLatin1(control[1]);
    }

    void theLoadedViewHoldsEveryControl()
    {
        QFETCH(QString, name);
        QFETCH(QString, type);
        LoadedScreen screen;
        QVERIFY(screen.view);
        QCOMPARE(screen.plugin->getViewWidget(), screen.view.data());
        QObject* control = screen.view->findChild<QWidget*>(name);
        QVERIFY(control);
        QVERIFY(control->inherits(type.toLatin1()));
    }

    void theScreenStartsStill()
    {
        LoadedScreen screen;
        QCOMPARE(screen.control<QStackedWidget>("stackedWidget")->currentIndex(), 0);
        QCOMPARE(screen.control<QStackedWidget>("inputAreaStack")->currentIndex(), 0);
        QVERIFY(!screen.control<QToolButton>("sendButton")->isEnabled());
        QVERIFY(screen.control<QListView>("attachmentsList")->isHidden());
        QCOMPARE(screen.control<QProgressBar>("messagesProgress")->property("stopProgressBarAnimation"),
                 QVariant(true));

        // The thread view shows the plugin's thread document.
        QVERIFY(
            qobject_cast<CMessageItemsDocument*>(screen.control<QTextBrowser>("issueMessages")->document()));
        // The counter shows what the host says about an empty message.
        QString emptyCounter;
        ChatServiceApi::checkCommunicationLength(QString(), emptyCounter);
        QVERIFY(!emptyCounter.isEmpty());
        QCOMPARE(screen.control<QLabel>("charsTypedLabel")->text(), emptyCounter);

        const QByteArray renderTo = qgetenv("NEWSREADER_RENDER_MAINSCREEN");
        if (!renderTo.isEmpty()) {
            screen.view->grab().save(QString::fromLocal8Bit(renderTo));
            screen.showComposer();
            screen.view->grab().save(QString::fromLocal8Bit(renderTo).replace(
                QStringLiteral(".png"), QStringLiteral("-composer.png")));
        }
    }

    void typingEnablesSendingAndUpdatesTheCounter()
    {
        LoadedScreen screen;
        screen.showComposer();
        auto* editor = screen.control<QTextEdit>("messageEditor");
        auto* send = screen.control<QToolButton>("sendButton");
        QSignalSpy canSend(screen.plugin.get(), &CNewsReaderPlugin::notifyCanSendMessage);

        editor->setFocus();
        QTest::keyClicks(editor, QStringLiteral("Hello"));
        QVERIFY(send->isEnabled());
        QCOMPARE(canSend.last().first().toBool(), true);
        QString counter;
        ChatServiceApi::checkCommunicationLength(QStringLiteral("Hello"), counter);
        QCOMPARE(screen.control<QLabel>("charsTypedLabel")->text(), counter);

        // White space alone is nothing to send.
        editor->setPlainText(QStringLiteral("   \n  "));
        QVERIFY(!send->isEnabled());
        QCOMPARE(canSend.last().first().toBool(), false);
    }

    void typingIntoAConversationKeepsItsDraft()
    {
        HostControl::addConversation(QJsonObject{{"id", "c-draft"}, {"subject", "Printer offline"}});
        LoadedScreen screen;
        auto model = std::static_pointer_cast<CCommunicationObjectModel>(screen.plugin->getPluginModel());
        QTRY_VERIFY(model->indexForKey(QStringLiteral("c-draft")).isValid());
        screen.plugin->setCurrentIndex(model->indexForKey(QStringLiteral("c-draft")));
        screen.showComposer();

        screen.control<QTextEdit>("messageEditor")->setPlainText(QStringLiteral("Still broken"));
        QTRY_VERIFY_WITH_TIMEOUT(!HostControl::drafts(QStringLiteral("c-draft")).isEmpty(), 10000);
        QVERIFY(HostControl::drafts(QStringLiteral("c-draft"))
                    .last()
                    .value(QStringLiteral("text"))
                    .toString()
                    .contains(QStringLiteral("Still broken")));
    }

    void writeUsLinkFollowsTheTicketSystem_data()
    {
        QTest::addColumn<bool>("zendesk");
        QTest::newRow("own tickets") << false;
        QTest::newRow("Zendesk") << true;
    }

    void writeUsLinkFollowsTheTicketSystem()
    {
        QFETCH(bool, zendesk);
        HostControl::setAllowed(QStringLiteral("allowUseIncidents"), true);
        HostControl::setAllowed(QStringLiteral("useZendeskTickets"), zendesk);
        LoadedScreen screen;
        auto* label = screen.control<QLabel>("writeUsLabel");
        QCOMPARE(label->text().isEmpty(), zendesk);

        // Close the dialog from inside its own event loop, should one open.
        QTimer::singleShot(0, this, [] {
            if (QWidget* dialog = QApplication::activeModalWidget())
                dialog->close();
        });
        emit label->linkActivated(QStringLiteral("#write"));
        QCOMPARE(HostControl::events(QStringLiteral("dialogExecuted")).size(), zendesk ? 0 : 1);
    }

    void theNewsViewNeedsWebEngineOutsideWindowsPE_data()
    {
        QTest::addColumn<bool>("canUseWebEngine");
        QTest::addColumn<bool>("windowsPE");
        QTest::addColumn<bool>("expected");
        QTest::newRow("allowed") << true << false << true;
        QTest::newRow("not allowed") << false << false << false;
        QTest::newRow("Windows PE") << true << true << false;
    }

    void theNewsViewNeedsWebEngineOutsideWindowsPE()
    {
        QFETCH(bool, canUseWebEngine);
        QFETCH(bool, windowsPE);
        QFETCH(bool, expected);
        HostControl::setCanUseWebEngine(canUseWebEngine);
        HostControl::setWindowsPE(windowsPE);
        LoadedScreen screen;
        auto* newsStack = screen.control<QStackedWidget>("newsStack");
        auto* webView = screen.view->findChild<QWebEngineView*>();
        QCOMPARE(webView != nullptr, expected);
        if (!expected) {
            QVERIFY(!screen.view->findChild<CVantrelWebPage*>());
            return;
        }
        QCOMPARE(newsStack->widget(newsStack->count() - 1), webView);
        QCOMPARE(webView->contextMenuPolicy(), Qt::NoContextMenu);
        auto* page = qobject_cast<CVantrelWebPage*>(webView->page());
        QVERIFY(page);
        // The page that shows nothing but the entry.
        QVERIFY(qobject_cast<CNewsWebPage*>(page));
        QVERIFY(page->alwaysOpenLinkInExternalBrowser());
    }

    void linksInTheThreadNeverNavigate()
    {
        LoadedScreen screen;
        screen.showComposer();
        auto* browser = screen.control<QTextBrowser>("issueMessages");
        QVERIFY(!browser->openLinks());
        QVERIFY(!browser->openExternalLinks());

        browser->document()->setHtml(
            QStringLiteral("<p><a href=\"https://example.com/page\">a link to click</a></p>"));
        QTextCursor cursor(browser->document());
        cursor.setPosition(3);
        const QPoint linkPoint = browser->cursorRect(cursor).center();
        QSignalSpy clicked(browser, &QTextBrowser::anchorClicked);
        QTest::mouseClick(browser->viewport(), Qt::LeftButton, Qt::NoModifier, linkPoint);

        QCOMPARE(clicked.size(), 1);
        QCOMPARE(clicked.first().first().toUrl(), QUrl(QStringLiteral("https://example.com/page")));
        QVERIFY(browser->source().isEmpty());
        QVERIFY(browser->toPlainText().contains(QStringLiteral("a link to click")));
        // The system browser opens it instead.
        const auto opened = HostControl::events(QStringLiteral("openLink"));
        QCOMPARE(opened.size(), 1);
        QCOMPARE(opened.first().details.value(QStringLiteral("url")).toString(),
                 QStringLiteral("https://example.com/page"));
    }

    void theComposerGrowsWithItsTextUpToAboutTenLines()
    {
        LoadedScreen screen;
        screen.showComposer();
        auto* editor = screen.control<QTextEdit>("messageEditor");
        const int floor = int(std::ceil(placeholderFloor(editor->font())));
        QCOMPARE(editor->maximumHeight(), floor);

        const auto heightFor = [editor](const QString& text) {
            editor->setPlainText(text);
            // The layout reports the new size as soon as the document is laid out.
            editor->document()->documentLayout()->documentSize();
            QCoreApplication::processEvents();
            return editor->maximumHeight();
        };
        // One line is less than the three-line floor.
        QCOMPARE(heightFor(QStringLiteral("short")), floor);
        const int lineSpacing = QFontMetrics(editor->font()).lineSpacing();
        const int sixLines = heightFor(numberedLines(6));
        QVERIFY2(sixLines > floor, qPrintable(QString::number(sixLines)));
        const int thirtyLines = heightFor(numberedLines(30));
        QVERIFY2(thirtyLines >= 9 * lineSpacing && thirtyLines <= 13 * lineSpacing,
                 qPrintable(QStringLiteral("%1 for line spacing %2").arg(thirtyLines).arg(lineSpacing)));
        QCOMPARE(heightFor(numberedLines(60)), thirtyLines);
        // Emptying it shrinks it back to the floor.
        QCOMPARE(heightFor(QString()), floor);
    }

    void theAttachmentListShowsWhileFilesAreAttached()
    {
        LoadedScreen screen;
        screen.showComposer();
        auto* list = screen.control<QListView>("attachmentsList");
        CAttachmentsModel* model = screen.attachments();
        QVERIFY(model);
        QTemporaryDir folder;
        const QString first = folder.filePath(QStringLiteral("report.txt"));
        const QString second = folder.filePath(QStringLiteral("photo.txt"));
        for (const QString& path : {first, second}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("content");
        }

        model->addFiles({first});
        QVERIFY(list->isVisible());
        model->addFiles({second});
        QCOMPARE(model->rowCount(), 2);
        QCOMPARE(list->maximumHeight(), model->preferredViewHeight());

        // Every row carries its own remove button.
        for (int row = model->rowCount() - 1; row >= 0; --row) {
            auto* remove = qobject_cast<QToolButton*>(list->indexWidget(model->index(row, 0)));
            QVERIFY(remove);
            QVERIFY(list->isVisible());
            remove->click();
        }
        QCOMPARE(model->rowCount(), 0);
        QVERIFY(list->isHidden());
    }

    void pastingAPictureAttachesIt_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<bool>("picture");
        QTest::newRow("Ctrl+V picture") << int(Qt::Key_V) << int(Qt::ControlModifier) << true;
        QTest::newRow("Shift+Insert picture") << int(Qt::Key_Insert) << int(Qt::ShiftModifier) << true;
        QTest::newRow("Ctrl+V text") << int(Qt::Key_V) << int(Qt::ControlModifier) << false;
        QTest::newRow("Shift+Insert text") << int(Qt::Key_Insert) << int(Qt::ShiftModifier) << false;
    }

    void pastingAPictureAttachesIt()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(bool, picture);
        LoadedScreen screen;
        screen.showComposer();
        auto* editor = screen.control<QTextEdit>("messageEditor");
        if (picture) {
            QImage image(40, 30, QImage::Format_ARGB32);
            image.fill(Qt::darkCyan);
            QGuiApplication::clipboard()->setImage(image);
        } else {
            QGuiApplication::clipboard()->setText(QStringLiteral("pasted words"));
        }

        editor->setFocus();
        QTest::keyClick(editor, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(screen.attachments()->rowCount(), picture ? 1 : 0);
        QCOMPARE(editor->toPlainText(), picture ? QString() : QStringLiteral("pasted words"));
        if (picture) {
            QVERIFY(screen.control<QListView>("attachmentsList")->isVisible());
            QVERIFY(screen.control<QToolButton>("sendButton")->isEnabled());
        }
    }

    void controlEnterSendsInsteadOfBreakingTheLine_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("blocks");
        QTest::addColumn<bool>("reachesParent");
        QTest::newRow("Ctrl+Return") << int(Qt::Key_Return) << int(Qt::ControlModifier) << 1 << false;
        QTest::newRow("Ctrl+Enter") << int(Qt::Key_Enter) << int(Qt::ControlModifier | Qt::KeypadModifier)
                                    << 1 << false;
        QTest::newRow("Return") << int(Qt::Key_Return) << int(Qt::NoModifier) << 2 << false;
        // The editor leaves Ctrl+Tab to its parents, and so does the composer.
        QTest::newRow("Ctrl+Tab") << int(Qt::Key_Tab) << int(Qt::ControlModifier) << 1 << true;
    }

    void controlEnterSendsInsteadOfBreakingTheLine()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(int, blocks);
        QFETCH(bool, reachesParent);
        LoadedScreen screen;
        screen.showComposer();
        auto* editor = screen.control<QTextEdit>("messageEditor");
        editor->setFocus();
        QTest::keyClicks(editor, QStringLiteral("Hello"));
        // A key the editor ignores travels on to its parent, unless the composer consumed it.
        KeyWitness parentWitness(key);
        editor->parentWidget()->installEventFilter(&parentWitness);
        QTest::keyClick(editor, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(editor->document()->blockCount(), blocks);
        QCOMPARE(parentWitness.keyPresses > 0, reachesParent);
        QCOMPARE(editor->toPlainText().trimmed(), QStringLiteral("Hello"));
    }

    void aMissingControlIsFatal()
    {
        QFrame form;
        auto* label = new QLabel(&form);
        label->setObjectName(QStringLiteral("sendButton"));

        // A control of the wrong type is as missing as one that is not there.
        const QString message = QStringLiteral("QFrame. No control found: sendButton");
        QTest::ignoreMessage(QtCriticalMsg, qPrintable(message));
        QCOMPARE(lookupFailure(
                     [&form] { CControlLookup::find<QToolButton>(&form, QStringLiteral("sendButton")); }),
                 message);
        QCOMPARE(CControlLookup::find<QLabel>(&form, QStringLiteral("sendButton")), label);

        QWidget plain;
        QTest::ignoreMessage(QtCriticalMsg, "QWidget. No control found: messageEditor");
        QCOMPARE(lookupFailure(
                     [&plain] { CControlLookup::find<QTextEdit>(&plain, QStringLiteral("messageEditor")); }),
                 QStringLiteral("QWidget. No control found: messageEditor"));

        // A view model whose form lacks a control stops its set-up, naming the form's widget class.
        OtherFormModel other;
        QTest::ignoreMessage(QtCriticalMsg,
                             QRegularExpression(QStringLiteral("No control found: typingLabel$")));
        const QString otherFailure = lookupFailure([&other] { other.View(); });
        QVERIFY(other.getViewWidget());
        QCOMPARE(otherFailure,
                 QStringLiteral("%1. No control found: typingLabel")
                     .arg(QString::fromLatin1(other.getViewWidget()->metaObject()->className())));
        delete other.getViewWidget();

        CNewsReaderPlugin plugin;
        QTest::ignoreMessage(QtCriticalMsg, "No view loaded for model CNewsReaderPlugin");
        QCOMPARE(lookupFailure(
                     [&plugin] { CControlLookup::find<QLabel>(&plugin, QStringLiteral("typingLabel")); }),
                 QStringLiteral("No view loaded for model CNewsReaderPlugin"));
    }
};

HOST_TEST_MAIN(TestMainScreen)
#include "tst_mainscreen.moc"
