#include "FakeListPlugin.h"

#include <QLabel>

FakeListPlugin::FakeListPlugin(QObject* parent)
    : CAbstractKolPlugin(parent)
{}

void FakeListPlugin::onPluginItemSelected(const QModelIndex& index, const QModelIndex&)
{
    selected.append(index);
}

void FakeListPlugin::onPluginItemActivated(const QModelIndex& index)
{
    activated.append(index);
}

QWidget* FakeListPlugin::createEmptyListWidget()
{
    if (m_model->rowCount() > 0)
        return nullptr;
    ++emptyWidgetsCreated;
    lastEmptyWidget = new QLabel(QStringLiteral("Nothing here yet"));
    return lastEmptyWidget;
}

QWidget* FakeListPlugin::releaseEmptyListWidget()
{
    ++emptyWidgetsReleased;
    return nullptr;
}
