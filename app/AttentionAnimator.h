#pragma once
// The attention animation that a plugin asks the host for (beginPluginAnimation): a pulsing accent
// background behind the plugin's entry in the navigation area until the plugin stops it or its page is
// shown. Mode -1 (urgent) pulses faster and stronger than the other modes.

#include <QObject>
#include <QPointer>

class PluginHeader;
class QVariantAnimation;

class AttentionAnimator : public QObject
{
    Q_OBJECT
public:
    static constexpr int kUrgentMode = -1;

    explicit AttentionAnimator(PluginHeader* header);

    void start(int mode);
    void stop();
    bool isRunning() const;
    int mode() const { return m_mode; }

private:
    QPointer<PluginHeader> m_header;
    QVariantAnimation* m_animation = nullptr;
    int m_mode = 0;
};
