// The host's application services: the application object (identity, application events and broadcasts), the
// file dialogs as the stand-in scripts them, view-model bases and the form repository, and thumbnails of
// downloaded files.
#include "HostTestMain.h"

#include "CBrowserItemMetaData.h"
#include "CBusyStateCtl.h"
#include "CFilePreviewManager.h"
#include "CFormRepository.h"
#include "CIconControl.h"
#include "CNewsFetcher.h"
#include "CReadNewsEntryRequest.h"
#include "CSettingsLoader.h"
#include "CSignInService.h"
#include "CViewModelPersistent.h"
#include "ConfigurableObjects.h"
#include "FileDialogs.h"
#include "HostRuntime.h"
#include "HostWindows.h"
#include "SignInControl.h"

#include <QFile>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStyle>
#include <QTemporaryDir>

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

class TestHostServices : public QObject
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
        HostRuntime::instance().events.clear();
        runtime().events.clear();
        runtime().openFileAnswers.clear();
        runtime().saveAsAnswers.clear();
        CSettingsLoader& settings = vantrelApp->getSettingsInstance();
        const QStringList keys = settings.Keys();
        for (const QString& key : keys)
            settings.Remove(key);
    }

    void initTestCase() { QVERIFY(m_folder.isValid()); }

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

HOST_TEST_MAIN(TestHostServices)
#include "tst_hostservices.moc"
