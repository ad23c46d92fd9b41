#pragma once
// How the plugin draws the user's attention to news: its icon in the host's navigation (with or without
// news), the host's attention animation while the page is not selected, and flashing the main window when
// news the user must see arrives while the application is in the background.

#include <QIcon>
#include <QString>

class CNewsNotice;
class CNewsReaderPlugin;

class CPluginAttention
{
public:
    CPluginAttention(CNewsReaderPlugin& plugin, const CNewsNotice& notice);

    const QIcon& icon() const { return m_icon; }

    // Takes the icon the news call for. The host hears of it at once, unless animations are allowed and
    // the page is not selected: then the attention rule runs. Flashes the main window for news the user
    // must see, once the page has its view.
    void refresh(bool allowAnimation, bool viewSetUp);
    // Starts the host's attention animation in the mode the news call for, if any.
    void runAttentionRule();

private:
    CNewsReaderPlugin& m_plugin;
    const CNewsNotice& m_notice;
    QString m_iconName;
    QIcon m_icon;
};
