// Values in the registry: the settings store, the state of a tree, the position of a window.
#include <gtest/gtest.h>

#include <map>
#include <new>

#include "app/base/CFormPos.hpp"
#include "controls/TreeView.hpp"
#include "dialogs/frmAbout.hpp"
#include "settings/CProgramSettings.hpp"
#include "settings/CTreeViewEnh.hpp"
#include "tests/faults/ReportingPlatform.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

/// Notes which keys are opened how and closed again; refuses "keys", "values" or "memory".
class NotedRegistry : public RegistryHive {
public:
    RegistryResult OpenKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                           RegistryKey& key) override {
        return Noted("open", root, path, access, RegistryHive::OpenKey(root, path, access, key));
    }
    RegistryResult CreateKey(RegistryRoot root, const std::string& path, std::uint32_t access,
                             RegistryKey& key) override {
        return Noted("create", root, path, access,
                     RegistryHive::CreateKey(root, path, access, key));
    }
    RegistryResult QueryValue(RegistryKey key, const std::string& name, std::uint32_t& type,
                              char* data, std::uint32_t& size) override {
        if (refuses == "memory") throw std::bad_alloc();
        return RegistryHive::QueryValue(key, name, type, data, size);
    }
    RegistryResult SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                            std::string_view bytes) override {
        if (refuses == "memory") throw std::bad_alloc();
        return refuses == "values" ? kRegistryWriteFault
                                   : RegistryHive::SetValue(key, name, type, bytes);
    }
    RegistryResult CloseKey(RegistryKey key) override {
        notes += "close ";
        return RegistryHive::CloseKey(key);
    }

    std::string notes;
    std::string refuses;

private:
    RegistryResult Noted(const char* call, RegistryRoot root, const std::string& path,
                         std::uint32_t access, RegistryResult result) {
        if (refuses == "keys") return kRegistryAccessDenied;
        const char* const name = root == RegistryRoot::CurrentUser ? "user " : "machine ";
        if (result == kRegistrySuccess) notes += Row(call, name + path, access) + " ";
        return result;
    }
};

constexpr FormDesign kDesign = {"frmTest", "", "", {}, {}};

struct Stored {
    Stored() {
        store.RegBase = "Company";
        store.Program = "Program";
        tree.Add({.key = "P1", .parent = "", .text = "heading", .expanded = true});
        tree.Add({.key = "C0", .parent = "P1", .text = "page"});
        tree.Add({.key = "", .parent = "P1", .text = "without a key", .expanded = true});
        tree.Add({.key = "C1", .parent = "C0", .text = "deeper"});
        states.Tree = &tree;
        window->Load();
        window->Place({1, 2, 3000, 4000});
        position.Form = window.get();
    }
    void ShowNodes() {
        for (const TreeNode& node : tree.Nodes()) out += node.expanded ? 'x' : '-';
        out += (tree.Selected() < 0 ? "" : std::to_string(tree.Selected())) + " ";
    }
    void ShowPlace() {
        const Place& at = window->Place();
        out += Row(at.left, at.top, at.width, at.height, static_cast<int>(window->State())) + " ";
    }

    ReportingPlatform platform;  // a screen of 28800 by 16200 twips
    NotedRegistry registry;
    CProgramSettings store{registry, platform.codePage};
    std::shared_ptr<Form> design = std::make_shared<Form>(platform.manager, kDesign);
    TreeView tree{*design, "tvw"};
    CTreeViewEnh states{registry, platform.codePage};
    std::shared_ptr<frmAbout> window =
        std::make_shared<frmAbout>(platform.manager, platform.strings);
    CFormPos position{registry, platform.codePage};
    std::string out;
};

const Verbs<Stored> kVerbs = {
    {"put",  // TYPE and, behind a space, the bytes of the value "Port" of the store
     [](Stored& s, Argument typeAndBytes) {
         RegistryKey key = 0;
         s.registry.CreateKey(RegistryRoot::LocalMachine, "SOFTWARE\\Company\\Program\\Settings",
                              kRegistryAllButOwner, key);
         s.registry.SetValue(key, "Port", static_cast<std::uint32_t>(typeAndBytes[0] - '0'),
                             typeAndBytes.substr(2));
         s.registry.CloseKey(key);
         s.registry.notes.clear();
     }},
    {"company", [](Stored& s, Argument name) { s.store.RegBase = name; }},
    {"program", [](Stored& s, Argument name) { s.store.Program = name; }},
    {"section", [](Stored& s, Argument name) { s.store.Section = name; }},
    {"user", [](Stored& s, Argument) { s.store.RootKey = RegistryRoot::CurrentUser; }},
    {"read", [](Stored& s, Argument) { s.out += s.store.ReadEntry("Port", "default"); }},
    {"write", [](Stored& s, Argument text) { s.store.WriteEntry("Port", text); }},
    {"refuses", [](Stored& s, Argument what) { s.registry.refuses = what; }},
    {"calls", [](Stored& s, Argument) { s.out += s.registry.notes; }},
    {"export", [](Stored& s, Argument) { s.out += s.registry.Export(); }},
    {"nodes",  // is what is stored
     [](Stored& s, Argument states) {
         s.registry.Import(RegistryWith("Positions\\NodeStates", "\"tvw\"=\"" + states + "\"\n"));
         s.states.RestoreNodeStates();
         s.ShowNodes();
     }},
    {"save-nodes", [](Stored& s, Argument) { s.states.SaveNodeStates(); }},
    {"restore-nodes", [](Stored& s, Argument) { s.states.RestoreNodeStates(); }},
    {"no-tree", [](Stored& s, Argument) { s.states.Tree = nullptr; }},
    {"select",
     [](Stored& s, Argument node) {
         s.tree.Select(std::stoi(node));
         s.ShowNodes();
     }},
    {"collapse",
     [](Stored& s, Argument node) {
         s.tree.Expanded(std::stoi(node), false);
         s.ShowNodes();
     }},
    {"add",  // KEY/PARENT
     [](Stored& s, Argument names) {
         const std::size_t slash = names.find('/');
         s.tree.Add({.key = names.substr(0, slash), .parent = names.substr(slash + 1), .text = ""});
         s.ShowNodes();
     }},
    {"record",  // is what is stored
     [](Stored& s, Argument record) {
         s.registry.Import(RegistryWith("Positions", "\"frmAbout\"=\"" + record + "\"\n"));
     }},
    {"restore",  // on the "screen", or anywhere
     [](Stored& s, Argument where) {
         s.out += s.position.RestoreForm(where == "screen") ? "" : "not ";
         s.ShowPlace();
     }},
    {"centre",
     [](Stored& s, Argument) {
         s.position.CenterForm();
         s.ShowPlace();
     }},
    {"save", [](Stored& s, Argument) { s.position.SaveForm(); }},
    {"no-window", [](Stored& s, Argument) { s.position.Form = nullptr; }},
};

TEST(StoredValues, AreWhatTheTableSays) {
    ExpectTable("stored", kVerbs);
}

}  // namespace
}  // namespace vantor
