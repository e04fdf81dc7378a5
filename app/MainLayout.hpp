// The geometry of the main window: where everything lies in an inside of a given size. Numbers
// only; all in twips.
#pragma once

#include <array>

#include "controls/Control.hpp"

namespace vantor {

/// Places of the panels within the window, and of the controls within their panels.
struct MainLayout {
    Place picture;
    Place panel;  ///< all three panels lie here, one of them visible

    Place welcome;
    Place flash;

    std::array<Place, 2> flashLabels;  ///< "Sending:", "Elapsed Time:"
    Place status;
    Place elapsed;
    Place progress;
    Place warning;
    Place abort;

    Place updatesLabel;
    Place updates;
    Place updateStatus;
    Place details;
    Place download;
    Place downloadAll;
};

/// Lays the window out. An inside smaller than the least one is laid out as that one.
MainLayout LayoutMainWindow(Size inner);

}  // namespace vantor
