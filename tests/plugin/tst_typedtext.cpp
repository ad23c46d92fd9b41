// What the user types is what everyone reads: text typed into the composer, plain and formatted, is sent
// through the stand-in host and must read the same in the thread and in a GitHub Markdown reader (cmark-gfm).
#include "HostTestMain.h"

#include "ConversationScreen.h"

#include <QProcess>
#include <QTextBlock>
#include <QTextDocumentFragment>

namespace {

const QString kPrinter = QStringLiteral("conv-printer");

QString normalized(QString text)
{
    return text.replace(QChar::Nbsp, QLatin1Char(' ')).simplified();
}

// What cmark-gfm shows of `markdown`, as plain text.
QString readByGitHubReader(const QString& markdown)
{
    QProcess reader;
    reader.start(QStringLiteral("cmark-gfm"),
                 {QStringLiteral("-e"), QStringLiteral("strikethrough"), QStringLiteral("-e"),
                  QStringLiteral("autolink"), QStringLiteral("-e"), QStringLiteral("table")});
    if (!reader.waitForStarted())
        return QStringLiteral("<cmark-gfm is missing>");
    reader.write(markdown.toUtf8());
    reader.closeWriteChannel();
    reader.waitForFinished();
    return QTextDocumentFragment::fromHtml(QString::fromUtf8(reader.readAllStandardOutput())).toPlainText();
}

// The characters of the last bubble shown in `weight` or heavier / italic / struck out.
QString formattedIn(const CMessageItemsDocument* document,
                    const std::function<bool(const QTextCharFormat&)>& is)
{
    const QList<QTextFrame*> frames = document->rootFrame()->childFrames();
    auto* last = qobject_cast<QTextTable*>(frames.constLast());
    QString chars;
    for (QTextBlock block = document->QTextDocument::findBlock(last->cellAt(0, 1).firstPosition());
         block.isValid() && block.position() < last->cellAt(0, 1).lastPosition(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            if (is(it.fragment().charFormat()))
                chars += it.fragment().text();
        }
    }
    return chars.simplified();
}

QString bubbleText(const CMessageItemsDocument* document)
{
    const QList<QTextFrame*> frames = document->rootFrame()->childFrames();
    auto* last = qobject_cast<QTextTable*>(frames.constLast());
    QTextCursor cursor(const_cast<CMessageItemsDocument*>(document));
    cursor.setPosition(last->cellAt(0, 1).firstPosition());
    cursor.setPosition(last->cellAt(0, 1).lastPosition(), QTextCursor::KeepAnchor);
    return cursor.selectedText().replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
}

} // namespace

class TestTypedText : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::resetForTests();
        HostControl::setCanUseWebEngine(false);
        HostControl::setShowBalloons(false);
        HostControl::setSignedIn(true);
        HostControl::loadDefaultScenario();
    }

    void typedTextArrivesAsTyped_data()
    {
        QTest::addColumn<QString>("typed");
        const char* samples[] = {
            "2*3*4 = 24",
            "snake_case_name and __init__",
            "# not a heading",
            "- not a list",
            "+ not a list either",
            "1. not a numbered list",
            "2) nor this",
            "> not a quote",
            "use `ls -la` here",
            "[link](http://x) typed literally",
            "a <b>tag</b> typed",
            "---",
            "***",
            "___",
            "a\\*b",
            "C:\\Users\\alex\\Documents\\new_folder",
            "/usr/local/bin/tool --flag=*.log",
            "price: $5 & tax < 10% > nothing",
            "&amp; stays an ampersand word",
            "&copy; is not a symbol",
            "~~not struck~~",
            "~tilde~ words",
            "pipes | between | words",
            "| looks | like | a table |",
            "![not a picture](x.png)",
            "<https://example.com> in brackets",
            "backslash at the end \\",
            "trailing hash #",
            "= equals first",
            "email me at a_b@example.com",
            "array[0] = map{key}",
            "if (a && b || !c) { return; }",
            "1986. What a year.",
            "**not bold** and *not italic*",
            "_under_ and __double__",
            "a * b * c",
            "x^2 + y^2 = z^2",
            "hash#tag and #hashtag",
            "Grüße aus Köln: 10 € für *alles*",
            "quotes \"double\" and 'single' and `tick",
            "html entity &#42; and &lt;",
            "emoji text :smile: stays",
            "dots... and -- dashes",
            "[ ] not a task box",
            "<!-- not a comment -->",
        };
        for (const char* sample : samples)
            QTest::newRow(sample) << QString::fromUtf8(sample);
    }

    void typedTextArrivesAsTyped()
    {
        QFETCH(QString, typed);
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        const bool ascii =
            std::all_of(typed.cbegin(), typed.cend(), [](QChar c) { return c.unicode() < 0x80; });
        if (ascii) {
            screen.type(typed);
        } else {
            // What an input method does with letters the keyboard cannot send as keys.
            screen.editor()->setFocus();
            screen.editor()->textCursor().insertText(typed);
        }
        QTest::keyClick(screen.editor(), Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY(screen.canSend() || screen.editor()->toPlainText().isEmpty());
        QTRY_VERIFY(!HostControl::threadMessages(kPrinter).isEmpty());
        QTRY_VERIFY(HostControl::threadMessages(kPrinter).last().value(QStringLiteral("sender")).toString() ==
                    QStringLiteral("u-self"));
        const QString sent =
            HostControl::threadMessages(kPrinter).last().value(QStringLiteral("text")).toString();
        QCOMPARE(normalized(readByGitHubReader(sent)), normalized(typed));
        QVERIFY(bubbleText(screen.document()).contains(typed));
    }

    void formattedRunsKeepTheirExtent()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        QTextCursor cursor(screen.editor()->document());
        QTextCharFormat plain;
        QTextCharFormat bold;
        bold.setFontWeight(QFont::Bold);
        QTextCharFormat italic;
        italic.setFontItalic(true);
        QTextCharFormat struck;
        struck.setFontStrikeOut(true);
        QTextCharFormat code;
        code.setFontFixedPitch(true);
        cursor.insertText(QStringLiteral("a "), plain);
        cursor.insertText(QStringLiteral("trail space bold "), bold);
        cursor.insertText(QStringLiteral("b, "), plain);
        cursor.insertText(QStringLiteral(" lead italic"), italic);
        cursor.insertText(QStringLiteral(" and "), plain);
        cursor.insertText(QStringLiteral("gone*"), struck);
        cursor.insertText(QStringLiteral(" plus "), plain);
        cursor.insertText(QStringLiteral("a `tick` code"), code);
        cursor.insertText(QStringLiteral(" end"), plain);
        const QString shown = screen.editor()->toPlainText();
        QTest::keyClick(screen.editor(), Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY(screen.editor()->toPlainText().isEmpty());
        const CMessageItemsDocument* document = screen.document();
        QVERIFY(normalized(bubbleText(document)).contains(normalized(shown)));
        QCOMPARE(formattedIn(document, [](const QTextCharFormat& f) { return f.fontWeight() >= QFont::Bold; })
                     .remove(QStringLiteral("Alex Morgan"))
                     .trimmed(),
                 QStringLiteral("trail space bold"));
        QCOMPARE(formattedIn(document, [](const QTextCharFormat& f) { return f.fontItalic(); }),
                 QStringLiteral("lead italic"));
        QCOMPARE(formattedIn(document, [](const QTextCharFormat& f) { return f.fontStrikeOut(); }),
                 QStringLiteral("gone*"));
        QCOMPARE(formattedIn(document, [](const QTextCharFormat& f) { return f.fontFixedPitch(); }),
                 QStringLiteral("a `tick` code"));
        QTRY_VERIFY(HostControl::threadMessages(kPrinter).last().value(QStringLiteral("sender")).toString() ==
                    QStringLiteral("u-self"));
        const QString sent =
            HostControl::threadMessages(kPrinter).last().value(QStringLiteral("text")).toString();
        QCOMPARE(normalized(readByGitHubReader(sent)), normalized(shown));
    }
};

HOST_TEST_MAIN(TestTypedText)
#include "tst_typedtext.moc"
