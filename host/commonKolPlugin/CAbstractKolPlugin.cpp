#include "CAbstractKolPlugin.h"

#include "ConfigurableObjects.h"

#include <QAbstractItemDelegate>
#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QTranslator>

namespace {

// Where the host keeps plugin translations: "<application folder>/../translations", then the current folder.
QStringList translationFolders()
{
    const QString appDir = QCoreApplication::applicationDirPath();
    return {QDir(appDir).absoluteFilePath(QStringLiteral("../translations")), appDir,
            QDir::currentPath() + QStringLiteral("/translations")};
}

} // namespace

CAbstractKolPlugin::CAbstractKolPlugin(QObject* parent)
    : CViewModelPersistent(parent)
{}

CAbstractKolPlugin::~CAbstractKolPlugin()
{
    delete m_delegate;
    delete m_translator;
}

bool CAbstractKolPlugin::hasPluginView() const
{
    return true;
}

bool CAbstractKolPlugin::isMessengerModeDisabled() const
{
    return false;
}

PluginVisibility CAbstractKolPlugin::getPluginVisibility() const
{
    const QString id = getConfigurableObjectId();
    if (!id.isEmpty() && !ConfigurableObjects::isVisible(id))
        return PluginHidden;
    return PluginVisible;
}

void CAbstractKolPlugin::onListItemExpanded(const QModelIndex&)
{}

void CAbstractKolPlugin::onListItemCollapsed(const QModelIndex&)
{}

bool CAbstractKolPlugin::keepItemSelected()
{
    return true;
}

void CAbstractKolPlugin::setIsSelected(bool value)
{
    if (m_selected == value)
        return;
    m_selected = value;
    emit pluginSelectionChanged(value);
}

void CAbstractKolPlugin::onPluginDeactivating()
{}

bool CAbstractKolPlugin::isSelected() const
{
    return m_selected;
}

QWidget* CAbstractKolPlugin::getPluginView(QWidget* parent)
{
    return View(parent);
}

QString CAbstractKolPlugin::getPluginTitle() const
{
    return getCaption();
}

int CAbstractKolPlugin::getSortWeight() const
{
    return sortKey();
}

QWidget* CAbstractKolPlugin::releaseEmptyListWidget()
{
    return nullptr;
}

QString CAbstractKolPlugin::getPluginName() const
{
    return getCaption();
}

std::shared_ptr<QAbstractItemModel> CAbstractKolPlugin::getPluginModel()
{
    return {};
}

QAbstractItemDelegate* CAbstractKolPlugin::getPluginItemDelegate()
{
    return m_delegate;
}

void CAbstractKolPlugin::onPluginItemSelected(const QModelIndex&, const QModelIndex&)
{}

void CAbstractKolPlugin::onPluginItemActivated(const QModelIndex&)
{}

QWidget* CAbstractKolPlugin::createEmptyListWidget()
{
    return nullptr;
}

void CAbstractKolPlugin::restoreSelection()
{}

void CAbstractKolPlugin::onPluginViewShown()
{}

QString CAbstractKolPlugin::getTranslationName() const
{
    return getPluginId();
}

QString CAbstractKolPlugin::getTooltip() const
{
    return getCaption();
}

QString CAbstractKolPlugin::getPluginId() const
{
    return QString::fromLatin1(metaObject()->className());
}

bool CAbstractKolPlugin::isContentsFrameVisible() const
{
    return false;
}

bool CAbstractKolPlugin::isVisible() const
{
    return getPluginVisibility() != PluginHidden;
}

int CAbstractKolPlugin::getViewItemIndentation() const
{
    return 0;
}

bool CAbstractKolPlugin::getViewItemRootDecorated() const
{
    return false;
}

bool CAbstractKolPlugin::hasCustomToolbar() const
{
    return false;
}

bool CAbstractKolPlugin::installPluginTranslation(QObject* application, const QString& locale)
{
    auto* app = qobject_cast<QCoreApplication*>(application);
    const QString name = getTranslationName();
    if (!app || name.isEmpty())
        return false;

    auto translator = std::make_unique<QTranslator>();
    const QLocale wanted(locale.isEmpty() ? QLocale().name() : locale);
    bool loaded = false;
    for (const QString& folder : translationFolders()) {
        if (translator->load(wanted, name, QStringLiteral("_"), folder)) {
            loaded = true;
            break;
        }
    }
    if (!loaded)
        return false;

    if (m_translator)
        QCoreApplication::removeTranslator(m_translator);
    delete m_translator;
    m_translator = translator.release();
    return QCoreApplication::installTranslator(m_translator);
}

void CAbstractKolPlugin::setItemDelegate(QAbstractItemDelegate* delegate)
{
    if (m_delegate == delegate)
        return;
    delete m_delegate;
    m_delegate = delegate;
}

QAbstractItemDelegate* CAbstractKolPlugin::itemDelegate() const
{
    return m_delegate;
}
