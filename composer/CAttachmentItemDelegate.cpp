#include "CAttachmentItemDelegate.h"

#include "CAttachmentsModel.h"
#include "CVantrelApp.h"
#include "HostColors.h"
#include "HostPainting.h"
#include "HostText.h"
#include "QtHelpersImages.h"

#include <QPainter>
#include <QPersistentModelIndex>
#include <QToolButton>

namespace {

const QString kRemoveButtonName = QStringLiteral("attachmentItem");
const QString kRemoveIconName = QStringLiteral("ico-stop-download");
const char* const kToolButtonSwitchProperty = "isToolButtonSwitch";

int rowHeight(const QFontMetrics& metrics)
{
    return qMax(metrics.height(), CAttachmentItemDelegate::kMinimumTextHeight) +
           CAttachmentItemDelegate::kVerticalPadding;
}

} // namespace

CAttachmentItemDelegate::~CAttachmentItemDelegate() = default;

void CAttachmentItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const
{
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);

    const bool valid = index.data(CAttachmentsModel::AttachmentNameValidRole).toBool();
    const QRect tile = opt.rect;
    painter->setBrush(valid ? opt.backgroundBrush : QBrush(CVantrelApp::GetColor(kInvalidNameColor)));
    painter->setPen(CVantrelApp::GetColor(kFrameColor));
    // Half a pixel in, so that the one-pixel frame lies on whole pixels.
    painter->drawRect(QRectF(tile).adjusted(0.5, 0.5, -0.5, -0.5));

    QRect content = tile.adjusted(kTileInset, kTileInset, -kTileInset, -kTileInset);
    content.setLeft(content.left() + kButtonSize);

    const QRect iconRect(content.left(), content.top() + (content.height() - kIconSize) / 2, kIconSize,
                         kIconSize);
    const QPixmap icon = qvariant_cast<QPixmap>(index.data(Qt::DecorationRole));
    if (!icon.isNull())
        painter->drawPixmap(iconRect, icon);

    QRect textRect = content;
    textRect.setLeft(iconRect.right() + 1 + kTextGap);
    const QString text = GetDottedString(opt.text, opt.font, textRect.width(), 0, 0);
    painter->setFont(opt.font);
    painter->setPen(opt.palette.color(QPalette::Text));
    painter->drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);

    if (opt.state & QStyle::State_HasFocus)
        drawFocusRect(painter, tile.adjusted(kTileInset, kTileInset, -kTileInset, -kTileInset),
                      getPaletteColor(CColorIndexes(kFocusColor)));
    painter->restore();
}

QSize CAttachmentItemDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QFontMetrics metrics(option.font);
    const QString text = index.data(Qt::DisplayRole).toString();
    return QSize(qMin(metrics.horizontalAdvance(text) + kHorizontalExtra, kMaximumWidth), rowHeight(metrics));
}

QWidget* CAttachmentItemDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                               const QModelIndex& index) const
{
    auto* button = new QToolButton(parent);
    button->setObjectName(kRemoveButtonName);
    button->setIcon(qtHelpers::images::icon(kRemoveIconName));
    button->setCursor(Qt::PointingHandCursor);
    button->setProperty(kToolButtonSwitchProperty, true);
    button->setToolTip(QObject::tr("Click to remove this attachment"));
    // Not a stop of its own for Tab: the list is one stop, and Delete removes the current tile.
    button->setFocusPolicy(Qt::NoFocus);
    button->setAccessibleName(QObject::tr("Remove %1").arg(index.data(Qt::DisplayRole).toString()));
    CVantrelApp::setWidgetStyleSheetFromPalette(button);
    // Persistent, so that the button still names its own row after rows above it were removed.
    button->setProperty(kRemoveIndexProperty, QVariant::fromValue(QPersistentModelIndex(index)));
    connect(button, &QToolButton::clicked, this, &CAttachmentItemDelegate::onRemoveAttachmentClicked);
    return button;
}

void CAttachmentItemDelegate::setModelData(QWidget*, QAbstractItemModel*, const QModelIndex&) const
{}

void CAttachmentItemDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                                   const QModelIndex&) const
{
    const QRect row = option.rect.adjusted(kTileInset, 0, -kTileInset, 0);
    editor->setGeometry(row.left(), row.top() + (row.height() - kButtonSize) / 2, kButtonSize, kButtonSize);
}

void CAttachmentItemDelegate::onRemoveAttachmentClicked()
{
    const QObject* button = sender();
    if (!button)
        return;
    const auto index = button->property(kRemoveIndexProperty).value<QPersistentModelIndex>();
    if (index.isValid())
        emit removeAttachmentRequest(QModelIndex(index));
}
