// Which nodes of a tree were open: remembered in the registry, put back the next time.
#pragma once

#include <string>

#include "app/base/AppInfo.hpp"
#include "platform/Registry.hpp"

namespace vantor {

class CodePage;
class TreeView;

/// One tree's memory: a text value named after the tree, with an entry "key=True|" or
/// "key=False|" for each node that has a key. Failures of the registry are silent. Errors go on to
/// the caller with "Morvane.CTreeViewEnh." and the operation's name as their source; those of the
/// registry helpers are shown in the class's own boxes.
class CTreeViewEnh {
public:
    CTreeViewEnh(vantor::Registry& registry, const CodePage& codePage)
        : mRegistry(registry), mCodePage(codePage) {}

    /// Opens and closes the nodes as the value says. A node that it does not name stays as it is,
    /// one that it names and the tree lacks is skipped. Raises 91 without a tree.
    void RestoreNodeStates();
    /// Writes the value. Raises 91 without a tree.
    void SaveNodeStates();

    std::string RegistryPath = "SOFTWARE\\" + AppInfo{}.companyName + "\\" + AppInfo{}.title;
    RegistryRoot RootKey = RegistryRoot::CurrentUser;
    std::string SubKey = "Positions\\NodeStates";
    TreeView* Tree = nullptr;  ///< outlives this object's use

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
