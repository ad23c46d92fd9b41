#pragma once

// Whether and how the host lists a page plugin.
enum PluginVisibility : int
{
    PluginHidden = 0,
    PluginVisible = 1,
    PluginVisibleDisabled = 2, // listed but greyed out
};
