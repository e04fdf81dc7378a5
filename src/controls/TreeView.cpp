#include "controls/TreeView.hpp"

#include <algorithm>

#include "support/errors/RuntimeError.hpp"

namespace vantor {

std::size_t TreeView::Checked(int node) const {
    if (node < 0 || node >= static_cast<int>(mNodes.size()))
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return static_cast<std::size_t>(node);
}

int TreeView::NodeIndex(const std::string& key) const {
    const auto found = std::ranges::find(mNodes, key, &TreeNode::key);
    return key.empty() || found == mNodes.end() ? kNothing
                                                : static_cast<int>(found - mNodes.begin());
}

void TreeView::Add(TreeNode node) {
    if (NodeIndex(node.key) >= 0) throw RuntimeError(ErrorNumber::KeyAlreadyUsed);
    if (!node.parent.empty() && NodeIndex(node.parent) < 0)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    mNodes.push_back(std::move(node));
    Changed(Property::Value);
}

void TreeView::Clear() {
    mNodes.clear();
    mSelected = kNothing;
    Changed(Property::Value);
}

// A parent is added before its children, so this loop terminates.
bool TreeView::LiesUnder(int node, int ancestor) const {
    while (node >= 0) {
        node = NodeIndex(At(node).parent);
        if (node == ancestor) return true;
    }
    return false;
}

void TreeView::Expanded(int node, bool expanded) {
    mNodes[Checked(node)].expanded = expanded;
    if (!expanded && mSelected >= 0 && LiesUnder(mSelected, node)) mSelected = node;
    Changed(Property::Value);
}

void TreeView::Select(int node) {
    for (int each = NodeIndex(At(node).parent); each >= 0; each = NodeIndex(At(each).parent))
        mNodes[Checked(each)].expanded = true;
    mSelected = node;
    Changed(Property::Value);
}

void TreeView::RaiseIfMoved(int before) {
    if (mSelected >= 0 && mSelected != before) NodeClick.Raise(At(mSelected));
}

}  // namespace vantor
