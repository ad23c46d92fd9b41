// The bubble shadows: a small tile drawn in nine pieces looks like the whole bubble blurred, and bubbles
// painted by the thread's layout look as they were approved to look.
#include "HostTestMain.h"

#include "CBubbleShadowCache.h"
#include "CNinePatch.h"
#include "MessageFormatProperties.h"
#include "QTextDocumentLayout.h"

#include <QPainter>
#include <QTextCursor>
#include <QTextTable>

class TestBubbleShadowCache : public QObject
{
    Q_OBJECT

    static inline const QMarginsF kReach{2, 1, 5, 5};
    static inline const QColor kPage{QStringLiteral("#eef1f4")};

    static void rounded(QPainter* p, const QRectF& r, const QBrush& b)
    {
        p->setPen(Qt::NoPen);
        p->setBrush(b);
        p->drawRoundedRect(r, 12, 12);
    }

    static int largestDifference(const QImage& a, const QImage& b)
    {
        int largest = 0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x) {
                const QRgb p = a.pixel(x, y);
                const QRgb q = b.pixel(x, y);
                largest = std::max({largest, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                    std::abs(qBlue(p) - qBlue(q))});
            }
        }
        return largest;
    }

    // Bubbles of several sizes, corners and colours, without text, as the thread's layout paints them.
    static QImage paintBubbles()
    {
        using namespace newsReader::MessageFormatProperties;
        QTextDocument doc;
        doc.setDocumentLayout(new newsReader::QTextDocumentLayout(&doc));
        struct Bubble
        {
            QColor colour;
            qreal width;
            qreal padding;
            std::array<qreal, 4> radii;
            Qt::Alignment alignment;
        };
        const Bubble bubbles[] = {
            {Qt::white, 220, 20, {12, 12, 12, 0}, Qt::AlignLeft},
            {QColor("#dcf3e4"), 150, 60, {12, 12, 0, 12}, Qt::AlignRight},
            {Qt::white, 40, 2, {12, 12, 12, 12}, Qt::AlignLeft}, // smaller than its corners
            {QColor("#dcf3e4"), 300, 8, {4, 4, 4, 4}, Qt::AlignRight},
        };
        QTextCursor cursor(&doc);
        for (const Bubble& bubble : bubbles) {
            QTextTableFormat table;
            table.setAlignment(bubble.alignment);
            table.setWidth(QTextLength(QTextLength::FixedLength, bubble.width));
            table.setBorder(0);
            table.setCellPadding(0);
            table.setCellSpacing(0);
            table.setBottomMargin(16);
            table.setLeftMargin(8);
            table.setRightMargin(8);
            QTextTableCell cell = cursor.insertTable(1, 1, table)->cellAt(0, 0);
            QTextTableCellFormat format = cell.format().toTableCellFormat();
            format.setBackground(bubble.colour);
            format.setTopPadding(bubble.padding);
            format.setBottomPadding(bubble.padding);
            format.setLeftPadding(bubble.padding);
            format.setRightPadding(bubble.padding);
            format.setProperty(Shadow, true);
            format.setProperty(TopLeftRadius, bubble.radii[0]);
            format.setProperty(TopRightRadius, bubble.radii[1]);
            format.setProperty(BottomRightRadius, bubble.radii[2]);
            format.setProperty(BottomLeftRadius, bubble.radii[3]);
            cell.setFormat(format);
            cursor = QTextCursor(doc.lastBlock());
        }
        doc.setTextWidth(360);
        QImage image(QSize(360, int(doc.documentLayout()->documentSize().height())),
                     QImage::Format_ARGB32_Premultiplied);
        image.fill(kPage);
        QPainter painter(&image);
        QAbstractTextDocumentLayout::PaintContext context;
        context.clip = image.rect();
        doc.documentLayout()->draw(&painter, context);
        return image;
    }

private slots:
    void ninePiecesLookLikeTheWholeBubbleBlurred_data()
    {
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<qreal>("ratio");
        QTest::newRow("smaller than a tile") << QSizeF(60, 40) << 1.0;
        QTest::newRow("wide") << QSizeF(530, 48) << 1.0;
        QTest::newRow("tall") << QSizeF(90, 3000) << 1.0;
        QTest::newRow("large, fractional") << QSizeF(411.5, 377.25) << 1.0;
        QTest::newRow("large, high resolution") << QSizeF(300, 200) << 2.0;
    }
    void ninePiecesLookLikeTheWholeBubbleBlurred()
    {
        QFETCH(QSizeF, size);
        QFETCH(qreal, ratio);
        const QImage whole = CBubbleShadowCache::render(size, kReach, kPage, QColor(), ratio, rounded);

        CBubbleShadowCache cache(kReach);
        QImage pieced(whole.size(), QImage::Format_ARGB32_Premultiplied);
        pieced.setDevicePixelRatio(ratio);
        pieced.fill(Qt::black);
        QPainter painter(&pieced);
        CNinePatch(cache.tile(size, {12, 12, 12, 12}, kPage, QColor(), ratio, rounded))
            .draw(&painter, QRectF(QPointF(0, 0), size.grownBy(kReach)));
        painter.end();

        QVERIFY(whole.pixelColor(whole.rect().center()) != kPage); // there is a shadow to compare
        QVERIFY2(largestDifference(whole, pieced) <= 2,
                 qPrintable(QString::number(largestDifference(whole, pieced))));
        QVERIFY(cache.bytes() <= 128 * 1024);
    }

    void bubblesMatchTheStoredPicture()
    {
        const QString stored = QStringLiteral(NEWSREADER_TEST_DATA_DIR "/bubbles-on-shadows.png");
        const QImage painted = paintBubbles();
        if (qEnvironmentVariableIsSet("NEWSREADER_UPDATE_RENDERINGS")) {
            QVERIFY(painted.save(stored));
            QSKIP("Stored rendering rewritten");
        }
        const QImage approved = QImage(stored).convertToFormat(QImage::Format_ARGB32_Premultiplied);
        QCOMPARE(painted.size(), approved.size());
        QVERIFY2(largestDifference(painted, approved) <= 3,
                 qPrintable(QString::number(largestDifference(painted, approved))));
    }
};

HOST_TEST_MAIN(TestBubbleShadowCache)
#include "tst_bubbleshadowcache.moc"
