#pragma once
// An in-process page plugin for the host's navigation tests: a plain item model, an empty-list widget when
// the model is empty, and a record of what the host called.

#include "CAbstractKolPlugin.h"

#include <QList>
#include <QPointer>
#include <QStandardItemModel>

class FakeListPlugin : public CAbstractKolPlugin
{
    Q_OBJECT
public:
    explicit FakeListPlugin(QObject* parent = nullptr);

    QStandardItemModel* model() const { return m_model.get(); }

    std::shared_ptr<QAbstractItemModel> getPluginModel() override { return m_model; }
    QString getCaption() const override { return QStringLiteral("Fake list"); }
    PluginVisibility getPluginVisibility() const override { return visibility; }
    // No form: the host shows its placeholder page.
    bool hasPluginView() const override { return false; }
    void onPluginItemSelected(const QModelIndex& index, const QModelIndex& prev) override;
    void onPluginItemActivated(const QModelIndex& index) override;
    QWidget* createEmptyListWidget() override;
    QWidget* releaseEmptyListWidget() override;

    QList<QPersistentModelIndex> selected;
    QList<QPersistentModelIndex> activated;
    int emptyWidgetsCreated = 0;
    int emptyWidgetsReleased = 0;
    QPointer<QWidget> lastEmptyWidget;
    int toastClicks = 0;
    PluginVisibility visibility = PluginVisible;

public slots:
    void onToastClicked() { ++toastClicks; }

private:
    std::shared_ptr<QStandardItemModel> m_model = std::make_shared<QStandardItemModel>();
};
