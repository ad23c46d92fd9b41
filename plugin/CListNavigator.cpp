#include "CListNavigator.h"

#include "CCommunicationObjectModel.h"
#include "CNewsReaderPlugin.h"

CListNavigator::CListNavigator(CNewsReaderPlugin& plugin, const CCommunicationObjectModel& model)
    : m_plugin(plugin)
    , m_model(model)
{}

void CListNavigator::restore(const QModelIndex& current)
{
    for (int row = 0; row < m_model.rowCount(); ++row) {
        const QModelIndex folder = m_model.index(row, 0);
        if (folder.data(CCommunicationObjectModel::ExpandedRole).toBool())
            emit m_plugin.listItemExpandRequest(folder);
        if (!folder.data(CCommunicationObjectModel::FolderIdRole).toBool())
            continue;
        for (int child = 0; child < m_model.rowCount(folder); ++child)
            emit m_plugin.listItemEditorRequest(m_model.index(child, 0, folder));
    }
    if (current.isValid())
        emit m_plugin.listItemSelectionRequest(current, CNewsReaderPlugin::kSelectRowFlags);
    else
        select(startItem());
}

void CListNavigator::select(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    if (!index.data(CCommunicationObjectModel::IsFolderRole).toBool())
        emit m_plugin.listItemExpandRequest(index.parent());
    emit m_plugin.listItemSelectionRequest(index, CNewsReaderPlugin::kSelectRowFlags);
}

QModelIndex CListNavigator::find(const QString& id) const
{
    const QModelIndex index = m_model.indexForKey(id);
    if (index.data(CCommunicationObjectModel::IsFolderRole).toBool())
        return {};
    return index;
}

QModelIndex CListNavigator::startItem() const
{
    const QModelIndex first = m_model.index(0, 0);
    if (!first.isValid() || first.data(CCommunicationObjectModel::FolderIdRole).toInt() ==
                                CNewsReaderPlugin::kNoStartSelectionFolderId)
        return {};
    return m_model.index(0, 0, first);
}

bool CListNavigator::request(const QString& id)
{
    m_requested = id;
    const QModelIndex listed = find(id);
    if (!listed.isValid())
        return false;
    select(listed);
    m_requested.clear();
    return true;
}

void CListNavigator::selectRequested()
{
    if (m_requested.isEmpty())
        return;
    const QModelIndex listed = find(m_requested);
    if (listed.isValid()) {
        select(listed);
        m_requested.clear();
    }
}
