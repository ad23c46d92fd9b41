#include "BalloonMessage.h"

#include "CBalloonPopup.h"
#include "HostRuntime.h"

#include <QHash>

// A balloon is created even while HostRuntime::showBalloons is off: it is then only kept hidden. Callers get
// the same object either way, its timeout and target tracking behave the same, and tests can read what a
// balloon says without windows popping up.

namespace {

QHash<const QWidget*, QPointer<CAbstractPopupAssistant>>& balloonsByWidget()
{
    static QHash<const QWidget*, QPointer<CAbstractPopupAssistant>> balloons;
    return balloons;
}

} // namespace

QPointer<CAbstractPopupAssistant> issueBalloonMessage(QWidget* widget, const QString& text,
                                                      QMessageBox::Icon icon, const QRect& rect,
                                                      unsigned timeout, unsigned /*flags*/)
{
    HostRuntime::instance().record(QStringLiteral("balloon"),
                                   {{QStringLiteral("text"), text},
                                    {QStringLiteral("icon"), int(icon)},
                                    {QStringLiteral("timeout"), timeout},
                                    {QStringLiteral("widget"), widget ? widget->objectName() : QString()},
                                    {QStringLiteral("rect"), rect}});
    if (!widget)
        return {};

    auto& balloons = balloonsByWidget();
    for (auto it = balloons.begin(); it != balloons.end();) {
        if (it.value().isNull())
            it = balloons.erase(it);
        else
            ++it;
    }
    if (QPointer<CAbstractPopupAssistant> previous = balloons.take(widget)) {
        previous->close();
    }

    auto* balloon = new CBalloonPopup(widget, text, icon, rect, timeout);
    balloons.insert(widget, balloon);
    if (HostRuntime::instance().showBalloons)
        balloon->show();
    return balloon;
}
