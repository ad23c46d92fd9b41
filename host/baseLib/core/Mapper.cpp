#include "Mapper.h"

#include "CSettingsLoader.h"
#include "HostRuntime.h"

#include <QVariant>

#include <cmath>

namespace {

const QString uiScaleKey = QStringLiteral("UIScale");
constexpr double defaultUiScale = 1.0;

double uiScale()
{
    QVariant value;
    if (!HostRuntime::instance().settings().Read(uiScaleKey, &value))
        return defaultUiScale;
    bool ok = false;
    const double scale = value.toDouble(&ok);
    // A broken or non-positive setting must not collapse every mapped rectangle.
    return ok && scale > 0.0 ? scale : defaultUiScale;
}

} // namespace

QRect Mapper::map(const QRect& rect)
{
    return map(QRectF(rect));
}

QRect Mapper::map(const QRectF& rect)
{
    const double scale = uiScale();
    const int left = int(std::floor(rect.left() * scale));
    const int top = int(std::floor(rect.top() * scale));
    const int right = int(std::ceil(rect.right() * scale));
    const int bottom = int(std::ceil(rect.bottom() * scale));
    return QRect(QPoint(left, top), QSize(right - left, bottom - top));
}
