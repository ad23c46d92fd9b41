// The composer's parts: who is typing and how it shows (the text naming the typists and their expiry, the
// timing of the typing dots on a manual animation clock), and its attachments (the model keeps absolute
// paths without duplicates and marks forbidden names, the view shows at most three rows, and the delegate
// sizes a tile after its name, paints an invalid name in the warning colour and runs the remove button).
#include "HostTestMain.h"

#include "CAttachmentItemDelegate.h"
#include "CAttachmentsModel.h"
#include "CVantrelApp.h"
#include "ManualAnimationDriver.h"
#include "TypingAnimation.h"
#include "TypingDotAnimation.h"
#include "TypingViewModel.h"

#include <QListView>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>
#include <QTranslator>

namespace {

CIncidentCommunication typist(const QString& id, const QString& name = QString(),
                              const QColor& color = QColor())
{
    CIncidentCommunication communication;
    communication.senderId = id;
    communication.senderName = name;
    communication.nameKnown = !name.isEmpty();
    communication.nameColor = color;
    return communication;
}

// The line is "<p ...><span>TEXT</span>&nbsp;<span ...><img src="URL"></span></p>".
QString textPart(const QString& line)
{
    static const QRegularExpression pattern("^<p[^>]*><span>(.*)</span>&nbsp;<span");
    return pattern.match(line).captured(1);
}

const QString kAnna = QStringLiteral("<span style=\"font-weight:600; color:#3366cc;\">Anna</span>");

} // namespace

namespace {

QStringList recordPaths(const CAttachmentsModel& model)
{
    QStringList paths;
    for (const OutgoingAttachment& attachment : model.attachments())
        paths.append(attachment.path);
    return paths;
}

} // namespace

class TestComposerParts : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir folder;
    // The composer's list as the main screen sets it up: tiles left to right, a remove button on every row.
    CAttachmentsModel model;
    QListView view;
    CAttachmentItemDelegate delegate;

    QToolButton* removeButton(int row) const
    {
        return qobject_cast<QToolButton*>(view.indexWidget(model.index(row, 0)));
    }

private slots:
    void cleanup() { model.clear(); }

    void initTestCase()
    {
        view.setItemDelegate(&delegate);
        view.setModel(&model);
        view.setFlow(QListView::LeftToRight);
        view.setWrapping(true);
        view.setSpacing(4);
        model.setView(&view);
        connect(&model, &QAbstractItemModel::rowsInserted, &view,
                [this](const QModelIndex&, int first, int last) {
                    for (int row = first; row <= last; ++row)
                        view.openPersistentEditor(model.index(row, 0));
                });
        connect(&delegate, &CAttachmentItemDelegate::removeAttachmentRequest, &model,
                &CAttachmentsModel::remove);
        view.resize(560, 120);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
    }

    void textNamesTheTypists_data()
    {
        QTest::addColumn<QList<CIncidentCommunication>>("typists");
        QTest::addColumn<bool>("german");
        QTest::addColumn<QString>("expected");
        const auto anna = typist("p1", "Anna", QColor("#3366CC"));
        QTest::newRow("one known") << QList{anna} << false << kAnna + " is typing message...";
        QTest::newRow("one unknown") << QList{typist("p2")} << false << "<b>Someone</b> is typing message...";
        // The untranslated text has no argument marker and shows as it stands; a translation receives the
        // names, then the established "and some others".
        QTest::newRow("several") << QList{anna, typist("p2")} << false << "%s are typing messages";
        QTest::newRow("several, German") << QList{anna, typist("p3", "Ben", QColor("#aa2200"))} << true
                                         << "<span style=\"font-weight:600; color:#aa2200;\">Ben</span>, ";
    }

    void textNamesTheTypists()
    {
        QFETCH(QList<CIncidentCommunication>, typists);
        QFETCH(bool, german);
        QFETCH(QString, expected);
        QTranslator translator;
        if (german) {
            QVERIFY(translator.load("newsReader_de",
                                    QCoreApplication::applicationDirPath() + "/../translations"));
            QCoreApplication::installTranslator(&translator);
        } else if (typists.size() > 1) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QString::arg: Argument missing"));
        }
        TypingViewModel model;
        QSignalSpy spy(&model, &TypingViewModel::typingDataChanged);
        for (const CIncidentCommunication& communication : typists)
            model.setTyping(communication, true);
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(spy.size(), typists.size());
        const QString text = textPart(spy.last().at(0).toString());
        QVERIFY2(german ? text.contains(expected) && text.contains(kAnna + ", ") : text == expected,
                 qPrintable(text));
    }

    void typistsExpireSixSecondsAfterTheirLastEvent()
    {
        TypingViewModel model;
        QSignalSpy spy(&model, &TypingViewModel::typingDataChanged);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QString::arg: Argument missing"));
        model.setTyping(typist("early", "Anna", QColor("#3366cc")), true);
        model.setTyping(typist("late"), true);
        // A repeated event only prolongs: no new line, the first record stays.
        model.setTyping(typist("early", "Anna renamed"), true);
        QCOMPARE(spy.size(), 2);
        QTest::qWait(3000);
        model.setTyping(typist("early", "Anna renamed"), true);
        model.setTyping(typist("nobody"), false);
        QCOMPARE(model.typistCount(), 2);
        QTRY_COMPARE_WITH_TIMEOUT(model.typistCount(), 1, 4500);
        QCOMPARE(textPart(spy.last().at(0).toString()), kAnna + " is typing message...");
        model.setTyping(typist("early"), false);
        QCOMPARE(spy.last().at(0).toString(), QString());
        QVERIFY(model.currentFrame().isNull());
    }

    void dotRisesFallsAndRests_data()
    {
        QTest::addColumn<int>("time");
        QTest::addColumn<double>("expected");
        QTest::newRow("half way up") << 75 << 0.5;
        QTest::newRow("near the top") << 140 << 140.0 / 150.0;
        QTest::newRow("half way down") << 225 << 0.5;
        QTest::newRow("end of the rest") << 690 << 0.0;
        QTest::newRow("tenth cycle falling") << 9 * 700 + 225 << 0.5;
    }

    void dotRisesFallsAndRests()
    {
        QFETCH(int, time);
        QFETCH(double, expected);
        TypingAnimation animation;
        QList<qreal> last;
        connect(&animation, &TypingAnimation::changed, this,
                [&last](const QList<qreal>& values) { last = values; });
        animation.startDots(1);
        // Hold the dot and move it to the moment under test; every move reports the collected heights.
        animation.dots().at(0)->pause();
        animation.dots().at(0)->setCurrentTime(time);
        QCOMPARE(last.size(), 1);
        QVERIFY2(qAbs(last.at(0) - expected) < 1e-6, qPrintable(QString::number(last.at(0))));
    }

    void laterDotsStartOneStaggerApartAndAGoneDotIsLeftOut()
    {
        ManualAnimationDriver clock;
        TypingAnimation animation;
        QList<qreal> last;
        connect(&animation, &TypingAnimation::changed, this,
                [&last](const QList<qreal>& values) { last = values; });
        animation.startDots(3);
        clock.setTime(0);
        clock.setTime(50);
        QCOMPARE(last.size(), 3);
        QVERIFY(last.at(0) > 0.2);
        QCOMPARE(last.at(1), 0.0);
        // The later dots start from real single-shot timers, 100 ms and 200 ms after the first.
        const QList<QPointer<TypingDotAnimation>> dots = animation.dots();
        QCOMPARE(dots.at(1)->state(), QAbstractAnimation::Stopped);
        QTRY_COMPARE(dots.at(1)->state(), QAbstractAnimation::Running);
        QCOMPARE(dots.at(2)->state(), QAbstractAnimation::Stopped);
        QTRY_COMPARE(dots.at(2)->state(), QAbstractAnimation::Running);

        delete dots.at(1).data();
        clock.step(30);
        QCOMPARE(last.size(), 2);
    }

    void keepsAbsolutePathsWithoutDuplicates()
    {
        const QString first = folder.filePath("a/report.pdf");
        QDir::setCurrent(folder.path());
        CAttachmentsModel model;
        QSignalSpy changed(&model, &CAttachmentsModel::contentChanged);
        model.addFiles({"a/report.pdf", first, "a/../a/report.pdf", QString()});
        model.addFiles({folder.filePath("b/report.pdf")});
        QCOMPARE(recordPaths(model), (QStringList{first, folder.filePath("b/report.pdf")}));
        QCOMPARE(model.index(1, 0).data().toString(), "report.pdf");
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.first().at(0).toBool(), true);

        model.remove(model.index(0, 0));
        QCOMPARE(recordPaths(model), QStringList{folder.filePath("b/report.pdf")});
        QCOMPARE(changed.last().at(0).toBool(), true);
        model.remove(model.index(0, 0));
        QCOMPARE(changed.last().at(0).toBool(), false);
    }

    void marksNamesWithForbiddenCharacters_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("valid");
        for (const QChar c : QStringLiteral("<>:\"\\|?*%="))
            QTest::addRow("'%c'", c.toLatin1()) << QStringLiteral("a%1b.txt").arg(c) << false;
        QTest::newRow("brackets, spaces, umlauts") << "Übersicht [final] (2) #1 & co.tar.gz" << true;
    }

    void marksNamesWithForbiddenCharacters()
    {
        QFETCH(QString, name);
        QFETCH(bool, valid);
        CAttachmentsModel model;
        model.addFiles({folder.filePath("fine.txt"), folder.filePath(name)});
        const QModelIndex row = model.index(1, 0);
        QCOMPARE(row.data(CAttachmentsModel::AttachmentNameValidRole).toBool(), valid);
        QCOMPARE(row.data(Qt::ToolTipRole).toString().isEmpty(), valid);
        QStringList bad{"stale"};
        QCOMPARE(model.checkNames(bad), valid);
        QCOMPARE(bad, valid ? QStringList() : QStringList{name});
    }

    void viewShowsAtMostThreeRows_data()
    {
        QTest::addColumn<int>("rows");
        for (int rows : {0, 1, 5})
            QTest::addRow("%d rows", rows) << rows;
    }

    void viewShowsAtMostThreeRows()
    {
        QFETCH(int, rows);
        CAttachmentsModel model;
        QListView view;
        CAttachmentItemDelegate delegate;
        view.setItemDelegate(&delegate);
        view.setSpacing(4);
        view.setModel(&model);
        model.setView(&view);
        view.resize(300, 400);
        view.show();
        QStringList paths;
        for (int i = 0; i < rows; ++i)
            paths << folder.filePath(QStringLiteral("file%1.txt").arg(i));
        model.addFiles(paths);
        const int rowHeight = qMax(view.fontMetrics().height(), 20) + 4;
        // Room for one row when empty; never more than three rows' worth.
        const int expected = qMin(3 * (rowHeight + 4), qMax(rows, 1) * (rowHeight + 4) - 4) + 8;
        QCOMPARE(view.maximumHeight(), expected);
        model.clear();
        QCOMPARE(view.maximumHeight(), expected);
    }

    void sizesATileAfterItsName()
    {
        model.addFiles({folder.filePath("a.txt"), folder.filePath(QString(200, 'x') + ".txt")});
        QStyleOptionViewItem option;
        option.font = QFont("Sans", 10);
        const QFontMetrics metrics(option.font);
        QCOMPARE(delegate.sizeHint(option, model.index(0, 0)),
                 QSize(metrics.horizontalAdvance("a.txt") + 44, qMax(metrics.height(), 20) + 4));
        QCOMPARE(delegate.sizeHint(option, model.index(1, 0)).width(), 320);
    }

    void paintsAnInvalidNameInTheWarningColour()
    {
        model.addFiles({folder.filePath("report.pdf"), folder.filePath("50%=half.txt")});
        QTest::qWait(20);
        const QImage image = view.viewport()->grab().toImage();
        const QColor warning = CVantrelApp::GetColor(CAttachmentItemDelegate::kInvalidNameColor);
        const QColor frame = CVantrelApp::GetColor(CAttachmentItemDelegate::kFrameColor);
        for (int row = 0; row < 2; ++row) {
            const QRect tile = view.visualRect(model.index(row, 0));
            QCOMPARE(image.pixel(tile.right() - 3, tile.top() + 3) == warning.rgb(), row == 1);
            QCOMPARE(image.pixel(tile.center().x(), tile.top()), frame.rgb());
        }
    }

    void removeButtonNamesItsRowEvenAfterRowsAboveGo()
    {
        model.addFiles(
            {folder.filePath("one.txt"), folder.filePath("two.txt"), folder.filePath("three.txt")});
        // A 20 pixel square at the tile's left edge, vertically centred.
        const QRect tile = view.visualRect(model.index(1, 0));
        QCOMPARE(removeButton(1)->geometry(),
                 QRect(tile.left() + 2, tile.top() + (tile.height() - 20) / 2, 20, 20));
        QCOMPARE(removeButton(1)->toolTip(), "Click to remove this attachment");

        QPointer<QToolButton> third = removeButton(2);
        removeButton(0)->click();
        QVERIFY(third);
        third->click();
        QCOMPARE(model.attachments().size(), 1);
        QCOMPARE(model.attachments().at(0).path, folder.filePath("two.txt"));

        // A button that outlives its row asks for nothing.
        std::unique_ptr<QWidget> orphan(delegate.createEditor(nullptr, {}, model.index(0, 0)));
        QSignalSpy requests(&delegate, &CAttachmentItemDelegate::removeAttachmentRequest);
        model.clear();
        qobject_cast<QToolButton*>(orphan.get())->click();
        QCOMPARE(requests.count(), 0);
    }
};

HOST_TEST_MAIN(TestComposerParts)
#include "tst_composerparts.moc"
