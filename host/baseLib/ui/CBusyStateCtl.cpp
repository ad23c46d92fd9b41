#include "CBusyStateCtl.h"

#include "CVantrelApp.h"

#include <QPainter>
#include <QTimer>

namespace {

constexpr int kSpinnerSize = 36;     // diameter of the ring
constexpr qreal kSpinnerWidth = 3.5; // stroke of ring and arc
constexpr int kArcSpan = 100;        // degrees covered by the moving arc
constexpr int kStepDegrees = 12;     // rotation per frame
constexpr int kFrameMs = 33;         // about 30 frames per second
constexpr int kTextGap = 12;         // between the spinner and the text
constexpr int kTrackAlpha = 40;      // the faint full ring under the arc
constexpr int kMinTextWidth = 160;   // so short texts do not squeeze the widget
constexpr int kFullCircleDegrees = 360;
constexpr int kQtAngleUnit = 16; // QPainter angles are in 1/16 degree

QColor accentColor(const QWidget* widget)
{
    const QColor color = CVantrelApp::GetColor(clrAccent);
    return color.isValid() ? color : widget->palette().color(QPalette::Highlight);
}

} // namespace

CBusyStateCtl::CBusyStateCtl(QWidget* parent)
    : QWidget(parent)
    , m_timer(new QTimer(this))
{
    m_timer->setInterval(kFrameMs);
    connect(m_timer, &QTimer::timeout, this, [this] {
        m_angle = (m_angle + kStepDegrees) % kFullCircleDegrees;
        update();
    });
}

CBusyStateCtl::~CBusyStateCtl() = default;

void CBusyStateCtl::setBusyText(const QString& text)
{
    if (m_text == text)
        return;
    m_text = text;
    updateGeometry();
    update();
}

QString CBusyStateCtl::busyText() const
{
    return m_text;
}

QSize CBusyStateCtl::sizeHint() const
{
    const QFontMetrics metrics(font());
    const int textWidth = m_text.isEmpty() ? 0 : metrics.horizontalAdvance(m_text);
    const int textHeight = m_text.isEmpty() ? 0 : kTextGap + metrics.height();
    return QSize(qMax(kMinTextWidth, textWidth), kSpinnerSize + textHeight).grownBy(contentsMargins());
}

void CBusyStateCtl::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QFontMetrics metrics(font());
    const int textHeight = m_text.isEmpty() ? 0 : kTextGap + metrics.height();
    const QRect area = contentsRect();
    // Spinner and text form one block, centred in the widget.
    const int top = area.top() + qMax(0, (area.height() - kSpinnerSize - textHeight) / 2);
    const QRectF ring(area.center().x() - kSpinnerSize / 2.0 + kSpinnerWidth / 2, top + kSpinnerWidth / 2,
                      kSpinnerSize - kSpinnerWidth, kSpinnerSize - kSpinnerWidth);

    QColor accent = accentColor(this);
    QColor track = accent;
    track.setAlpha(kTrackAlpha);
    painter.setPen(QPen(track, kSpinnerWidth));
    painter.drawEllipse(ring);
    painter.setPen(QPen(accent, kSpinnerWidth, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, -m_angle * kQtAngleUnit, kArcSpan * kQtAngleUnit);

    if (!m_text.isEmpty()) {
        painter.setPen(palette().color(QPalette::WindowText));
        const QRect textRect(area.left(), top + kSpinnerSize + kTextGap, area.width(), metrics.height());
        painter.drawText(textRect, Qt::AlignHCenter | Qt::AlignTop,
                         metrics.elidedText(m_text, Qt::ElideRight, area.width()));
    }
}

void CBusyStateCtl::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_timer->start();
}

void CBusyStateCtl::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    // Nothing to animate off screen; the timer would only wake the event loop.
    m_timer->stop();
}
