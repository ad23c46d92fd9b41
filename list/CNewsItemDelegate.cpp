#include "CNewsItemDelegate.h"

#include "HostText.h"

#include <QApplication>
#include <QMetaType>
#include <QPainter>

namespace {

QFont plainFont(const QFont& base, int pointSize, int weight)
{
    QFont font(base);
    font.setPointSize(pointSize);
    font.setWeight(QFont::Weight(weight));
    font.setItalic(false);
    font.setUnderline(false);
    font.setStrikeOut(false);
    return font;
}

QIcon decorationOf(const QModelIndex& index)
{
    return qvariant_cast<QIcon>(index.data(Qt::DecorationRole));
}

// Registered by name with a default constructor, so that a view can create the delegate knowing only
// its class name.
void registerByName()
{
    qRegisterMetaType<CNewsItemDelegate>("CNewsItemDelegate");
}

Q_CONSTRUCTOR_FUNCTION(registerByName)

} // namespace

CNewsItemDelegate::CNewsItemDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
{}

CNewsItemDelegate::~CNewsItemDelegate() = default;

QSize CNewsItemDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QFontMetrics metrics(plainFont(option.font, kTitlePointSize, kNormalWeight));
    const int advance = metrics.horizontalAdvance(index.data(Qt::DisplayRole).toString());
    return {advance + (decorationOf(index).isNull() ? kWidthWithoutIcon : kWidthWithIcon), kRowHeight};
}

void CNewsItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const
{
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    const QRect inner =
        option.rect.adjusted(kHorizontalMargin, kVerticalMargin, -kHorizontalMargin, -kVerticalMargin);

    int indent = 0;
    const QIcon icon = decorationOf(index);
    if (!icon.isNull()) {
        QRect iconRect(0, 0, kIconSize, kIconSize);
        iconRect.moveCenter(inner.center());
        iconRect.moveLeft(inner.left());
        icon.paint(painter, iconRect, Qt::AlignCenter, QIcon::Normal);
        indent = kIconIndent;
    }

    // Background, selection and focus the style's way, without the text.
    QStyleOptionViewItem itemOption(option);
    initStyleOption(&itemOption, index);
    itemOption.text.clear();
    itemOption.palette.setColor(QPalette::Highlight, QColor(QString::fromLatin1(kSelectionColor)));
    const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &itemOption, painter, option.widget);

    QRect title = inner;
    title.setLeft(inner.left() + indent);
    title.setBottom(inner.center().y());
    const QFont titleFont = plainFont(option.font, kTitlePointSize, kTitleWeight);
    const QString titleText =
        GetDottedString(index.data(Qt::DisplayRole).toString(), titleFont, title.width(), 0, 0);
    QRect drawnTitle;
    painter->save();
    painter->setFont(titleFont);
    painter->setPen(option.palette.color(QPalette::Text));
    painter->drawText(title, Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine, titleText, &drawnTitle);
    painter->restore();

    QRect second = title;
    second.setTop(drawnTitle.bottom() + 1);
    second.setBottom(inner.bottom());
    const QFont secondFont = plainFont(option.font, kSecondLinePointSize, kNormalWeight);
    const QString secondText =
        GetDottedString(index.data(kSecondLineRole).toString(), secondFont, second.width(), 0, 0);
    if (secondText.isEmpty())
        return;
    QColor color = option.palette.color(QPalette::Text);
    color.setAlphaF(float(kSecondLineAlpha));
    painter->save();
    painter->setFont(secondFont);
    painter->setPen(color);
    painter->drawText(second, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, secondText);
    painter->restore();
}
