// Stored node states of a tree: after restoring any text, save and restore is a round trip.
#include "controls/Form.hpp"
#include "controls/TreeView.hpp"
#include "settings/CTreeViewEnh.hpp"
#include "tests/faults/ReportingPlatform.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {
namespace {

const FormDesign kDesign = {"frmFuzz", "", "", {}, {}};

struct Bench {
    ReportingPlatform headless;
    std::shared_ptr<Form> window = std::make_shared<Form>(headless.manager, kDesign);
    TreeView tree{*window, "tvw"};
    CTreeViewEnh states{headless.registry, headless.codePage};
    RegistryKey key = 0;

    Bench() {
        tree.Add({.key = "P1", .parent = "", .text = "heading"});
        tree.Add({.key = "C0", .parent = "P1", .text = "page"});
        tree.Add({.key = "", .parent = "P1", .text = "without a key"});
        states.Tree = &tree;
        Require(headless.registry.CreateKey(states.RootKey,
                                            states.RegistryPath + "\\" + states.SubKey,
                                            kRegistryAllButOwner, key) == kRegistrySuccess);
    }
    std::string Open() const {
        std::string open;
        for (const TreeNode& node : tree.Nodes()) open += node.expanded ? 'x' : '-';
        return open;
    }
};

}  // namespace

std::vector<std::string> Seeds() {
    return {"P1=True|C0=False|", "P1=True=False||=True|P9=True|C0", "|"};
}

void Fuzz(std::string_view input) {
    static Bench bench;
    bench.headless.boxes.shown.clear();
    bench.headless.registry.SetValue(bench.key, bench.tree.Name(), kRegistryString, input);
    bench.states.RestoreNodeStates();
    const std::string open = bench.Open();
    bench.states.SaveNodeStates();
    for (int node = 0; node < 2; ++node)
        bench.tree.Expanded(node, open[static_cast<std::size_t>(node)] == '-');
    bench.states.RestoreNodeStates();
    Require(bench.Open() == open && bench.headless.boxes.shown.empty());
}

}  // namespace vantor
