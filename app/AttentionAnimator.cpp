#include "AttentionAnimator.h"

#include "PluginHeader.h"

#include <QVariantAnimation>

namespace {
constexpr int kUrgentPulseMs = 700;
constexpr qreal kUrgentPeak = 0.9;
constexpr int kGentlePulseMs = 1600;
constexpr qreal kGentlePeak = 0.4;
constexpr qreal kHalfway = 0.5;
} // namespace

AttentionAnimator::AttentionAnimator(PluginHeader* header)
    : QObject(header)
    , m_header(header)
    , m_animation(new QVariantAnimation(this))
{
    m_animation->setLoopCount(-1);
    m_animation->setEasingCurve(QEasingCurve::InOutSine);
    connect(m_animation, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        if (m_header)
            m_header->setAttentionLevel(value.toReal());
    });
}

void AttentionAnimator::start(int mode)
{
    const bool urgent = mode == kUrgentMode;
    const qreal peak = urgent ? kUrgentPeak : kGentlePeak;
    m_mode = mode;
    m_animation->stop();
    m_animation->setDuration(urgent ? kUrgentPulseMs : kGentlePulseMs);
    m_animation->setStartValue(0.0);
    m_animation->setKeyValueAt(kHalfway, peak);
    m_animation->setEndValue(0.0);
    m_animation->start();
}

void AttentionAnimator::stop()
{
    m_animation->stop();
    m_mode = 0;
    if (m_header)
        m_header->setAttentionLevel(0.0);
}

bool AttentionAnimator::isRunning() const
{
    return m_animation->state() == QAbstractAnimation::Running;
}
