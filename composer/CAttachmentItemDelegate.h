#pragma once
// Paints an attachment of the composer's list as a framed tile with the file's icon and name (tinted when
// the name cannot be sent), and gives every row a small remove button as its persistent editor. The
// plugin connects removeAttachmentRequest() to the attachments model.

#include <QStyledItemDelegate>

class CAttachmentItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    // The remove button's property holding the persistent index of its row.
    static constexpr const char* kRemoveIndexProperty = "AttachmentToRemoveIndex";
    static constexpr int kMaximumWidth = 320;
    static constexpr int kMinimumTextHeight = 20;
    static constexpr int kVerticalPadding = 4;
    // Room around the name: remove button, icon and gaps.
    static constexpr int kHorizontalExtra = 44;
    static constexpr int kTileInset = 2;
    static constexpr int kButtonSize = 20;
    static constexpr int kIconSize = 16;
    static constexpr int kTextGap = 4;
    static constexpr int kInvalidNameColor = 223;
    static constexpr int kFrameColor = 168;
    static constexpr int kFocusColor = 1;

    using QStyledItemDelegate::QStyledItemDelegate;
    ~CAttachmentItemDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    // The remove button edits nothing.
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

signals:
    void removeAttachmentRequest(QModelIndex index);

public slots:
    void onRemoveAttachmentClicked();
};
