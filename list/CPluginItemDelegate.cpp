#include "CPluginItemDelegate.h"

#include "CCommunicationObjectModel.h"
#include "CRowHideActions.h"
#include "CVantrelApp.h"
#include "HostColors.h"
#include "HostPainting.h"
#include "HostText.h"
#include "QtHelpersImages.h"

#include <QPainter>
#include <QPersistentModelIndex>
#include <QToolButton>

namespace {

// Read entries fade more the less attention the row has.
constexpr qreal kFullOpacity = 1.0;
constexpr qreal kEntryTextOpacity = 0.8;
constexpr qreal kReadSelectedDivisor = 1.25;
constexpr qreal kReadHoveredDivisor = 1.5;
constexpr qreal kReadDivisor = 2.0;
constexpr qreal kPinnedOpacity = 0.2;
// Folder titles are quieter unless the mouse is over them.
constexpr qreal kFolderIdleOpacity = 1.0 / 1.5;

QRect innerRect(const QRect& row)
{
    using D = CPluginItemDelegate;
    return row.adjusted(D::kHorizontalMargin, D::kVerticalMargin, -D::kHorizontalMargin, -D::kVerticalMargin);
}

QColor withAlpha(QColor color, qreal alpha)
{
    color.setAlphaF(float(alpha));
    return color;
}

} // namespace

CPluginItemDelegate::CPluginItemDelegate(QObject* parent)
    : QAbstractItemDelegate(parent)
    , m_rowHideActions(new CRowHideActions(
          &CPluginItemDelegate::canHide, [this](const QModelIndex& index) { emit hideMessageRequest(index); },
          this))
{}

CPluginItemDelegate::~CPluginItemDelegate() = default;

QFont CPluginItemDelegate::makeFont(const QFont& base, int pointSize, int weight, int styleBits)
{
    QFont font(base);
    if (pointSize != 0)
        font.setPointSize(pointSize);
    font.setWeight(QFont::Weight(weight));
    font.setItalic(styleBits & kItalicBit);
    font.setUnderline(styleBits & kUnderlineBit);
    font.setStrikeOut(styleBits & kStrikeOutBit);
    return font;
}

bool CPluginItemDelegate::canHide(const QModelIndex& index)
{
    return !index.data(CCommunicationObjectModel::ImportantRole).toBool() &&
           !index.data(CCommunicationObjectModel::FlagBit1Role).toBool() &&
           !index.data(CCommunicationObjectModel::IsFolderRole).toBool();
}

void CPluginItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const
{
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    paintFolder(painter, option, index);
    paintEntry(painter, option, index);
    if (option.state & QStyle::State_HasFocus)
        drawFocusRect(painter, option.rect.adjusted(kFocusInset, kFocusInset, -kFocusInset, -kFocusInset),
                      getPaletteColor(clrHeadingText), QStyle::State_None, nullptr);
}

void CPluginItemDelegate::paintFolder(QPainter* painter, const QStyleOptionViewItem& option,
                                      const QModelIndex& index) const
{
    if (!index.data(CCommunicationObjectModel::IsFolderRole).toBool())
        return;

    const qreal alpha = (option.state & QStyle::State_MouseOver) ? kFullOpacity : kFolderIdleOpacity;
    const QColor textColor = CVantrelApp::GetColor(clrListText);
    painter->fillRect(option.rect, option.backgroundBrush);

    const QRect inner = innerRect(option.rect);
    QRect arrow(0, 0, kArrowSize, kArrowSize);
    arrow.moveCenter(inner.center());
    arrow.moveRight(inner.right());
    const bool expanded = index.data(CCommunicationObjectModel::ExpandedRole).toBool();
    qtHelpers::images::icon(expanded ? QStringLiteral("arrow-up") : QStringLiteral("arrow-down"))
        .paint(painter, arrow, Qt::AlignCenter, QIcon::Normal);

    QRect title = inner;
    title.setRight(arrow.left() - kGap - 1);
    const QFont font = makeFont(option.font, kTitlePointSize, kTitleWeight, 0);
    const QString text = GetDottedString(index.data(Qt::DisplayRole).toString(), font, title.width(), 0, 0);
    painter->save();
    painter->setFont(font);
    painter->setPen(withAlpha(textColor, alpha));
    painter->drawText(title, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
    painter->restore();
}

void CPluginItemDelegate::paintEntry(QPainter* painter, const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const
{
    if (index.data(CCommunicationObjectModel::IsFolderRole).toBool())
        return;

    const bool read = index.data(CCommunicationObjectModel::ReadRole).toBool();
    const bool pinned = index.data(CCommunicationObjectModel::FlagBit1Role).toBool();
    const bool selected = option.state & QStyle::State_Selected;
    const bool hovered = option.state & QStyle::State_MouseOver;

    if (selected)
        painter->fillRect(option.rect, getPaletteColor(clrListSelection));
    else if (hovered)
        painter->fillRect(option.rect, getPaletteColor(clrListHover));
    else
        painter->fillRect(option.rect, option.backgroundBrush);

    qreal iconOpacity = kFullOpacity;
    qreal textOpacity = kEntryTextOpacity;
    if (read) {
        const qreal divisor = selected ? kReadSelectedDivisor : hovered ? kReadHoveredDivisor : kReadDivisor;
        iconOpacity /= divisor;
        textOpacity /= divisor;
    }
    if (pinned) {
        iconOpacity = kPinnedOpacity;
        textOpacity = kPinnedOpacity;
    }

    QRect inner = innerRect(option.rect);
    if (canHide(index))
        inner.setRight(inner.right() - (kGap + buttonSize));

    QRect iconRect(0, 0, kIconSize, kIconSize);
    iconRect.moveCenter(inner.center());
    iconRect.moveLeft(inner.left());
    const QIcon icon = qvariant_cast<QIcon>(index.data(Qt::DecorationRole));
    painter->save();
    painter->setOpacity(iconOpacity);
    icon.paint(painter, iconRect, Qt::AlignCenter, QIcon::Normal);
    painter->restore();

    const QColor textColor = CVantrelApp::GetColor(clrListText);
    QRect title = inner;
    title.setLeft(iconRect.right() + 1 + kGap);
    title.setBottom(inner.center().y());
    const QFont titleFont = makeFont(option.font, kTitlePointSize, kTitleWeight, 0);
    const QString titleText =
        GetDottedString(index.data(Qt::DisplayRole).toString(), titleFont, title.width(), 0, 0);
    QRect drawnTitle;
    painter->save();
    painter->setFont(titleFont);
    painter->setPen(withAlpha(textColor, iconOpacity));
    painter->drawText(title, Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine, titleText, &drawnTitle);
    painter->restore();

    QRect date = title;
    date.setTop(drawnTitle.bottom());
    date.setBottom(inner.bottom());
    const QFont dateFont = makeFont(option.font, kDatePointSize, kDateWeight, 0);
    const QString dateText = GetDottedString(index.data(CCommunicationObjectModel::DateTextRole).toString(),
                                             dateFont, date.width(), 0, 0);
    if (dateText.isEmpty())
        return;
    painter->save();
    painter->setFont(dateFont);
    painter->setPen(withAlpha(textColor, textOpacity));
    painter->drawText(date, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, dateText);
    painter->restore();
}

QSize CPluginItemDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const
{
    if (index.column() == 1)
        return {buttonSize, kEntryRowHeight};
    const bool folder = index.data(CCommunicationObjectModel::IsFolderRole).toBool();
    return {kRowWidth, folder ? kFolderRowHeight : kEntryRowHeight};
}

QWidget* CPluginItemDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                           const QModelIndex& index) const
{
    if (!canHide(index))
        return nullptr;
    m_rowHideActions->watch(parent);
    auto* button = new QToolButton(parent);
    button->setObjectName(QString::fromLatin1(kHideButtonName));
    button->setIcon(qtHelpers::images::icon(QStringLiteral("hide-msg")));
    button->setCursor(Qt::PointingHandCursor);
    button->setProperty(kToolButtonSwitchProperty, true);
    button->setToolTip(QObject::tr("Click to hide this message"));
    // Not a Tab stop: Tab moves between the host's list and the page, not through every row's button.
    button->setFocusPolicy(Qt::NoFocus);
    button->setAccessibleName(QObject::tr("Hide %1").arg(index.data(Qt::DisplayRole).toString()));
    CVantrelApp::setWidgetStyleSheetFromPalette(button);
    // The row may vanish in a rebuild before the click; a persistent index tells.
    button->setProperty(kHideIndexProperty, QVariant::fromValue(QPersistentModelIndex(index)));
    connect(button, &QToolButton::clicked, this, &CPluginItemDelegate::onHideButtonClicked);
    return button;
}

void CPluginItemDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                               const QModelIndex&) const
{
    if (!editor)
        return;
    const QRect row = option.rect.adjusted(kHorizontalMargin, 0, -kHorizontalMargin, 0);
    QRect button(0, 0, buttonSize, buttonSize);
    button.moveCenter(row.center());
    button.moveRight(row.right());
    editor->setGeometry(button);
}

void CPluginItemDelegate::onHideButtonClicked()
{
    const QObject* button = sender();
    if (!button)
        return;
    const auto index = button->property(kHideIndexProperty).value<QPersistentModelIndex>();
    if (index.isValid())
        emit hideMessageRequest(QModelIndex(index));
}
