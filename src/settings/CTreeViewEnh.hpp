// Stores in the registry which nodes of a tree are expanded, and restores them.
#pragma once

#include <string>

#include "app/base/StoredValues.hpp"

namespace vantor {

class TreeView;

/// The stored state of one tree: a string value named after the tree, in the sub-key
/// "Positions\NodeStates", with an entry "key=True|" or "key=False|" for each node that has a key.
/// Registry failures are silent. Errors are raised with the source "Morvane.CTreeViewEnh." and the
/// operation's name; those of the registry helpers are shown in boxes of this class.
class CTreeViewEnh : public StoredTexts {
public:
    CTreeViewEnh(Registry& registry, const CodePage& codePage);

    /// Expands and collapses the nodes as stored. A node without an entry keeps its state;
    /// an entry without a node is skipped. Raises 91 without a tree.
    void RestoreNodeStates();
    /// Writes the value. Raises 91 without a tree.
    void SaveNodeStates();

    TreeView* Tree = nullptr;  ///< must outlive every call
};

}  // namespace vantor
