#pragma once
// A plain row painter for news lists: icon, bold title and a faded second line on the style's own item
// background with a light blue selection. Nothing in the module installs it; it is registered with the
// meta-type system under its class name so that a host view can create it by name.

#include <QStyledItemDelegate>

class CNewsItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    static constexpr const char* kSelectionColor = "#A6D8FF";
    static constexpr int kHorizontalMargin = 12;
    static constexpr int kVerticalMargin = 8;
    static constexpr int kIconSize = 32;
    // Title indent when an icon precedes it.
    static constexpr int kIconIndent = 42;
    // Width added to the title's advance, with and without an icon, and the fixed row height.
    static constexpr int kWidthWithIcon = 66;
    static constexpr int kWidthWithoutIcon = 24;
    static constexpr int kRowHeight = 64;
    static constexpr int kTitlePointSize = 11;
    static constexpr int kSecondLinePointSize = 9;
    static constexpr int kTitleWeight = 600;
    static constexpr int kNormalWeight = 400;
    static constexpr qreal kSecondLineAlpha = 0.6;
    // The role whose value the second line shows as text.
    static constexpr int kSecondLineRole = Qt::UserRole + 5;

    explicit CNewsItemDelegate(QObject* parent = nullptr);
    ~CNewsItemDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};
