// A tree of nodes that the user expands, collapses and selects.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "controls/Control.hpp"
#include "controls/Event.hpp"

namespace vantor {

struct TreeNode {
    std::string key;     ///< identifies the node; may be empty
    std::string parent;  ///< key of the parent node, empty for none
    std::string text;
    bool bold = false;
    bool expanded = false;  ///< its child nodes are visible
};

/// Nodes count from 0, in the order in which they were added. Every operation on a missing node
/// raises RuntimeError 9. `Property::Value` reports every change.
class TreeView : public OfKind<ControlKind::TreeView> {
public:
    using OfKind::OfKind;

    /// The user has selected a node: by mouse, by key, or by collapsing an ancestor of it.
    Event<TreeNode> NodeClick{[this] { return KeepParent(); }};

    const std::vector<TreeNode>& Nodes() const { return mNodes; }
    /// The node with this key; kNothing when there is none.
    int NodeIndex(const std::string& key) const;
    /// Raises 457 when the key is already used, 9 when there is no such parent.
    void Add(TreeNode node);
    void Clear();

    /// Expands or collapses a node. If that hides the selected node, this one is selected instead.
    /// Raises no event.
    void Expanded(int node, bool expanded);

    /// kNothing for none.
    int Selected() const { return mSelected; }
    /// Selects a node and expands its ancestors. Raises no event.
    void Select(int node);

    /// For peers, after a change that the user has made: raises NodeClick when another node than
    /// `before` is selected now. The handler may unload the window, and the peer with it.
    void RaiseIfMoved(int before);

private:
    std::size_t Checked(int node) const;
    const TreeNode& At(int node) const { return mNodes[Checked(node)]; }
    bool LiesUnder(int node, int ancestor) const;

    std::vector<TreeNode> mNodes;
    int mSelected = kNothing;
};

}  // namespace vantor
