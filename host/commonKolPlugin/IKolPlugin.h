#pragma once
// The interface through which the host application drives a page plugin. A plugin module exposes one
// QObject that implements it (through CAbstractKolPlugin); the host finds it with qobject_cast.

#include <QModelIndex>
#include <QString>
#include <QtPlugin>

#include <memory>

class QAbstractItemDelegate;
class QAbstractItemModel;
class QWidget;

class IKolPlugin
{
public:
    virtual ~IKolPlugin() = default;

    // The page widget (loaded on first call) and how the host lists the page.
    virtual QWidget* getPluginView(QWidget* parent) = 0;
    virtual QString getPluginTitle() const = 0;
    virtual int getSortWeight() const = 0;

    // The host tells the plugin that it no longer shows the widget createEmptyListWidget() gave it.
    virtual QWidget* releaseEmptyListWidget() = 0;
    virtual QString getPluginName() const = 0;

    // The model and delegate of the host's navigation tree.
    virtual std::shared_ptr<QAbstractItemModel> getPluginModel() = 0;
    virtual QAbstractItemDelegate* getPluginItemDelegate() = 0;
    virtual void onPluginItemSelected(const QModelIndex& index, const QModelIndex& prev) = 0;
    virtual void onPluginItemActivated(const QModelIndex& index) = 0;

    // A widget the host shows in place of its tree while the model is empty (owned by the host), or null.
    virtual QWidget* createEmptyListWidget() = 0;
    virtual void restoreSelection() = 0;
    virtual void onPluginViewShown() = 0;

    virtual QString getTranslationName() const = 0;
    virtual QString getTooltip() const = 0;
    virtual QString getPluginId() const = 0;

    virtual bool isContentsFrameVisible() const = 0;
    virtual bool isVisible() const = 0;
    virtual int getViewItemIndentation() const = 0;
    virtual bool getViewItemRootDecorated() const = 0;
    virtual bool hasCustomToolbar() const = 0;

    // Loads "<translation name>_<locale>.qm" from the host's translation folder into `application`.
    virtual bool installPluginTranslation(QObject* application, const QString& locale) = 0;
};

#define IKolPlugin_iid "com.vantrel.KolApplication.IKolPlugin"
Q_DECLARE_INTERFACE(IKolPlugin, IKolPlugin_iid)
