// Named images of the host: pixel ratios and the avatar tinted through currentColor.
#include "HostTestMain.h"
#include "QtHelpersImages.h"

#include <QPainter>
#include <QSvgRenderer>

class TestQtHelpersImages : public QObject
{
    Q_OBJECT

private slots:
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
};

HOST_TEST_MAIN(TestQtHelpersImages)
#include "tst_qthelpersimages.moc"
