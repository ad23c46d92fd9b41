// Formatting, toolbar tracking and Markdown output of the composer's rich-text wrapper on real documents.
#include "HostTestMain.h"

#include "RichTextInputWrapper.h"

#include <QAccessible>
#include <QComboBox>
#include <QHBoxLayout>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextList>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

enum Style
{
    Bold,
    Italic,
    StrikeOut,
    Underline
};
const char* const kButtons[] = {"boldButton", "italicButton", "strikeOutButton"};

// The format of the character at `position`.
QTextCharFormat formatAt(const QTextDocument* document, int position)
{
    QTextCursor cursor(const_cast<QTextDocument*>(document));
    cursor.setPosition(position + 1);
    return cursor.charFormat();
}

bool hasStyle(const QTextCharFormat& format, int style)
{
    const QFont font = format.font();
    const bool states[] = {font.bold(), font.italic(), font.strikeOut(), font.underline()};
    return states[style];
}

int paragraphType(const QTextBlock& block)
{
    return block.blockFormat().property(RichTextInputWrapper::kParagraphTypeProperty).toInt();
}

} // namespace

class TestRichTextInputWrapper : public QObject
{
    Q_OBJECT

    // The main screen's composer in small: the toolbar with the form's object names above the editor.
    std::unique_ptr<QWidget> window;
    QComboBox* combo = nullptr;
    QTextEdit* editor = nullptr;
    RichTextInputWrapper* wrapper = nullptr;

    QTextDocument* document() const { return editor->document(); }
    QToolButton* button(int style) const { return window->findChild<QToolButton*>(kButtons[style]); }

    void placeCaret(int position)
    {
        QTextCursor cursor = editor->textCursor();
        cursor.setPosition(position);
        editor->setTextCursor(cursor);
    }

private slots:
    void init()
    {
        window = std::make_unique<QWidget>();
        auto* toolbar = new QWidget;
        auto* row = new QHBoxLayout(toolbar);
        for (const char* name : kButtons) {
            auto* button = new QToolButton;
            button->setObjectName(QString::fromLatin1(name));
            button->setCheckable(true);
            row->addWidget(button);
        }
        combo = new QComboBox;
        combo->setObjectName(QStringLiteral("paragraphItemsCombo"));
        combo->setFocusPolicy(Qt::NoFocus);
        row->addWidget(combo);
        editor = new QTextEdit;
        auto* layout = new QVBoxLayout(window.get());
        layout->addWidget(toolbar);
        layout->addWidget(editor);
        wrapper = new RichTextInputWrapper(window.get(), toolbar, editor);
        window->resize(420, 160);
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        editor->setFocus();
    }

    void cleanup() { window.reset(); }

    // Ctrl+B, Ctrl+I and Shift+Alt+X act at once: the very next letter carries the new format. Every control
    // has a name a screen reader can say.
    void shortcutsActAtOnceAndControlsHaveNames()
    {
        editor->setFocus();
        QTest::keyClicks(editor, QStringLiteral("a"));
        QTest::keyClick(editor, Qt::Key_B, Qt::ControlModifier);
        QTest::keyClicks(editor, QStringLiteral("b"));
        QTest::keyClick(editor, Qt::Key_I, Qt::ControlModifier);
        QTest::keyClicks(editor, QStringLiteral("c"));
        QTest::keyClick(editor, Qt::Key_X, Qt::ShiftModifier | Qt::AltModifier);
        QTest::keyClicks(editor, QStringLiteral("d"));
        const auto formatOf = [this](int position) { return formatAt(document(), position); };
        QVERIFY(formatOf(0).fontWeight() < QFont::Bold);
        QVERIFY(formatOf(1).fontWeight() >= QFont::Bold && !formatOf(1).fontItalic());
        QVERIFY(formatOf(2).fontItalic() && !formatOf(2).fontStrikeOut());
        QVERIFY(formatOf(3).fontStrikeOut() && formatOf(3).fontItalic() &&
                formatOf(3).fontWeight() >= QFont::Bold);

        QCOMPARE(QAccessible::queryAccessibleInterface(button(StrikeOut))->text(QAccessible::Name),
                 "Strike out");
        QCOMPARE(QAccessible::queryAccessibleInterface(editor)->text(QAccessible::Name), "Message");
        QCOMPARE(combo->itemText(RichTextInputWrapper::Monospaced), "Monospaced");
    }

    void formatsTheWordUnderTheCaret_data()
    {
        QTest::addColumn<int>("style");
        QTest::addColumn<int>("caret");
        for (int style : {Bold, Italic, StrikeOut, Underline})
            QTest::addRow("%d inside the word", style) << style << 2;
        QTest::newRow("at the word's end") << int(Bold) << 5;
        QTest::newRow("at the word's start") << int(Italic) << 0;
    }

    void formatsTheWordUnderTheCaret()
    {
        QFETCH(int, style);
        QFETCH(int, caret);
        editor->setPlainText(QStringLiteral("hello world"));
        placeCaret(caret);
        if (style == Underline)
            wrapper->setUnderline(true);
        else
            button(style)->click();

        for (int i = 0; i < 11; ++i)
            QCOMPARE(hasStyle(formatAt(document(), i), style), caret == 2 && i < 5);
        QVERIFY(editor->hasFocus());
        // What is typed next carries the new format in either case.
        QTest::keyClicks(editor, QStringLiteral("X"));
        QCOMPARE(editor->toPlainText().mid(caret, 1), QStringLiteral("X"));
        QVERIFY(hasStyle(formatAt(document(), caret), style));
    }

    void headingReplacesFormattingAndNormalClearsIt_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("sizeAdjustment");
        for (int level = 1; level <= 4; ++level)
            QTest::addRow("Heading %d", level) << level << 4 - level;
    }

    void headingReplacesFormattingAndNormalClearsIt()
    {
        QFETCH(int, type);
        QFETCH(int, sizeAdjustment);
        editor->setHtml(QStringLiteral("some <i>italic</i> <s>words</s>"));
        placeCaret(7);
        emit combo->activated(type);

        QCOMPARE(paragraphType(document()->firstBlock()), type);
        const QTextCharFormat format = formatAt(document(), 6);
        QVERIFY(format.fontWeight() == 700 && !format.fontItalic());
        QCOMPARE(format.property(QTextFormat::FontSizeAdjustment).toInt(), sizeAdjustment);
        QCOMPARE(combo->currentIndex(), type);
        QVERIFY(button(Bold)->isChecked());

        emit combo->activated(RichTextInputWrapper::Normal);
        QCOMPARE(paragraphType(document()->firstBlock()), 0);
        QVERIFY(!formatAt(document(), 6).font().bold() && !formatAt(document(), 6).fontItalic());
        QVERIFY(!button(Bold)->isChecked());

        // Each change of paragraph type is one undo step.
        editor->undo();
        QCOMPARE(paragraphType(document()->firstBlock()), type);
        editor->undo();
        QCOMPARE(paragraphType(document()->firstBlock()), 0);
        QVERIFY(formatAt(document(), 6).fontItalic() && !formatAt(document(), 6).font().bold());
    }

    void returnEndsAHeadingButNotMonospace_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("heading") << int(RichTextInputWrapper::Heading1);
        QTest::newRow("monospace") << int(RichTextInputWrapper::Monospaced);
    }

    void returnEndsAHeadingButNotMonospace()
    {
        QFETCH(int, type);
        const bool monospace = type == RichTextInputWrapper::Monospaced;
        emit combo->activated(type);
        QTest::keyClicks(editor, QStringLiteral("Title"));
        QCOMPARE(combo->currentIndex(), type);
        QTest::keyClick(editor, Qt::Key_Return);
        QCOMPARE(combo->currentIndex(), monospace ? type : 0);
        QTest::keyClicks(editor, QStringLiteral("body"));

        // Headings live in the block format; monospace is recognised from the font alone.
        QCOMPARE(paragraphType(document()->firstBlock()), monospace ? 0 : type);
        QCOMPARE(formatAt(document(), 0).fontFixedPitch(), monospace);
        const QTextCharFormat body = formatAt(document(), document()->lastBlock().position() + 1);
        QVERIFY(!body.font().bold() && !body.hasProperty(QTextFormat::FontSizeAdjustment));
        QCOMPARE(body.fontFixedPitch(), monospace);
    }

    void toolbarFollowsTheCursorWithoutReformatting()
    {
        editor->setHtml(QStringLiteral("<b>loud</b> <i><s>quiet</s></i> plain<p>Title</p>"));
        placeCaret(18);
        wrapper->setParagraphType(RichTextInputWrapper::Heading3);
        const QString html = editor->toHtml();
        QSignalSpy boldToggled(button(Bold), &QToolButton::toggled);

        // Caret, then what bold, italic, strike-out and the paragraph combo must show there.
        const QList<std::tuple<int, bool, bool, bool, int>> stops = {{2, true, false, false, 0},
                                                                     {8, false, true, true, 0},
                                                                     {14, false, false, false, 0},
                                                                     {19, true, false, false, 3},
                                                                     {1, true, false, false, 0}};
        for (const auto& [caret, bold, italic, strikeOut, paragraph] : stops) {
            placeCaret(caret);
            QCOMPARE(button(Bold)->isChecked(), bold);
            QCOMPARE(button(Italic)->isChecked(), italic);
            QCOMPARE(button(StrikeOut)->isChecked(), strikeOut);
            QCOMPARE(combo->currentIndex(), paragraph);
        }
        QCOMPARE(editor->toHtml(), html);
        QCOMPARE(boldToggled.count(), 0);
    }

    void markdownCarriesTheFormatting_data()
    {
        QTest::addColumn<int>("style");
        QTest::addColumn<int>("paragraph");
        QTest::addColumn<QString>("markdown");
        QTest::newRow("bold") << int(Bold) << 0 << "**hello**";
        QTest::newRow("italic") << int(Italic) << 0 << "*hello*";
        QTest::newRow("strike-out") << int(StrikeOut) << 0 << "~~hello~~";
        QTest::newRow("heading 4") << -1 << 4 << "#### hello";
        QTest::newRow("monospace") << -1 << int(RichTextInputWrapper::Monospaced) << "`hello`";
    }

    void markdownCarriesTheFormatting()
    {
        QFETCH(int, style);
        QFETCH(int, paragraph);
        QFETCH(QString, markdown);
        editor->setPlainText(QStringLiteral("\nhello\n"));
        const QTextCursor word = document()->find(QStringLiteral("hello"));
        editor->setTextCursor(word);
        if (style >= 0)
            button(style)->click();
        else
            wrapper->setParagraphType(paragraph);
        const QString exported = RichTextInputWrapper::messageMarkdown(document());
        QCOMPARE(exported, markdown);

        // The thread renders a message body with insertMarkdown; the word must look as it did here.
        const QTextCharFormat original = formatAt(document(), word.selectionStart());
        QTextDocument thread;
        QTextCursor(&thread).insertMarkdown(exported, QTextDocument::MarkdownDialectGitHub);
        const QTextCursor found = thread.find(QStringLiteral("hello"));
        QVERIFY(!found.isNull());
        const QTextCharFormat rendered = formatAt(&thread, found.selectionStart());
        for (int each : {Bold, Italic, StrikeOut})
            QCOMPARE(hasStyle(rendered, each), hasStyle(original, each));
        QCOMPARE(rendered.fontFixedPitch(), original.fontFixedPitch());
        QCOMPARE(rendered.property(QTextFormat::FontSizeAdjustment).toInt(),
                 original.property(QTextFormat::FontSizeAdjustment).toInt());
    }

    // Lists, line breaks and text that looks like Markdown, as pasted or typed, read the same in the thread.
    void pastedStructureReadsTheSameInTheThread_data()
    {
        QTest::addColumn<QString>("html");
        QTest::newRow("bullets") << "<ul><li>one</li><li>two</li></ul><p>after the list</p>";
        QTest::newRow("numbers") << "<p>before</p><ol><li>one</li><li>two</li></ol>";
        QTest::newRow("nested") << "<ul><li>one<ul><li>inner</li><li>more</li></ul></li><li>two</li></ul>";
        QTest::newRow("line break") << "<p>first line<br>second line</p><p>  indented</p>";
        QTest::newRow("looks like Markdown")
            << "<p>1. not a list</p><p>2) nor this</p><p># nor a heading</p>";
        QTest::newRow("styles side by side") << "<p><b>bo</b><b>ld</b> <i> spaced </i> <s>gone</s></p>";
        QTest::newRow("code with a backtick") << "<p><code>a`b</code> and <code> c </code></p>";
    }

    void pastedStructureReadsTheSameInTheThread()
    {
        QFETCH(QString, html);
        editor->setHtml(html);
        QTextDocument thread;
        QTextCursor(&thread).insertMarkdown(RichTextInputWrapper::messageMarkdown(document()),
                                            QTextDocument::MarkdownDialectGitHub);
        const auto shape = [](const QTextDocument* text) {
            QStringList blocks;
            for (QTextBlock block = text->begin(); block.isValid(); block = block.next()) {
                if (block.text().trimmed().isEmpty())
                    continue;
                const QTextList* list = block.textList();
                const QString prefix =
                    list ? QStringLiteral("%1%2 ")
                               .arg(list->format().style() == QTextListFormat::ListDecimal ? "1." : "-")
                               .arg(list->format().indent())
                         : QString();
                // A line break may come back as a block of its own; it looks the same.
                for (const QString& line : block.text().split(QChar::LineSeparator))
                    blocks << prefix + line.simplified();
            }
            return blocks;
        };
        QCOMPARE(shape(&thread), shape(document()));
        for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
            for (auto it = block.begin(); !it.atEnd(); ++it) {
                const QTextFragment fragment = it.fragment();
                const QTextCursor found = thread.find(fragment.text().trimmed());
                if (fragment.text().trimmed().isEmpty() || found.isNull())
                    continue;
                for (int each : {Bold, Italic, StrikeOut})
                    QCOMPARE(hasStyle(formatAt(&thread, found.selectionStart()), each),
                             hasStyle(fragment.charFormat(), each));
            }
        }
    }
};

HOST_TEST_MAIN(TestRichTextInputWrapper)
#include "tst_richtextinputwrapper.moc"
