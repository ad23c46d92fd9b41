#pragma once
// Turns a plain rich-text editor and a small formatting toolbar into the message composer: binds the
// toolbar's buttons and paragraph combo (found by object name in a container) to the editor, applies
// character and paragraph formatting, and keeps the toolbar in step with the text under the cursor.
// Owns no widgets; the main screen creates one wrapper and parents it.

#include <QObject>
#include <QPointer>
#include <QTextCharFormat>

class QComboBox;
class QTextDocument;
class QTextEdit;
class QTextList;
class QToolButton;
class QWidget;

class RichTextInputWrapper : public QObject
{
    Q_OBJECT
public:
    enum ParagraphType
    {
        Normal = 0,
        Heading1 = 1,
        Heading2 = 2,
        Heading3 = 3,
        Heading4 = 4,
        Monospaced = 5,
    };
    Q_ENUM(ParagraphType)

    // Block-format property that remembers a paragraph's heading level (0: not a heading).
    static constexpr int kParagraphTypeProperty = QTextFormat::UserProperty + 1;
    static constexpr int kBoldWeight = 700;
    static constexpr int kNormalWeight = 400;
    // Heading levels are sized like the toolkit's own Markdown headings: level 1 gets +3 steps.
    static constexpr int kHeadingSizeBase = 4;
    static constexpr int kHeadingLevelCount = 4;

    RichTextInputWrapper(QObject* parent, QWidget* toolbar, QTextEdit* editor);
    ~RichTextInputWrapper() override;

    void setBold(bool on);
    void setItalic(bool on);
    void setStrikeOut(bool on);
    void setUnderline(bool on);

    // Applies a ParagraphType to the paragraph under the cursor (or to the selected paragraphs) as one undo
    // step; any unknown value acts as Normal.
    void setParagraphType(int type);

    // The ParagraphType that `format` shows at the editor's cursor.
    int currentParagraphType(const QTextCharFormat& format) const;

    // What the composer sends: the document as GitHub-dialect Markdown without surrounding white space.
    static QString messageMarkdown(const QTextDocument* document);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void mergeCharFormat(const QTextCharFormat& format);
    void onCurrentCharFormatChanged(const QTextCharFormat& format);
    void onCursorPositionChanged();
    void onBlockCountChanged(int count);
    void onContentsChanged();
    void onParagraphChosen(int index);
    void trackList();

    QPointer<QTextEdit> m_editor;
    QPointer<QTextList> m_currentList;
    // The toolbar may be torn down before the editor when the form goes away.
    QPointer<QToolButton> m_boldButton;
    QPointer<QToolButton> m_italicButton;
    QPointer<QToolButton> m_strikeOutButton;
    QPointer<QComboBox> m_paragraphItemsCombo;
    bool m_returnPressed = false;
};
