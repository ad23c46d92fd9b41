#pragma once
// The motion of one dot of the typing indicator: up, down, rest, forever. It only produces values;
// TypingAnimation collects them and TypingViewModel paints.

#include <QSequentialAnimationGroup>
#include <QVariant>

class TypingDotAnimation : public QSequentialAnimationGroup
{
    Q_OBJECT
public:
    static constexpr int kRiseMs = 150;
    static constexpr int kFallMs = 150;
    static constexpr int kPauseMs = 400;

    explicit TypingDotAnimation(QObject* parent = nullptr);
    ~TypingDotAnimation() override;

signals:
    // The height of the dot, 0.0 at rest to 1.0 at the top, while it moves.
    void valueChanged(QVariant value);
};
