#pragma once
// The plugin's page as the host shows it, for benchmarks that select a conversation through the plugin and
// the simulated server and wait until its thread is shown.

#include "CCommunicationObjectModel.h"
#include "CConversationView.h"
#include "CMessageGroups.h"
#include "CNewsReaderPlugin.h"

#include <QPointer>
#include <QProgressBar>
#include <QScrollBar>
#include <QTest>
#include <QTextBrowser>

#include <algorithm>
#include <memory>

struct PluginScreen
{
    std::unique_ptr<CNewsReaderPlugin> plugin = std::make_unique<CNewsReaderPlugin>();
    QPointer<QWidget> view;

    explicit PluginScreen(const QSize& size)
    {
        view = plugin->getPluginView(nullptr);
        view->resize(size);
        view->show();
        plugin->setIsSelected(true);
    }
    ~PluginScreen() { delete view; }

    QTextBrowser* thread() const { return view->findChild<QTextBrowser*>(QStringLiteral("issueMessages")); }
    bool busy() const
    {
        return !view->findChild<QProgressBar*>(QStringLiteral("messagesProgress"))
                    ->property("stopProgressBarAnimation")
                    .toBool();
    }
    QModelIndex item(const QString& key) const
    {
        return static_cast<CCommunicationObjectModel*>(plugin->getPluginModel().get())->indexForKey(key);
    }
    // Selects the conversation and waits until the thread shows what it opens with: all of a short thread,
    // the newest messages of a long one (the opening message counts as one).
    bool open(const QString& key, int messages) const
    {
        plugin->onPluginItemSelected(item(key), QModelIndex());
        auto* document = thread()->document();
        const qsizetype shown = std::min<qsizetype>(messages + 1, CConversationView::kShownAtOpen);
        return QTest::qWaitFor([&] { return !busy() && CMessageGroups::messageCount(document) >= shown; },
                               120000);
    }
    // Waits until the view is at its end and has painted it.
    void paintEnd() const
    {
        QScrollBar* bar = thread()->verticalScrollBar();
        (void)QTest::qWaitFor([bar] { return bar->value() == bar->maximum(); }, 60000);
        thread()->viewport()->repaint();
    }
};
