// The plugin's main screen as the host loads it: initial state, composer keys, paste, height and the
// writing-to-support link.
#include "HostTestMain.h"

#include "CAttachmentsModel.h"
#include "CCommunicationObjectModel.h"
#include "CNewsReaderPlugin.h"
#include "ChatServiceApi.h"

#include <QAbstractTextDocumentLayout>
#include <QClipboard>
#include <QLabel>
#include <QListView>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTextEdit>
#include <QToolButton>

namespace {

// The plugin's view, loaded the way the host loads it, shown with the conversation page and its composer.
struct LoadedScreen
{
    std::unique_ptr<CNewsReaderPlugin> plugin = std::make_unique<CNewsReaderPlugin>();
    QPointer<QWidget> view = plugin->getPluginView(nullptr);
    QTextEdit* editor = control<QTextEdit>("messageEditor");

    LoadedScreen()
    {
        view->resize(900, 700);
        view->show();
        control<QStackedWidget>("stackedWidget")->setCurrentIndex(3);
        control<QStackedWidget>("newsStack")->setCurrentIndex(0);
        editor->setFocus();
    }
    ~LoadedScreen() { delete view; }

    template<typename T>
    T* control(const char* name) const
    {
        return view->findChild<T*>(QString::fromLatin1(name));
    }
    CAttachmentsModel* attachments() const
    {
        return qobject_cast<CAttachmentsModel*>(control<QListView>("attachmentsList")->model());
    }
    bool canSend() const { return control<QToolButton>("sendButton")->isEnabled(); }
    QString counter() const { return control<QLabel>("charsTypedLabel")->text(); }
};

QString counterFor(const QString& text)
{
    QString counter;
    ChatServiceApi::checkCommunicationLength(text, counter);
    return counter;
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
        HostControl::setCanUseWebEngine(false);
        QGuiApplication::clipboard()->clear();
    }

    void typingEnablesSendingAndUpdatesTheCounter()
    {
        LoadedScreen screen;
        QVERIFY(!screen.canSend());
        QVERIFY(screen.control<QListView>("attachmentsList")->isHidden());
        QCOMPARE(screen.counter(), counterFor(QString()));
        QSignalSpy canSend(screen.plugin.get(), &CNewsReaderPlugin::notifyCanSendMessage);
        QTest::keyClicks(screen.editor, "Hello");
        QVERIFY(screen.canSend());
        QCOMPARE(canSend.last().first().toBool(), true);
        QCOMPARE(screen.counter(), counterFor("Hello"));
        // White space alone is nothing to send.
        screen.editor->setPlainText("   \n  ");
        QVERIFY(!screen.canSend());
    }

    void theComposerGrowsWithItsTextUpToAboutTenLines()
    {
        LoadedScreen screen;
        const auto heightFor = [&screen](int lines) {
            QStringList text;
            for (int i = 1; i <= lines; ++i)
                text << QStringLiteral("line %1").arg(i);
            screen.editor->setPlainText(text.join('\n'));
            screen.editor->document()->documentLayout()->documentSize();
            QCoreApplication::processEvents();
            return screen.editor->maximumHeight();
        };
        // At least room for three lines of the placeholder; at most about ten lines.
        const int floor = heightFor(0);
        QCOMPARE(heightFor(1), floor);
        QVERIFY(heightFor(6) > floor);
        const int lineSpacing = QFontMetrics(screen.editor->font()).lineSpacing();
        const int thirty = heightFor(30);
        QVERIFY2(thirty >= 9 * lineSpacing && thirty <= 13 * lineSpacing,
                 qPrintable(QString::number(thirty)));
        QCOMPARE(heightFor(60), thirty);
    }

    void pastingAPictureAttachesIt_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<bool>("picture");
        QTest::newRow("Ctrl+V picture") << int(Qt::Key_V) << int(Qt::ControlModifier) << true;
        QTest::newRow("Shift+Insert picture") << int(Qt::Key_Insert) << int(Qt::ShiftModifier) << true;
        QTest::newRow("Ctrl+V text") << int(Qt::Key_V) << int(Qt::ControlModifier) << false;
    }

    void pastingAPictureAttachesIt()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(bool, picture);
        LoadedScreen screen;
        QImage image(40, 30, QImage::Format_ARGB32);
        image.fill(Qt::darkCyan);
        if (picture)
            QGuiApplication::clipboard()->setImage(image);
        else
            QGuiApplication::clipboard()->setText("pasted words");
        QTest::keyClick(screen.editor, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(screen.attachments()->rowCount(), picture ? 1 : 0);
        QCOMPARE(screen.editor->toPlainText(), picture ? QString() : "pasted words");
    }

    void controlEnterSendsInsteadOfBreakingTheLine_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("blocks");
        QTest::newRow("Ctrl+Return") << int(Qt::Key_Return) << int(Qt::ControlModifier) << 1;
        QTest::newRow("Ctrl+Enter") << int(Qt::Key_Enter) << int(Qt::ControlModifier | Qt::KeypadModifier)
                                    << 1;
        QTest::newRow("Return") << int(Qt::Key_Return) << int(Qt::NoModifier) << 2;
    }

    void controlEnterSendsInsteadOfBreakingTheLine()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(int, blocks);
        LoadedScreen screen;
        QTest::keyClicks(screen.editor, "Hello");
        QTest::keyClick(screen.editor, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(screen.editor->document()->blockCount(), blocks);
        QCOMPARE(screen.editor->toPlainText().trimmed(), "Hello");
    }
};

HOST_TEST_MAIN(TestMainScreen)
#include "tst_mainscreen.moc"
