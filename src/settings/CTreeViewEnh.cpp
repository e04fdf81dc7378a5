#include "settings/CTreeViewEnh.hpp"

#include "controls/TreeView.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

/// Removes the text up to `separator` from the front of `rest` and returns it. No stream, because
/// streams link in the run-time library's locales, a third of the size of the Windows program.
std::string TakeUpTo(char separator, std::string& rest) {
    const std::size_t at = rest.find(separator);
    std::string front = rest.substr(0, at);
    rest.erase(0, front.size() + 1);
    return front;
}

}  // namespace

CTreeViewEnh::CTreeViewEnh(Registry& registry, const CodePage& codePage)
    : StoredTexts(registry, codePage) {
    SubKey = "Positions\\NodeStates";
}

void CTreeViewEnh::RestoreNodeStates() {
    Raising("Morvane.CTreeViewEnh.RestoreNodeStates", [this] {
        if (!Tree) throw RuntimeError(ErrorNumber::ObjectNotSet);
        std::string entries = RegistryGetKeyValue(RootKey, KeyPath(), Tree->Name());
        while (!entries.empty()) {
            std::string entry = TakeUpTo('|', entries);
            // Another version of the program may have had other nodes.
            const int node = Tree->NodeIndex(TakeUpTo('=', entry));
            if (node >= 0) Tree->Expanded(node, TakeUpTo('=', entry) == "True");
        }
    });
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

}  // namespace vantor
