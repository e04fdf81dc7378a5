#include "platform/portable/RegistryHive.hpp"

#include <algorithm>
#include <limits>
#include <utility>

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

/// The path of a key; empty for an unknown root.
RegistryPath PathOf(RegistryRoot root, const std::string& path) {
    for (const auto& [known, name] : kRegistryRoots)
        if (known == root) return SplitRegistryPath(std::string(name) + '\\' + path);
    return {};
}

}  // namespace

void RegistryHive::Clear() {
    mRoots = {};
    for (const auto& root : kRegistryRoots) Create({std::string(root.second)});
}

/// Null when there is no such key.
const RegistryHive::Node* RegistryHive::Find(const RegistryPath& path) const {
    const Node* node = &mRoots;
    for (const std::string& part : path) {
        const auto child = node->children.find(Folded(part));
        if (child == node->children.end()) return nullptr;
        node = &child->second;
    }
    return node;
}

/// Null when the path exceeds the limits of a registry.
RegistryHive::Node* RegistryHive::Create(const RegistryPath& path) {
    if (path.size() > kMaxRegistryDepth) return nullptr;
    for (const std::string& part : path)
        if (part.size() > kMaxRegistryName) return nullptr;
    Node* node = &mRoots;
    for (const std::string& part : path) {
        node = &node->children[Folded(part)];
        if (node->name.empty()) node->name = part;
    }
    return node;
}

RegistryResult RegistryHive::OpenKey(RegistryRoot root, const std::string& path,
                                     std::uint32_t access, RegistryKey& key) {
    RegistryPath wanted = PathOf(root, path);
    if (wanted.empty()) return kRegistryInvalidHandle;
    if (Find(wanted) == nullptr) return kRegistryFileNotFound;
    key = ++mLastHandle;
    mHandles[key] = {std::move(wanted), access};
    return kRegistrySuccess;
}

RegistryResult RegistryHive::CreateKey(RegistryRoot root, const std::string& path,
                                       std::uint32_t access, RegistryKey& key) {
    const RegistryPath wanted = PathOf(root, path);
    if (!wanted.empty() && Create(wanted) == nullptr) return kInvalidParameter;
    return RegistryHive::OpenKey(root, path, access, key);
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
    RegistryValue& value = Create(handle->second.path)->values[Folded(name)];
    if (value.name.empty()) value.name = name.substr(0, name.find('\0'));
    value.type = type;
    value.bytes = bytes;
    return kRegistrySuccess;
}

RegistryResult RegistryHive::CloseKey(RegistryKey key) {
    return mHandles.erase(key) == 0 ? kRegistryInvalidHandle : kRegistrySuccess;
}

/// `path` is that of `node`, as in a key line. A key without values is implied by its children.
void RegistryHive::ExportKeys(const Node& node, const std::string& path, std::string& text) {
    const bool isRoot = path.find('\\') == std::string::npos;
    if (!node.values.empty() || (node.children.empty() && !isRoot)) {
        text += "\n[" + path + "]\n";
        for (const auto& entry : node.values) text += WriteValueLine(entry.second) + '\n';
    }
    const std::string start = path.empty() ? path : path + '\\';
    for (const auto& [folded, child] : node.children)
        ExportKeys(child, start + EscapedKeyName(child.name), text);
}

std::string RegistryHive::Export() const {
    std::string text(kRegistryTextHeader);
    text += '\n';
    ExportKeys(mRoots, {}, text);
    return text;
}

std::size_t RegistryHive::Import(std::string_view file) {
    RegistryExport read = ReadRegistryExport(file);
    if (read.damagedLine != 0) return read.damagedLine;
    for (ExportedKey& key : read.keys) {
        Node& node = *Create(key.path);  // the reader has checked the limits
        for (RegistryValue& value : key.values)
            node.values.insert_or_assign(Folded(value.name), std::move(value));
    }
    return 0;
}

}  // namespace vantor
