// View-model bases and the form repository: loading a view once, host widgets in forms, a missing form.

#include "CBusyStateCtl.h"
#include "CFormRepository.h"
#include "CIconControl.h"
#include "CViewModelPersistent.h"
#include "HostTestMain.h"
#include "SignInControl.h"

#include <QLabel>
#include <QRegularExpression>

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

class TestCViewModelBase : public QObject
{
    Q_OBJECT

private slots:
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
};

HOST_TEST_MAIN(TestCViewModelBase)
#include "tst_cviewmodelbase.moc"
