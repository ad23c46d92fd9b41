#pragma once

#include <QMetaType>

// Host-wide requests that the application broadcasts to every plugin.
enum AppBroadcastRequest : int
{
    BroadcastNone = 0,
    BroadcastRefreshViews = 1,
    BroadcastShowSettings = 2,
    BroadcastCheckForUpdates = 3,
    BroadcastShowAbout = 4,
    BroadcastWriteToSupport = 5, // open a new support conversation
};
Q_DECLARE_METATYPE(AppBroadcastRequest)
