#include "CPluginAttention.h"

#include "CNewsNotice.h"
#include "CNewsReaderPlugin.h"
#include "CVantrelApp.h"
#include "HostWindows.h"
#include "QtHelpersImages.h"

CPluginAttention::CPluginAttention(CNewsReaderPlugin& plugin, const CNewsNotice& notice)
    : m_plugin(plugin)
    , m_notice(notice)
    , m_iconName(QString::fromLatin1(CNewsReaderPlugin::kIconNoNews))
    , m_icon(qtHelpers::images::icon(m_iconName))
{}

void CPluginAttention::refresh(bool allowAnimation, bool viewSetUp)
{
    bool notice = false;
    const QString name = m_notice.iconName(&notice);
    if (name != m_iconName) {
        m_iconName = name;
        m_icon = qtHelpers::images::icon(name);
    }

    if (!allowAnimation || m_plugin.isSelected())
        emit m_plugin.pluginDataChanged();
    else
        runAttentionRule();

    QWidget* mainWindow = vantrelApp ? vantrelApp->mainWidget() : nullptr;
    if (notice && mainWindow && !mainWindow->isActiveWindow() && viewSetUp)
        flashWindow(mainWindow->winId(), CNewsReaderPlugin::kFlashCount);
}

void CPluginAttention::runAttentionRule()
{
    if (const std::optional<int> mode = m_notice.attentionMode())
        emit m_plugin.beginPluginAnimation(&m_plugin, *mode);
}
