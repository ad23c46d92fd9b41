// The host's services: human-readable sizes and elided text, file-name validity and host folders, the colour
// table and the palette built from it, painting geometry under the UI scale, the settings store, file-type
// icons cached per type and size and told apart by family, the application object (identity, application
// events and broadcasts), the file dialogs as the stand-in scripts them, view-model bases and the form
// repository, and thumbnails of downloaded files.
#include "HostTestMain.h"

#include "CBrowserItemMetaData.h"
#include "CBusyStateCtl.h"
#include "CColorIndexes.h"
#include "CFilePreviewManager.h"
#include "CFormRepository.h"
#include "CIconControl.h"
#include "CNewsFetcher.h"
#include "CReadNewsEntryRequest.h"
#include "CSettingsLoader.h"
#include "CShellImageList.h"
#include "CSignInService.h"
#include "CViewModelPersistent.h"
#include "ConfigurableObjects.h"
#include "FileDialogs.h"
#include "HostColors.h"
#include "HostFiles.h"
#include "HostPainting.h"
#include "HostRuntime.h"
#include "HostText.h"
#include "HostWindows.h"
#include "Mapper.h"
#include "SignInControl.h"

#include <QDir>
#include <QFile>
#include <QFontMetrics>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QStyle>
#include <QTemporaryDir>
#include <QToolButton>

namespace {

const QChar ellipsis(0x2026);
constexpr unsigned long long KB = 1024;
constexpr unsigned long long MB = KB * KB;
constexpr unsigned long long GB = MB * KB;

} // namespace

namespace {

// Listens to application events the way page plugins do: accepts the news-entry requests it is after.
class EntryRequestListener : public QObject
{
public:
    explicit EntryRequestListener(bool accept)
        : m_accept(accept)
    {
        connect(vantrelApp, &CVantrelApp::applicationEvent, this, [this](QEvent* event) {
            if (event->type() != CReadNewsEntryRequest::EventType)
                return;
            lastEntryId = static_cast<CReadNewsEntryRequest*>(event)->getNewsEntryId();
            if (m_accept)
                event->accept();
        });
    }
    QString lastEntryId;

private:
    bool m_accept;
};

} // namespace

namespace {

const QString probeForm = QStringLiteral("tst_core.probe.ui");

class ProbeViewModel : public CViewModelPersistent
{
public:
    explicit ProbeViewModel(const QString& formName)
        : m_formName(formName)
    {}
    QString getUiFormName() const override { return m_formName; }
    void setupView() override
    {
        ++setupCount;
        // The controls must be there when the model sets itself up.
        titleFound = getViewWidget() && getViewWidget()->findChild<QLabel*>(QStringLiteral("titleLabel"));
    }
    void refreshView() override
    {
        ++refreshCount;
        CViewModelPersistent::refreshView();
    }
    void onActiveChanged(bool active) override { lastActive = active; }

    int setupCount = 0;
    int refreshCount = 0;
    bool titleFound = false;
    bool lastActive = false;

private:
    QString m_formName;
};

} // namespace

namespace {

constexpr unsigned thumbnailSize = 200;
const QSize pictureSize(640, 320);
const QColor pictureColor(200, 40, 40);
constexpr int lossyTolerance = 30;

bool sameColour(const QColor& a, const QColor& b, int tolerance)
{
    return qAbs(a.red() - b.red()) <= tolerance && qAbs(a.green() - b.green()) <= tolerance &&
           qAbs(a.blue() - b.blue()) <= tolerance;
}

} // namespace

class TestHostBasics : public QObject
{
    Q_OBJECT

private:
    static HostRuntime& runtime() { return HostRuntime::instance(); }

    static QVariantList settingValues()
    {
        QVariantList values;
        CSettingsLoader& settings = vantrelApp->getSettingsInstance();
        const QStringList keys = settings.Keys();
        for (const QString& key : keys) {
            QVariant value;
            settings.Read(key, &value);
            values << value;
        }
        return values;
    }

    QTemporaryDir m_folder;

    QString writeRaster(const QString& name, const char* format, const QSize& size = pictureSize)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(pictureColor);
        const QString path = m_folder.filePath(name);
        return image.save(path, format) ? path : QString();
    }

    QString writeFile(const QString& name, const QByteArray& content)
    {
        const QString path = m_folder.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            return QString();
        return path;
    }

    QString writePdf()
    {
        const QString path = m_folder.filePath(QStringLiteral("document.pdf"));
        QPdfWriter writer(path);
        writer.setPageSize(QPageSize(QPageSize::A4));
        QPainter painter(&writer);
        const QRect page = painter.viewport();
        painter.fillRect(
            page.adjusted(page.width() / 4, page.height() / 4, -page.width() / 4, -page.height() / 4),
            pictureColor);
        painter.end();
        return path;
    }

private slots:
    void init()
    {
        runtime().openExternally = false;
        runtime().events.clear();
        runtime().openFileAnswers.clear();
        runtime().saveAsAnswers.clear();
        CSettingsLoader& settings = vantrelApp->getSettingsInstance();
        const QStringList keys = settings.Keys();
        for (const QString& key : keys)
            settings.Remove(key);
    }

    void cleanup() { vantrelApp->getSettingsInstance().Remove(QStringLiteral("UIScale")); }

    void initTestCase() { QVERIFY(m_folder.isValid()); }

    void formattedSizeReadsLikeAFileManager_data()
    {
        QTest::addColumn<qulonglong>("size");
        QTest::addColumn<qulonglong>("flags");
        QTest::addColumn<QString>("expected");
        QTest::newRow("nothing") << 0ull << 0ull << "0 bytes";
        QTest::newRow("one byte") << 1ull << 0ull << "1 byte";
        QTest::newRow("just below a KB") << 1023ull << 0ull << "1023 bytes";
        QTest::newRow("one KB") << KB << 0ull << "1.0 KB";
        QTest::newRow("one and a half KB") << 1536ull << 0ull << "1.5 KB";
        QTest::newRow("hundred KB has no decimal") << 100 * KB << 0ull << "100 KB";
        QTest::newRow("99.96 KB rounds to 100") << 102359ull << 0ull << "100 KB";
        QTest::newRow("rounding carries into MB") << MB - 1 << 0ull << "1.0 MB";
        QTest::newRow("4.1 GB") << qulonglong(4.1 * GB) << 0ull << "4.1 GB";
        QTest::newRow("whole units") << 1536ull << 1ull << "2 KB";
        QTest::newRow("whole units leave bytes alone") << 5ull << 1ull << "5 bytes";
    }
    void formattedSizeReadsLikeAFileManager()
    {
        QFETCH(qulonglong, size);
        QFETCH(qulonglong, flags);
        QFETCH(QString, expected);
        QCOMPARE(GetFormattedSize(size, flags), expected);
    }

    void longTextIsElidedWhereAsked_data()
    {
        QTest::addColumn<int>("flags");
        QTest::newRow("right") << 0;
        QTest::newRow("middle") << 1;
        QTest::newRow("left") << 2;
    }
    void longTextIsElidedWhereAsked()
    {
        QFETCH(int, flags);
        const QFont font;
        const QFontMetrics metrics(font);
        const QString text = QStringLiteral("Important messages from the vendor about your subscription");
        const int width = metrics.horizontalAdvance(text) / 3;

        const QString elided = GetDottedString(text, font, width, flags, 0);
        QVERIFY(elided.length() < text.length());
        QVERIFY(elided.contains(ellipsis));
        QVERIFY(metrics.horizontalAdvance(elided) <= width);

        const QString head = text.left(3);
        const QString tail = text.right(3);
        switch (flags) {
        case 0:
            QVERIFY(elided.startsWith(head));
            QVERIFY(elided.endsWith(ellipsis));
            break;
        case 1:
            QVERIFY(elided.startsWith(head));
            QVERIFY(elided.endsWith(tail));
            break;
        default:
            QVERIFY(elided.startsWith(ellipsis));
            QVERIFY(elided.endsWith(tail));
        }
    }

    void shortTextIsKeptWholeAndMinimumCharactersSurviveANarrowWidth()
    {
        const QFont font;
        const QString shortText = QStringLiteral("Offers");
        QCOMPARE(GetDottedString(shortText, font, QFontMetrics(font).horizontalAdvance(shortText), 0, 0),
                 shortText);
        const QString text = QStringLiteral("attachment-name.pdf");
        QCOMPARE(GetDottedString(text, font, 1, 0, 4), QStringLiteral("atta") + ellipsis);
        QCOMPARE(GetDottedString(text, font, 1, 2, 4), ellipsis + QStringLiteral(".pdf"));
        QCOMPARE(GetDottedString(text, font, 1, 1, 4),
                 QStringLiteral("at") + ellipsis + QStringLiteral("df"));
        QCOMPARE(GetDottedString(QStringLiteral("abc"), font, 1, 0, 4), QStringLiteral("abc"));
    }

    void everyReasonIsReported_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<FileNameValidationReasons>("expected");
        QTest::newRow("ordinary") << "plain name (1).txt" << FileNameValidationReasons();
        QTest::newRow("percent and equals are fine") << "50%=half.txt" << FileNameValidationReasons();
        QTest::newRow("device name") << "CON" << FileNameValidationReasons(FileNameReserved);
        QTest::newRow("device name, mixed case, extension")
            << "Lpt9.log" << FileNameValidationReasons(FileNameReserved);
        QTest::newRow("dot dot") << ".." << FileNameValidationReasons(FileNameReserved);
        QTest::newRow("COM10") << "com10" << FileNameValidationReasons();
        QTest::newRow("empty") << "" << FileNameValidationReasons(FileNameEmpty);
        QTest::newRow("256 characters")
            << QString(256, QLatin1Char('a')) << FileNameValidationReasons(FileNameTooLong);
        QTest::newRow("trailing dot") << "name." << FileNameValidationReasons(FileNameTrailingDotOrSpace);
        QTest::newRow("several at once")
            << "a:b." << (FileNameForbiddenCharacter | FileNameTrailingDotOrSpace);
    }
    void everyReasonIsReported()
    {
        QFETCH(QString, fileName);
        QFETCH(FileNameValidationReasons, expected);
        QCOMPARE(isValidFileName(fileName), expected);
    }

    void absDirNameJoinsAndCreatesFolders_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("root");
        QTest::newRow("documents") << int(FolderDocuments)
                                   << QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
        QTest::newRow("downloads") << int(FolderDownloads)
                                   << QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    }
    void absDirNameJoinsAndCreatesFolders()
    {
        QFETCH(int, kind);
        QFETCH(QString, root);

        const QString relative = QStringLiteral("tst_hostfiles/%1/thread-7/att-1").arg(kind);
        const QString base = GetAbsDirName(kind, QString(), false);
        auto cleanup = qScopeGuard([&] { QDir(QDir(base).filePath("tst_hostfiles")).removeRecursively(); });

        QVERIFY(base.startsWith(root));
        QVERIFY(!QFileInfo::exists(QDir(base).filePath(relative)));

        const QString notCreated = GetAbsDirName(kind, relative, false);
        QCOMPARE(notCreated, QDir(base).filePath(relative));
        QVERIFY(!QFileInfo::exists(notCreated));

        const QString created = GetAbsDirName(kind, relative, true);
        QCOMPARE(created, notCreated);
        QVERIFY(QFileInfo(created).isDir());
    }

    void downloadsAreKeptApartFromTheCacheRootAndUnknownKindsGiveNoFolder()
    {
        const QString cacheRoot = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
        QVERIFY(GetAbsDirName(FolderDownloads, QString(), false) != QDir::cleanPath(cacheRoot));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("unknown folder kind"));
        QVERIFY(GetAbsDirName(77, QStringLiteral("x"), true).isEmpty());
    }

    void absFileNamePlacesTheFileInKindOrFolder()
    {
        QCOMPARE(GetAbsFileName(int(FolderDownloads), QStringLiteral("a b.txt")),
                 GetAbsDirName(FolderDownloads, QString(), false) + QStringLiteral("/a b.txt"));
        QTemporaryDir folder;
        QCOMPARE(GetAbsFileName(folder.path(), QStringLiteral("x.pdf")),
                 folder.path() + QStringLiteral("/x.pdf"));
    }

    void unknownIndexGivesAnInvalidColourAndAWarning()
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("no index 11$"));
        QVERIFY(!getPaletteColor(CColorIndexes(11)).isValid());
    }

    void applicationUsesTheHostPalette()
    {
        const QPalette palette = hostPalette();
        QCOMPARE(palette.color(QPalette::Window), getPaletteColor(clrWindow));
        QCOMPARE(palette.color(QPalette::Disabled, QPalette::Text), getPaletteColor(clrDisabledText));
        QCOMPARE(QApplication::palette().color(QPalette::Base), getPaletteColor(clrBase));
    }

    void adjustWidgetPaletteSetsOneRole()
    {
        QWidget widget;
        const QColor before = widget.palette().color(QPalette::Text);
        const QPalette returned = adjustWidgetPalette(&widget, QPalette::Window, clrThreadBackground);
        QCOMPARE(widget.palette().color(QPalette::Active, QPalette::Window),
                 getPaletteColor(clrThreadBackground));
        QCOMPARE(widget.palette().color(QPalette::Text), before);
        QCOMPARE(returned, widget.palette());
    }

    void styleSheetGivesToolButtonsTheHostLook()
    {
        QToolButton button;
        CVantrelApp::setWidgetStyleSheetFromPalette(&button);
        QCOMPARE(button.styleSheet(), hostStyleSheet());
        QVERIFY(hostStyleSheet().contains(getPaletteColor(clrListHover).name()));
        QCOMPARE(button.palette().color(QPalette::Button), getPaletteColor(clrButton));
        CVantrelApp::setWidgetStyleSheetFromPalette(nullptr);
    }

    void mapperRoundsOutwardsUnderTheUiScale_data()
    {
        QTest::addColumn<QVariant>("scale");
        QTest::addColumn<QRectF>("rect");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("fractional edges") << QVariant() << QRectF(0.2, 0.7, 9.6, 9.1) << QRect(0, 0, 10, 10);
        QTest::newRow("negative edges") << QVariant() << QRectF(-1.5, 2.0, 3.0, 1.0) << QRect(-2, 2, 4, 1);
        // 10..21 scaled is 15..31.5, which needs pixels 15 to 31 inclusive.
        QTest::newRow("scaled") << QVariant(1.5) << QRectF(10, 10, 11, 11) << QRect(15, 15, 17, 17);
        QTest::newRow("broken scale") << QVariant("big") << QRectF(1, 2, 3, 4) << QRect(1, 2, 3, 4);
        QTest::newRow("zero scale") << QVariant(0) << QRectF(1, 2, 3, 4) << QRect(1, 2, 3, 4);
    }

    void mapperRoundsOutwardsUnderTheUiScale()
    {
        QFETCH(QVariant, scale);
        QFETCH(QRectF, rect);
        QFETCH(QRect, expected);
        if (scale.isValid())
            vantrelApp->getSettingsInstance().Write(QStringLiteral("UIScale"), scale);
        QCOMPARE(Mapper::map(rect), expected);
        if (rect == rect.toRect())
            QCOMPARE(Mapper::map(rect.toRect()), expected);
    }

    void valuesPersistAcrossInstances()
    {
        QTemporaryDir folder;
        const QString file = folder.filePath(QStringLiteral("settings.ini"));
        {
            CSettingsLoader settings(file);
            settings.Write(QStringLiteral("UIShowNews"), false);
            settings.Write(QStringLiteral("Window/width"), 640);
            settings.Write(QStringLiteral("Name"), QStringLiteral("Zpráva, s čárkou"));
        }
        CSettingsLoader reopened(file);
        QVariant value;
        QVERIFY(reopened.Read(QStringLiteral("UIShowNews"), &value));
        QCOMPARE(value.toBool(), false);
        QVERIFY(reopened.Read(QStringLiteral("Window/width"), &value));
        QCOMPARE(value.toInt(), 640);
        QVERIFY(reopened.Read(QStringLiteral("Name"), &value));
        QCOMPARE(value.toString(), QStringLiteral("Zpráva, s čárkou"));
    }

    void absentKeysLeaveTheValueAlone()
    {
        QTemporaryDir folder;
        CSettingsLoader settings(folder.filePath(QStringLiteral("s.ini")));
        QVariant value(true);
        QVERIFY(!settings.Read(QStringLiteral("UIShowNews"), &value));
        QCOMPARE(value, QVariant(true));
        settings.Write(QStringLiteral("a"), 1);
        settings.Write(QStringLiteral("g/b"), 2);
        QStringList keys = settings.Keys();
        keys.sort();
        QCOMPARE(keys, QStringList({QStringLiteral("a"), QStringLiteral("g/b")}));
        settings.Remove(QStringLiteral("a"));
        QCOMPARE(settings.Keys(), QStringList{QStringLiteral("g/b")});
        QVERIFY(!settings.Read(QStringLiteral("a"), &value));
        QCOMPARE(value, QVariant(true));
    }

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

    void isTheOneHostApplication()
    {
        QCOMPARE(vantrelApp, qobject_cast<CVantrelApp*>(qApp));
        QCOMPARE(QCoreApplication::applicationName(), QStringLiteral("VantrelDesktop"));
        QCOMPARE(QApplication::style()->name(), QStringLiteral("fusion"));
    }

    void applicationEventReportsWhetherItWasTaken()
    {
        CReadNewsEntryRequest request(QStringLiteral("n1"), 2);
        QCOMPARE(int(request.type()), 1078);
        QCOMPARE(request.getFlags(), 2);
        QVERIFY(!vantrelApp->postApplicationEvent(&request)); // nobody listens

        EntryRequestListener ignoring(false);
        request.accept(); // a stale acceptance must not count
        QVERIFY(!vantrelApp->postApplicationEvent(&request));
        QCOMPARE(ignoring.lastEntryId, QStringLiteral("n1"));

        EntryRequestListener accepting(true);
        QVERIFY(vantrelApp->postApplicationEvent(&request));
        QCOMPARE(accepting.lastEntryId, QStringLiteral("n1"));
        QVERIFY(!vantrelApp->postApplicationEvent(nullptr));
    }

    void broadcastReachesListeners()
    {
        QSignalSpy spy(vantrelApp, &CVantrelApp::appBroadcastRequest);
        vantrelApp->broadcastRequest(BroadcastWriteToSupport);
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.at(0).at(0).value<AppBroadcastRequest>(), BroadcastWriteToSupport);
    }

    void emptyAnswerIsACancel()
    {
        runtime().openFileAnswers.enqueue({});
        runtime().saveAsAnswers.enqueue(QString());
        QString openPath = QStringLiteral("/start");
        QVERIFY(!stdOpenFileDialog(nullptr, {}, openPath, FileDialogOptions(6)));
        QCOMPARE(openPath, QStringLiteral("/start"));

        QString savePath = QStringLiteral("/start/report.pdf");
        QVERIFY(!stdSaveAsDialog(nullptr, {}, savePath, FileDialogOptions(4)));
        QCOMPARE(savePath, QStringLiteral("/start/report.pdf"));
        QCOMPARE(runtime().events.size(), 2);
        QVERIFY(settingValues().isEmpty());
    }

    void saveRecordsTheProposalAndFilters()
    {
        runtime().saveAsAnswers.enqueue(QStringLiteral("/chosen/report.pdf"));
        QString path = QStringLiteral("/cache/report.pdf");
        const QList<CFilterDesc> filters{
            CFilterDesc(QStringLiteral("Pdf files"), QStringLiteral("*.pdf")),
            CFilterDesc(QStringLiteral("Images"), QStringLiteral("*.png;*.jpg"))};
        QVERIFY(stdSaveAsDialog(nullptr, filters, path, FileDialogOptions(4)));
        QCOMPARE(path, QStringLiteral("/chosen/report.pdf"));

        const HostRuntime::Event event = runtime().events.constFirst();
        QCOMPARE(event.details.value("kind").toString(), QStringLiteral("save"));
        QCOMPARE(event.details.value("path").toString(), QStringLiteral("/cache/report.pdf"));
        QCOMPARE(event.details.value("filters").toStringList(),
                 QStringList({QStringLiteral("Pdf files (*.pdf)"), QStringLiteral("Images (*.png *.jpg)")}));
        QCOMPARE(event.details.value("options").toUInt(), 4u);
    }

    void viewIsLoadedOnceIntoItsParentWithHostWidgets()
    {
        QWidget parent;
        ProbeViewModel model(probeForm);
        QVERIFY(!model.getViewWidget());

        QWidget* view = model.View(&parent);
        QVERIFY(view);
        QCOMPARE(view->parentWidget(), &parent);
        QCOMPARE(model.getViewWidget(), view);
        QCOMPARE(model.setupCount, 1);
        QVERIFY(model.titleFound);

        QCOMPARE(model.View(&parent), view);
        QCOMPARE(model.setupCount, 1);
        // The repository creates the host's own widgets inside forms.
        QVERIFY(view->findChild<CIconControl*>(QStringLiteral("iconControl")));
        QVERIFY(view->findChild<CBusyStateCtl*>(QStringLiteral("busyState")));
        QVERIFY(view->findChild<SignInControl*>(QStringLiteral("signIn")));
    }

    void missingFormIsReportedNotFatal()
    {
        QString error;
        QVERIFY(!CFormRepository::load(QStringLiteral("no-such.form.ui"), nullptr, &error));
        QVERIFY(error.contains(QStringLiteral("no-such.form.ui")));
        QVERIFY(!CFormRepository::contains(QStringLiteral("no-such.form.ui")));

        ProbeViewModel model(QStringLiteral("no-such.form.ui"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("no-such.form.ui"));
        QVERIFY(!model.View(nullptr));
        QCOMPARE(model.setupCount, 0);
    }

    void previewableTypesGetAThumbnail_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QSize>("expectedSize");
        QTest::addColumn<int>("tolerance");
        QTest::newRow("png") << "png" << QSize(200, 100) << 0;
        QTest::newRow("jpeg") << "jpeg" << QSize(200, 100) << lossyTolerance;
        QTest::newRow("bmp") << "bmp" << QSize(200, 100) << 0;
        QTest::newRow("webp") << "webp" << QSize(200, 100) << lossyTolerance;
        QTest::newRow("svg, scaled up") << "svg" << QSize(200, 100) << 2;
        // A4 is 595 x 842 points: the page's long side becomes 200.
        QTest::newRow("pdf") << "pdf" << QSize(141, 200) << 2;
    }
    void previewableTypesGetAThumbnail()
    {
        QFETCH(QString, kind);
        QFETCH(QSize, expectedSize);
        QFETCH(int, tolerance);

        QString path;
        if (kind == QLatin1String("svg"))
            path = writeFile(QStringLiteral("drawing.svg"),
                             "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"40\" height=\"20\">"
                             "<rect width=\"40\" height=\"20\" fill=\"#c82828\"/></svg>");
        else if (kind == QLatin1String("pdf"))
            path = writePdf();
        else
            path = writeRaster(QStringLiteral("picture.") + kind, qPrintable(kind));
        QVERIFY2(!path.isEmpty(), "could not write the sample file");

        CFilePreviewManager manager;
        const VantrelBrowser::CBrowserItemMetaData item(path);
        const std::shared_ptr<CFilePreviewHandler> handler = manager.getPreviewHandlerForPath(item);
        QVERIFY2(handler, qPrintable(item.mimeType()));

        const QPixmap thumbnail = handler->getThumbnail(thumbnailSize, item);
        QVERIFY(!thumbnail.isNull());
        QVERIFY(qAbs(thumbnail.width() - expectedSize.width()) <= 1);
        QVERIFY(qAbs(thumbnail.height() - expectedSize.height()) <= 1);

        const QImage image = thumbnail.toImage();
        const QColor centre = image.pixelColor(image.width() / 2, image.height() / 2);
        QVERIFY2(sameColour(centre, pictureColor, tolerance), qPrintable(centre.name()));
        if (kind == QLatin1String("pdf")) // the margin of the page is white paper
            QVERIFY(sameColour(image.pixelColor(2, 2), Qt::white, 2));
    }
};

HOST_TEST_MAIN(TestHostBasics)
#include "tst_hostbasics.moc"
