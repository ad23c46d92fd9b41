// The navigation tree of one plugin: the plugin's requests reach the tree, the user's clicks reach the
// plugin once, persistent editors follow the model, the empty-list widget takes the tree's place while the
// list is empty, and the attention animation follows begin/stop.

#include "AttentionAnimator.h"
#include "FakeListPlugin.h"
#include "HostTestMain.h"
#include "PluginHeader.h"
#include "PluginNavigator.h"

#include <QSignalSpy>
#include <QTreeView>

namespace {
constexpr int kPulseWatchMs = 1800;
} // namespace

class TestPluginNavigator : public QObject
{
    Q_OBJECT
private:
    // A folder "Inbox" with two children; the second child is editable.
    void fillModel()
    {
        auto* inbox = new QStandardItem(QStringLiteral("Inbox"));
        auto* first = new QStandardItem(QStringLiteral("First"));
        auto* second = new QStandardItem(QStringLiteral("Second"));
        first->setEditable(false);
        inbox->setEditable(false);
        second->setEditable(true);
        inbox->appendRow(first);
        inbox->appendRow(second);
        m_plugin->model()->appendRow(inbox);
    }
    QModelIndex folder() const { return m_plugin->model()->index(0, 0); }
    QModelIndex child(int row) const { return m_plugin->model()->index(row, 0, folder()); }

    FakeListPlugin* m_plugin = nullptr;
    PluginNavigator* m_navigator = nullptr;

private slots:
    void init() { m_plugin = new FakeListPlugin; }

    void cleanup()
    {
        delete m_navigator;
        m_navigator = nullptr;
        delete m_plugin;
        m_plugin = nullptr;
    }

    void carriesOutTheTreeRequestsOfThePlugin()
    {
        fillModel();
        m_navigator = new PluginNavigator(m_plugin);
        QTreeView* tree = m_navigator->treeView();

        emit m_plugin->listItemExpandRequest(folder());
        QVERIFY(tree->isExpanded(folder()));

        emit m_plugin->listItemSelectionRequest(child(1), QItemSelectionModel::ClearAndSelect |
                                                              QItemSelectionModel::Rows);
        QCOMPARE(tree->currentIndex(), child(1));
        QVERIFY(tree->selectionModel()->isSelected(child(1)));
        QVERIFY(!m_plugin->selected.isEmpty());
        QCOMPARE(QModelIndex(m_plugin->selected.last()), child(1));

        emit m_plugin->listItemCollapseRequest(folder());
        QVERIFY(!tree->isExpanded(folder()));

        emit m_plugin->listItemEditorRequest(child(0));
        QVERIFY(tree->isPersistentEditorOpen(child(0)));
    }

    void reportsSelectionAndOneActivationPerClick()
    {
        fillModel();
        m_navigator = new PluginNavigator(m_plugin);
        m_navigator->resize(300, 400);
        m_navigator->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_navigator));
        QSignalSpy pageRequests(m_navigator, &PluginNavigator::pageRequested);
        QTreeView* tree = m_navigator->treeView();

        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualRect(folder()).center());
        QCOMPARE(m_plugin->activated.size(), 1);
        QCOMPARE(QModelIndex(m_plugin->activated.first()), folder());
        QCOMPARE(QModelIndex(m_plugin->selected.last()), folder());
        QCOMPARE(pageRequests.size(), 1);

        // Keyboard activation is not part of a click: it counts on its own.
        emit tree->activated(folder());
        QTest::qWait(QApplication::doubleClickInterval() + 50);
        emit tree->activated(folder());
        QCOMPARE(m_plugin->activated.size(), 2);
    }

    void opensPersistentEditorsOnEditableItems()
    {
        fillModel();
        m_navigator = new PluginNavigator(m_plugin);
        QTreeView* tree = m_navigator->treeView();
        QVERIFY(QTest::qWaitFor([&] { return tree->isPersistentEditorOpen(child(1)); }));
        QVERIFY(!tree->isPersistentEditorOpen(child(0)));
        QVERIFY(!tree->isPersistentEditorOpen(folder()));

        // Rows that arrive later get theirs too.
        auto* third = new QStandardItem(QStringLiteral("Third"));
        third->setEditable(true);
        m_plugin->model()->item(0)->appendRow(third);
        QVERIFY(QTest::qWaitFor([&] { return tree->isPersistentEditorOpen(child(2)); }));
    }

    void showsEmptyListWidgetWhileTheListIsEmpty()
    {
        m_navigator = new PluginNavigator(m_plugin);
        QVERIFY(QTest::qWaitFor([&] { return m_navigator->isShowingEmptyListWidget(); }));
        QCOMPARE(m_plugin->emptyWidgetsCreated, 1);
        QPointer<QWidget> emptyWidget = m_plugin->lastEmptyWidget;
        QVERIFY(emptyWidget);
        QVERIFY(m_navigator->isAncestorOf(emptyWidget));

        // Further changes that leave the list empty keep the same widget.
        m_plugin->model()->setRowCount(0);
        QTest::qWait(10);
        QCOMPARE(m_plugin->emptyWidgetsCreated, 1);

        fillModel();
        QVERIFY(QTest::qWaitFor([&] { return !m_navigator->isShowingEmptyListWidget(); }));
        QCOMPARE(m_plugin->emptyWidgetsReleased, 1);
        QVERIFY(QTest::qWaitFor([&] { return emptyWidget.isNull(); }));

        // The plugin may also hand over a widget of its own and take it back.
        auto* ownWidget = new QWidget;
        emit m_plugin->showEmptyListWidgetRequest(ownWidget);
        QVERIFY(m_navigator->isShowingEmptyListWidget());
        emit m_plugin->hideEmptyListWidgetRequest();
        QVERIFY(!m_navigator->isShowingEmptyListWidget());
        QCOMPARE(m_plugin->emptyWidgetsReleased, 2);
    }

    void pulsesStrongerForUrgentAttention()
    {
        // Urgent news (mode -1) pulse the header at least to 0.7.
        const int mode = -1;
        const qreal minimumPeak = 0.7;
        const qreal maximumPeak = 1.0;
        m_navigator = new PluginNavigator(m_plugin);
        PluginHeader* header = m_navigator->header();

        emit m_plugin->beginPluginAnimation(m_plugin, mode);
        QVERIFY(m_navigator->attentionAnimator()->isRunning());
        qreal peak = 0.0;
        QElapsedTimer watch;
        watch.start();
        while (watch.elapsed() < kPulseWatchMs) {
            QTest::qWait(10);
            peak = qMax(peak, header->attentionLevel());
        }
        QVERIFY2(peak >= minimumPeak, qPrintable(QString::number(peak)));
        QVERIFY2(peak <= maximumPeak, qPrintable(QString::number(peak)));

        emit m_plugin->stopPluginAnimation(m_plugin);
        QVERIFY(!m_navigator->attentionAnimator()->isRunning());
        QCOMPARE(header->attentionLevel(), 0.0);
    }
};

HOST_TEST_MAIN(TestPluginNavigator)
#include "tst_pluginnavigator.moc"
