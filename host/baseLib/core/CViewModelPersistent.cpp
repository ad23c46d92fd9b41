#include "CViewModelPersistent.h"

CViewModelPersistent::CViewModelPersistent(QObject* parent)
    : CViewModelWithCaption(parent)
{}

CViewModelPersistent::~CViewModelPersistent() = default;

// A model that keeps nothing between runs needs no override: the base stores and restores nothing, and
// leaves the bag untouched so that other models' keys survive.
void CViewModelPersistent::save(CPropertyBag& bag) const
{
    Q_UNUSED(bag)
}

void CViewModelPersistent::load(const CPropertyBag& bag)
{
    Q_UNUSED(bag)
}
