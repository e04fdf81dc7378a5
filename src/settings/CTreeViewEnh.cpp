#include "settings/CTreeViewEnh.hpp"

#include <utility>

#include "app/base/StoredValue.hpp"
#include "controls/TreeView.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

/// Removes the text up to `separator` from the front of `rest` and returns it. No stream, because
/// streams link in the run-time library's locales, a third of the size of the Windows program.
std::string TakeUpTo(char separator, std::string& rest) {
    const std::size_t at = rest.find(separator);
    std::string front = rest.substr(0, at);
    rest.erase(0, at == std::string::npos ? at : at + 1);
    return front;
}

}  // namespace

std::string CTreeViewEnh::KeyPath() const {
    return SubKey.empty() ? RegistryPath : RegistryPath + "\\" + SubKey;
}

void CTreeViewEnh::RestoreNodeStates() {
    Raising("Morvane.CTreeViewEnh.RestoreNodeStates", [this] {
        if (!Tree) throw RuntimeError(ErrorNumber::ObjectNotSet);
        std::string entries = RegistryGetKeyValue(RootKey, KeyPath(), Tree->Name());
        while (!entries.empty())
            if (std::string entry = TakeUpTo('|', entries); !entry.empty())
                RestoreEntry(std::move(entry));
    });
}

void CTreeViewEnh::RestoreEntry(std::string entry) {
    const std::string key = TakeUpTo('=', entry);
    const std::string state = TakeUpTo('=', entry);
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
