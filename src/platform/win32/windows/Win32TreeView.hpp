// A tree-view window, kept in sync with its model in both directions.
#pragma once

#include <cstddef>
#include <vector>

#include "controls/TreeView.hpp"
#include "platform/win32/services/Windows.hpp"
// Requires the types of <windows.h>.
#include <commctrl.h>

namespace vantor {

class Win32TreeView {
public:
    /// `window` is the tree-view window, which outlives this object.
    Win32TreeView(TreeView& model, HWND window) : mModel(model), mWindow(window) {}

    /// Updates the window after a change of the model.
    void Follow();
    /// Handles notifications of the tree: passes what the user expands, collapses and selects to
    /// the model. The handler of a selection may unload the form, and this object with it.
    void Notified(const NMHDR& header);

private:
    bool ShowsTheNodes() const;
    void Rebuild();
    void FollowExpanded(std::size_t node) const;
    bool IsExpanded(HTREEITEM item) const;

    TreeView& mModel;
    HWND mWindow;
    std::vector<TreeNode> mShown;   // as of the creation of the items
    std::vector<HTREEITEM> mItems;  // one for each node
    bool mInStep = false;           // one side updates the other: ignore the notifications
};

}  // namespace vantor
