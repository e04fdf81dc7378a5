// Checks for the idle state after a session that has left the window open.
#pragma once

#include <string>
#include <vector>

#include "app/frmMain.hpp"
#include "platform/headless/HeadlessPlatform.hpp"

namespace vantor {

/// Lists the state of `window` and `platform` that a session has not restored; empty when none.
inline std::string NotAtRest(frmMain& window, const HeadlessPlatform& platform) {
    std::string what;
    const auto require = [&what](bool holds, const char* name) {
        if (!holds) what += std::string(name) + "; ";
    };
    require(!platform.ports.IsOpen("COM1"), "port open");
    require(!window.Session().AwaitsVerdict(), "timer running");
    require(!window.Session().Flashing(), "still flashing");
    require(window.cmdFlash.Enabled() && window.mnuFileFlash.Enabled() &&
                window.mnuToolsOptions.Enabled() && window.mnuToolsMonitor.Enabled(),
            "buttons disabled");
    require(window.picStartup.Visible() && !window.picFlash.Visible(), "flash panel shown");
    require(platform.peers.open == std::vector<std::string>{"frmMain"}, "window left open");
    require(platform.peers.pointer == MousePointer::Default, "wait cursor");
    require(platform.peers.held.empty(), "system held");
    return what;
}

}  // namespace vantor
