// The composer's outgoing attachments: rows and records, the name rule, screenshots and the view's height.
#include "HostTestMain.h"

#include "CAttachmentItemDelegate.h"
#include "CAttachmentsModel.h"

#include <QDir>
#include <QFile>
#include <QListView>
#include <QPixmap>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

QString touch(const QString& path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return QString();
    file.write("content");
    return QFileInfo(path).absoluteFilePath();
}

QStringList displayNames(const QStandardItemModel& model)
{
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row)
        names.append(model.index(row, 0).data().toString());
    return names;
}

QStringList recordPaths(const CAttachmentsModel& model)
{
    QStringList paths;
    for (const OutgoingAttachment& attachment : model.attachments())
        paths.append(attachment.path);
    return paths;
}

const QString kExpectedToolTip =
    QStringLiteral("Attachment name can't contain any of the following characters: [<>:\"/\\\\|?*%=]");

} // namespace

class TestAttachmentsModel : public QObject
{
    Q_OBJECT

    QTemporaryDir folder;

private slots:
    void initTestCase() { QVERIFY(folder.isValid()); }

    void keepsAbsolutePathsWithoutDuplicates()
    {
        const QString first = touch(folder.filePath("a/report.pdf"));
        const QString second = touch(folder.filePath("b/report.pdf"));
        QDir::setCurrent(folder.path());

        CAttachmentsModel model;
        QSignalSpy changed(&model, &CAttachmentsModel::contentChanged);
        model.addFiles({QStringLiteral("a/report.pdf")});
        model.addFiles({first, QStringLiteral("a/../a/report.pdf")});
        QCOMPARE(model.rowCount(), 1);
        QCOMPARE(recordPaths(model), QStringList{first});
        model.addFiles({second});

        QCOMPARE(displayNames(model), (QStringList{"report.pdf", "report.pdf"}));
        QCOMPARE(recordPaths(model), (QStringList{first, second}));
        QCOMPARE(model.index(1, 0).data(CAttachmentsModel::AttachmentPathRole).toString(), second);
        QVERIFY(model.index(0, 0).data(CAttachmentsModel::AttachmentNameValidRole).toBool());
        QVERIFY(model.attachments().at(0).data.isEmpty());
        const QPixmap icon = qvariant_cast<QPixmap>(model.index(0, 0).data(Qt::DecorationRole));
        QVERIFY(!icon.isNull());
        QCOMPARE(icon.width(), CAttachmentsModel::kIconSize);
        QVERIFY(model.index(0, 0).data(Qt::ToolTipRole).isNull());

        // Every call announces the content, even one that added nothing new.
        QCOMPARE(changed.count(), 3);
        for (const QList<QVariant>& call : std::as_const(changed))
            QCOMPARE(call.at(0).toBool(), true);
    }

    void takesPathsThatAreNoFilesAsTheyCome()
    {
        CAttachmentsModel model;
        const QString missing = folder.filePath("gone/missing.txt");
        const QString directory = folder.filePath("a");
        touch(folder.filePath("a/x"));
        model.addFiles({missing, directory + "/", QString()});
        QCOMPARE(displayNames(model), (QStringList{"missing.txt", "a"}));
        QCOMPARE(recordPaths(model), (QStringList{QDir::cleanPath(missing), QDir::cleanPath(directory)}));
        QStringList bad;
        QVERIFY(model.checkNames(bad));
    }

    void namesAScreenshotAfterItsMoment_data()
    {
        QTest::addColumn<QDateTime>("moment");
        QTest::addColumn<QString>("name");
        QTest::newRow("with milliseconds") << QDateTime(QDate(2024, 5, 1), QTime(10, 15, 30, 123), Qt::UTC)
                                           << "Screenshot 2024-05-01T101530.123Z.png";
        QTest::newRow("whole second") << QDateTime(QDate(2023, 12, 31), QTime(23, 59, 59, 0), Qt::UTC)
                                      << "Screenshot 2023-12-31T235959.000Z.png";
        QTest::newRow("local time is written in UTC")
            << QDateTime(QDate(2024, 5, 1), QTime(12, 15, 30, 7), Qt::OffsetFromUTC, 2 * 3600)
            << "Screenshot 2024-05-01T101530.007Z.png";
    }

    void namesAScreenshotAfterItsMoment()
    {
        QFETCH(QDateTime, moment);
        QFETCH(QString, name);
        QCOMPARE(CAttachmentsModel::screenshotName(moment), name);
    }

    void keepsAScreenshotAsPngBytes()
    {
        CAttachmentsModel model;
        QSignalSpy changed(&model, &CAttachmentsModel::contentChanged);
        QPixmap picture(24, 12);
        picture.fill(Qt::red);
        const QDateTime moment(QDate(2024, 5, 1), QTime(10, 15, 30, 123), Qt::UTC);
        model.addScreenshot(picture, moment);
        model.addScreenshot(picture, moment);

        QCOMPARE(model.rowCount(), 1);
        const OutgoingAttachment& record = model.attachments().at(0);
        QCOMPARE(record.path, QStringLiteral("Screenshot 2024-05-01T101530.123Z.png"));
        QCOMPARE(model.index(0, 0).data().toString(), record.path);
        QVERIFY(record.data.startsWith("\x89PNG\r\n\x1a\n"));
        QImage decoded;
        QVERIFY(decoded.loadFromData(record.data, "PNG"));
        QCOMPARE(decoded.size(), QSize(24, 12));
        QCOMPARE(decoded.pixelColor(3, 3), QColor(Qt::red));
        QCOMPARE(changed.count(), 2);

        model.addScreenshot(picture);
        QCOMPARE(model.rowCount(), 2);
        static const QRegularExpression pattern(
            QStringLiteral("^Screenshot \\d{4}-\\d\\d-\\d\\dT\\d{6}\\.\\d{3}Z\\.png$"));
        QVERIFY2(pattern.match(model.attachments().at(1).path).hasMatch(),
                 qPrintable(model.attachments().at(1).path));
        QStringList bad;
        QVERIFY(model.checkNames(bad));
    }

    void removeKeepsRecordsParallelToRows()
    {
        CAttachmentsModel model;
        model.addFiles(
            {folder.filePath("one.txt"), folder.filePath("two.txt"), folder.filePath("three.txt")});
        QSignalSpy changed(&model, &CAttachmentsModel::contentChanged);

        model.remove(model.index(1, 0));
        QCOMPARE(displayNames(model), (QStringList{"one.txt", "three.txt"}));
        QCOMPARE(recordPaths(model), (QStringList{folder.filePath("one.txt"), folder.filePath("three.txt")}));
        QCOMPARE(changed.takeFirst().at(0).toBool(), true);

        model.remove(QModelIndex());
        QCOMPARE(model.rowCount(), 2);
        model.remove(model.index(1, 0));
        model.remove(model.index(0, 0));
        QCOMPARE(model.rowCount(), 0);
        QVERIFY(model.attachments().isEmpty());
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.last().at(0).toBool(), false);
    }

    void clearSaysNothing()
    {
        CAttachmentsModel model;
        QListView view;
        model.setView(&view);
        model.addFiles({folder.filePath("one.txt"), folder.filePath("two.txt")});
        const int heightWithRows = view.maximumHeight();
        QSignalSpy changed(&model, &CAttachmentsModel::contentChanged);
        model.clear();
        QCOMPARE(model.rowCount(), 0);
        QVERIFY(model.attachments().isEmpty());
        QCOMPARE(changed.count(), 0);
        QCOMPARE(view.maximumHeight(), heightWithRows);
    }

    void marksNamesWithForbiddenCharacters_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("valid");
        for (const QChar c : QStringLiteral("<>:\"\\|?*%="))
            QTest::addRow("'%c'", c.toLatin1()) << QStringLiteral("a%1b.txt").arg(c) << false;
        QTest::newRow("percent and equals") << "50%=half.txt" << false;
        QTest::newRow("brackets and spaces") << "report [final] (2) #1 & co.pdf" << true;
        QTest::newRow("umlauts and dots") << "Übersicht.v2.tar.gz" << true;
    }

    void marksNamesWithForbiddenCharacters()
    {
        QFETCH(QString, name);
        QFETCH(bool, valid);
        QCOMPARE(CAttachmentsModel::isValidFileName(name), valid);

        CAttachmentsModel model;
        model.addFiles({folder.filePath("fine.txt"), folder.filePath(name)});
        QCOMPARE(model.rowCount(), 2);
        const QModelIndex row = model.index(1, 0);
        QCOMPARE(row.data().toString(), name);
        QCOMPARE(row.data(CAttachmentsModel::AttachmentNameValidRole).toBool(), valid);
        QCOMPARE(row.data(Qt::ToolTipRole).toString(), valid ? QString() : kExpectedToolTip);

        QStringList bad{"stale"};
        QCOMPARE(model.checkNames(bad), valid);
        QCOMPARE(bad, valid ? QStringList() : QStringList{name});
    }

    void slashIsForbiddenToo()
    {
        // A slash cannot be part of a file name on disk, but the rule refuses it wherever it comes from.
        QVERIFY(!CAttachmentsModel::isValidFileName(QStringLiteral("a/b")));
        QCOMPARE(CAttachmentsModel::kForbiddenCharactersPattern.size(), 14);
        QCOMPARE(CAttachmentsModel::invalidNameToolTip(), kExpectedToolTip);
    }

    void checkNamesListsEveryBadName()
    {
        CAttachmentsModel model;
        model.addFiles({folder.filePath("a?.txt"), folder.filePath("ok.txt"), folder.filePath("b*.txt")});
        QStringList bad;
        QVERIFY(!model.checkNames(bad));
        QCOMPARE(bad, (QStringList{"a?.txt", "b*.txt"}));
    }

    void viewShowsAtMostThreeRows_data()
    {
        QTest::addColumn<int>("rows");
        QTest::newRow("none") << 0;
        QTest::newRow("one") << 1;
        QTest::newRow("three") << 3;
        QTest::newRow("five") << 5;
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
            paths.append(folder.filePath(QStringLiteral("file%1.txt").arg(i)));
        model.addFiles(paths);

        const int spacing = view.spacing();
        const int rowHeight = qMax(view.fontMetrics().height(), 20) + 4;
        QRect tiles;
        for (int row = 0; row < rows; ++row)
            tiles |= view.visualRect(model.index(row, 0));
        // No rows: room for one; otherwise all rows, but never more than three rows' worth.
        const int expected = rows == 0 ? rowHeight + 2 * spacing
                                       : qMin(3 * (rowHeight + spacing), tiles.height()) + 2 * spacing;
        QCOMPARE(view.maximumHeight(), expected);
        if (rows <= 1)
            QCOMPARE(expected, rowHeight + 2 * spacing);
        if (rows == 5)
            QVERIFY(view.maximumHeight() < tiles.height());
        QCOMPARE(model.preferredViewHeight(), expected);
    }

    void goneViewIsLeftAlone()
    {
        CAttachmentsModel model;
        auto* view = new QListView;
        model.setView(view);
        delete view;
        model.addFiles({folder.filePath("one.txt")});
        model.remove(model.index(0, 0));
        QCOMPARE(model.preferredViewHeight(), 0);
        QCOMPARE(model.view(), nullptr);
    }
};

HOST_TEST_MAIN(TestAttachmentsModel)
#include "tst_attachmentsmodel.moc"
