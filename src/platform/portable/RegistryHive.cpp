#include "platform/portable/RegistryHive.hpp"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

#include "platform/portable/RegistryExport.hpp"

namespace vantor {
namespace {

constexpr RegistryResult kInvalidParameter = 87;  // ERROR_INVALID_PARAMETER

/// Lower case in code page 1252, where names are compared.
char Folded(char c) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 'A' && byte <= 'Z') return static_cast<char>(byte + 0x20);
    if (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7) return static_cast<char>(byte + 0x20);
    if (byte == 0x8A || byte == 0x8C || byte == 0x8E) return static_cast<char>(byte + 0x10);
    return byte == 0x9F ? '\xFF' : c;
}

std::string Folded(std::string_view name) {
    std::string folded(name.substr(0, name.find('\0')));
    std::transform(folded.begin(), folded.end(), folded.begin(), [](char c) { return Folded(c); });
    return folded;
}

}  // namespace

struct RegistryHive::Node {
    std::string name;
    std::map<std::string, std::unique_ptr<Node>> children;  // by folded name
    std::map<std::string, RegistryValue> values;            // by folded name
};

RegistryHive::RegistryHive() {
    Clear();
}

RegistryHive::~RegistryHive() = default;

void RegistryHive::Clear() {
    for (const RegistryRoot root : {RegistryRoot::CurrentUser, RegistryRoot::LocalMachine})
        mRoots[root] = std::make_unique<Node>();
}

RegistryHive::Node* RegistryHive::FindChild(const Node& parent, const std::string& name) {
    const auto found = parent.children.find(Folded(name));
    return found == parent.children.end() ? nullptr : found->second.get();
}

RegistryHive::Node* RegistryHive::Find(const RegistryKeyPath& path) const {
    const auto root = mRoots.find(path.root);
    Node* node = root == mRoots.end() ? nullptr : root->second.get();
    for (const std::string& part : path.parts) node = node ? FindChild(*node, part) : nullptr;
    return node;
}

RegistryResult RegistryHive::Create(const RegistryKeyPath& path, Node*& node) {
    const auto root = mRoots.find(path.root);
    if (root == mRoots.end()) return kRegistryInvalidHandle;
    if (path.parts.size() > kMaxRegistryDepth) return kInvalidParameter;
    for (const std::string& part : path.parts)
        if (part.size() > kMaxRegistryName) return kInvalidParameter;
    node = root->second.get();
    for (const std::string& part : path.parts) {
        std::unique_ptr<Node>& child = node->children[Folded(part)];
        if (!child) {
            child = std::make_unique<Node>();
            child->name = part;
        }
        node = child.get();
    }
    return kRegistrySuccess;
}

RegistryKey RegistryHive::NewHandle(RegistryKeyPath path, std::uint32_t access) {
    mHandles.emplace(++mLastHandle, Handle{std::move(path), access});
    return mLastHandle;
}

RegistryResult RegistryHive::OpenKey(RegistryRoot root, const std::string& path,
                                     std::uint32_t access, RegistryKey& key) {
    RegistryKeyPath wanted{root, SplitRegistryPath(path)};
    if (!mRoots.contains(root)) return kRegistryInvalidHandle;
    if (Find(wanted) == nullptr) return kRegistryFileNotFound;
    key = NewHandle(std::move(wanted), access);
    return kRegistrySuccess;
}

RegistryResult RegistryHive::CreateKey(RegistryRoot root, const std::string& path,
                                       std::uint32_t access, RegistryKey& key) {
    RegistryKeyPath wanted{root, SplitRegistryPath(path)};
    Node* node = nullptr;
    const RegistryResult result = Create(wanted, node);
    if (result == kRegistrySuccess) key = NewHandle(std::move(wanted), access);
    return result;
}

RegistryResult RegistryHive::QueryValue(RegistryKey key, const std::string& name,
                                        std::uint32_t& type, char* data, std::uint32_t& size) {
    const auto handle = mHandles.find(key);
    if (handle == mHandles.end()) return kRegistryInvalidHandle;
    if ((handle->second.access & kRegistryQueryValue) == 0) return kRegistryAccessDenied;
    const Node* const node = Find(handle->second.path);
    if (node == nullptr) return kRegistryFileNotFound;
    const auto value = node->values.find(Folded(name));
    if (value == node->values.end()) return kRegistryFileNotFound;

    const std::string& bytes = value->second.bytes;
    const std::uint32_t room = size;
    type = value->second.type;
    size = static_cast<std::uint32_t>(bytes.size());
    if (data == nullptr) return kRegistrySuccess;
    if (room < bytes.size()) return kRegistryMoreData;
    std::copy(bytes.begin(), bytes.end(), data);
    return kRegistrySuccess;
}

RegistryResult RegistryHive::SetValue(RegistryKey key, const std::string& name, std::uint32_t type,
                                      std::string_view bytes) {
    const auto handle = mHandles.find(key);
    if (handle == mHandles.end()) return kRegistryInvalidHandle;
    if ((handle->second.access & kRegistrySetValue) == 0) return kRegistryAccessDenied;
    if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) return kInvalidParameter;
    // Another program may have removed the key meanwhile; the value is stored nevertheless.
    Node* node = nullptr;
    const RegistryResult result = Create(handle->second.path, node);
    if (result != kRegistrySuccess) return result;
    RegistryValue& value = node->values[Folded(name)];
    if (value.name.empty()) value.name = name.substr(0, name.find('\0'));
    value.type = type;
    value.bytes = bytes;
    return kRegistrySuccess;
}

RegistryResult RegistryHive::CloseKey(RegistryKey key) {
    return mHandles.erase(key) == 0 ? kRegistryInvalidHandle : kRegistrySuccess;
}

void RegistryHive::ExportKeys(const Node& parent, RegistryKeyPath& path, std::string& text) {
    if (!parent.values.empty() || (parent.children.empty() && !path.parts.empty())) {
        text += '\n' + WriteKeyLine(path) + '\n';
        for (const auto& entry : parent.values) text += WriteValueLine(entry.second) + '\n';
    }
    for (const auto& entry : parent.children) {
        path.parts.push_back(entry.second->name);
        ExportKeys(*entry.second, path, text);
        path.parts.pop_back();
    }
}

std::string RegistryHive::Export() const {
    std::string text(kRegistryTextHeader);
    text += '\n';
    for (const auto& [root, node] : mRoots) {
        RegistryKeyPath path{root, {}};
        ExportKeys(*node, path, text);
    }
    return text;
}

std::size_t RegistryHive::Import(std::string_view file) {
    RegistryExport read = ReadRegistryExport(file);
    if (read.damagedLine != 0) return read.damagedLine;
    for (ExportedKey& key : read.keys) {
        Node* node = nullptr;
        // Refuses only what the reader treats as damage.
        static_cast<void>(Create(key.path, node));
        for (RegistryValue& value : key.values)
            node->values.insert_or_assign(Folded(value.name), std::move(value));
    }
    return 0;
}

}  // namespace vantor
