// How CPluginItemDelegate paints and sizes list rows and runs the hide button, against rows whose roles the
// test sets directly.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "CPluginItemDelegate.h"
#include "HostColors.h"
#include "ListTestSupport.h"
#include "QtHelpersImages.h"

#include <QPainter>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QToolButton>

using listTest::PaintRecord;
using listTest::RecordingPaintDevice;
using Model = CCommunicationObjectModel;

namespace {

constexpr int kRowWidth = 320;
constexpr qreal kOpacityTolerance = 0.01;

// A solid black icon, so that its opacity reads straight off the pixels on a white background.
QIcon blackIcon()
{
    QPixmap pixmap(CPluginItemDelegate::kIconSize, CPluginItemDelegate::kIconSize);
    pixmap.fill(Qt::black);
    return QIcon(pixmap);
}

QStandardItem* entryItem(const QString& title, bool read = false, bool important = false, bool pinned = false)
{
    auto* item = new QStandardItem(title);
    item->setData(blackIcon(), Qt::DecorationRole);
    item->setData(QStringLiteral("12.06.2024"), Model::DateTextRole);
    item->setData(int(read), Model::ReadRole);
    item->setData(int(important), Model::ImportantRole);
    item->setData(int(pinned), Model::FlagBit1Role);
    item->setData(false, Model::IsFolderRole);
    return item;
}

QStandardItem* folderItem(const QString& name, bool expanded)
{
    auto* item = new QStandardItem(name);
    item->setData(true, Model::IsFolderRole);
    item->setData(expanded, Model::ExpandedRole);
    return item;
}

QStyleOptionViewItem rowOption(int height, QStyle::State state = QStyle::State_Enabled)
{
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, kRowWidth, height);
    option.state = state;
    option.font = QFont(QStringLiteral("DejaVu Sans"));
    return option;
}

QImage renderRow(const CPluginItemDelegate& delegate, const QStyleOptionViewItem& option,
                 const QModelIndex& index)
{
    QImage image(option.rect.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    delegate.paint(&painter, option, index);
    return image;
}

QList<PaintRecord> recordRow(const CPluginItemDelegate& delegate, const QStyleOptionViewItem& option,
                             const QModelIndex& index, RecordingPaintDevice& device)
{
    QPainter painter(&device);
    delegate.paint(&painter, option, index);
    painter.end();
    return device.records();
}

} // namespace

class TestPluginItemDelegate : public QObject
{
    Q_OBJECT

private slots:
    void rowsHaveTheirFixedSizes_data()
    {
        QTest::addColumn<bool>("folder");
        QTest::addColumn<int>("column");
        QTest::addColumn<QSize>("expected");
        QTest::newRow("folder") << true << 0 << QSize(320, 41);
        QTest::newRow("entry") << false << 0 << QSize(320, 58);
        QTest::newRow("button column") << true << 1 << QSize(24, 58);
    }

    void rowsHaveTheirFixedSizes()
    {
        QFETCH(bool, folder);
        QFETCH(int, column);
        QFETCH(QSize, expected);
        QStandardItemModel model(1, 2);
        model.setData(model.index(0, column), folder, Model::IsFolderRole);
        CPluginItemDelegate delegate;
        QCOMPARE(delegate.sizeHint(rowOption(10), model.index(0, column)), expected);
    }

    void entryOpacitiesFollowReadMarkAndRowState_data()
    {
        QTest::addColumn<bool>("read");
        QTest::addColumn<bool>("pinned");
        QTest::addColumn<int>("state");
        QTest::addColumn<qreal>("iconOpacity");
        QTest::addColumn<qreal>("textOpacity");
        const int plain = QStyle::State_Enabled;
        const int selected = plain | QStyle::State_Selected;
        const int hovered = plain | QStyle::State_MouseOver;
        QTest::newRow("unread") << false << false << plain << 1.0 << 0.8;
        QTest::newRow("unread selected") << false << false << selected << 1.0 << 0.8;
        QTest::newRow("read") << true << false << plain << 0.5 << 0.4;
        QTest::newRow("read selected") << true << false << selected << 0.8 << 0.64;
        QTest::newRow("read hovered") << true << false << hovered << 1.0 / 1.5 << 0.8 / 1.5;
        QTest::newRow("read, selected and hovered") << true << false << (selected | hovered) << 0.8 << 0.64;
        QTest::newRow("pinned unread") << false << true << plain << 0.2 << 0.2;
        QTest::newRow("pinned read selected") << true << true << selected << 0.2 << 0.2;
    }

    void entryOpacitiesFollowReadMarkAndRowState()
    {
        QFETCH(bool, read);
        QFETCH(bool, pinned);
        QFETCH(int, state);
        QFETCH(qreal, iconOpacity);
        QFETCH(qreal, textOpacity);

        QStandardItemModel model;
        model.appendRow(entryItem(QStringLiteral("Offer"), read, false, pinned));
        const QModelIndex index = model.index(0, 0);
        CPluginItemDelegate delegate;
        const QStyleOptionViewItem option = rowOption(58, QStyle::State(state));

        RecordingPaintDevice device(option.rect.size());
        recordRow(delegate, option, index, device);
        const QList<PaintRecord> pixmaps = device.ofKind(PaintRecord::Pixmap);
        QCOMPARE(pixmaps.size(), 1);
        QVERIFY(qAbs(pixmaps.first().opacity - iconOpacity) < kOpacityTolerance);

        const QList<PaintRecord> texts = device.ofKind(PaintRecord::Text);
        QCOMPARE(texts.size(), 2);
        const QColor listText = CVantrelApp::GetColor(clrListText);
        QCOMPARE(texts.at(0).text, QStringLiteral("Offer"));
        QCOMPARE(texts.at(0).color.rgb(), listText.rgb());
        QVERIFY(qAbs(texts.at(0).color.alphaF() - iconOpacity) < kOpacityTolerance);
        QCOMPARE(texts.at(1).text, QStringLiteral("12.06.2024"));
        QVERIFY(qAbs(texts.at(1).color.alphaF() - textOpacity) < kOpacityTolerance);
        // The icon's own opacity does not leak into the texts.
        QCOMPARE(texts.at(0).opacity, 1.0);

        // On real pixels: the black icon over the row background keeps (1 - opacity) of the background.
        const QImage image = renderRow(delegate, option, index);
        const QColor background = image.pixelColor(kRowWidth - 2, 2);
        const QColor iconPixel = image.pixelColor(12 + 16, 29);
        const qreal expectedLightness = background.redF() * (1.0 - iconOpacity);
        QVERIFY2(
            qAbs(iconPixel.redF() - expectedLightness) < 0.02,
            qPrintable(
                QStringLiteral("icon pixel %1, expected %2").arg(iconPixel.redF()).arg(expectedLightness)));
    }

    void entryBackgroundFollowsSelectionAndHover_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<QColor>("expected");
        QTest::newRow("plain") << int(QStyle::State_Enabled) << QColor(Qt::white);
        QTest::newRow("selected") << int(QStyle::State_Selected) << getPaletteColor(clrListSelection);
        QTest::newRow("hovered") << int(QStyle::State_MouseOver) << getPaletteColor(clrListHover);
        QTest::newRow("selected wins over hovered")
            << int(QStyle::State_Selected | QStyle::State_MouseOver) << getPaletteColor(clrListSelection);
    }

    void entryBackgroundFollowsSelectionAndHover()
    {
        QFETCH(int, state);
        QFETCH(QColor, expected);
        QStandardItemModel model;
        model.appendRow(entryItem(QStringLiteral("Offer")));
        CPluginItemDelegate delegate;
        const QImage image = renderRow(delegate, rowOption(58, QStyle::State(state)), model.index(0, 0));
        QCOMPARE(image.pixelColor(1, 1).rgb(), expected.rgb());
        QCOMPARE(image.pixelColor(kRowWidth - 2, 56).rgb(), expected.rgb());
    }

    void entryPartsSitWhereTheLayoutPutsThem()
    {
        QStandardItemModel model;
        model.appendRow(entryItem(QStringLiteral("Offer")));
        CPluginItemDelegate delegate;
        const QStyleOptionViewItem option = rowOption(58);
        RecordingPaintDevice device(option.rect.size());
        recordRow(delegate, option, model.index(0, 0), device);

        // Inner rectangle (12, 8)-(307, 49): the icon is 32 pixels square, at its left, vertically centred.
        QCOMPARE(device.ofKind(PaintRecord::Pixmap).first().rect, QRectF(12, 13, 32, 32));
        const QList<PaintRecord> texts = device.ofKind(PaintRecord::Text);
        // The title starts 12 pixels right of the icon and ends at the inner rectangle's centre line; the
        // date starts below it.
        QCOMPARE(qRound(texts.at(0).origin.x()), 56);
        QVERIFY(texts.at(0).rect.bottom() <= 29.5);
        QCOMPARE(qRound(texts.at(1).origin.x()), 56);
        QVERIFY(texts.at(1).rect.top() >= texts.at(0).rect.bottom() - 1.0);
        QVERIFY(texts.at(1).rect.bottom() <= 50.5);
        QCOMPARE(texts.at(0).font.pointSize(), 11);
        QCOMPARE(texts.at(0).font.weight(), QFont::DemiBold);
        QCOMPARE(texts.at(1).font.pointSize(), 9);
        QCOMPARE(texts.at(1).font.weight(), QFont::Normal);
    }

    void onlyHideableEntriesGiveUpRoomForTheButton_data()
    {
        QTest::addColumn<bool>("important");
        QTest::addColumn<bool>("pinned");
        QTest::addColumn<int>("titleWidth");
        // 296 inner pixels less the icon and its gap (44); a hideable row also gives 36 to the button.
        QTest::newRow("plain offer") << false << false << 216;
        QTest::newRow("important") << true << false << 252;
        QTest::newRow("pinned") << false << true << 252;
    }

    void onlyHideableEntriesGiveUpRoomForTheButton()
    {
        QFETCH(bool, important);
        QFETCH(bool, pinned);
        QFETCH(int, titleWidth);
        const QString longTitle =
            QStringLiteral("A very long title that cannot possibly fit into one row of the list");
        QStandardItemModel model;
        model.appendRow(entryItem(longTitle, false, important, pinned));
        CPluginItemDelegate delegate;
        const QStyleOptionViewItem option = rowOption(58);
        RecordingPaintDevice device(option.rect.size());
        recordRow(delegate, option, model.index(0, 0), device);
        const PaintRecord title = device.ofKind(PaintRecord::Text).first();
        QVERIFY(title.text.endsWith(QChar(0x2026)) || title.text.endsWith(QStringLiteral("...")));
        const QFontMetrics metrics(title.font);
        const int drawn = metrics.horizontalAdvance(title.text);
        QVERIFY2(drawn <= titleWidth, qPrintable(QString::number(drawn)));
        // Elided to the available width, not far short of it.
        QVERIFY2(drawn >
                     titleWidth - 3 * metrics.averageCharWidth() - metrics.horizontalAdvance(QChar(0x2026)),
                 qPrintable(QString::number(drawn)));
    }

    void emptyDateDrawsNoSecondLine()
    {
        QStandardItemModel model;
        QStandardItem* item = entryItem(QStringLiteral("Offer"));
        item->setData(QString(), Model::DateTextRole);
        model.appendRow(item);
        CPluginItemDelegate delegate;
        RecordingPaintDevice device(QSize(kRowWidth, 58));
        recordRow(delegate, rowOption(58), model.index(0, 0), device);
        QCOMPARE(device.ofKind(PaintRecord::Text).size(), 1);
    }

    void folderTitleBrightensUnderTheMouse_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<qreal>("alpha");
        QTest::newRow("idle") << int(QStyle::State_Enabled) << 1.0 / 1.5;
        QTest::newRow("hovered") << int(QStyle::State_MouseOver) << 1.0;
        QTest::newRow("selected") << int(QStyle::State_Selected) << 1.0 / 1.5;
    }

    void folderTitleBrightensUnderTheMouse()
    {
        QFETCH(int, state);
        QFETCH(qreal, alpha);
        QStandardItemModel model;
        model.appendRow(folderItem(QStringLiteral("Offers"), true));
        CPluginItemDelegate delegate;
        RecordingPaintDevice device(QSize(kRowWidth, 41));
        recordRow(delegate, rowOption(41, QStyle::State(state)), model.index(0, 0), device);
        const QList<PaintRecord> texts = device.ofKind(PaintRecord::Text);
        QCOMPARE(texts.size(), 1);
        QCOMPARE(texts.first().text, QStringLiteral("Offers"));
        QVERIFY(qAbs(texts.first().color.alphaF() - alpha) < kOpacityTolerance);
        QCOMPARE(qRound(texts.first().origin.x()), 12);
        // A folder row paints no selection or hover background of its own.
        QVERIFY(device.ofKind(PaintRecord::Fill).isEmpty());
    }

    void folderArrowShowsTheExpansion_data()
    {
        QTest::addColumn<bool>("expanded");
        QTest::addColumn<QString>("arrow");
        QTest::newRow("expanded") << true << QStringLiteral("arrow-up");
        QTest::newRow("collapsed") << false << QStringLiteral("arrow-down");
    }

    void folderArrowShowsTheExpansion()
    {
        QFETCH(bool, expanded);
        QFETCH(QString, arrow);
        QStandardItemModel model;
        model.appendRow(folderItem(QStringLiteral("Offers"), expanded));
        CPluginItemDelegate delegate;
        const QImage row = renderRow(delegate, rowOption(41), model.index(0, 0));

        // The arrow: 30 pixels square, right-aligned in the inner rectangle (12, 8)-(307, 32), centred.
        const QRect arrowRect(278, 6, 30, 30);
        QImage expected(row.size(), row.format());
        expected.fill(Qt::white);
        {
            QPainter painter(&expected);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            qtHelpers::images::icon(arrow).paint(&painter, arrowRect, Qt::AlignCenter, QIcon::Normal);
        }
        QCOMPARE(row.copy(arrowRect), expected.copy(arrowRect));
        QImage blank(arrowRect.size(), row.format());
        blank.fill(Qt::white);
        QVERIFY(row.copy(arrowRect) != blank);
    }

    void focusDrawsTheHostFrame()
    {
        QStandardItemModel model;
        model.appendRow(entryItem(QStringLiteral("Offer")));
        CPluginItemDelegate delegate;
        const QImage plain = renderRow(delegate, rowOption(58), model.index(0, 0));
        const QImage focused = renderRow(
            delegate, rowOption(58, QStyle::State_Enabled | QStyle::State_HasFocus), model.index(0, 0));
        QVERIFY(plain != focused);
        // The frame runs along the row inset by two pixels and is drawn in the heading colour.
        const QColor frame = getPaletteColor(clrHeadingText);
        bool frameColourFound = false;
        for (int x = 10; x < kRowWidth - 10 && !frameColourFound; ++x) {
            const QColor pixel = focused.pixelColor(x, 2);
            frameColourFound = qAbs(pixel.hueF() - frame.hueF()) < 0.05 && pixel != Qt::white;
        }
        QVERIFY(frameColourFound);
        QCOMPARE(focused.pixelColor(0, 29), plain.pixelColor(0, 29));
    }

    void makeFontAppliesSizeWeightAndStyleBits_data()
    {
        QTest::addColumn<int>("pointSize");
        QTest::addColumn<int>("bits");
        QTest::addColumn<int>("expectedSize");
        QTest::newRow("size kept") << 0 << 0 << 13;
        QTest::newRow("italic") << 9 << 1 << 9;
        QTest::newRow("underline") << 9 << 2 << 9;
        QTest::newRow("strike-out") << 9 << 4 << 9;
        QTest::newRow("all") << 11 << 7 << 11;
    }

    void makeFontAppliesSizeWeightAndStyleBits()
    {
        QFETCH(int, pointSize);
        QFETCH(int, bits);
        QFETCH(int, expectedSize);
        QFont base;
        base.setPointSize(13);
        base.setItalic(true);
        base.setUnderline(true);
        base.setStrikeOut(true);
        const QFont font = CPluginItemDelegate::makeFont(base, pointSize, 600, bits);
        QCOMPARE(font.pointSize(), expectedSize);
        QCOMPARE(font.weight(), QFont::DemiBold);
        QCOMPARE(font.italic(), bool(bits & 1));
        QCOMPARE(font.underline(), bool(bits & 2));
        QCOMPARE(font.strikeOut(), bool(bits & 4));
    }

    void hideButtonOnlyForHideableEntries_data()
    {
        QTest::addColumn<bool>("folder");
        QTest::addColumn<bool>("important");
        QTest::addColumn<bool>("pinned");
        QTest::addColumn<bool>("button");
        QTest::newRow("plain offer") << false << false << false << true;
        QTest::newRow("important") << false << true << false << false;
        QTest::newRow("pinned") << false << false << true << false;
        QTest::newRow("folder") << true << false << false << false;
    }

    void hideButtonOnlyForHideableEntries()
    {
        QFETCH(bool, folder);
        QFETCH(bool, important);
        QFETCH(bool, pinned);
        QFETCH(bool, button);
        QStandardItemModel model;
        model.appendRow(folder ? folderItem(QStringLiteral("Offers"), true)
                               : entryItem(QStringLiteral("Offer"), false, important, pinned));
        const QModelIndex index = model.index(0, 0);
        CPluginItemDelegate delegate;
        QWidget parent;
        QWidget* editor = delegate.createEditor(&parent, rowOption(58), index);
        QCOMPARE(editor != nullptr, button);
        QCOMPARE(CPluginItemDelegate::canHide(index), button);
        if (!editor)
            return;

        auto* toolButton = qobject_cast<QToolButton*>(editor);
        QVERIFY(toolButton);
        QCOMPARE(toolButton->parentWidget(), &parent);
        QCOMPARE(toolButton->objectName(), QStringLiteral("newsReaderPluginItem"));
        QCOMPARE(toolButton->toolTip(), QStringLiteral("Click to hide this message"));
        QCOMPARE(toolButton->cursor().shape(), Qt::PointingHandCursor);
        QCOMPARE(toolButton->property("isToolButtonSwitch"), QVariant(true));
        QCOMPARE(toolButton->property("MessageToHideIndex").value<QPersistentModelIndex>(),
                 QPersistentModelIndex(index));
        QVERIFY(!toolButton->icon().isNull());
        QCOMPARE(toolButton->icon().pixmap(24).toImage(),
                 qtHelpers::images::icon(QStringLiteral("hide-msg")).pixmap(24).toImage());
    }

    void hideButtonSitsAtTheRightOfTheRow()
    {
        QStandardItemModel model;
        model.appendRow(entryItem(QStringLiteral("Offer")));
        CPluginItemDelegate delegate;
        QWidget parent;
        QStyleOptionViewItem option = rowOption(58);
        option.rect.moveTop(100);
        QWidget* editor = delegate.createEditor(&parent, option, model.index(0, 0));
        QVERIFY(editor);
        delegate.updateEditorGeometry(editor, option, model.index(0, 0));
        QCOMPARE(editor->geometry(), QRect(284, 117, 24, 24));
    }

    void hideRequestOnlyForARowThatStillExists()
    {
        QStandardItemModel model;
        model.appendRow(entryItem(QStringLiteral("First")));
        model.appendRow(entryItem(QStringLiteral("Second")));
        CPluginItemDelegate delegate;
        QSignalSpy requests(&delegate, &CPluginItemDelegate::hideMessageRequest);
        QWidget parent;
        auto* first =
            qobject_cast<QToolButton*>(delegate.createEditor(&parent, rowOption(58), model.index(0, 0)));
        auto* second =
            qobject_cast<QToolButton*>(delegate.createEditor(&parent, rowOption(58), model.index(1, 0)));
        QVERIFY(first && second);

        second->click();
        QCOMPARE(requests.size(), 1);
        QCOMPARE(requests.first().first().value<QModelIndex>(), model.index(1, 0));

        // After the rows move, the button still names its own entry.
        model.insertRow(0, entryItem(QStringLiteral("New")));
        first->click();
        QCOMPARE(requests.size(), 2);
        QCOMPARE(requests.last().first().value<QModelIndex>().data().toString(), QStringLiteral("First"));

        // A row that vanished asks for nothing.
        model.removeRow(2);
        second->click();
        QCOMPARE(requests.size(), 2);
    }
};

HOST_TEST_MAIN(TestPluginItemDelegate)
#include "tst_cpluginitemdelegate.moc"
