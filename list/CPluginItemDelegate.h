#pragma once
// Paints the rows of the communication list in the host's navigation tree: folder rows with a title and
// an expand arrow, entry rows with an icon, a bold title and a date line, faded once read. Entries the
// user may hide get a small tool button as their persistent editor; its click asks the plugin to hide the
// entry; Delete and the row's context menu do the same from the keyboard. Owned by the plugin (installed as
// its item delegate).

#include <QAbstractItemDelegate>
#include <QFont>

class CRowHideActions;

class CPluginItemDelegate : public QAbstractItemDelegate
{
    Q_OBJECT
public:
    // Side of the hide button.
    static constexpr int buttonSize = 24;
    // Margins inside a row and the gap between the parts of a row.
    static constexpr int kHorizontalMargin = 12;
    static constexpr int kVerticalMargin = 8;
    static constexpr int kGap = 12;
    // Sizes of the row parts.
    static constexpr int kArrowSize = 30;
    static constexpr int kIconSize = 32;
    static constexpr int kRowWidth = 320;
    static constexpr int kFolderRowHeight = 41;
    static constexpr int kEntryRowHeight = 58;
    static constexpr int kTitlePointSize = 11;
    static constexpr int kDatePointSize = 9;
    static constexpr int kTitleWeight = 600;
    static constexpr int kDateWeight = 400;
    // Inset of the keyboard-focus frame.
    static constexpr int kFocusInset = 2;
    // Style bits of makeFont().
    static constexpr int kItalicBit = 1;
    static constexpr int kUnderlineBit = 2;
    static constexpr int kStrikeOutBit = 4;
    // Object name and dynamic properties of the hide button.
    static constexpr const char* kHideButtonName = "newsReaderPluginItem";
    static constexpr const char* kHideIndexProperty = "MessageToHideIndex";
    static constexpr const char* kToolButtonSwitchProperty = "isToolButtonSwitch";

    explicit CPluginItemDelegate(QObject* parent = nullptr);
    ~CPluginItemDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

    // Whether the row gets a hide button: plain news only (not important, not pinned, not a folder).
    static bool canHide(const QModelIndex& index);
    // A copy of `base` with the point size (0: unchanged), weight and style bits applied.
    static QFont makeFont(const QFont& base, int pointSize, int weight, int styleBits);

signals:
    void hideMessageRequest(const QModelIndex& index);

public slots:
    void onHideButtonClicked();

private:
    CRowHideActions* m_rowHideActions;

    void paintFolder(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    void paintEntry(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
};
