#include "TypingAnimation.h"

#include <QTimer>
#include <QVariantAnimation>

TypingAnimation::TypingAnimation(QObject* parent)
    : QObject(parent)
{
    qRegisterMetaType<QList<qreal>>("QList<double>");
}

TypingAnimation::~TypingAnimation() = default;

void TypingAnimation::startDots(int count)
{
    for (int i = 0; i < count; ++i) {
        auto* dot = new TypingDotAnimation(this);
        connect(dot, &TypingDotAnimation::valueChanged, this, &TypingAnimation::collectValues);
        if (i == 0)
            dot->start();
        else
            QTimer::singleShot(i * kStaggerMs, dot, [dot] { dot->start(); });
        m_dots.append(dot);
    }
}

bool TypingAnimation::isRunning() const
{
    for (const QPointer<TypingDotAnimation>& dot : m_dots) {
        if (dot && dot->state() == QAbstractAnimation::Running)
            return true;
    }
    return false;
}

void TypingAnimation::collectValues()
{
    if (m_dots.isEmpty())
        return;
    QList<qreal> values;
    values.reserve(m_dots.size());
    for (const QPointer<TypingDotAnimation>& dot : std::as_const(m_dots)) {
        if (!dot)
            continue;
        // The pause step has no value: a resting dot reads 0.0.
        QVariant value;
        if (auto* step = qobject_cast<QVariantAnimation*>(dot->currentAnimation()))
            value = step->currentValue();
        bool ok = false;
        const double height = value.toDouble(&ok);
        values.append(ok ? height : 0.0);
    }
    emit changed(values);
}
