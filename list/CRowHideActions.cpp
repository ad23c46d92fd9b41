#include "CRowHideActions.h"

#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>

CRowHideActions::CRowHideActions(std::function<bool(const QModelIndex&)> canHide, HideRequest hide,
                                 QObject* parent)
    : QObject(parent)
    , m_canHide(std::move(canHide))
    , m_hide(std::move(hide))
{}

void CRowHideActions::watch(QWidget* viewport)
{
    QWidget* widget = viewport;
    while (widget && !qobject_cast<QAbstractItemView*>(widget))
        widget = widget->parentWidget();
    auto* view = qobject_cast<QAbstractItemView*>(widget);
    if (!view || view == m_view)
        return;
    if (m_view) {
        m_view->removeEventFilter(this);
        m_view->viewport()->removeEventFilter(this);
    }
    m_view = view;
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
}

bool CRowHideActions::eventFilter(QObject* watched, QEvent* event)
{
    if (!m_view)
        return false;
    if (event->type() == QEvent::KeyPress && watched == m_view) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const QModelIndex current = m_view->currentIndex();
        if (key->key() == Qt::Key_Delete && key->modifiers() == Qt::NoModifier && m_canHide(current)) {
            m_hide(current);
            return true;
        }
    } else if (event->type() == QEvent::ContextMenu) {
        const auto* menuEvent = static_cast<QContextMenuEvent*>(event);
        // From the keyboard the menu belongs to the current row, from the mouse to the row under it.
        const bool fromKeyboard = menuEvent->reason() == QContextMenuEvent::Keyboard;
        const QModelIndex index = fromKeyboard ? m_view->currentIndex()
                                               : m_view->indexAt(m_view->viewport()->mapFrom(
                                                     static_cast<QWidget*>(watched), menuEvent->pos()));
        if (!m_canHide(index))
            return false;
        const QRect row = m_view->visualRect(index);
        offerMenu(index,
                  fromKeyboard ? m_view->viewport()->mapToGlobal(row.bottomLeft()) : menuEvent->globalPos());
        return true;
    }
    return false;
}

void CRowHideActions::offerMenu(const QModelIndex& index, const QPoint& globalPos)
{
    auto* menu = new QMenu(m_view);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setAccessibleName(index.data(Qt::DisplayRole).toString());
    const QPersistentModelIndex row(index);
    menu->addAction(QObject::tr("Hide"), this, [this, row] {
        // The list may have been rebuilt while the menu was open.
        if (row.isValid())
            m_hide(row);
    });
    menu->popup(globalPos);
}
