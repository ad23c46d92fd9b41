#include "CViewModelWithCaption.h"

CViewModelWithCaption::CViewModelWithCaption(QObject* parent)
    : CViewModelBase(parent)
{}

CViewModelWithCaption::~CViewModelWithCaption() = default;

QString CViewModelWithCaption::getCaption() const
{
    return QString();
}

QIcon CViewModelWithCaption::getPluginIcon() const
{
    return QIcon();
}
