#pragma once
// Base of the host's view models: an object that owns a view loaded from a form of the host's form
// repository. The view is loaded on first request (View()); the subclass then finds its controls in
// setupView().

#include "baseLibGlobal.h"

#include <QObject>
#include <QPointer>
#include <QSizePolicy>

class QWidget;

class BASELIB_EXPORT CViewModelBase : public QObject
{
    Q_OBJECT
public:
    explicit CViewModelBase(QObject* parent = nullptr);
    ~CViewModelBase() override;

public slots:
    virtual void refreshView();

public:
    // The view, loaded into `parent` on first call.
    virtual QWidget* View(QWidget* parent = nullptr);
    virtual void registerSubViewModel(CViewModelBase* subModel);
    virtual void unregisterSubViewModel(CViewModelBase* subModel);
    virtual int sortKey() const;
    // The loaded view, or null.
    virtual QWidget* getViewWidget() const;
    // Resource name of the view's form.
    virtual QString getUiFormName() const;
    // Called once the form is loaded.
    virtual void setupView();
    virtual void refreshSubView(CViewModelBase* subModel);
    virtual void setSubViewActive(CViewModelBase* subModel, bool active);
    virtual void onActiveChanged(bool active);
    virtual QSizePolicy getSizePolicyForWidget() const;
    // Loads the form into `parent` and calls setupView(); false when the form cannot be loaded.
    virtual bool loadView(QWidget* parent);
    virtual void refreshBusyView();
    virtual QString getConfigurableObjectId() const;

protected:
    QList<QPointer<CViewModelBase>> m_subModels;
    QPointer<QWidget> m_view;
};
