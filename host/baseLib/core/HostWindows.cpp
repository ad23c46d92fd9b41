#include "HostWindows.h"

#include "HostRuntime.h"

#include <QApplication>

void flashWindow(HWND window, unsigned count)
{
    HostRuntime::instance().record(QStringLiteral("flashWindow"), {{QStringLiteral("count"), count}});

    // Only a window of this process can be flashed; QWidget::find never creates a native window.
    QWidget* widget = window ? QWidget::find(window) : nullptr;
    if (widget)
        QApplication::alert(widget->window(), 0);
}

bool IsWindowsPE()
{
    return HostRuntime::instance().windowsPE;
}
