#pragma once
// The plugin with its main screen shown and wired to a minimal navigation tree (what the plugin asks the host
// to select comes straight back), on the sample scenario, for tests of conversations end to end.

#include "CCommunicationObjectModel.h"
#include "CMessageGroups.h"
#include "CMessageItemsDocument.h"
#include "CNewsFetcher.h"
#include "CNewsReaderPlugin.h"
#include "CVantrelApp.h"
#include "HostControl.h"

#include <QLabel>
#include <QProgressBar>
#include <QTest>
#include <QTextBrowser>
#include <QTextEdit>
#include <QTextFrame>
#include <QToolButton>

#include <memory>

// The host reset to the sample scenario with its conversations listed and nothing recorded yet.
inline bool loadSampleServer()
{
    HostControl::resetForTests();
    HostControl::setCanUseWebEngine(false);
    HostControl::setShowBalloons(false);
    HostControl::loadDefaultScenario();
    const bool listed =
        QTest::qWaitFor([] { return vantrelApp->getNewsFetcher()->hasAny(CNewsFetcher::FilterIssues); });
    HostControl::clearRequestLog();
    HostControl::clearEvents();
    return listed;
}

struct ConversationScreen
{
    std::unique_ptr<CNewsReaderPlugin> plugin = std::make_unique<CNewsReaderPlugin>();
    QPointer<QWidget> view;

    ConversationScreen()
    {
        CNewsReaderPlugin* p = plugin.get();
        HostControl::recordPluginRequests(p);
        QObject::connect(p, &CAbstractKolPlugin::listItemSelectionRequest, p,
                         [p](const QModelIndex& index) { p->onPluginItemSelected(index, QModelIndex()); });
        view = plugin->getPluginView(nullptr);
        view->resize(900, 700);
        view->show();
        plugin->setIsSelected(true);
    }
    ~ConversationScreen() { delete view; }

    template<typename T>
    T* control(const char* name) const
    {
        return view ? view->findChild<T*>(QString::fromLatin1(name)) : nullptr;
    }
    CCommunicationObjectModel* model() const
    {
        return static_cast<CCommunicationObjectModel*>(plugin->getPluginModel().get());
    }
    QTextBrowser* thread() const { return control<QTextBrowser>("issueMessages"); }
    CMessageItemsDocument* document() const
    {
        return static_cast<CMessageItemsDocument*>(thread()->document());
    }
    QTextEdit* editor() const { return control<QTextEdit>("messageEditor"); }
    QString threadText() const { return document()->toPlainText(); }
    int messageCount() const { return int(CMessageGroups::messageCount(document())); }
    bool busy() const
    {
        return !control<QProgressBar>("messagesProgress")->property("stopProgressBarAnimation").toBool();
    }

    void select(const QString& key) const
    {
        plugin->onPluginItemSelected(model()->indexForKey(key), QModelIndex());
    }
    // Selects a conversation and waits until its thread has been loaded.
    bool open(const QString& key) const
    {
        select(key);
        return QTest::qWaitFor([this] { return !busy() && messageCount() > 0; });
    }
    void type(const QString& text) const
    {
        editor()->setFocus();
        QTest::keyClicks(editor(), text);
    }
    bool canSend() const { return control<QToolButton>("sendButton")->isEnabled(); }
};
