#pragma once
// Base class of the host's page plugins. Implements IKolPlugin with the host's default behaviour and
// carries the plugin's requests to the host (navigation tree, toasts, attention animation) as signals.

#include "CViewModelPersistent.h"
#include "IKolPlugin.h"
#include "PluginVisibility.h"
#include "commonKolPluginGlobal.h"

#include <QItemSelectionModel>
#include <QMessageBox>
#include <QPointer>

class QTranslator;

class COMMONKOLPLUGIN_EXPORT CAbstractKolPlugin : public CViewModelPersistent, public IKolPlugin
{
    Q_OBJECT
    Q_INTERFACES(IKolPlugin)
public:
    explicit CAbstractKolPlugin(QObject* parent = nullptr);
    ~CAbstractKolPlugin() override;

    // View-model side, in the host's call order.
    virtual bool hasPluginView() const;
    virtual bool isMessengerModeDisabled() const;
    virtual PluginVisibility getPluginVisibility() const;
    virtual void onListItemExpanded(const QModelIndex& index);
    virtual void onListItemCollapsed(const QModelIndex& index);
    virtual bool keepItemSelected();
    virtual void setIsSelected(bool value);
    virtual void onPluginDeactivating();

    // Whether the host shows this page now.
    bool isSelected() const;

    // IKolPlugin with the host's defaults.
    QWidget* getPluginView(QWidget* parent) override;
    QString getPluginTitle() const override;
    int getSortWeight() const override;
    QWidget* releaseEmptyListWidget() override;
    QString getPluginName() const override;
    std::shared_ptr<QAbstractItemModel> getPluginModel() override;
    QAbstractItemDelegate* getPluginItemDelegate() override;
    void onPluginItemSelected(const QModelIndex& index, const QModelIndex& prev) override;
    void onPluginItemActivated(const QModelIndex& index) override;
    QWidget* createEmptyListWidget() override;
    void restoreSelection() override;
    void onPluginViewShown() override;
    QString getTranslationName() const override;
    QString getTooltip() const override;
    QString getPluginId() const override;
    bool isContentsFrameVisible() const override;
    bool isVisible() const override;
    int getViewItemIndentation() const override;
    bool getViewItemRootDecorated() const override;
    bool hasCustomToolbar() const override;
    bool installPluginTranslation(QObject* application, const QString& locale) override;

    // The plugin's item delegate; an earlier one is deleted.
    void setItemDelegate(QAbstractItemDelegate* delegate);
    QAbstractItemDelegate* itemDelegate() const;

signals:
    void listItemSelectionRequest(const QModelIndex& index, QItemSelectionModel::SelectionFlags flags);
    void listItemExpandRequest(const QModelIndex& index);
    void listItemCollapseRequest(const QModelIndex& index);
    void listItemEditorRequest(const QModelIndex& index);
    void showEmptyListWidgetRequest(QWidget* widget);
    void hideEmptyListWidgetRequest();
    // A toast with `text`; clicking it invokes `slot` (a SLOT() signature) of `receiver`.
    void pluginToastRequest(QObject* receiver, const QString& text, const char* slot, QMessageBox::Icon icon,
                            int timeout);
    void beginPluginAnimation(QObject* plugin, int mode);
    void stopPluginAnimation(QObject* plugin);
    // The page asks the host to show it (setIsSelected(true)) or reports that it is no longer shown.
    void pluginSelectionChanged(bool selected);

private:
    bool m_selected = false;
    QAbstractItemDelegate* m_delegate = nullptr;
    QPointer<QTranslator> m_translator;
};
