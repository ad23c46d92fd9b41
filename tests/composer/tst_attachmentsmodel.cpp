// The composer's outgoing attachments: rows and records, the name rule and the view's height.
#include "HostTestMain.h"

#include "CAttachmentItemDelegate.h"
#include "CAttachmentsModel.h"

#include <QListView>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

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
};

HOST_TEST_MAIN(TestAttachmentsModel)
#include "tst_attachmentsmodel.moc"
