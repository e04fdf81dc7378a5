// A tree and the stored state of its nodes.
#include "settings/CTreeViewEnh.hpp"

#include <gtest/gtest.h>

#include "NotedRegistry.hpp"
#include "controls/Form.hpp"
#include "controls/TreeView.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

const FormDesign kDesign = {"frmTest", "", "", {}, {}};

class CTreeViewEnhTest : public testing::Test {
protected:
    CTreeViewEnhTest() {
        tree.Add({.key = "P1", .parent = "", .text = "heading"});
        tree.Add({.key = "C0", .parent = "P1", .text = "page"});
        tree.Add({.key = "", .parent = "P1", .text = "without a key", .expanded = true});
        tree.Add({.key = "C1", .parent = "C0", .text = "deeper"});
        states.Tree = &tree;
    }

    static std::string With(const std::string& value) {
        return RegistryWith("Positions\\NodeStates", "\"tvw\"=\"" + value + "\"\n");
    }
    /// One letter for each expanded node.
    std::string Open() const {
        std::string open;
        for (const TreeNode& node : tree.Nodes()) open += node.expanded ? 'x' : '-';
        return open;
    }

    ReportingPlatform platform;
    std::shared_ptr<Form> window = std::make_shared<Form>(platform.manager, kDesign);
    TreeView tree{*window, "tvw"};
    NotedRegistry registry;
    CTreeViewEnh states{registry, platform.codePage};
};

TEST_F(CTreeViewEnhTest, EachEntryOfAKnownNodeIsRestored) {
    const struct {
        const char* stored;
        const char* open;
    } rows[] = {{"P1=True|C0=False|C1=True|", "x-xx"}, {"P1=False|C0=True|", "-xx-"},
                {"P7=True|C0=True|=False|", "xxx-"},   {"C0=true|P1=0|", "--x-"},
                {"||P1|C0=True=False", "-xx-"},        {"", "x-x-"}};
    for (const auto& row : rows) {
        tree.Expanded(0, true);
        tree.Expanded(1, false);
        tree.Expanded(3, false);
        registry.Import(With(row.stored));
        states.RestoreNodeStates();
        EXPECT_EQ(Open(), row.open) << row.stored;
    }
    EXPECT_EQ(std::get<2>(registry.asked), 1u);
    EXPECT_EQ(registry.openKeys, 0);
}

TEST_F(CTreeViewEnhTest, TheValueNamesTheNodesWithKeysInTheirOrder) {
    tree.Expanded(0, true);
    states.SaveNodeStates();
    EXPECT_EQ(registry.Export(), With("P1=True|C0=False|C1=False|"));
    EXPECT_EQ(std::get<2>(registry.asked), 0x20006u);
    EXPECT_EQ(registry.openKeys, 0);
}

TEST_F(CTreeViewEnhTest, ARegistryThatRefusesIsSilentAndAnErrorHasItsBoxOrItsSource) {
    registry.refuseKeys = true;
    states.SaveNodeStates();
    states.RestoreNodeStates();
    EXPECT_EQ(Told(platform), Texts{});
    registry.refuseKeys = false;
    states.SaveNodeStates();
    registry.exhausted = true;
    states.RestoreNodeStates();
    states.SaveNodeStates();
    EXPECT_EQ(Told(platform), (Texts{"none|RegistryGetKeyValue|Error: 7. Out of memory",
                                     "none|RegistrySetKeyValue|Error: 7. Out of memory"}));
    states.Tree = nullptr;
    const RuntimeError restoring = Raised([this] { states.RestoreNodeStates(); });
    const RuntimeError saving = Raised([this] { states.SaveNodeStates(); });
    EXPECT_EQ(restoring.Number(), 91);
    EXPECT_EQ(restoring.Source(), "Morvane.CTreeViewEnh.RestoreNodeStates");
    EXPECT_EQ(saving.Source(), "Morvane.CTreeViewEnh.SaveNodeStates");
}

TEST_F(CTreeViewEnhTest, ASelectedNodeIsNeverHidden) {
    tree.Select(3);
    EXPECT_EQ(Open(), "xxx-");
    tree.Expanded(2, false);
    EXPECT_EQ(tree.Selected(), 3) << "it does not lie under that node";
    tree.Expanded(0, false);
    EXPECT_EQ(tree.Selected(), 0);
}

}  // namespace
}  // namespace vantor
