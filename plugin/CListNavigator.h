#pragma once
// What the plugin asks of the host's navigation list: the entry to select (expanding its folder first),
// folders to open again and row editors (the hide buttons) after the list was rebuilt, the entry to start on,
// and an entry the host asked to show that is not listed yet, selected as soon as a population lists it.

#include <QModelIndex>
#include <QString>

class CCommunicationObjectModel;
class CNewsReaderPlugin;

class CListNavigator
{
public:
    CListNavigator(CNewsReaderPlugin& plugin, const CCommunicationObjectModel& model);

    // After the host rebuilt its list: folders open as they were, row editors, and `current` (or the start
    // item) selected again.
    void restore(const QModelIndex& current);
    void select(const QModelIndex& index);
    // The entry (not a folder) with the key `id`.
    QModelIndex find(const QString& id) const;
    // The first entry of the first folder, unless that folder asks for no start selection.
    QModelIndex startItem() const;

    // The host asks to show the entry `id`: selected now when it is listed, otherwise by the first
    // population that lists it. Returns whether it is listed now.
    bool request(const QString& id);
    // After a population: selects the requested entry if it is listed now.
    void selectRequested();

private:
    CNewsReaderPlugin& m_plugin;
    const CCommunicationObjectModel& m_model;
    QString m_requested;
};
