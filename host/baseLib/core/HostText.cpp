#include "HostText.h"

#include <QCoreApplication>
#include <QFontMetrics>

#include <cmath>
#include <iterator>

namespace {

enum DottedStringFlags
{
    ElideAtRight = 0,
    ElideInMiddle = 1,
    ElideAtLeft = 2,
};

enum FormattedSizeFlags : unsigned long long
{
    OneDecimalBelowHundred = 0,
    WholeUnitsOnly = 1,
};

const QChar ellipsis(0x2026);
// Sizes use the binary multiple, as the file managers of the host's platforms do.
constexpr double bytesPerUnit = 1024.0;
// Below this many units one decimal still carries information ("12.3 MB"); above it, it is noise.
constexpr double decimalsBelow = 100.0;
const char* const units[] = {QT_TRANSLATE_NOOP("HostText", "KB"), QT_TRANSLATE_NOOP("HostText", "MB"),
                             QT_TRANSLATE_NOOP("HostText", "GB"), QT_TRANSLATE_NOOP("HostText", "TB"),
                             QT_TRANSLATE_NOOP("HostText", "PB")};

Qt::TextElideMode elideMode(int flags)
{
    switch (flags) {
    case ElideInMiddle:
        return Qt::ElideMiddle;
    case ElideAtLeft:
        return Qt::ElideLeft;
    default:
        return Qt::ElideRight;
    }
}

// What is left of `text` when only `count` characters may stay, the ellipsis placed as `mode` says.
QString keepCharacters(const QString& text, int count, Qt::TextElideMode mode)
{
    switch (mode) {
    case Qt::ElideLeft:
        return ellipsis + text.right(count);
    case Qt::ElideMiddle:
        return text.left((count + 1) / 2) + ellipsis + text.right(count / 2);
    default:
        return text.left(count) + ellipsis;
    }
}

} // namespace

QString GetDottedString(const QString& text, const QFont& font, int width, int flags, int minChars)
{
    const QFontMetrics metrics(font);
    if (metrics.horizontalAdvance(text) <= width)
        return text;

    const Qt::TextElideMode mode = elideMode(flags);
    const QString elided = metrics.elidedText(text, mode, qMax(0, width));
    const int keptCharacters = int(elided.length()) - (elided.contains(ellipsis) ? 1 : 0);
    if (minChars <= 0 || keptCharacters >= minChars)
        return elided;
    // The caller wants a minimum recognisable; that wins over the width.
    if (text.length() <= minChars)
        return text;
    return keepCharacters(text, minChars, mode);
}

QString GetFormattedSize(unsigned long long size, unsigned long long flags)
{
    if (size < bytesPerUnit) {
        return size == 1 ? QCoreApplication::translate("HostText", "1 byte")
                         : QCoreApplication::translate("HostText", "%1 bytes").arg(size);
    }

    const bool wholeUnits = (flags & WholeUnitsOnly) != 0;
    // One decimal unless the value, rounded to one decimal, reaches the threshold (99.96 shows as "100").
    const auto decimalsFor = [wholeUnits](double value) {
        return wholeUnits || std::round(value * 10.0) / 10.0 >= decimalsBelow ? 0 : 1;
    };
    const auto rounded = [](double value, int decimals) {
        return decimals == 0 ? std::round(value) : std::round(value * 10.0) / 10.0;
    };

    double value = double(size) / bytesPerUnit;
    size_t unit = 0;
    const size_t lastUnit = std::size(units) - 1;
    // Rounding may carry into the next unit: 1023.96 KB shows as "1.0 MB", not "1024 KB".
    while (unit < lastUnit && rounded(value, decimalsFor(value)) >= bytesPerUnit) {
        value /= bytesPerUnit;
        ++unit;
    }

    return QStringLiteral("%1 %2").arg(QString::number(value, 'f', decimalsFor(value)),
                                       QCoreApplication::translate("HostText", units[unit]));
}
