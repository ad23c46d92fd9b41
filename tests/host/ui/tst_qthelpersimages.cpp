#include "HostTestMain.h"
#include "QtHelpersImages.h"

#include <QPainter>
#include <QSvgRenderer>
#include <QTest>

namespace {

const QStringList kRequiredNames = {"ico-plugin-news",
                                    "ico-plugin-no-news",
                                    "ico-plugin-urgent-news",
                                    "send-message",
                                    "attachment",
                                    "ico-attention-read",
                                    "ico-attention-unread",
                                    "ico-offers-read",
                                    "ico-offers-unread",
                                    "hide-msg",
                                    "arrow-up",
                                    "arrow-down",
                                    "AvatarSingle",
                                    "ico-delivered",
                                    "ico-delivering",
                                    "ico-delivery-failed",
                                    "ico-stop-download",
                                    "boldButton",
                                    "italicButton",
                                    "strikeOutButton",
                                    "underlineButton",
                                    "balloon-critical",
                                    "balloon-warning",
                                    "balloon-information",
                                    "close-small"};

int paintedPixels(const QImage& image)
{
    int count = 0;
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < argb.height(); ++y)
        for (int x = 0; x < argb.width(); ++x)
            if (qAlpha(argb.pixel(x, y)) > 0)
                ++count;
    return count;
}

// Pixels in the accent family: clearly blue, clearly not grey.
int accentPixels(const QImage& image)
{
    int count = 0;
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < argb.height(); ++y) {
        for (int x = 0; x < argb.width(); ++x) {
            const QColor c = QColor::fromRgba(argb.pixel(x, y));
            if (c.alpha() > 128 && c.blue() - c.red() > 60)
                ++count;
        }
    }
    return count;
}

} // namespace

class TestQtHelpersImages : public QObject
{
    Q_OBJECT

private slots:
    void providesEveryNamedImage_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString& name : kRequiredNames)
            QTest::newRow(qPrintable(name)) << name;
    }

    void providesEveryNamedImage()
    {
        QFETCH(QString, name);
        QVERIFY(qtHelpers::images::contains(name));
        QVERIFY(qtHelpers::images::names().contains(name));
        QVERIFY(!qtHelpers::images::svgData(name).isEmpty());
        QVERIFY(QSvgRenderer(qtHelpers::images::svgData(name)).isValid());
        const QIcon icon = qtHelpers::images::icon(name);
        QVERIFY(!icon.isNull());
        for (int size : {16, 48}) {
            const QPixmap fromIcon = icon.pixmap(QSize(size, size), 1.0);
            QCOMPARE(fromIcon.size(), QSize(size, size));
            QVERIFY2(paintedPixels(fromIcon.toImage()) > 0, "the icon renders empty");
            const QPixmap pixmap = qtHelpers::images::pixmap(name, size, false);
            QCOMPARE(pixmap.size(), QSize(size, size));
            QVERIFY2(paintedPixels(pixmap.toImage()) > 0, "the pixmap renders empty");
        }
        QVERIFY(!qtHelpers::images::image(name).isNull());
    }

    void unknownNamesGiveNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("unknown") << "no-such-image";
        QTest::newRow("empty") << "";
        QTest::newRow("path escape") << "../images/arrow-up";
    }

    void unknownNamesGiveNothing()
    {
        QFETCH(QString, name);
        QVERIFY(!qtHelpers::images::contains(name));
        QVERIFY(qtHelpers::images::icon(name).isNull());
        QVERIFY(qtHelpers::images::pixmap(name, 16).isNull());
        QVERIFY(qtHelpers::images::image(name).isNull());
        QVERIFY(qtHelpers::images::svgData(name).isEmpty());
    }

    void naturalSizeComesFromTheDocument()
    {
        QCOMPARE(qtHelpers::images::image("AvatarSingle").size(), QSize(40, 40));
        QCOMPARE(qtHelpers::images::image("ico-stop-download").size(), QSize(32, 32));
        QCOMPARE(qtHelpers::images::image("ico-delivered").size(), QSize(16, 16));
        QCOMPARE(qtHelpers::images::pixmap("send-message", -1, false).size(), QSize(24, 24));
    }

    void pixmapsAndIconsCarryTheRequestedPixelRatio()
    {
        const QPixmap plain = qtHelpers::images::pixmap("ico-stop-download", -1, false);
        QCOMPARE(plain.devicePixelRatio(), 1.0);
        const QPixmap hiDpi = qtHelpers::images::pixmap("ico-stop-download", -1, true);
        const qreal ratio = QGuiApplication::primaryScreen()->devicePixelRatio();
        QCOMPARE(hiDpi.devicePixelRatio(), ratio);
        QCOMPARE(hiDpi.deviceIndependentSize().toSize(), QSize(32, 32));
        const QPixmap sharp = qtHelpers::images::icon("arrow-down").pixmap(QSize(16, 16), 2.0);
        QCOMPARE(sharp.size(), QSize(32, 32));
        QCOMPARE(sharp.devicePixelRatio(), 2.0);
    }

    void avatarIsTintableThroughCurrentColor()
    {
        QByteArray svg = qtHelpers::images::svgData("AvatarSingle");
        QVERIFY(svg.contains("currentColor"));
        const QColor tint(0x3a, 0x7b, 0xd5);
        svg.replace("currentColor", tint.name().toLatin1());
        QSvgRenderer renderer(svg);
        QVERIFY(renderer.isValid());
        QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.end();
        // The ring of the avatar is the tint; the figure in the middle stays light.
        QCOMPARE(image.pixelColor(20, 1).rgb(), tint.rgb());
        QCOMPARE(image.pixelColor(3, 20).rgb(), tint.rgb());
        QVERIFY(image.pixelColor(20, 15).lightness() > 200);
    }

    void unreadVariantsStandOutMoreThanReadOnes_data()
    {
        QTest::addColumn<QString>("read");
        QTest::addColumn<QString>("unread");
        QTest::newRow("attention") << "ico-attention-read"
                                   << "ico-attention-unread";
        QTest::newRow("offers") << "ico-offers-read"
                                << "ico-offers-unread";
        QTest::newRow("plugin") << "ico-plugin-no-news"
                                << "ico-plugin-news";
    }

    void unreadVariantsStandOutMoreThanReadOnes()
    {
        QFETCH(QString, read);
        QFETCH(QString, unread);
        const int readAccent = accentPixels(qtHelpers::images::pixmap(read, 32, false).toImage());
        const int unreadAccent = accentPixels(qtHelpers::images::pixmap(unread, 32, false).toImage());
        QVERIFY2(unreadAccent > readAccent + 20,
                 qPrintable(QStringLiteral("%1 vs %2").arg(unreadAccent).arg(readAccent)));
    }
};

HOST_TEST_MAIN(TestQtHelpersImages)
#include "tst_qthelpersimages.moc"
