#include "TypingViewModel.h"

#include "CVantrelApp.h"

#include <QBuffer>
#include <QPainter>
#include <QTimer>

namespace {

// The timer property that names the typist a timer belongs to.
const char* const kTimerKeyProperty = "QTimer::timerKey";

// Names come from the server and from whoever joins the conversation: they are shown as the text they are.
QString nameMarkup(const CIncidentCommunication& communication)
{
    return QStringLiteral("<span style=\"font-weight:600; color:%1;\">%2</span>")
        .arg(communication.getNameColor().name(QColor::HexRgb), communication.senderName.toHtmlEscaped());
}

} // namespace

TypingViewModel::TypingViewModel(QObject* parent)
    : QObject(parent)
{
    connect(&m_animation, &TypingAnimation::changed, this, &TypingViewModel::onDotsChanged);
}

TypingViewModel::~TypingViewModel() = default;

void TypingViewModel::setTyping(const CIncidentCommunication& communication, bool isTyping)
{
    const QString key = communication.senderId;
    if (!isTyping) {
        removeTypist(key);
        return;
    }

    auto existing = m_typists.find(key);
    if (existing != m_typists.end()) {
        existing->timer->start(kTypingTimeoutMs);
        return;
    }

    // The timer may be dropped from inside its own timeout: delete it once its signal has returned.
    std::shared_ptr<QTimer> timer(new QTimer, [](QTimer* t) { t->deleteLater(); });
    timer->setSingleShot(true);
    timer->setProperty(kTimerKeyProperty, key);
    connect(timer.get(), &QTimer::timeout, this, &TypingViewModel::onTypingTimeout);
    timer->start(kTypingTimeoutMs);
    m_typists.insert(key, Typist{timer, communication});
    rebuildText();
}

void TypingViewModel::reset()
{
    for (const Typist& typist : std::as_const(m_typists))
        typist.timer->stop();
    m_typists.clear();
    rebuildText();
}

void TypingViewModel::onTypingTimeout()
{
    const auto* timer = qobject_cast<QTimer*>(sender());
    removeTypist(timer ? timer->property(kTimerKeyProperty).toString() : QString());
}

void TypingViewModel::removeTypist(const QString& key)
{
    auto it = m_typists.find(key);
    if (it != m_typists.end()) {
        it->timer->stop();
        m_typists.erase(it);
    }
    rebuildText();
}

void TypingViewModel::onDotsChanged(QList<qreal> values)
{
    QImage image(kFrameWidth, kFrameHeight, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QBrush(CVantrelApp::GetColor(kDotColor)), kDotPenWidth, Qt::SolidLine,
                            Qt::RoundCap, Qt::BevelJoin));
        painter.setBrush(Qt::NoBrush);
        // A dot rests 3 pixels above the bottom and rises to 3 pixels below the top.
        const int restY = kFrameHeight - 3;
        const int travel = kFrameHeight - 6;
        for (int i = 0; i < values.size(); ++i) {
            const int x = kDotLeft + kDotSpacing * i;
            const int y = int(restY - travel * values.at(i));
            painter.drawEllipse(QPointF(x, y), 1.0, 1.0);
        }
    }
    m_frame = QPixmap::fromImage(image);
    rebuildText();
}

void TypingViewModel::rebuildText()
{
    if (m_typists.isEmpty()) {
        m_frame = QPixmap();
        emit typingDataChanged(QString());
        return;
    }
    if (!m_animation.isRunning())
        m_animation.startDots(kDotCount);

    const QString line = QStringLiteral("<p style=\"vertical-align: baseline;\"><span>%1</span>&nbsp;"
                                        "<span style=\"white-space:nowrap;\"><img src=\"%2\"></span></p>")
                             .arg(whoIsTypingText(), dotsDataUrl());
    emit typingDataChanged(line);
}

QString TypingViewModel::whoIsTypingText() const
{
    if (m_typists.size() == 1) {
        const CIncidentCommunication& only = m_typists.cbegin()->communication;
        if (only.nameKnown)
            return QObject::tr("%1 is typing message...").arg(nameMarkup(only));
        return QObject::tr("<b>Someone</b> is typing message...");
    }

    QStringList names;
    for (const Typist& typist : m_typists) {
        if (typist.communication.nameKnown)
            names.append(nameMarkup(typist.communication));
    }
    // The established wording says "and some others" even when every typist is named.
    if (!names.isEmpty())
        names.append(QObject::tr("and some others"));
    const QString list =
        names.isEmpty() ? QObject::tr("<b>Some people</b>") : names.join(QStringLiteral(", "));
    // The source text's "%s" is not an argument marker: untranslated, the list is dropped and the text shows
    // as it stands; a translation that writes "%1" receives the list.
    return QObject::tr("%s are typing messages").arg(list);
}

QString TypingViewModel::dotsDataUrl() const
{
    QByteArray png;
    if (!m_frame.isNull()) {
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        m_frame.save(&buffer, "PNG");
    }
    return QStringLiteral("data:image/png;base64,%1").arg(QString::fromLatin1(png.toBase64()));
}
