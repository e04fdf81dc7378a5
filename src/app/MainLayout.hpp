// The geometry of the main window: the position of every control for a given client size.
// Pure arithmetic, all in twips; accesses no window.
#pragma once

#include <array>

#include "controls/Control.hpp"

namespace vantor {

/// Positions of the panels within the window, and of the controls within their panels.
struct MainLayout {
    Place picture;
    Place panel;  ///< of all three panels; only one is visible

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

/// Lays out the window. A client size below the minimum is laid out as the minimum.
MainLayout LayoutMainWindow(Size inner);

}  // namespace vantor
