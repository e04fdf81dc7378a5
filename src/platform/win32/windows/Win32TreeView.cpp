// A tree-view window, kept in sync with its model in both directions.
#include "controls/TreeView.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/win32/windows/Win32ChildControl.hpp"

#include <commctrl.h>

namespace vantor {
namespace {

class TreeViewChild : public Win32ChildControl {
public:
    explicit TreeViewChild(const ChildSource& source)
        : Win32ChildControl(
              source, {WC_TREEVIEWW, WS_TABSTOP | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT |
                                         TVS_SHOWSELALWAYS | TVS_DISABLEDRAGDROP}) {}

    std::optional<LRESULT> OnMessage(UINT message, WPARAM, LPARAM lParam) override {
        if (message == WM_NOTIFY) OnNotification(*reinterpret_cast<const NMTREEVIEWW*>(lParam));
        return 0;
    }

private:
    TreeView& Tree() const { return ModelAs<TreeView>(); }

    // Passes what the user expands, collapses and selects to the model.
    void OnNotification(const NMTREEVIEWW& notification) {
        const UINT code = notification.hdr.code;
        if (mInStep || (code != TVN_ITEMEXPANDEDW && code != TVN_SELCHANGEDW)) return;
        const TVITEMW& item = notification.itemNew;
        if (item.hItem == nullptr) return;
        const auto node = static_cast<int>(item.lParam);
        const int before = Tree().Selected();
        // When a collapse hides the selected node, some systems report the new selection before the
        // collapse is complete: following the model at that moment would expand the node again.
        mInStep = true;
        if (code == TVN_SELCHANGEDW)
            Tree().Select(node);
        else
            Tree().Expanded(node, IsExpanded(item.hItem));
        mInStep = false;
        Tree().RaiseIfMoved(before);  // last: this object may be gone afterwards
    }

    void FollowValue() override {
        if (mInStep) return;
        mInStep = true;
        if (!ShowsTheNodes()) Rebuild();
        for (std::size_t node = 0; node < mItems.size(); ++node) {
            const bool wanted = Tree().Nodes()[node].expanded;
            if (IsExpanded(mItems[node]) != wanted)
                Send(TVM_EXPAND, wanted ? TVE_EXPAND : TVE_COLLAPSE, mItems[node]);
        }
        const int selected = Tree().Selected();
        Send(TVM_SELECTITEM, TVGN_CARET,
             selected < 0 ? nullptr : mItems[static_cast<std::size_t>(selected)]);
        mInStep = false;
    }

    bool ShowsTheNodes() const {
        return std::ranges::equal(mShown, Tree().Nodes(),
                                  [](const TreeNode& shown, const TreeNode& node) {
                                      return shown.key == node.key && shown.parent == node.parent &&
                                             shown.text == node.text && shown.bold == node.bold;
                                  });
    }

    void Rebuild() {
        Send(TVM_DELETEITEM, 0, TVI_ROOT);
        mItems.clear();
        mShown = Tree().Nodes();
        for (const TreeNode& node : mShown) {
            const int parent = Tree().NodeIndex(node.parent);
            std::wstring text = ToWide(node.text);
            TVINSERTSTRUCTW insert{};
            insert.hParent = parent < 0 ? TVI_ROOT : mItems[static_cast<std::size_t>(parent)];
            insert.hInsertAfter = TVI_LAST;
            insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_STATE;
            insert.item.pszText = text.data();
            insert.item.lParam = static_cast<LPARAM>(mItems.size());
            insert.item.stateMask = TVIS_BOLD;
            insert.item.state = node.bold ? TVIS_BOLD : 0;
            mItems.push_back(reinterpret_cast<HTREEITEM>(Send(TVM_INSERTITEMW, 0, &insert)));
        }
    }

    bool IsExpanded(HTREEITEM item) const {
        return (Send(TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), LPARAM{TVIS_EXPANDED}) &
                TVIS_EXPANDED) != 0;
    }

    std::vector<TreeNode> mShown;   // as of the creation of the items
    std::vector<HTREEITEM> mItems;  // one for each node
    bool mInStep = false;           // one side updates the other: ignore the notifications
};

}  // namespace

std::unique_ptr<Win32ChildControl> MakeTreeView(const ChildSource& source) {
    return std::make_unique<TreeViewChild>(source);
}

}  // namespace vantor
