// Formatting, toolbar tracking and Markdown output of the composer's rich-text wrapper on real documents.
#include "ComposerTestWindow.h"
#include "HostTestMain.h"

#include "RichTextInputWrapper.h"

#include <QDir>
#include <QImage>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace {

// The format of the character at `position`.
QTextCharFormat formatAt(const QTextDocument* document, int position)
{
    QTextCursor cursor(const_cast<QTextDocument*>(document));
    cursor.setPosition(position + 1);
    return cursor.charFormat();
}

void placeCaret(QTextEdit* editor, int position)
{
    QTextCursor cursor = editor->textCursor();
    cursor.setPosition(position);
    editor->setTextCursor(cursor);
}

struct CharState
{
    bool bold;
    bool italic;
    bool strikeOut;
};

CharState stateAt(const QTextDocument* document, int position)
{
    const QFont font = formatAt(document, position).font();
    return {font.bold(), font.italic(), font.strikeOut()};
}

// Every character of every fragment of the block, in order, with its format.
QList<QTextCharFormat> fragmentFormats(const QTextBlock& block)
{
    QList<QTextCharFormat> formats;
    for (auto it = block.begin(); !it.atEnd(); ++it)
        formats.append(it.fragment().charFormat());
    return formats;
}

} // namespace

class TestRichTextInputWrapper : public QObject
{
    Q_OBJECT

    std::unique_ptr<ComposerTestWindow> window;
    RichTextInputWrapper* wrapper = nullptr;

private slots:
    void init()
    {
        window = std::make_unique<ComposerTestWindow>();
        wrapper = new RichTextInputWrapper(window.get(), window->toolbar, window->editor);
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        window->editor->setFocus();
    }

    void cleanup()
    {
        window.reset();
        wrapper = nullptr;
    }

    void bindsTheToolbar()
    {
        const QStringList texts = {"Normal",    "Heading 1", "Heading 2",
                                   "Heading 3", "Heading 4", "Monospaced"};
        QCOMPARE(window->combo->count(), texts.size());
        for (int i = 0; i < texts.size(); ++i) {
            QCOMPARE(window->combo->itemText(i), texts[i]);
            QCOMPARE(window->combo->itemData(i, Qt::UserRole), QVariant(i));
            QVERIFY(window->combo->itemIcon(i).isNull());
        }
        for (const char* name : {"boldButton", "italicButton", "strikeOutButton"})
            QVERIFY2(!window->button(name)->icon().isNull(), name);
        QCOMPARE(window->button("boldButton")->shortcut(), QKeySequence(QStringLiteral("Ctrl+B")));
        QCOMPARE(window->button("italicButton")->shortcut(), QKeySequence(QStringLiteral("Ctrl+I")));
        QCOMPARE(window->button("strikeOutButton")->shortcut(), QKeySequence(QStringLiteral("Shift+Alt+X")));
        QVERIFY(QMetaType::fromName("RichTextInputWrapper::ParagraphType").isValid());
    }

    void buttonFormatsTheWordUnderTheCaret_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("caret");
        QTest::addColumn<bool>("wholeWord");
        for (const char* button : {"boldButton", "italicButton", "strikeOutButton"}) {
            QTest::addRow("%s inside the word", button) << button << 2 << true;
            QTest::addRow("%s at the word's end", button) << button << 5 << false;
            QTest::addRow("%s at the word's start", button) << button << 0 << false;
        }
    }

    void buttonFormatsTheWordUnderTheCaret()
    {
        QFETCH(QString, button);
        QFETCH(int, caret);
        QFETCH(bool, wholeWord);
        auto pick = [&](const CharState& state) {
            return button == "boldButton"     ? state.bold
                   : button == "italicButton" ? state.italic
                                              : state.strikeOut;
        };

        window->editor->setPlainText(QStringLiteral("hello world"));
        placeCaret(window->editor, caret);
        window->button(button.toLatin1().constData())->click();

        const QTextDocument* document = window->editor->document();
        for (int i = 0; i < 5; ++i)
            QCOMPARE(pick(stateAt(document, i)), wholeWord);
        for (int i = 5; i < 11; ++i)
            QVERIFY(!pick(stateAt(document, i)));
        QVERIFY(window->editor->hasFocus());

        // What is typed next carries the new format in either case.
        QTest::keyClicks(window->editor, QStringLiteral("X"));
        QVERIFY(pick(stateAt(document, caret)));
        QCOMPARE(window->editor->toPlainText().mid(caret, 1), QStringLiteral("X"));
    }

    void shortcutsToggleFormatting_data()
    {
        QTest::addColumn<QKeySequence>("keys");
        QTest::addColumn<int>("which");
        QTest::newRow("Ctrl+B bold") << QKeySequence(Qt::CTRL | Qt::Key_B) << 0;
        QTest::newRow("Ctrl+I italic") << QKeySequence(Qt::CTRL | Qt::Key_I) << 1;
        QTest::newRow("Shift+Alt+X strike-out") << QKeySequence(Qt::SHIFT | Qt::ALT | Qt::Key_X) << 2;
    }

    void shortcutsToggleFormatting()
    {
        QFETCH(QKeySequence, keys);
        QFETCH(int, which);
        window->editor->setPlainText(QStringLiteral("hello"));
        placeCaret(window->editor, 2);
        auto isOn = [&] {
            const CharState state = stateAt(window->editor->document(), 0);
            const bool states[] = {state.bold, state.italic, state.strikeOut};
            return states[which];
        };
        // A button's shortcut clicks it with a short animation, so the change comes a moment later.
        QTest::keySequence(window->editor, keys);
        QTRY_VERIFY(isOn());
        QTest::keySequence(window->editor, keys);
        QTRY_VERIFY(!isOn());
    }

    void underlineFormatsTheWordUnderTheCaret()
    {
        window->editor->setPlainText(QStringLiteral("hello world"));
        placeCaret(window->editor, 8);
        wrapper->setUnderline(true);
        QVERIFY(formatAt(window->editor->document(), 6).fontUnderline());
        QVERIFY(!formatAt(window->editor->document(), 4).fontUnderline());
    }

    void headingReplacesFormattingAndNormalClearsIt()
    {
        window->editor->setHtml(QStringLiteral("some <i>italic</i> <s>words</s>"));
        placeCaret(window->editor, 7);
        emit window->combo->activated(2);

        const QTextBlock block = window->editor->document()->firstBlock();
        QCOMPARE(block.blockFormat().property(RichTextInputWrapper::kParagraphTypeProperty).toInt(), 2);
        for (const QTextCharFormat& format : fragmentFormats(block)) {
            QCOMPARE(format.fontWeight(), 700);
            QVERIFY(!format.fontItalic());
            QVERIFY(!format.fontStrikeOut());
            QCOMPARE(format.property(QTextFormat::FontSizeAdjustment).toInt(), 2);
        }
        QCOMPARE(window->combo->currentText(), QStringLiteral("Heading 2"));
        QVERIFY(window->button("boldButton")->isChecked());

        emit window->combo->activated(0);
        const QTextBlock normal = window->editor->document()->firstBlock();
        QCOMPARE(normal.blockFormat().property(RichTextInputWrapper::kParagraphTypeProperty).toInt(), 0);
        for (const QTextCharFormat& format : fragmentFormats(normal)) {
            QVERIFY(!format.font().bold());
            QVERIFY(!format.fontItalic());
            QVERIFY(!format.hasProperty(QTextFormat::FontSizeAdjustment));
        }
        QCOMPARE(window->editor->toPlainText(), QStringLiteral("some italic words"));
        QCOMPARE(window->combo->currentText(), QStringLiteral("Normal"));
        QVERIFY(!window->button("boldButton")->isChecked());
    }

    void headingLevelsSizeTheText_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("adjustment");
        QTest::newRow("Heading 1") << 1 << 3;
        QTest::newRow("Heading 2") << 2 << 2;
        QTest::newRow("Heading 3") << 3 << 1;
        QTest::newRow("Heading 4") << 4 << 0;
    }

    void headingLevelsSizeTheText()
    {
        QFETCH(int, type);
        QFETCH(int, adjustment);
        window->editor->setPlainText(QStringLiteral("Title"));
        wrapper->setParagraphType(type);
        const QTextCharFormat format = formatAt(window->editor->document(), 1);
        QCOMPARE(format.fontWeight(), 700);
        QCOMPARE(format.property(QTextFormat::FontSizeAdjustment).toInt(), adjustment);
        QCOMPARE(wrapper->currentParagraphType(format), type);
    }

    void paragraphTypeIsOneUndoStep()
    {
        window->editor->setPlainText(QStringLiteral("Title"));
        wrapper->setParagraphType(RichTextInputWrapper::Heading1);
        window->editor->undo();
        QVERIFY(!formatAt(window->editor->document(), 1).font().bold());
        QCOMPARE(window->editor->document()
                     ->firstBlock()
                     .blockFormat()
                     .property(RichTextInputWrapper::kParagraphTypeProperty)
                     .toInt(),
                 0);
    }

    void unknownParagraphTypeActsAsNormal()
    {
        window->editor->setHtml(QStringLiteral("<b>loud</b>"));
        wrapper->setParagraphType(42);
        QVERIFY(!formatAt(window->editor->document(), 1).font().bold());
        QCOMPARE(window->combo->currentText(), QStringLiteral("Normal"));
    }

    void returnAfterAHeadingStartsNormalText()
    {
        emit window->combo->activated(1);
        QTest::keyClicks(window->editor, QStringLiteral("Title"));
        QTest::keyClick(window->editor, Qt::Key_Return);
        QCOMPARE(window->combo->currentText(), QStringLiteral("Normal"));
        QTest::keyClicks(window->editor, QStringLiteral("body"));

        const QTextDocument* document = window->editor->document();
        QCOMPARE(document->blockCount(), 2);
        const QTextBlock title = document->firstBlock();
        const QTextBlock body = title.next();
        QCOMPARE(title.blockFormat().property(RichTextInputWrapper::kParagraphTypeProperty).toInt(), 1);
        QCOMPARE(formatAt(document, 0).property(QTextFormat::FontSizeAdjustment).toInt(), 3);
        QCOMPARE(body.text(), QStringLiteral("body"));
        QCOMPARE(body.blockFormat().property(RichTextInputWrapper::kParagraphTypeProperty).toInt(), 0);
        const QTextCharFormat bodyFormat = formatAt(document, body.position() + 1);
        QVERIFY(!bodyFormat.font().bold());
        QVERIFY(!bodyFormat.hasProperty(QTextFormat::FontSizeAdjustment));
        QCOMPARE(window->combo->currentText(), QStringLiteral("Normal"));
        QVERIFY(!window->button("boldButton")->isChecked());
    }

    void returnInsideAHeadingKeepsBothHalvesHeadings()
    {
        window->editor->setPlainText(QStringLiteral("Twohalves"));
        wrapper->setParagraphType(RichTextInputWrapper::Heading2);
        placeCaret(window->editor, 3);
        QTest::keyClick(window->editor, Qt::Key_Return);
        const QTextBlock second = window->editor->document()->lastBlock();
        QCOMPARE(second.text(), QStringLiteral("halves"));
        QCOMPARE(second.blockFormat().property(RichTextInputWrapper::kParagraphTypeProperty).toInt(), 2);
        QCOMPARE(RichTextInputWrapper::messageMarkdown(window->editor->document()),
                 QStringLiteral("## Two\n\n## halves"));
    }

    void monospaceContinuesAfterReturn()
    {
        emit window->combo->activated(5);
        QTest::keyClicks(window->editor, QStringLiteral("code"));
        QCOMPARE(window->combo->currentText(), QStringLiteral("Monospaced"));
        const QTextDocument* document = window->editor->document();
        QCOMPARE(document->firstBlock()
                     .blockFormat()
                     .property(RichTextInputWrapper::kParagraphTypeProperty)
                     .toInt(),
                 0);
        QVERIFY(formatAt(document, 1).fontFixedPitch());
        QCOMPARE(formatAt(document, 1).fontFamilies().toStringList(), QStringList{"Monospace"});

        QTest::keyClick(window->editor, Qt::Key_Return);
        QTest::keyClicks(window->editor, QStringLiteral("more"));
        const QTextBlock second = document->lastBlock();
        QCOMPARE(second.text(), QStringLiteral("more"));
        QVERIFY(formatAt(document, second.position() + 1).fontFixedPitch());
        QCOMPARE(window->combo->currentText(), QStringLiteral("Monospaced"));
    }

    void toolbarFollowsTheCursorWithoutReformatting()
    {
        window->editor->setHtml(QStringLiteral("<b>loud</b> <i><s>quiet</s></i> plain"));
        const QString html = window->editor->toHtml();
        QSignalSpy boldToggled(window->button("boldButton"), &QToolButton::toggled);

        placeCaret(window->editor, 2);
        QVERIFY(window->button("boldButton")->isChecked());
        QVERIFY(!window->button("italicButton")->isChecked());
        placeCaret(window->editor, 8);
        QVERIFY(!window->button("boldButton")->isChecked());
        QVERIFY(window->button("italicButton")->isChecked());
        QVERIFY(window->button("strikeOutButton")->isChecked());
        placeCaret(window->editor, 14);
        QVERIFY(!window->button("italicButton")->isChecked());
        QVERIFY(!window->button("strikeOutButton")->isChecked());

        QCOMPARE(window->editor->toHtml(), html);
        QVERIFY(window->editor->document()->isUndoAvailable() == false);
        QCOMPARE(boldToggled.count(), 0);
    }

    void comboFollowsTheCursorAcrossParagraphs()
    {
        window->editor->setPlainText(QStringLiteral("Title\nbody"));
        placeCaret(window->editor, 1);
        wrapper->setParagraphType(RichTextInputWrapper::Heading3);
        placeCaret(window->editor, 8);
        QCOMPARE(window->combo->currentText(), QStringLiteral("Normal"));
        placeCaret(window->editor, 2);
        QCOMPARE(window->combo->currentText(), QStringLiteral("Heading 3"));
    }

    void markdownCarriesTheFormatting_data()
    {
        QTest::addColumn<int>("operation");
        QTest::addColumn<QString>("markdown");
        // Operations: 0 bold, 1 italic, 2 strike-out, 3..6 headings 1..4, 7 monospace.
        QTest::newRow("bold") << 0 << "**hello**";
        QTest::newRow("italic") << 1 << "*hello*";
        QTest::newRow("strike-out") << 2 << "~~hello~~";
        QTest::newRow("heading 1") << 3 << "# hello";
        QTest::newRow("heading 2") << 4 << "## hello";
        QTest::newRow("heading 3") << 5 << "### hello";
        QTest::newRow("heading 4") << 6 << "#### hello";
        QTest::newRow("monospace") << 7 << "`hello`";
    }

    void markdownCarriesTheFormatting()
    {
        QFETCH(int, operation);
        QFETCH(QString, markdown);
        window->editor->setPlainText(QStringLiteral("\nhello\n"));
        QTextCursor word = window->editor->document()->find(QStringLiteral("hello"));
        if (operation <= 2) {
            window->editor->setTextCursor(word);
            const std::function<void(bool)> apply[] = {[this](bool on) { wrapper->setBold(on); },
                                                       [this](bool on) { wrapper->setItalic(on); },
                                                       [this](bool on) { wrapper->setStrikeOut(on); }};
            apply[operation](true);
        } else {
            placeCaret(window->editor, word.selectionStart() + 2);
            wrapper->setParagraphType(operation == 7 ? RichTextInputWrapper::Monospaced : operation - 2);
        }
        const QString exported = RichTextInputWrapper::messageMarkdown(window->editor->document());
        QCOMPARE(exported.trimmed(), exported);
        QCOMPARE(exported, markdown);

        // The thread renders a message body with insertMarkdown; the word must look as it did here.
        const QTextCharFormat original = formatAt(window->editor->document(), word.selectionStart());
        QTextDocument thread;
        QTextCursor(&thread).insertMarkdown(exported, QTextDocument::MarkdownDialectGitHub);
        const QTextCursor found = thread.find(QStringLiteral("hello"));
        QVERIFY(!found.isNull());
        const QTextCharFormat rendered = formatAt(&thread, found.selectionStart());
        QCOMPARE(rendered.font().bold(), original.font().bold());
        QCOMPARE(rendered.fontItalic(), original.fontItalic());
        QCOMPARE(rendered.fontStrikeOut(), original.fontStrikeOut());
        QCOMPARE(rendered.fontFixedPitch(), original.fontFixedPitch());
        QCOMPARE(rendered.property(QTextFormat::FontSizeAdjustment).toInt(),
                 original.property(QTextFormat::FontSizeAdjustment).toInt());

        QTextDocument reread;
        reread.setMarkdown(exported, QTextDocument::MarkdownDialectGitHub);
        QCOMPARE(reread.toPlainText().trimmed(), QStringLiteral("hello"));
    }

    void markdownOfMixedText()
    {
        window->editor->setHtml(QStringLiteral("<b>bold</b> <i>ital</i> <s>gone</s>"));
        QCOMPARE(RichTextInputWrapper::messageMarkdown(window->editor->document()),
                 QStringLiteral("**bold** *ital* ~~gone~~"));
        window->editor->clear();
        QCOMPARE(RichTextInputWrapper::messageMarkdown(window->editor->document()), QString());
        QCOMPARE(RichTextInputWrapper::messageMarkdown(nullptr), QString());
    }

    void listsDoNotDisturbTheToolbar()
    {
        window->editor->setPlainText(QStringLiteral("one\ntwo\nthree"));
        QTextCursor cursor(window->editor->document());
        cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
        cursor.createList(QTextListFormat::ListDisc);
        placeCaret(window->editor, 5);
        QCOMPARE(window->combo->currentText(), QStringLiteral("Normal"));
        QTest::keyClick(window->editor, Qt::Key_End);
        QTest::keyClick(window->editor, Qt::Key_Return);
        QTest::keyClicks(window->editor, QStringLiteral("four"));
        QVERIFY(window->editor->textCursor().currentList());
    }

    void aDestroyedEditorIsLeftAlone()
    {
        delete window->editor;
        window->editor = nullptr;
        wrapper->setBold(true);
        wrapper->setItalic(true);
        wrapper->setStrikeOut(true);
        wrapper->setUnderline(true);
        wrapper->setParagraphType(RichTextInputWrapper::Heading1);
        emit window->combo->activated(3);
        window->button("boldButton")->click();
        QCOMPARE(wrapper->currentParagraphType(QTextCharFormat()), int(RichTextInputWrapper::Normal));
    }

    void rendersTheToolbar()
    {
        const QString folder = qEnvironmentVariable("NEWSREADER_PNG_DIR");
        if (folder.isEmpty())
            QSKIP("set NEWSREADER_PNG_DIR to write the picture");
        window->editor->setPlainText(QStringLiteral("A heading\nSome bold and italic words\ncode()"));
        placeCaret(window->editor, 1);
        wrapper->setParagraphType(RichTextInputWrapper::Heading2);
        QTextCursor word = window->editor->document()->find(QStringLiteral("bold"));
        window->editor->setTextCursor(word);
        wrapper->setBold(true);
        word = window->editor->document()->find(QStringLiteral("italic"));
        window->editor->setTextCursor(word);
        wrapper->setItalic(true);
        placeCaret(window->editor, window->editor->document()->lastBlock().position() + 1);
        wrapper->setParagraphType(RichTextInputWrapper::Monospaced);
        placeCaret(window->editor, 12);
        QVERIFY(window->grab().save(QDir(folder).filePath(QStringLiteral("composer-toolbar.png"))));
    }
};

HOST_TEST_MAIN(TestRichTextInputWrapper)
#include "tst_richtextinputwrapper.moc"
