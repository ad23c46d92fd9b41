// The composer's outgoing attachments: rows and records, the name rule, screenshots and the view's height.
#include "HostTestMain.h"

#include "CAttachmentItemDelegate.h"
#include "CAttachmentsModel.h"

#include <QDir>
#include <QListView>
#include <QPixmap>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

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

} // namespace

class TestAttachmentsModel : public QObject
{
    Q_OBJECT

    QTemporaryDir folder;

private slots:
    void initTestCase() { QVERIFY(folder.isValid()); }

    void keepsAbsolutePathsWithoutDuplicates()
    {
        const QString first = folder.filePath("a/report.pdf");
        const QString second = folder.filePath("b/report.pdf");
        QDir::setCurrent(folder.path());

        CAttachmentsModel model;
        QSignalSpy changed(&model, &CAttachmentsModel::contentChanged);
        model.addFiles({QStringLiteral("a/report.pdf")});
        model.addFiles({first, QStringLiteral("a/../a/report.pdf")});
        QCOMPARE(recordPaths(model), QStringList{first});
        model.addFiles({second});

        QCOMPARE(displayNames(model), (QStringList{"report.pdf", "report.pdf"}));
        QCOMPARE(recordPaths(model), (QStringList{first, second}));
        QCOMPARE(model.index(1, 0).data(CAttachmentsModel::AttachmentPathRole).toString(), second);
        QVERIFY(model.index(0, 0).data(CAttachmentsModel::AttachmentNameValidRole).toBool());
        QVERIFY(model.attachments().at(0).data.isEmpty());
        QVERIFY(!qvariant_cast<QPixmap>(model.index(0, 0).data(Qt::DecorationRole)).isNull());

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
        QVERIFY(QDir(folder.path()).mkpath("a"));
        model.addFiles(
            {missing, directory + "/", QString(), folder.filePath("a?.txt"), folder.filePath("b*.txt")});
        QCOMPARE(displayNames(model), (QStringList{"missing.txt", "a", "a?.txt", "b*.txt"}));
        QCOMPARE(recordPaths(model).mid(0, 2),
                 (QStringList{QDir::cleanPath(missing), QDir::cleanPath(directory)}));
        QStringList bad;
        QVERIFY(!model.checkNames(bad));
        QCOMPARE(bad, (QStringList{"a?.txt", "b*.txt"}));
    }

    void keepsAScreenshotAsPngBytesNamedAfterItsMoment_data()
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

    void keepsAScreenshotAsPngBytesNamedAfterItsMoment()
    {
        QFETCH(QDateTime, moment);
        QFETCH(QString, name);
        QCOMPARE(CAttachmentsModel::screenshotName(moment), name);
        CAttachmentsModel model;
        QSignalSpy changed(&model, &CAttachmentsModel::contentChanged);
        QPixmap picture(24, 12);
        picture.fill(Qt::red);
        model.addScreenshot(picture, moment);
        model.addScreenshot(picture, moment);
        QCOMPARE(model.rowCount(), 1);
        QCOMPARE(changed.count(), 2);
        QCOMPARE(model.index(0, 0).data().toString(), name);
        QCOMPARE(model.attachments().at(0).path, name);
        QImage decoded;
        QVERIFY(decoded.loadFromData(model.attachments().at(0).data, "PNG"));
        QCOMPARE(decoded.size(), QSize(24, 12));
        QCOMPARE(decoded.pixelColor(3, 3), QColor(Qt::red));

        // Taken now: the name has the same shape and passes the name rule.
        model.addScreenshot(picture);
        static const QRegularExpression pattern(
            QStringLiteral("^Screenshot \\d{4}-\\d\\d-\\d\\dT\\d{6}\\.\\d{3}Z\\.png$"));
        QVERIFY2(pattern.match(model.attachments().at(1).path).hasMatch(),
                 qPrintable(model.attachments().at(1).path));
        QStringList bad;
        QVERIFY(model.checkNames(bad));
    }

    void removeAndClearKeepRecordsParallelToRows()
    {
        CAttachmentsModel model;
        QListView view;
        model.setView(&view);
        model.addFiles(
            {folder.filePath("one.txt"), folder.filePath("two.txt"), folder.filePath("three.txt")});
        QSignalSpy changed(&model, &CAttachmentsModel::contentChanged);

        model.remove(model.index(1, 0));
        QCOMPARE(displayNames(model), (QStringList{"one.txt", "three.txt"}));
        QCOMPARE(recordPaths(model), (QStringList{folder.filePath("one.txt"), folder.filePath("three.txt")}));
        QCOMPARE(changed.takeFirst().at(0).toBool(), true);
        model.remove(QModelIndex());
        QCOMPARE(model.rowCount(), 2);
        QCOMPARE(changed.count(), 0);

        // Clearing says nothing and leaves the view's height alone.
        const int heightWithRows = view.maximumHeight();
        model.clear();
        QCOMPARE(model.rowCount(), 0);
        QVERIFY(model.attachments().isEmpty());
        QCOMPARE(changed.count(), 0);
        QCOMPARE(view.maximumHeight(), heightWithRows);

        model.addFiles({folder.filePath("one.txt")});
        model.remove(model.index(0, 0));
        QVERIFY(model.attachments().isEmpty());
        QCOMPARE(changed.last().at(0).toBool(), false);
    }

    void marksNamesWithForbiddenCharacters_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("valid");
        for (const QChar c : QStringLiteral("<>:\"\\|?*%="))
            QTest::addRow("'%c'", c.toLatin1()) << QStringLiteral("a%1b.txt").arg(c) << false;
        QTest::newRow("brackets and spaces") << "report [final] (2) #1 & co.pdf" << true;
        QTest::newRow("umlauts and dots") << "Übersicht.v2.tar.gz" << true;
        // A slash cannot be part of a name on disk, but the rule refuses it wherever it comes from.
        QTest::newRow("slash") << "a/b" << false;
    }

    void marksNamesWithForbiddenCharacters()
    {
        QFETCH(QString, name);
        QFETCH(bool, valid);
        QCOMPARE(CAttachmentsModel::isValidFileName(name), valid);
        if (name.contains('/'))
            return;

        CAttachmentsModel model;
        model.addFiles({folder.filePath("fine.txt"), folder.filePath(name)});
        const QModelIndex row = model.index(1, 0);
        QCOMPARE(row.data().toString(), name);
        QCOMPARE(row.data(CAttachmentsModel::AttachmentNameValidRole).toBool(), valid);
        QCOMPARE(row.data(Qt::ToolTipRole).toString(),
                 valid ? QString()
                       : QStringLiteral("Attachment name can't contain any of the following characters: "
                                        "[<>:\"/\\\\|?*%=]"));
        QStringList bad{"stale"};
        QCOMPARE(model.checkNames(bad), valid);
        QCOMPARE(bad, valid ? QStringList() : QStringList{name});
    }

    void viewShowsAtMostThreeRows_data()
    {
        QTest::addColumn<int>("rows");
        for (int rows : {0, 1, 3, 5})
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
        QCOMPARE(model.preferredViewHeight(), expected);
        if (rows <= 1)
            QCOMPARE(expected, rowHeight + 2 * spacing);
        if (rows == 5)
            QVERIFY(view.maximumHeight() < tiles.height());
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
    }
};

HOST_TEST_MAIN(TestAttachmentsModel)
#include "tst_attachmentsmodel.moc"
