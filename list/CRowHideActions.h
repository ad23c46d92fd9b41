#pragma once
// The keyboard and context-menu way to hide a list row, beside the row's hide button (which is no Tab
// stop): Delete on the current row, or "Hide" in the row's context menu (right click, the Menu key or
// Shift+F10). Watches the list view that shows the rows; rows that cannot be hidden offer nothing. Owned by
// the list's item delegate.

#include <QObject>
#include <QPointer>

#include <functional>

class QAbstractItemView;
class QModelIndex;
class QPoint;
class QWidget;

class CRowHideActions : public QObject
{
public:
    using HideRequest = std::function<void(const QModelIndex&)>;

    // `canHide` tells which rows may be hidden; `hide` asks for a row to be hidden.
    CRowHideActions(std::function<bool(const QModelIndex&)> canHide, HideRequest hide, QObject* parent);

    // Starts watching the view whose viewport is (or contains) `viewport`; once per view.
    void watch(QWidget* viewport);

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void offerMenu(const QModelIndex& index, const QPoint& globalPos);

    std::function<bool(const QModelIndex&)> m_canHide;
    HideRequest m_hide;
    QPointer<QAbstractItemView> m_view;
};
