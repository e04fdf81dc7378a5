// A tree on the screen, kept in step with its model in both directions.
#pragma once

#include <cstddef>
#include <vector>

#include "controls/TreeView.hpp"
#include "platform/win32/Windows.hpp"
// Needs what the line above declares.
#include <commctrl.h>

namespace vantor {

class Win32TreeView {
public:
    /// `window` is the system's tree, which outlives this object.
    Win32TreeView(TreeView& model, HWND window) : mModel(model), mWindow(window) {}

    /// The model has changed.
    void Follow();
    /// The tree tells of itself: what its user opens, closes and selects reaches the model. The
    /// handler of a selection may unload the form, and this object with it.
    void Notified(const NMHDR& header);

private:
    bool ShowsTheNodes() const;
    void Rebuild();
    void FollowExpanded(std::size_t node) const;
    bool IsExpanded(HTREEITEM item) const;

    TreeView& mModel;
    HWND mWindow;
    std::vector<TreeNode> mShown;   // as they were when the items were made
    std::vector<HTREEITEM> mItems;  // one for each node
    bool mInStep = false;           // one side follows the other: what comes back is no news
};

}  // namespace vantor
