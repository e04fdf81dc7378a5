#include "platform/win32/windows/Win32TreeView.hpp"

#include <algorithm>
#include <string>

namespace vantor {

void Win32TreeView::Follow() {
    if (mInStep) return;
    mInStep = true;
    if (!ShowsTheNodes()) Rebuild();
    for (std::size_t node = 0; node < mItems.size(); ++node) FollowExpanded(node);
    const int selected = mModel.Selected();
    SendMessageW(
        mWindow, TVM_SELECTITEM, TVGN_CARET,
        selected < 0 ? 0 : reinterpret_cast<LPARAM>(mItems[static_cast<std::size_t>(selected)]));
    mInStep = false;
}

bool Win32TreeView::ShowsTheNodes() const {
    return std::ranges::equal(mShown, mModel.Nodes(),
                              [](const TreeNode& shown, const TreeNode& node) {
                                  return shown.key == node.key && shown.parent == node.parent &&
                                         shown.text == node.text && shown.bold == node.bold;
                              });
}

void Win32TreeView::Rebuild() {
    SendMessageW(mWindow, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
    mItems.clear();
    mShown = mModel.Nodes();
    for (const TreeNode& node : mShown) {
        const int parent = mModel.NodeIndex(node.parent);
        std::wstring text = ToWide(node.text);
        TVINSERTSTRUCTW insert{};
        insert.hParent = parent < 0 ? TVI_ROOT : mItems[static_cast<std::size_t>(parent)];
        insert.hInsertAfter = TVI_LAST;
        insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_STATE;
        insert.item.pszText = text.data();
        insert.item.lParam = static_cast<LPARAM>(mItems.size());
        insert.item.stateMask = TVIS_BOLD;
        insert.item.state = node.bold ? TVIS_BOLD : 0;
        mItems.push_back(reinterpret_cast<HTREEITEM>(
            SendMessageW(mWindow, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert))));
    }
}

bool Win32TreeView::IsExpanded(HTREEITEM item) const {
    const LRESULT state =
        SendMessageW(mWindow, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), TVIS_EXPANDED);
    return (state & TVIS_EXPANDED) != 0;
}

void Win32TreeView::FollowExpanded(std::size_t node) const {
    const bool wanted = mModel.Nodes()[node].expanded;
    if (IsExpanded(mItems[node]) != wanted)
        SendMessageW(mWindow, TVM_EXPAND, wanted ? TVE_EXPAND : TVE_COLLAPSE,
                     reinterpret_cast<LPARAM>(mItems[node]));
}

void Win32TreeView::Notified(const NMHDR& header) {
    if (mInStep || (header.code != TVN_ITEMEXPANDEDW && header.code != TVN_SELCHANGEDW)) return;
    const TVITEMW& item = reinterpret_cast<const NMTREEVIEWW&>(header).itemNew;
    if (item.hItem == nullptr) return;
    const auto node = static_cast<int>(item.lParam);
    const int before = mModel.Selected();
    // When a collapse hides the selected node, some systems report the new selection before the
    // collapse is complete: following the model at that moment would expand the node again.
    mInStep = true;
    if (header.code == TVN_SELCHANGEDW)
        mModel.Select(node);
    else
        mModel.Expanded(node, IsExpanded(item.hItem));
    mInStep = false;
    mModel.RaiseIfMoved(before);  // last: this object may be gone afterwards
}

}  // namespace vantor
