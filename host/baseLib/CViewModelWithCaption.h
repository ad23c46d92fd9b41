#pragma once

#include "CViewModelBase.h"

#include <QIcon>
#include <QString>

// A view model with a caption and an icon, shown by the host where it lists pages.
class BASELIB_EXPORT CViewModelWithCaption : public CViewModelBase
{
    Q_OBJECT
public:
    explicit CViewModelWithCaption(QObject* parent = nullptr);
    ~CViewModelWithCaption() override;

    virtual QString getCaption() const;
    virtual QIcon getPluginIcon() const;
};
