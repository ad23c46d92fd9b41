#pragma once
// Who is typing in the open conversation, as one line of rich text for the typing label: the typists' names
// (each in bold in its own colour) followed by an animated row of dots embedded as a PNG data URL.
// The plugin owns one and forwards the host's typing events of the selected conversation to it.

#include "CIncidentCommunication.h"
#include "TypingAnimation.h"

#include <QHash>
#include <QObject>
#include <QPixmap>

#include <memory>

class QTimer;

class TypingViewModel : public QObject
{
    Q_OBJECT
public:
    // A typist disappears this long after the last "is typing" event.
    static constexpr int kTypingTimeoutMs = 6000;
    static constexpr int kDotCount = 3;
    static constexpr int kFrameWidth = 128;
    static constexpr int kFrameHeight = 12;
    // Dots: 10 pixels apart from x = 4, drawn with a 3-pixel round pen.
    static constexpr int kDotLeft = 4;
    static constexpr int kDotSpacing = 10;
    static constexpr double kDotPenWidth = 3.0;
    static constexpr int kDotColor = 42;

    explicit TypingViewModel(QObject* parent = nullptr);
    ~TypingViewModel() override;

    // `communication` announces (isTyping) or ends (not isTyping) its sender's typing.
    void setTyping(const CIncidentCommunication& communication, bool isTyping);
    // Forgets every typist (another conversation is shown); the label is emptied.
    void reset();

    // Number of people typing now.
    int typistCount() const { return int(m_typists.size()); }
    // The current frame of the dots; null before the first frame and while nobody types.
    QPixmap currentFrame() const { return m_frame; }

signals:
    // The whole label text; empty when nobody types.
    void typingDataChanged(QString data);

private slots:
    void onTypingTimeout();
    void onDotsChanged(QList<qreal> values);

private:
    struct Typist
    {
        std::shared_ptr<QTimer> timer;
        CIncidentCommunication communication;
    };

    void removeTypist(const QString& key);
    void rebuildText();
    QString whoIsTypingText() const;
    QString dotsDataUrl() const;

    QHash<QString, Typist> m_typists;
    TypingAnimation m_animation;
    QPixmap m_frame;
};
