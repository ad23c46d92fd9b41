#include "CControlLookup.h"

#include "CViewModelBase.h"

#include <QDebug>

#include <stdexcept>

QWidget* CControlLookup::viewOf(const CViewModelBase* viewModel)
{
    QWidget* view = viewModel ? viewModel->getViewWidget() : nullptr;
    if (!view) {
        const QString className =
            viewModel ? QString::fromLatin1(viewModel->metaObject()->className()) : QString();
        fail(QObject::tr("No view loaded for model %1").arg(className));
    }
    return view;
}

void CControlLookup::fail(const QString& message)
{
    qCritical().noquote() << message;
    throw std::runtime_error(message.toUtf8().toStdString());
}

void CControlLookup::failMissingControl(const QWidget* widget, const QString& name)
{
    const QString className = widget ? QString::fromLatin1(widget->metaObject()->className()) : QString();
    fail(QObject::tr("%1. No control found: %2").arg(className, name));
}
