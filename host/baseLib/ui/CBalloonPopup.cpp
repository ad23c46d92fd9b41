#include "CBalloonPopup.h"

#include "CVantrelApp.h"
#include "QtHelpersImages.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QToolButton>

namespace {

constexpr int kShadowMargin = 10;   // room around the bubble for its shadow
constexpr int kArrowHeight = 9;     // how far the arrow sticks out of the bubble
constexpr int kArrowHalfWidth = 9;  // half the width of the arrow's base
constexpr int kCornerRadius = 8;    // bubble corners
constexpr int kPadding = 10;        // inside the bubble, around the content
constexpr int kIconSize = 22;       // the message kind icon
constexpr int kCloseIconSize = 14;  // the close button's glyph
constexpr int kMaxTextWidth = 320;  // text wraps at this width
constexpr int kScreenMargin = 4;    // the balloon never touches the screen edge
constexpr int kShadowAlphaStep = 4; // alpha added per shadow ring: sums to a soft edge
constexpr qreal kShadowDropY = 1.5; // the light comes slightly from above

// Screen readers learn of a balloon as an alert, which they read out as soon as it is announced.
QAccessibleInterface* balloonAccessible(const QString& className, QObject* object)
{
    if (className != QLatin1String("CBalloonPopup") || !object || !object->isWidgetType())
        return nullptr;
    return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::AlertMessage);
}

QColor hostColor(CColorIndexes index, const QColor& fallback)
{
    const QColor color = CVantrelApp::GetColor(index);
    return color.isValid() ? color : fallback;
}

} // namespace

CBalloonPopup::CBalloonPopup(QWidget* target, const QString& text, QMessageBox::Icon icon, const QRect& rect,
                             unsigned timeout)
    : CAbstractPopupAssistant(target, text, icon, rect, timeout)
    , m_layout(new QHBoxLayout(this))
    , m_iconLabel(new QLabel(this))
    , m_textLabel(new QLabel(text, this))
    , m_closeButton(new QToolButton(this))
{
    setObjectName(QStringLiteral("balloonPopup"));
    QAccessible::installFactory(balloonAccessible);
    setAccessibleName(text);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);

    m_layout->setSpacing(kPadding);
    m_layout->setSizeConstraint(QLayout::SetFixedSize);

    const QString name = iconName(icon);
    m_iconLabel->setFixedSize(kIconSize, kIconSize);
    if (!name.isEmpty())
        m_iconLabel->setPixmap(qtHelpers::images::pixmap(name, kIconSize, true));
    else
        m_iconLabel->hide();
    m_layout->addWidget(m_iconLabel, 0, Qt::AlignTop);

    QPalette textPalette = m_textLabel->palette();
    textPalette.setColor(QPalette::WindowText, hostColor(clrWindowText, QColor(0x22, 0x2b, 0x38)));
    m_textLabel->setPalette(textPalette);
    m_textLabel->setTextFormat(Qt::PlainText);
    m_textLabel->setWordWrap(true);
    m_textLabel->setMaximumWidth(kMaxTextWidth);
    // A wrapping label asks for a narrow square-ish box; short texts should stay on one line instead.
    int widestLine = 0;
    for (const QString& line : text.split(QLatin1Char('\n')))
        widestLine = qMax(widestLine, m_textLabel->fontMetrics().horizontalAdvance(line) + 1);
    m_textLabel->setMinimumWidth(qMin(widestLine, kMaxTextWidth));
    m_textLabel->setObjectName(QStringLiteral("balloonText"));
    m_layout->addWidget(m_textLabel, 1, Qt::AlignVCenter);

    m_closeButton->setObjectName(QStringLiteral("balloonClose"));
    m_closeButton->setAutoRaise(true);
    m_closeButton->setIcon(qtHelpers::images::icon(QStringLiteral("close-small")));
    m_closeButton->setIconSize(QSize(kCloseIconSize, kCloseIconSize));
    m_closeButton->setCursor(Qt::PointingHandCursor);
    m_closeButton->setToolTip(tr("Close"));
    m_closeButton->setFocusPolicy(Qt::NoFocus);
    connect(m_closeButton, &QToolButton::clicked, this, &QWidget::close);
    m_layout->addWidget(m_closeButton, 0, Qt::AlignTop);

    reposition();
}

CBalloonPopup::~CBalloonPopup() = default;

QString CBalloonPopup::iconName(QMessageBox::Icon icon)
{
    switch (icon) {
    case QMessageBox::Critical:
        return QStringLiteral("balloon-critical");
    case QMessageBox::Warning:
        return QStringLiteral("balloon-warning");
    case QMessageBox::Information:
    case QMessageBox::Question:
        return QStringLiteral("balloon-information");
    case QMessageBox::NoIcon:
        break;
    }
    return QString();
}

QPoint CBalloonPopup::anchorPoint() const
{
    if (!m_target)
        return pos();
    const QRect area = m_rect.isNull() ? m_target->rect() : m_rect;
    const QPoint local =
        m_arrowOnTop ? QPoint(area.center().x(), area.bottom()) : QPoint(area.center().x(), area.top());
    return m_target->mapToGlobal(local);
}

void CBalloonPopup::applyMargins()
{
    const int side = kShadowMargin + kPadding;
    const int arrowSide = side + kArrowHeight;
    if (m_arrowOnTop)
        m_layout->setContentsMargins(side, arrowSide, side, side);
    else
        m_layout->setContentsMargins(side, side, side, arrowSide);
    m_layout->activate();
    adjustSize();
}

void CBalloonPopup::reposition()
{
    if (!m_target)
        return;
    m_arrowOnTop = true;
    applyMargins();
    QPoint anchor = anchorPoint();
    QScreen* screen = QGuiApplication::screenAt(anchor);
    if (!screen)
        screen = m_target->screen();
    const QRect available = screen ? screen->availableGeometry().adjusted(kScreenMargin, kScreenMargin,
                                                                          -kScreenMargin, -kScreenMargin)
                                   : QRect();
    // Below the target unless the bottom of the screen cuts the balloon off; then above it.
    if (available.isValid() && anchor.y() + height() > available.bottom()) {
        m_arrowOnTop = false;
        applyMargins();
        anchor = anchorPoint();
    }
    int x = anchor.x() - width() / 2;
    int y = m_arrowOnTop ? anchor.y() - kShadowMargin : anchor.y() - height() + kShadowMargin;
    if (available.isValid()) {
        x = qBound(available.left(), x, qMax(available.left(), available.right() - width() + 1));
        y = qBound(available.top(), y, qMax(available.top(), available.bottom() - height() + 1));
    }
    // The arrow keeps pointing at the anchor even when the balloon had to be pushed sideways.
    const int arrowMin = kShadowMargin + kCornerRadius + kArrowHalfWidth;
    m_arrowX = qBound(arrowMin, anchor.x() - x, qMax(arrowMin, width() - arrowMin));
    move(x, y);
    update();
}

QPainterPath CBalloonPopup::bubblePath() const
{
    const QRectF body =
        QRectF(rect())
            .adjusted(kShadowMargin + 0.5, kShadowMargin + 0.5, -kShadowMargin - 0.5, -kShadowMargin - 0.5)
            .adjusted(0, m_arrowOnTop ? kArrowHeight : 0, 0, m_arrowOnTop ? 0 : -kArrowHeight);
    QPainterPath bubble;
    bubble.addRoundedRect(body, kCornerRadius, kCornerRadius);
    QPainterPath arrow;
    if (m_arrowOnTop) {
        arrow.moveTo(m_arrowX - kArrowHalfWidth, body.top() + 1);
        arrow.lineTo(m_arrowX, body.top() - kArrowHeight);
        arrow.lineTo(m_arrowX + kArrowHalfWidth, body.top() + 1);
    } else {
        arrow.moveTo(m_arrowX - kArrowHalfWidth, body.bottom() - 1);
        arrow.lineTo(m_arrowX, body.bottom() + kArrowHeight);
        arrow.lineTo(m_arrowX + kArrowHalfWidth, body.bottom() - 1);
    }
    arrow.closeSubpath();
    return bubble.united(arrow).simplified();
}

void CBalloonPopup::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath path = bubblePath();

    // Soft shadow: concentric strokes of the outline whose faint alphas add up towards the edge.
    painter.setBrush(Qt::NoBrush);
    const QPainterPath shadowPath = path.translated(0, kShadowDropY);
    for (int ring = kShadowMargin; ring > 0; --ring) {
        painter.setPen(
            QPen(QColor(0, 0, 0, kShadowAlphaStep), ring * 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(shadowPath);
    }

    painter.setPen(QPen(hostColor(clrBalloonBorder, QColor(0xc9, 0xd2, 0xde)), 1));
    painter.setBrush(hostColor(clrBalloonBackground, QColor(0xff, 0xff, 0xff)));
    painter.drawPath(path);
}

void CBalloonPopup::showEvent(QShowEvent* event)
{
    reposition();
    CAbstractPopupAssistant::showEvent(event);
    // Drawn is not enough: a reader who cannot see the balloon hears it.
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}
