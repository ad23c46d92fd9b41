#include "RichTextInputWrapper.h"

#include "CMarkdownWriter.h"

#include "QtHelpersImages.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextList>
#include <QToolButton>

namespace {

const QString kMonospaceFamily = QStringLiteral("Monospace");

bool isHeading(int type)
{
    return type >= RichTextInputWrapper::Heading1 && type <= RichTextInputWrapper::Heading4;
}

bool standsAtWordEdge(const QTextCursor& cursor, QTextCursor::MoveOperation edge)
{
    QTextCursor probe(cursor);
    probe.movePosition(edge);
    return probe.position() == cursor.position();
}

QTextCharFormat headingFormat(int level)
{
    QTextCharFormat format;
    format.setFontWeight(RichTextInputWrapper::kBoldWeight);
    format.setProperty(QTextFormat::FontSizeAdjustment, RichTextInputWrapper::kHeadingSizeBase - level);
    return format;
}

} // namespace

RichTextInputWrapper::RichTextInputWrapper(QObject* parent, QWidget* toolbar, QTextEdit* editor)
    : QObject(parent)
    , m_editor(editor)
{
    qRegisterMetaType<ParagraphType>();

    // A toolbar button's icon is named after the button, so the form decides which image each one shows.
    const auto buttons = toolbar ? toolbar->findChildren<QToolButton*>() : QList<QToolButton*>();
    for (QToolButton* button : buttons)
        button->setIcon(qtHelpers::images::icon(button->objectName()));

    if (editor) {
        connect(editor, &QTextEdit::currentCharFormatChanged, this,
                &RichTextInputWrapper::onCurrentCharFormatChanged);
        connect(editor, &QTextEdit::cursorPositionChanged, this,
                &RichTextInputWrapper::onCursorPositionChanged);
        connect(editor->document(), &QTextDocument::blockCountChanged, this,
                &RichTextInputWrapper::onBlockCountChanged);
        connect(editor->document(), &QTextDocument::contentsChanged, this,
                &RichTextInputWrapper::onContentsChanged);
        editor->installEventFilter(this);
    }

    if (toolbar) {
        m_boldButton = toolbar->findChild<QToolButton*>(QStringLiteral("boldButton"));
        m_italicButton = toolbar->findChild<QToolButton*>(QStringLiteral("italicButton"));
        m_strikeOutButton = toolbar->findChild<QToolButton*>(QStringLiteral("strikeOutButton"));
        m_paragraphItemsCombo = toolbar->findChild<QComboBox*>(QStringLiteral("paragraphItemsCombo"));
    }

    if (m_paragraphItemsCombo) {
        // Item data are plain integers so that finding a type by its value is an exact match.
        m_paragraphItemsCombo->addItem(QIcon(), QObject::tr("Normal"), int(Normal));
        m_paragraphItemsCombo->addItem(QIcon(), QObject::tr("Heading 1"), int(Heading1));
        m_paragraphItemsCombo->addItem(QIcon(), QObject::tr("Heading 2"), int(Heading2));
        m_paragraphItemsCombo->addItem(QIcon(), QObject::tr("Heading 3"), int(Heading3));
        m_paragraphItemsCombo->addItem(QIcon(), QObject::tr("Heading 4"), int(Heading4));
        m_paragraphItemsCombo->addItem(QIcon(), QObject::tr("Monospaced"), int(Monospaced));
        connect(m_paragraphItemsCombo, &QComboBox::activated, this, &RichTextInputWrapper::onParagraphChosen);
    }

    // The shortcuts toggle their buttons at once (a button's own shortcut animates a click and acts about
    // 100 ms later, after the next letter has been typed in the old format).
    const auto bindButton = [this, toolbar](QToolButton* button, const QKeySequence& keys,
                                            const QString& name, void (RichTextInputWrapper::*apply)(bool)) {
        if (!button)
            return;
        button->setAccessibleName(name);
        button->setToolTip(QStringLiteral("%1 (%2)").arg(name, keys.toString(QKeySequence::NativeText)));
        auto* shortcut = new QShortcut(keys, toolbar);
        shortcut->setContext(Qt::WindowShortcut);
        connect(shortcut, &QShortcut::activated, button, [button] {
            if (button->isEnabled() && button->isVisible())
                button->toggle();
        });
        connect(button, &QToolButton::toggled, this, apply);
    };
    bindButton(m_boldButton, QKeySequence(Qt::CTRL | Qt::Key_B), QObject::tr("Bold"),
               &RichTextInputWrapper::setBold);
    bindButton(m_italicButton, QKeySequence(Qt::CTRL | Qt::Key_I), QObject::tr("Italic"),
               &RichTextInputWrapper::setItalic);
    bindButton(m_strikeOutButton, QKeySequence(Qt::SHIFT | Qt::ALT | Qt::Key_X), QObject::tr("Strike out"),
               &RichTextInputWrapper::setStrikeOut);
    if (m_paragraphItemsCombo) {
        m_paragraphItemsCombo->setAccessibleName(QObject::tr("Paragraph style"));
        // Reached by Tab; a click still leaves the focus (and the selection) in the editor.
        m_paragraphItemsCombo->setFocusPolicy(Qt::TabFocus);
    }
    if (editor)
        editor->setAccessibleName(QObject::tr("Message"));
}

RichTextInputWrapper::~RichTextInputWrapper() = default;

void RichTextInputWrapper::setBold(bool on)
{
    QTextCharFormat format;
    format.setFontWeight(on ? kBoldWeight : kNormalWeight);
    mergeCharFormat(format);
}

void RichTextInputWrapper::setItalic(bool on)
{
    QTextCharFormat format;
    format.setFontItalic(on);
    mergeCharFormat(format);
}

void RichTextInputWrapper::setStrikeOut(bool on)
{
    QTextCharFormat format;
    format.setFontStrikeOut(on);
    mergeCharFormat(format);
}

void RichTextInputWrapper::setUnderline(bool on)
{
    QTextCharFormat format;
    format.setFontUnderline(on);
    mergeCharFormat(format);
}

void RichTextInputWrapper::mergeCharFormat(const QTextCharFormat& format)
{
    if (!m_editor)
        return;
    // Inside a word the button formats the whole word; at a word's edge only what is typed next.
    QTextCursor cursor = m_editor->textCursor();
    if (!cursor.hasSelection() && !standsAtWordEdge(cursor, QTextCursor::EndOfWord) &&
        !standsAtWordEdge(cursor, QTextCursor::StartOfWord))
        cursor.select(QTextCursor::WordUnderCursor);
    cursor.mergeCharFormat(format);
    m_editor->mergeCurrentCharFormat(format);
    m_editor->setFocus(Qt::TabFocusReason);
}

void RichTextInputWrapper::setParagraphType(int type)
{
    if (!m_editor)
        return;
    QTextCursor cursor = m_editor->textCursor();
    cursor.beginEditBlock();

    QTextCharFormat format;
    const int level = isHeading(type) ? type : 0;
    if (level) {
        format = headingFormat(level);
    } else if (type == Monospaced) {
        format = cursor.charFormat();
        format.setFontFamilies({kMonospaceFamily});
        format.setFontStyleHint(QFont::Monospace, QFont::PreferDefault);
        format.setFontFixedPitch(true);
    }

    // The toolkit's own heading level rides along so that the Markdown export writes real headings.
    // (Cleared rather than 0 for other types: the editor drops the typing format after any block that
    // has a heading level at all, which would end a monospaced paragraph on Return.)
    QTextBlockFormat blockFormat = cursor.blockFormat();
    blockFormat.setProperty(kParagraphTypeProperty, level);
    if (level)
        blockFormat.setHeadingLevel(level);
    else
        blockFormat.clearProperty(QTextFormat::HeadingLevel);
    cursor.setBlockFormat(blockFormat);

    if (!cursor.hasSelection()) {
        cursor.movePosition(QTextCursor::StartOfBlock);
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    }
    // Replacing rather than merging: a paragraph type resets whatever character formatting it had.
    cursor.setBlockCharFormat(format);
    cursor.setCharFormat(format);
    m_editor->setCurrentCharFormat(format);
    cursor.endEditBlock();
    m_editor->setFocus(Qt::TabFocusReason);
}

int RichTextInputWrapper::currentParagraphType(const QTextCharFormat& format) const
{
    if (!m_editor)
        return Normal;
    const int stored = m_editor->textCursor().blockFormat().property(kParagraphTypeProperty).toInt();
    if (stored >= Heading1)
        return stored;
    // Monospace is not stored with the block: a paragraph is monospaced when its text is.
    if (format.font().fixedPitch() || format.fontFixedPitch())
        return Monospaced;
    return Normal;
}

QString RichTextInputWrapper::messageMarkdown(const QTextDocument* document)
{
    if (!document)
        return QString();
    return CMarkdownWriter::write(document);
}

bool RichTextInputWrapper::eventFilter(QObject* watched, QEvent* event)
{
    // The type is checked first: the editor's own teardown events reach this filter while it is half
    // destroyed, when it must not be looked at as an editor any more.
    if (event->type() == QEvent::KeyPress && watched == m_editor) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
            m_returnPressed = true;
    }
    return QObject::eventFilter(watched, event);
}

void RichTextInputWrapper::onCurrentCharFormatChanged(const QTextCharFormat& format)
{
    if (!m_editor)
        return;
    if (m_paragraphItemsCombo) {
        const QSignalBlocker blocker(m_paragraphItemsCombo);
        const int index = m_paragraphItemsCombo->findData(currentParagraphType(format), Qt::UserRole,
                                                          Qt::MatchExactly | Qt::MatchCaseSensitive);
        if (index >= 0)
            m_paragraphItemsCombo->setCurrentIndex(index);
    }
    // Blocked so that following the cursor never formats the text again.
    const QFont font = format.font();
    const std::pair<QPointer<QToolButton>, bool> states[] = {
        {m_boldButton, font.bold()}, {m_italicButton, font.italic()}, {m_strikeOutButton, font.strikeOut()}};
    for (const auto& [button, checked] : states) {
        if (!button)
            continue;
        const QSignalBlocker blocker(button);
        button->setChecked(checked);
    }
    trackList();
}

void RichTextInputWrapper::onCursorPositionChanged()
{
    trackList();
}

void RichTextInputWrapper::onBlockCountChanged(int)
{
    if (!m_editor || !m_returnPressed)
        return;
    m_returnPressed = false;
    QTextCursor cursor = m_editor->textCursor();
    const int type = currentParagraphType(cursor.blockCharFormat());
    // A paragraph after a heading starts as normal text; a monospaced one continues monospaced.
    if (standsAtWordEdge(cursor, QTextCursor::EndOfWord) && isHeading(type)) {
        setParagraphType(Normal);
        return;
    }
    // A heading split in two stays a heading on both sides; the editor itself drops the toolkit's heading
    // level from the new half, so it is put back for the Markdown export.
    QTextBlockFormat blockFormat = cursor.blockFormat();
    if (isHeading(type) && blockFormat.headingLevel() != type) {
        blockFormat.setHeadingLevel(type);
        cursor.setBlockFormat(blockFormat);
    }
}

void RichTextInputWrapper::onContentsChanged()
{
    if (!m_editor)
        return;
    onCurrentCharFormatChanged(m_editor->textCursor().charFormat());
}

void RichTextInputWrapper::onParagraphChosen(int index)
{
    if (!m_paragraphItemsCombo)
        return;
    setParagraphType(m_paragraphItemsCombo->itemData(index, Qt::UserRole).toInt());
}

void RichTextInputWrapper::trackList()
{
    if (!m_editor)
        return;
    QTextList* list = m_editor->textCursor().currentList();
    if (list == m_currentList)
        return;
    if (list && m_currentList && list->format().style() == m_currentList->format().style())
        return;
    m_currentList = list;
}
