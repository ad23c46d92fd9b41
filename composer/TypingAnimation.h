#pragma once
// A row of typing dots started one after another. On every step of any dot it reports the heights of all
// dots at once, so that the consumer redraws the whole row. Owns its dots.

#include "TypingDotAnimation.h"

#include <QList>
#include <QObject>
#include <QPointer>

class TypingAnimation : public QObject
{
    Q_OBJECT
public:
    // Delay between the starts of neighbouring dots.
    static constexpr int kStaggerMs = 100;

    explicit TypingAnimation(QObject* parent = nullptr);
    ~TypingAnimation() override;

    // Creates `count` dots: the first starts at once, dot i after i times the stagger.
    void startDots(int count);
    // Whether any dot is running.
    bool isRunning() const;
    // The dots in start order (destroyed ones stay in the list as null pointers).
    QList<QPointer<TypingDotAnimation>> dots() const { return m_dots; }

signals:
    // One value in [0, 1] per live dot, in start order.
    void changed(QList<qreal> values);

private:
    void collectValues();

    QList<QPointer<TypingDotAnimation>> m_dots;
};
