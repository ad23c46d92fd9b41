// File-type icons: cached per type and size, told apart by family.

#include "CShellImageList.h"
#include "HostTestMain.h"

#include <QImage>

class TestCShellImageList : public QObject
{
    Q_OBJECT

private slots:
    void sameTypeAndSizeComeFromTheCache()
    {
        CShellImageList* list = CShellImageList::instance();
        const QPixmap first = list->getShellImage(QStringLiteral("a.pdf"), 64);
        QCOMPARE(list->getShellImage(QStringLiteral("other name.PDF"), 64).cacheKey(), first.cacheKey());
        QVERIFY(list->getShellImage(QStringLiteral("a.pdf"), 32).cacheKey() != first.cacheKey());

        const QPixmap fresh = list->getShellImage(QStringLiteral("a.pdf"), 64, false, false);
        QVERIFY(fresh.cacheKey() != first.cacheKey());
        QCOMPARE(fresh.toImage(), first.toImage());
    }

    void differentFamiliesLookDifferent()
    {
        CShellImageList* list = CShellImageList::instance();
        const QImage pdf = list->getShellImage(QStringLiteral("a.pdf"), 48).toImage();
        const QImage zip = list->getShellImage(QStringLiteral("a.zip"), 48).toImage();
        const QImage png = list->getShellImage(QStringLiteral("a.png"), 48).toImage();
        const QImage folder = list->getShellImage(QStringLiteral("a.pdf"), 48, true).toImage();
        // Office documents are zip containers underneath but must not look like archives.
        const QImage docx = list->getShellImage(QStringLiteral("a.docx"), 48).toImage();
        const QImage xlsx = list->getShellImage(QStringLiteral("a.xlsx"), 48).toImage();
        QVERIFY(pdf != zip);
        QVERIFY(docx.pixelColor(24, 36) != zip.pixelColor(24, 36));
        QVERIFY(xlsx.pixelColor(24, 36) != zip.pixelColor(24, 36));
        QVERIFY(pdf != png);
        QVERIFY(zip != png);
        QVERIFY(folder != pdf);
        QCOMPARE(list->getShellImage(QStringLiteral("a.pdf"), 48, true).cacheKey(),
                 list->getShellImage(QStringLiteral("Downloads"), 48, true).cacheKey());
    }
};

HOST_TEST_MAIN(TestCShellImageList)
#include "tst_cshellimagelist.moc"
