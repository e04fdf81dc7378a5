// Stores in the registry which nodes of a tree are expanded, and restores them.
#pragma once

#include <string>

#include "app/base/AppInfo.hpp"
#include "platform/Registry.hpp"

namespace vantor {

class CodePage;
class TreeView;

/// The stored state of one tree: a string value named after the tree, with an entry
/// "key=True|" or "key=False|" for each node that has a key. Registry failures are silent.
/// Errors are raised with the source "Morvane.CTreeViewEnh." and the operation's name;
/// those of the registry helpers are shown in boxes of this class.
class CTreeViewEnh {
public:
    CTreeViewEnh(vantor::Registry& registry, const CodePage& codePage)
        : mRegistry(registry), mCodePage(codePage) {}

    /// Expands and collapses the nodes as stored. A node without an entry keeps its state;
    /// an entry without a node is skipped. Raises 91 without a tree.
    void RestoreNodeStates();
    /// Writes the value. Raises 91 without a tree.
    void SaveNodeStates();

    std::string RegistryPath = "SOFTWARE\\" + AppInfo{}.companyName + "\\" + AppInfo{}.title;
    RegistryRoot RootKey = RegistryRoot::CurrentUser;
    std::string SubKey = "Positions\\NodeStates";
    TreeView* Tree = nullptr;  ///< must outlive every call

private:
    std::string KeyPath() const;
    void RestoreEntry(std::string entry);
    std::string RegistryGetKeyValue(RegistryRoot root, const std::string& path,
                                    const std::string& name);
    void RegistrySetKeyValue(RegistryRoot root, const std::string& path, const std::string& name,
                             const std::string& text);

    vantor::Registry& mRegistry;
    const CodePage& mCodePage;
};

}  // namespace vantor
