#include "CHostUiLoader.h"

#include "CBusyStateCtl.h"
#include "CIconControl.h"
#include "SignInControl.h"

CHostUiLoader::CHostUiLoader(QObject* parent)
    : QUiLoader(parent)
{}

QWidget* CHostUiLoader::createWidget(const QString& className, QWidget* parent, const QString& name)
{
    QWidget* widget = nullptr;
    if (className == QLatin1String("SignInControl"))
        widget = new SignInControl(parent);
    else if (className == QLatin1String("CBusyStateCtl"))
        widget = new CBusyStateCtl(parent);
    else if (className == QLatin1String("CIconControl"))
        widget = new CIconControl(parent);
    else
        return QUiLoader::createWidget(className, parent, name);

    widget->setObjectName(name);
    return widget;
}
