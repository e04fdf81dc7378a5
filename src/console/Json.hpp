// Writes and reads flat JSON objects: names with texts, whole numbers, truth values and null.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vantor {

/// One object, its members in the order in which they are added.
class JsonObject {
public:
    /// Invalid UTF-8 becomes U+FFFD.
    JsonObject& Text(std::string_view name, std::string_view utf8);
    /// null when `utf8` is empty.
    JsonObject& TextOrNull(std::string_view name, std::string_view utf8);
    JsonObject& Number(std::string_view name, std::int64_t value);
    JsonObject& NumberOrNull(std::string_view name, std::optional<std::int64_t> value);
    /// `ms` as seconds: 1.250.
    JsonObject& Seconds(std::string_view name, std::uint64_t ms);
    JsonObject& Flag(std::string_view name, bool value);

    /// The object and a line feed.
    std::string Line() const { return "{" + mMembers + "}\n"; }

private:
    JsonObject& Add(std::string_view name, std::string_view value);

    std::string mMembers;
};

/// The members of one object as written by `JsonObject`, as text; null is left out. Nothing for
/// text that is no such object.
std::optional<std::map<std::string, std::string>> JsonMembers(std::string_view line);

}  // namespace vantor
