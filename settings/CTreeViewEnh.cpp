#include "settings/CTreeViewEnh.hpp"

#include <sstream>

#include "app/base/StoredValue.hpp"
#include "controls/TreeView.hpp"
#include "support/Traps.hpp"

namespace vantor {

std::string CTreeViewEnh::KeyPath() const {
    return SubKey.empty() ? RegistryPath : RegistryPath + "\\" + SubKey;
}

void CTreeViewEnh::RestoreNodeStates() {
    Raising("Morvane.CTreeViewEnh.RestoreNodeStates", [this] {
        if (!Tree) throw RuntimeError(ErrorNumber::ObjectNotSet);
        std::istringstream entries(RegistryGetKeyValue(RootKey, KeyPath(), Tree->Name()));
        for (std::string entry; std::getline(entries, entry, '|');)
            if (!entry.empty()) RestoreEntry(entry);
    });
}

void CTreeViewEnh::RestoreEntry(const std::string& entry) {
    std::istringstream parts(entry);
    std::string key;
    std::string state;
    std::getline(parts, key, '=');
    std::getline(parts, state, '=');
    // Another version of the program may have had other nodes.
    if (const int node = Tree->NodeIndex(key); node >= 0) Tree->Expanded(node, state == "True");
}

void CTreeViewEnh::SaveNodeStates() {
    Raising("Morvane.CTreeViewEnh.SaveNodeStates", [this] {
        if (!Tree) throw RuntimeError(ErrorNumber::ObjectNotSet);
        std::string text;
        for (const TreeNode& node : Tree->Nodes())
            if (!node.key.empty()) text += node.key + (node.expanded ? "=True|" : "=False|");
        RegistrySetKeyValue(RootKey, KeyPath(), Tree->Name(), text);
    });
}

std::string CTreeViewEnh::RegistryGetKeyValue(RegistryRoot root, const std::string& path,
                                              const std::string& name) {
    std::string text;
    Boxed("RegistryGetKeyValue", [&] {
        const StoredValue value =
            ReadStoredValue(mRegistry, mCodePage, root, path, name, kRegistryQueryValue);
        if (const auto* stored = std::get_if<std::string>(&value)) text = *stored;
    });
    return text;
}

void CTreeViewEnh::RegistrySetKeyValue(RegistryRoot root, const std::string& path,
                                       const std::string& name, const std::string& text) {
    Boxed("RegistrySetKeyValue", [&] {
        WriteStoredText(mRegistry, mCodePage, root, path, name, text, kRegistryString,
                        kRegistryWrite);
    });
}

}  // namespace vantor
