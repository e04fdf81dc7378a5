#include "platform/portable/VersionResources.hpp"

#include <algorithm>
#include <cctype>
#include <optional>

#include "support/Traps.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

/// Little-endian numbers of a file that may be malformed: out-of-range reads give 0.
class Reader {
public:
    explicit Reader(std::string_view bytes) : mBytes(bytes) {}

    std::uint8_t U8(std::size_t at) const {
        return at < mBytes.size() ? static_cast<std::uint8_t>(mBytes[at]) : std::uint8_t{0};
    }
    std::uint16_t U16(std::size_t at) const {
        return static_cast<std::uint16_t>(U8(at) | U8(at + 1) << 8);
    }
    std::uint32_t U32(std::size_t at) const {
        return U16(at) | static_cast<std::uint32_t>(U16(at + 2)) << 16;
    }
    std::string_view Part(std::size_t at, std::size_t size) const {
        return at < mBytes.size() ? mBytes.substr(at, size) : std::string_view{};
    }

private:
    std::string_view mBytes;
};

// --- finding the block in the program file -------------------------------------------------------

struct Headers {
    std::size_t sections;
    std::size_t sectionCount;
    std::uint32_t resources;  // RVA
};

std::optional<Headers> HeadersOf(const Reader& program) {
    const std::size_t signature = program.U32(0x3C);
    if (program.Part(0, 2) != "MZ" || program.Part(signature, 4) != std::string_view("PE\0\0", 4))
        return std::nullopt;
    const std::size_t optional = signature + 24;
    const bool wide = program.U16(optional) == 0x20B;
    const std::size_t directories = optional + (wide ? 112 : 96);
    constexpr std::size_t kResourceDirectory = 2 * 8;
    return Headers{.sections = optional + program.U16(signature + 20),
                   .sectionCount = program.U16(signature + 6),
                   .resources = program.U32(directories + kResourceDirectory)};
}

/// The file offset of the relative virtual address `address`; 0 when no section holds it.
std::size_t Offset(const Reader& program, const Headers& headers, std::uint32_t address) {
    constexpr std::size_t kSectionHeader = 40;
    for (std::size_t i = 0; i < headers.sectionCount; ++i) {
        const std::size_t section = headers.sections + i * kSectionHeader;
        const std::uint32_t start = program.U32(section + 12);
        if (address >= start && address - start < program.U32(section + 16))
            return std::size_t{program.U32(section + 20)} + (address - start);
    }
    return 0;
}

/// The offset field of the first entry of a resource directory, or of entry `id`.
std::optional<std::uint32_t> EntryOf(const Reader& program, std::size_t directory,
                                     std::optional<std::uint32_t> id) {
    const std::size_t count =
        std::size_t{program.U16(directory + 12)} + program.U16(directory + 14);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = directory + 16 + 8 * i;
        if (!id || program.U32(entry) == *id) return program.U32(entry + 4);
    }
    return std::nullopt;
}

// --- inside the block ----------------------------------------------------------------------------

constexpr std::size_t Aligned(std::size_t at) {
    return (at + 3) & ~std::size_t{3};
}

/// One node of the block: a key in UTF-16, a value, and child nodes.
struct Node {
    std::u16string key;
    std::string_view value;
    std::size_t children;
    std::size_t end;
};

std::optional<Node> NodeAt(std::string_view block, std::size_t at) {
    const Reader reader(block);
    const std::size_t length = reader.U16(at);
    constexpr std::size_t kHeader = 6;
    if (length < kHeader || length > block.size() - at) return std::nullopt;
    Node node{.key = {}, .value = {}, .children = 0, .end = at + length};
    std::size_t next = at + kHeader;
    while (next < node.end && reader.U16(next) != 0) {
        node.key += static_cast<char16_t>(reader.U16(next));
        next += 2;
    }
    next = Aligned(next + 2);
    const bool isText = reader.U16(at + 4) == 1;
    const std::size_t size = std::size_t{reader.U16(at + 2)} * (isText ? 2 : 1);
    if (next < node.end) node.value = block.substr(next, std::min(size, node.end - next));
    node.children = Aligned(next + node.value.size());
    return node;
}

bool SameKey(std::u16string_view key, std::string_view name) {
    return std::ranges::equal(key, name, [](char16_t a, char b) {
        return a < 128 &&
               std::tolower(static_cast<int>(a)) == std::tolower(static_cast<unsigned char>(b));
    });
}

std::optional<Node> ChildOf(std::string_view block, const Node& parent, std::string_view name) {
    for (std::size_t at = parent.children; at < parent.end;) {
        auto child = NodeAt(block, at);
        if (!child) return std::nullopt;
        if (SameKey(child->key, name)) return child;
        at = Aligned(child->end);
    }
    return std::nullopt;
}

std::optional<std::string_view> ValueAt(std::string_view block, std::string_view path) {
    auto node = NodeAt(block, 0);
    while (node && !path.empty()) {
        path.remove_prefix(1);  // the backslash
        const std::string_view name = path.substr(0, path.find('\\'));
        node = ChildOf(block, *node, name);
        path.remove_prefix(name.size());
    }
    if (!node) return std::nullopt;
    return node->value;
}

std::string_view View(const std::vector<char>& block) {
    return {block.data(), block.size()};
}

}  // namespace

std::string_view VersionBlockIn(std::string_view program) {
    const Reader reader(program);
    const auto headers = HeadersOf(reader);
    if (!headers || headers->resources == 0) return {};
    const std::size_t root = Offset(reader, *headers, headers->resources);
    if (root == 0) return {};
    constexpr std::uint32_t kVersionType = 16;
    constexpr std::uint32_t kOffsetBits = 0x7FFFFFFF;  // the bit above marks a directory
    // Three levels: the type, the name, the language. Any name and language is accepted.
    std::size_t at = root;
    std::optional<std::uint32_t> wanted = kVersionType;
    for (int level = 0; level < 3; ++level) {
        const auto entry = EntryOf(reader, at, wanted);
        if (!entry) return {};
        at = root + (*entry & kOffsetBits);
        wanted.reset();
    }
    const std::size_t data = Offset(reader, *headers, reader.U32(at));
    return data == 0 ? std::string_view{} : reader.Part(data, reader.U32(at + 4));
}

std::string VersionResources::BlockOf(const std::string& path) const {
    std::string block;
    // A file that is missing or unreadable has no version.
    static_cast<void>(Ignoring([&] { block = VersionBlockIn(mFiles.ReadAll(path)); }));
    return block;
}

std::uint32_t VersionResources::BlockSize(const std::string& path) const {
    return static_cast<std::uint32_t>(BlockOf(path).size());
}

bool VersionResources::ReadBlock(const std::string& path, std::vector<char>& block) const {
    const std::string found = BlockOf(path);
    block.assign(found.begin(), found.end());
    return !block.empty();
}

bool VersionResources::QueryTranslation(const std::vector<char>& block, std::uint16_t& language,
                                        std::uint16_t& codePage) const {
    const auto value = ValueAt(View(block), "\\VarFileInfo\\Translation");
    if (!value || value->size() < 4) return false;
    const Reader reader(*value);
    language = reader.U16(0);
    codePage = reader.U16(2);
    return true;
}

bool VersionResources::QueryString(const std::vector<char>& block, const std::string& subBlock,
                                   std::string& value) const {
    const auto found = ValueAt(View(block), subBlock);
    if (!found) return false;
    value = Utf8FromUtf16(found->substr(0, found->size() / 2 * 2));
    return true;
}

}  // namespace vantor
