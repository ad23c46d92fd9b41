#pragma once

#include "CViewModelWithCaption.h"

class CPropertyBag;

// A view model that can keep state in the host's settings store between runs.
class BASELIB_EXPORT CViewModelPersistent : public CViewModelWithCaption
{
    Q_OBJECT
public:
    explicit CViewModelPersistent(QObject* parent = nullptr);
    ~CViewModelPersistent() override;

    virtual void save(CPropertyBag& bag) const;
    virtual void load(const CPropertyBag& bag);
};
