#include "TypingDotAnimation.h"

#include <QPauseAnimation>
#include <QVariantAnimation>

namespace {

QVariantAnimation* makeStep(double from, double to, int duration, QObject* parent)
{
    auto* step = new QVariantAnimation(parent);
    step->setStartValue(from);
    step->setEndValue(to);
    step->setDuration(duration);
    step->setEasingCurve(QEasingCurve::Linear);
    return step;
}

} // namespace

TypingDotAnimation::TypingDotAnimation(QObject* parent)
    : QSequentialAnimationGroup(parent)
{
    QVariantAnimation* rise = makeStep(0.0, 1.0, kRiseMs, this);
    QVariantAnimation* fall = makeStep(1.0, 0.0, kFallMs, this);
    addAnimation(rise);
    addAnimation(fall);
    addPause(kPauseMs);
    setLoopCount(-1);

    connect(rise, &QVariantAnimation::valueChanged, this, &TypingDotAnimation::valueChanged);
    connect(fall, &QVariantAnimation::valueChanged, this, &TypingDotAnimation::valueChanged);
}

TypingDotAnimation::~TypingDotAnimation() = default;
