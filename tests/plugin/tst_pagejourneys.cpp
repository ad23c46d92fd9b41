// Paths a new user takes through the page: from the list to a sent message without a mouse, starting a
// conversation from wherever they are and seeing the request while support has not answered, a thread that
// says why it is empty, and the whole page and dialog in German.
#include "../translations/CatalogueReader.h"
#include "CNewIncidentDialog.h"
#include "ConversationScreen.h"
#include "HostTestMain.h"

#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QTranslator>
#include <QTreeView>

namespace {

constexpr int kRequestReceivedPage = 1;

// Runs `fill` on the modal dialog from inside its own event loop, once it is open.
void whenDialogOpens(QObject* context, std::function<void(CNewIncidentDialog*)> fill)
{
    QTimer::singleShot(0, context, [fill] {
        if (auto* dialog = qobject_cast<CNewIncidentDialog*>(QApplication::activeModalWidget()))
            fill(dialog);
    });
}

// Every text a widget tree shows or tells a screen reader, named by the widget that carries it.
QList<QPair<QString, QString>> shownTexts(const QWidget* root)
{
    QList<QPair<QString, QString>> texts;
    QList<QWidget*> widgets = root->findChildren<QWidget*>();
    widgets.prepend(const_cast<QWidget*>(root));
    for (const QWidget* widget : std::as_const(widgets)) {
        for (const char* property : {"text", "placeholderText", "toolTip", "windowTitle", "accessibleName"}) {
            const QString text = widget->property(property).toString();
            if (!text.isEmpty())
                texts.append({widget->objectName() + QLatin1Char('.') + QLatin1String(property), text});
        }
        if (const auto* combo = qobject_cast<const QComboBox*>(widget)) {
            for (int i = 0; i < combo->count(); ++i)
                texts.append({widget->objectName(), combo->itemText(i)});
        }
    }
    return texts;
}

} // namespace

class TestPageJourneys : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::loadDefaultScenario();
        HostControl::setSignedIn(true);
        HostControl::setShowBalloons(false);
        // News pages play no part here; the page without a web view is the same page.
        HostControl::setCanUseWebEngine(false);
        HostControl::setAllowed(QStringLiteral("allowUseIncidents"), true);
        HostControl::setAllowed(QStringLiteral("useZendeskTickets"), false);
        HostControl::clearEvents();
    }

    void keyboardOnlyFromListToSentMessage()
    {
        ConversationScreen screen;
        QWidget window;
        auto* layout = new QHBoxLayout(&window);
        auto* tree = new QTreeView;
        tree->setModel(screen.model());
        tree->setItemDelegate(screen.plugin->getPluginItemDelegate());
        tree->expandAll();
        for (const QModelIndex& row :
             screen.model()->match(screen.model()->index(0, 0), CCommunicationObjectModel::IsFolderRole,
                                   false, -1, Qt::MatchExactly | Qt::MatchRecursive))
            tree->openPersistentEditor(row);
        connect(tree->selectionModel(), &QItemSelectionModel::currentChanged, screen.plugin.get(),
                [&screen](const QModelIndex& index) { screen.plugin->onPluginItemSelected(index, {}); });
        layout->addWidget(tree);
        layout->addWidget(screen.view);
        window.resize(1280, 800);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        tree->setCurrentIndex(screen.model()->indexForKey(QStringLiteral("conv-printer")));
        QTRY_VERIFY(!screen.busy() && screen.messageCount() > 0);
        tree->setFocus();
        const QPersistentModelIndex chosen = tree->currentIndex();

        // Tab leaves the list without moving its selection and walks the page's visible controls to the
        // composer.
        QStringList visited;
        for (int step = 0; step < 20 && QApplication::focusWidget() != screen.editor(); ++step) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QWidget* focus = QApplication::focusWidget();
            QVERIFY(focus && focus->isVisible());
            QVERIFY2(!focus->accessibleName().isEmpty() || !focus->property("text").toString().isEmpty(),
                     qPrintable(focus->objectName()));
            visited << focus->objectName();
        }
        QCOMPARE(QModelIndex(chosen), tree->currentIndex());
        QCOMPARE(QApplication::focusWidget(), screen.editor());
        for (const char* stop : {"newConversationButton", "issueMessages", "boldButton", "strikeOutButton",
                                 "paragraphItemsCombo"})
            QVERIFY2(visited.contains(QLatin1String(stop)), qPrintable(visited.join(QLatin1Char(','))));

        QTest::keyClicks(screen.editor(), QStringLiteral("Sent without a mouse"));
        QTest::keyClick(screen.editor(), Qt::Key_Return, Qt::ControlModifier);
        QTRY_COMPARE(HostControl::threadMessages(QStringLiteral("conv-printer"))
                         .last()
                         .value(QStringLiteral("text"))
                         .toString(),
                     QStringLiteral("Sent without a mouse"));
        // Shift+Tab goes back the same way.
        QTest::keyClick(screen.editor(), Qt::Key_Backtab, Qt::ShiftModifier);
        QVERIFY(QApplication::focusWidget() != screen.editor());
    }

    void aNewConversationCanBeStartedFromEveryPage_data()
    {
        QTest::addColumn<bool>("zendesk");
        QTest::newRow("own conversations") << false;
        QTest::newRow("host with Zendesk tickets: none offered") << true;
    }

    void aNewConversationCanBeStartedFromEveryPage()
    {
        QFETCH(bool, zendesk);
        HostControl::setAllowed(QStringLiteral("useZendeskTickets"), zendesk);
        ConversationScreen screen;
        QVERIFY(screen.open(QStringLiteral("conv-printer")));
        for (const char* link : {"writeUsLabel", "folderWriteUsLabel", "noThreadWriteUsLabel"})
            QVERIFY2(screen.labelText(link).isEmpty() == zendesk, link);
        QVERIFY(!zendesk || screen.labelText("entryWriteUsLabel").isEmpty());
        auto* button = screen.control<QToolButton>("newConversationButton");
        QCOMPARE(button->isVisible(), !zendesk);
        QCOMPARE(button->accessibleName(), zendesk ? QString() : QStringLiteral("New conversation"));

        // Ctrl+N anywhere on the page, the button and each write-us link open the dialog; closing it changes
        // nothing. Other broadcasts of the host open nothing.
        QStringList titles;
        const auto closeDialog = [this, &titles] {
            whenDialogOpens(this, [&titles](CNewIncidentDialog* dialog) {
                titles << dialog->windowTitle();
                dialog->close();
            });
        };
        closeDialog();
        QTest::keyClick(screen.thread(), Qt::Key_N, Qt::ControlModifier);
        closeDialog();
        button->click();
        for (const char* link : {"writeUsLabel", "folderWriteUsLabel", "noThreadWriteUsLabel"}) {
            closeDialog();
            emit screen.control<QLabel>(link)->linkActivated(QStringLiteral("#write"));
        }
        vantrelApp->broadcastRequest(BroadcastShowAbout);
        QCOMPARE(titles, QStringList(zendesk ? 0 : 5, QStringLiteral("Write us a message")));
        QCOMPARE(HostControl::events(QStringLiteral("dialogExecuted")).size(), titles.size());
        if (zendesk)
            return;

        // The host's "write to support" selects the page and opens the dialog; after OK the new conversation
        // is selected and the page confirms the request with what was asked.
        screen.plugin->setIsSelected(false);
        whenDialogOpens(this, [](CNewIncidentDialog* dialog) {
            dialog->findChild<QLineEdit*>(QStringLiteral("subjectEdit"))->setText(QStringLiteral("Fax"));
            dialog->findChild<QPlainTextEdit*>(QStringLiteral("messageEdit"))
                ->setPlainText(QStringLiteral("The fax line is silent."));
            dialog->okButton()->click();
        });
        vantrelApp->broadcastRequest(BroadcastWriteToSupport);
        QVERIFY(screen.plugin->isSelected());
        QTRY_COMPARE(screen.page(), int(NoThreadPage));
        QCOMPARE(screen.page("noThreadStack"), kRequestReceivedPage);
        QCOMPARE(screen.labelText("noThreadSubject"), QStringLiteral("Fax"));
        QCOMPARE(screen.labelText("noThreadFirstMessage"), QStringLiteral("The fax line is silent."));
        const QString selected = HostControl::events(QStringLiteral("select"))
                                     .last()
                                     .details.value(QStringLiteral("key"))
                                     .toString();
        QCOMPARE(screen.item(selected).data(CCommunicationObjectModel::TitleRole).toString(),
                 QStringLiteral("Fax"));
    }

    void theThreadSaysWhileItLoads()
    {
        ConversationScreen screen;
        HostControl::setHoldRequests(true);
        screen.select(QStringLiteral("conv-printer"));
        auto* placeholder =
            screen.thread()->viewport()->findChild<QLabel*>(QStringLiteral("threadPlaceholder"));
        QTRY_VERIFY(placeholder && placeholder->isVisible());
        QCOMPARE(placeholder->text(), QStringLiteral("Loading the conversation…"));
        QCOMPARE(screen.thread()->accessibleDescription(), placeholder->text());
        HostControl::setHoldRequests(false);
        HostControl::releaseAllRequests();
        QTRY_VERIFY(screen.messageCount() > 0);
        QVERIFY(!placeholder->isVisible());
        QVERIFY(screen.thread()->accessibleDescription().isEmpty());
    }

    void germanUsersSeeNoEnglish()
    {
        CNewsReaderPlugin catalogueOwner;
        QVERIFY(catalogueOwner.installPluginTranslation(qApp, QStringLiteral("de")));
        QVERIFY(HostControl::installTranslations(QStringLiteral("de")));
        const auto english = CatalogueReader::untranslatedLooks(
                                 QStringLiteral(NEWSREADER_SOURCE_DIR "/translations/newsReader_de.ts")) +
                             CatalogueReader::untranslatedLooks(QStringLiteral(
                                 NEWSREADER_SOURCE_DIR "/host/baseLib/translations/baseLib_de.ts"));
        QVERIFY(english.size() > 80);

        // The page, every page of it, shows none of the English texts.
        {
            ConversationScreen screen;
            QVERIFY(screen.open(QStringLiteral("conv-printer")));
            for (const auto& [where, text] : shownTexts(screen.view))
                QVERIFY2(!english.contains(text), qPrintable(where + QStringLiteral(": ") + text));
        }

        // The dialog, signed out and after signing in (its buttons are named anew then).
        HostControl::setSignedIn(false);
        bool checked = false;
        whenDialogOpens(this, [&checked, &english](CNewIncidentDialog* dialog) {
            const auto check = [dialog, &english] {
                for (const auto& [where, text] : shownTexts(dialog)) {
                    if (english.contains(text))
                        return QString(where + QStringLiteral(": ") + text);
                }
                return QString();
            };
            QString failure = check();
            HostControl::scriptSignInResult(true);
            dialog->findChild<QLineEdit*>(QStringLiteral("signInEmail"))->setText(QStringLiteral("a@b.de"));
            dialog->findChild<QLineEdit*>(QStringLiteral("signInPassword"))
                ->setText(QStringLiteral("secret"));
            dialog->okButton()->click();
            const bool signedIn = QTest::qWaitFor(
                [dialog] { return dialog->okButton()->text() != QStringLiteral("Anmelden"); });
            if (!signedIn && failure.isEmpty())
                failure = QStringLiteral("the dialog stayed on its sign-in page");
            if (failure.isEmpty())
                failure = check();
            const QString cancel = dialog->cancelButton()->text();
            if (failure.isEmpty() &&
                (cancel == QStringLiteral("Cancel") || cancel == QStringLiteral("&Cancel")))
                failure = QStringLiteral("cancel button: ") + cancel;
            checked = failure.isEmpty();
            if (!failure.isEmpty())
                qWarning("%s", qPrintable(failure));
            dialog->close();
        });
        CNewsReaderPlugin plugin;
        plugin.onWriteUsLinkActivated();
        QVERIFY(checked);
    }
};

HOST_TEST_MAIN(TestPageJourneys)
#include "tst_pagejourneys.moc"
