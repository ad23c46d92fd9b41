// What the user types is what everyone reads: text typed into the composer is sent through the stand-in host
// and must read the same in the thread and in a GitHub Markdown reader (cmark-gfm).
#include "HostTestMain.h"

#include "CMessageGroups.h"
#include "ConversationScreen.h"

#include <QProcess>
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
    reader.start("cmark-gfm", {"-e", "strikethrough", "-e", "autolink", "-e", "table"});
    if (!reader.waitForStarted())
        return QStringLiteral("<cmark-gfm is missing>");
    reader.write(markdown.toUtf8());
    reader.closeWriteChannel();
    reader.waitForFinished();
    return QTextDocumentFragment::fromHtml(QString::fromUtf8(reader.readAllStandardOutput())).toPlainText();
}

QString bubbleText(const CMessageItemsDocument* document)
{
    QTextTable* last = CMessageGroups::messages(document).constLast();
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
    void init() { QVERIFY(loadSampleServer()); }

    void typedTextArrivesAsTyped_data()
    {
        QTest::addColumn<QString>("typed");
        const char* samples[] = {"2*3*4 = 24",
                                 "snake_case_name and __init__",
                                 "# not a heading",
                                 "- not a list",
                                 "> not a quote",
                                 "[link](http://x) typed literally",
                                 "a <b>tag</b> typed",
                                 "C:\\Users\\alex\\new_folder",
                                 "&copy; is not a symbol",
                                 "~~not struck~~",
                                 "| looks | like | a table |",
                                 "Grüße aus Köln: 10 € für *alles*"};
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
        QTRY_COMPARE(HostControl::threadMessages(kPrinter).last().value("sender").toString(), "u-self");
        const QString sent = HostControl::threadMessages(kPrinter).last().value("text").toString();
        QCOMPARE(normalized(readByGitHubReader(sent)), normalized(typed));
        QVERIFY(bubbleText(screen.document()).contains(typed));
    }
};

HOST_TEST_MAIN(TestTypedText)
#include "tst_typedtext.moc"
