// How CPluginItemDelegate paints and sizes list rows and runs the hide button, against rows whose roles the
// test sets directly. A sheet of every row state is compared with the stored rendering in data/ (within a
// small tolerance for font rasterisation); with NEWSREADER_UPDATE_RENDERINGS set it is rewritten instead.
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
constexpr int kEntryHeight = 58;
constexpr int kFolderHeight = 41;
constexpr qreal kOpacityTolerance = 0.01;
const QString kStoredSheet = QStringLiteral(NEWSREADER_TEST_DATA_DIR "/list-row-states.png");
// A pixel counts as different when a channel differs by more than this; the sheet may differ in this
// share of its pixels (anti-aliasing of glyphs across font builds).
constexpr int kChannelTolerance = 24;
constexpr double kDifferentShare = 0.01;

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

QImage renderRow(const QStyleOptionViewItem& option, const QModelIndex& index)
{
    QImage image(option.rect.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    CPluginItemDelegate().paint(&painter, option, index);
    return image;
}

QList<PaintRecord> recordRow(const QStyleOptionViewItem& option, const QModelIndex& index,
                             PaintRecord::Kind kind)
{
    RecordingPaintDevice device(option.rect.size());
    {
        QPainter painter(&device);
        CPluginItemDelegate().paint(&painter, option, index);
    }
    return device.ofKind(kind);
}

// Every row state the list shows, painted one below the other with the hide buttons where the view puts them.
QImage renderStateSheet()
{
    const QStyle::State plain = QStyle::State_Enabled;
    const QStyle::State hovered = plain | QStyle::State_MouseOver;
    QStandardItemModel model;
    QList<QStyle::State> states;
    const auto add = [&](QStandardItem* item, QStyle::State state, const QString& icon = {}) {
        if (!icon.isEmpty())
            item->setData(qtHelpers::images::icon(icon), Qt::DecorationRole);
        model.appendRow(item);
        states << state;
    };
    add(folderItem("Important messages", true), plain);
    add(folderItem("Offers (collapsed, hovered)", false), hovered);
    add(entryItem("Unread important news", false, true), plain, "ico-attention-unread");
    add(entryItem("Unread offer with a title too long to fit"), plain, "ico-offers-unread");
    add(entryItem("Read offer", true), plain, "ico-offers-read");
    add(entryItem("Read offer, selected", true), plain | QStyle::State_Selected, "ico-offers-read");
    add(entryItem("Read offer, hovered", true), hovered, "ico-offers-read");
    add(entryItem("Pinned offer (faded)", false, false, true), plain, "ico-offers-unread");
    add(entryItem("Unread offer with focus"), plain | QStyle::State_HasFocus, "ico-offers-unread");

    CPluginItemDelegate delegate;
    QStyleOptionViewItem option = rowOption(0);
    int height = 0;
    for (int row = 0; row < model.rowCount(); ++row)
        height += delegate.sizeHint(option, model.index(row, 0)).height();
    QImage sheet(kRowWidth, height, QImage::Format_ARGB32_Premultiplied);
    sheet.fill(QColor(QStringLiteral("#f4f5f7")));
    QPainter painter(&sheet);
    for (int row = 0, top = 0; row < model.rowCount(); ++row, top += option.rect.height()) {
        const QModelIndex index = model.index(row, 0);
        option.rect = QRect(QPoint(0, top), delegate.sizeHint(option, index));
        option.state = states.at(row);
        delegate.paint(&painter, option, index);
        if (CPluginItemDelegate::canHide(index)) {
            std::unique_ptr<QWidget> editor(delegate.createEditor(nullptr, option, index));
            delegate.updateEditorGeometry(editor.get(), option, index);
            editor->resize(editor->geometry().size());
            editor->render(&painter, editor->geometry().topLeft(), QRegion(), QWidget::DrawChildren);
        }
    }
    return sheet;
}

double differentShare(const QImage& a, const QImage& b)
{
    const QImage left = a.convertToFormat(QImage::Format_ARGB32);
    const QImage right = b.convertToFormat(QImage::Format_ARGB32);
    qint64 different = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QRgb p = left.pixel(x, y);
            const QRgb q = right.pixel(x, y);
            different += qAbs(qRed(p) - qRed(q)) > kChannelTolerance ||
                         qAbs(qGreen(p) - qGreen(q)) > kChannelTolerance ||
                         qAbs(qBlue(p) - qBlue(q)) > kChannelTolerance;
        }
    }
    return double(different) / double(left.width() * left.height());
}

} // namespace

class TestPluginItemDelegate : public QObject
{
    Q_OBJECT

private slots:
    void rowStatesMatchTheStoredRendering()
    {
        const QImage sheet = renderStateSheet();
        listTest::keepForPeople(sheet, QStringLiteral("list-row-states.png"));
        if (qEnvironmentVariableIsSet("NEWSREADER_UPDATE_RENDERINGS")) {
            QVERIFY(sheet.save(kStoredSheet));
            QSKIP("Stored rendering rewritten");
        }
        const QImage stored(kStoredSheet);
        QVERIFY2(!stored.isNull(), qPrintable(kStoredSheet));
        QCOMPARE(sheet.size(), stored.size());
        const double share = differentShare(sheet, stored);
        QVERIFY2(share < kDifferentShare, qPrintable(QStringLiteral("%1 of the pixels differ").arg(share)));
    }

    void rowsHaveTheirFixedSizes()
    {
        QStandardItemModel model(2, 2);
        model.setData(model.index(0, 0), true, Model::IsFolderRole);
        const CPluginItemDelegate delegate;
        QCOMPARE(delegate.sizeHint(rowOption(10), model.index(0, 0)), QSize(kRowWidth, kFolderHeight));
        QCOMPARE(delegate.sizeHint(rowOption(10), model.index(1, 0)), QSize(kRowWidth, kEntryHeight));
        // The hide button's column.
        QCOMPARE(delegate.sizeHint(rowOption(10), model.index(0, 1)), QSize(24, kEntryHeight));
    }

    void entryOpacitiesAndBackgroundFollowReadMarkAndRowState_data()
    {
        QTest::addColumn<bool>("read");
        QTest::addColumn<bool>("pinned");
        QTest::addColumn<int>("state");
        QTest::addColumn<qreal>("iconOpacity");
        QTest::addColumn<qreal>("textOpacity");
        QTest::addColumn<QColor>("background");
        const int plain = QStyle::State_Enabled;
        const int selected = plain | QStyle::State_Selected;
        const int hovered = plain | QStyle::State_MouseOver;
        const QColor white(Qt::white);
        const QColor selection = getPaletteColor(clrListSelection);
        const QColor hover = getPaletteColor(clrListHover);
        QTest::newRow("unread") << false << false << plain << 1.0 << 0.8 << white;
        QTest::newRow("unread selected") << false << false << selected << 1.0 << 0.8 << selection;
        QTest::newRow("read") << true << false << plain << 0.5 << 0.4 << white;
        QTest::newRow("read selected") << true << false << selected << 0.8 << 0.64 << selection;
        QTest::newRow("read hovered") << true << false << hovered << 1.0 / 1.5 << 0.8 / 1.5 << hover;
        QTest::newRow("read, selected and hovered")
            << true << false << (selected | hovered) << 0.8 << 0.64 << selection;
        QTest::newRow("pinned unread") << false << true << plain << 0.2 << 0.2 << white;
        QTest::newRow("pinned read selected") << true << true << selected << 0.2 << 0.2 << selection;
    }

    void entryOpacitiesAndBackgroundFollowReadMarkAndRowState()
    {
        QFETCH(bool, read);
        QFETCH(bool, pinned);
        QFETCH(int, state);
        QFETCH(qreal, iconOpacity);
        QFETCH(qreal, textOpacity);
        QFETCH(QColor, background);
        QStandardItemModel model;
        model.appendRow(entryItem(QStringLiteral("Offer"), read, false, pinned));
        const QModelIndex index = model.index(0, 0);
        const QStyleOptionViewItem option = rowOption(kEntryHeight, QStyle::State(state));

        const QList<PaintRecord> pixmaps = recordRow(option, index, PaintRecord::Pixmap);
        QCOMPARE(pixmaps.size(), 1);
        QVERIFY(qAbs(pixmaps.first().opacity - iconOpacity) < kOpacityTolerance);
        const QList<PaintRecord> texts = recordRow(option, index, PaintRecord::Text);
        QCOMPARE(texts.size(), 2);
        QCOMPARE(texts.at(0).text, QStringLiteral("Offer"));
        QCOMPARE(texts.at(0).color.rgb(), CVantrelApp::GetColor(clrListText).rgb());
        QVERIFY(qAbs(texts.at(0).color.alphaF() - iconOpacity) < kOpacityTolerance);
        QCOMPARE(texts.at(1).text, QStringLiteral("12.06.2024"));
        QVERIFY(qAbs(texts.at(1).color.alphaF() - textOpacity) < kOpacityTolerance);
        // The icon's own opacity does not leak into the texts.
        QCOMPARE(texts.at(0).opacity, 1.0);

        // On real pixels: the background fills the row, and the black icon over it keeps (1 - opacity) of it.
        const QImage image = renderRow(option, index);
        QCOMPARE(image.pixelColor(1, 1).rgb(), background.rgb());
        QCOMPARE(image.pixelColor(kRowWidth - 2, kEntryHeight - 2).rgb(), background.rgb());
        const qreal iconLightness = image.pixelColor(12 + 16, 29).redF();
        const qreal expectedLightness = background.redF() * (1.0 - iconOpacity);
        QVERIFY2(qAbs(iconLightness - expectedLightness) < 0.02,
                 qPrintable(
                     QStringLiteral("icon pixel %1, expected %2").arg(iconLightness).arg(expectedLightness)));
    }

    void entryPartsSitWhereTheLayoutPutsThem()
    {
        QStandardItemModel model;
        model.appendRow(entryItem(QStringLiteral("Offer")));
        const QStyleOptionViewItem option = rowOption(kEntryHeight);

        // Inner rectangle (12, 8)-(307, 49): the icon is 32 pixels square, at its left, vertically centred.
        QCOMPARE(recordRow(option, model.index(0, 0), PaintRecord::Pixmap).first().rect,
                 QRectF(12, 13, 32, 32));
        // The title starts 12 pixels right of the icon and ends at the inner rectangle's centre line; the
        // date starts below it.
        const QList<PaintRecord> texts = recordRow(option, model.index(0, 0), PaintRecord::Text);
        QCOMPARE(qRound(texts.at(0).origin.x()), 56);
        QVERIFY(texts.at(0).rect.bottom() <= 29.5);
        QCOMPARE(qRound(texts.at(1).origin.x()), 56);
        QVERIFY(texts.at(1).rect.top() >= texts.at(0).rect.bottom() - 1.0);
        QVERIFY(texts.at(1).rect.bottom() <= 50.5);
        QCOMPARE(texts.at(0).font.pointSize(), 11);
        QCOMPARE(texts.at(0).font.weight(), QFont::DemiBold);
        QCOMPARE(texts.at(1).font.pointSize(), 9);
        QCOMPARE(texts.at(1).font.weight(), QFont::Normal);

        // Without a date there is no second line.
        model.setData(model.index(0, 0), QString(), Model::DateTextRole);
        QCOMPARE(recordRow(option, model.index(0, 0), PaintRecord::Text).size(), 1);
    }

    void folderRowShowsTitleAndExpansionArrow_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<bool>("expanded");
        QTest::addColumn<qreal>("alpha");
        QTest::addColumn<QString>("arrow");
        QTest::newRow("idle, expanded") << int(QStyle::State_Enabled) << true << 1.0 / 1.5 << "arrow-up";
        QTest::newRow("hovered, collapsed") << int(QStyle::State_MouseOver) << false << 1.0 << "arrow-down";
        QTest::newRow("selected, expanded") << int(QStyle::State_Selected) << true << 1.0 / 1.5 << "arrow-up";
    }

    void folderRowShowsTitleAndExpansionArrow()
    {
        QFETCH(int, state);
        QFETCH(bool, expanded);
        QFETCH(qreal, alpha);
        QFETCH(QString, arrow);
        QStandardItemModel model;
        model.appendRow(folderItem(QStringLiteral("Offers"), expanded));
        const QStyleOptionViewItem option = rowOption(kFolderHeight, QStyle::State(state));
        const QList<PaintRecord> texts = recordRow(option, model.index(0, 0), PaintRecord::Text);
        QCOMPARE(texts.size(), 1);
        QCOMPARE(texts.first().text, QStringLiteral("Offers"));
        QVERIFY(qAbs(texts.first().color.alphaF() - alpha) < kOpacityTolerance);
        QCOMPARE(qRound(texts.first().origin.x()), 12);
        // A folder row paints no selection or hover background of its own.
        QVERIFY(recordRow(option, model.index(0, 0), PaintRecord::Fill).isEmpty());

        // The arrow: 30 pixels square, right-aligned in the inner rectangle (12, 8)-(307, 32), centred.
        const QImage row = renderRow(option, model.index(0, 0));
        const QRect arrowRect(278, 6, 30, 30);
        QImage expected(arrowRect.size(), row.format());
        expected.fill(Qt::white);
        const QImage blank = expected;
        {
            QPainter painter(&expected);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            qtHelpers::images::icon(arrow).paint(&painter, expected.rect(), Qt::AlignCenter, QIcon::Normal);
        }
        QCOMPARE(row.copy(arrowRect), expected);
        QVERIFY(expected != blank);
    }

    void focusDrawsTheHostFrame()
    {
        QStandardItemModel model;
        model.appendRow(entryItem(QStringLiteral("Offer")));
        const QImage plain = renderRow(rowOption(kEntryHeight), model.index(0, 0));
        const QImage focused = renderRow(
            rowOption(kEntryHeight, QStyle::State_Enabled | QStyle::State_HasFocus), model.index(0, 0));
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

    void makeFontAppliesSizeWeightAndStyleBits()
    {
        QFont base;
        base.setPointSize(13);
        base.setItalic(true);
        base.setUnderline(true);
        base.setStrikeOut(true);
        // Bit 0 italic, bit 1 underline, bit 2 strike-out; a size of 0 keeps the base size.
        for (int bits = 0; bits < 8; ++bits) {
            const QFont font = CPluginItemDelegate::makeFont(base, bits ? 9 : 0, 600, bits);
            QCOMPARE(font.pointSize(), bits ? 9 : 13);
            QCOMPARE(font.weight(), QFont::DemiBold);
            QCOMPARE(font.italic(), bool(bits & 1));
            QCOMPARE(font.underline(), bool(bits & 2));
            QCOMPARE(font.strikeOut(), bool(bits & 4));
        }
    }

    void hideableEntriesGetAButtonAndGiveUpRoomForIt_data()
    {
        QTest::addColumn<bool>("folder");
        QTest::addColumn<bool>("important");
        QTest::addColumn<bool>("pinned");
        QTest::addColumn<bool>("button");
        QTest::addColumn<int>("titleWidth");
        // 296 inner pixels less the icon and its gap (44); a hideable row also gives 36 to the button.
        QTest::newRow("plain offer") << false << false << false << true << 216;
        QTest::newRow("important") << false << true << false << false << 252;
        QTest::newRow("pinned") << false << false << true << false << 252;
        QTest::newRow("folder") << true << false << false << false << 0;
    }

    void hideableEntriesGetAButtonAndGiveUpRoomForIt()
    {
        QFETCH(bool, folder);
        QFETCH(bool, important);
        QFETCH(bool, pinned);
        QFETCH(bool, button);
        QFETCH(int, titleWidth);
        QStandardItemModel model;
        const QString longTitle =
            QStringLiteral("A very long title that cannot possibly fit into one row of the list");
        model.appendRow(folder ? folderItem(QStringLiteral("Offers"), true)
                               : entryItem(longTitle, false, important, pinned));
        const QModelIndex index = model.index(0, 0);
        CPluginItemDelegate delegate;
        QWidget parent;
        QStyleOptionViewItem option = rowOption(kEntryHeight);
        QWidget* editor = delegate.createEditor(&parent, option, index);
        QCOMPARE(editor != nullptr, button);
        QCOMPARE(CPluginItemDelegate::canHide(index), button);
        if (editor) {
            // Reachable by pointer and by name, but not a Tab stop of its own.
            QCOMPARE(editor->focusPolicy(), Qt::NoFocus);
            QVERIFY(editor->accessibleName().startsWith(QStringLiteral("Hide ")));
        }

        if (!folder) {
            const PaintRecord title = recordRow(option, index, PaintRecord::Text).first();
            QVERIFY(title.text.endsWith(QChar(0x2026)) || title.text.endsWith(QStringLiteral("...")));
            const QFontMetrics metrics(title.font);
            const int drawn = metrics.horizontalAdvance(title.text);
            // Elided to the available width, not far short of it.
            QVERIFY2(drawn <= titleWidth && drawn > titleWidth - 3 * metrics.averageCharWidth() -
                                                        metrics.horizontalAdvance(QChar(0x2026)),
                     qPrintable(QString::number(drawn)));
        }
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
        QCOMPARE(toolButton->icon().pixmap(24).toImage(),
                 qtHelpers::images::icon(QStringLiteral("hide-msg")).pixmap(24).toImage());
        // At the right of the row, vertically centred.
        option.rect.moveTop(100);
        delegate.updateEditorGeometry(editor, option, index);
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
        const auto button = [&](int row) {
            return qobject_cast<QToolButton*>(
                delegate.createEditor(&parent, rowOption(kEntryHeight), model.index(row, 0)));
        };
        QToolButton* first = button(0);
        QToolButton* second = button(1);
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
