#include "platform/portable/CompiledStrings.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <span>

namespace vantor {
namespace {

struct Row {
    std::int32_t id;
    std::string_view english;
    std::string_view spanish;
};

#define STRING(id, identifier, english, spanish) Row{id, english, spanish},

// clang-format off
constexpr std::array kProductTexts = {
#include "resources/texts/Strings.def"
};

constexpr std::array kOwnTexts = {
#include "resources/texts/OwnTexts.def"
};
// clang-format on

#undef STRING

constexpr std::size_t kProductRows = 147;
constexpr std::int32_t kFirstOwnId = 2000;

constexpr bool StrictlyAscending(std::span<const Row> rows) {
    return std::ranges::adjacent_find(rows, std::greater_equal{}, &Row::id) == rows.end();
}

constexpr bool InBothLanguages(std::span<const Row> rows) {
    return std::ranges::none_of(
        rows, [](const Row& row) { return row.english.empty() || row.spanish.empty(); });
}

static_assert(kProductTexts.size() == kProductRows, "a text of the product is missing or extra");
static_assert(StrictlyAscending(kProductTexts), "a text ID is out of order or given twice");
static_assert(StrictlyAscending(kOwnTexts), "a text ID is out of order or given twice");
static_assert(InBothLanguages(kProductTexts) && InBothLanguages(kOwnTexts), "a text is empty");
static_assert(kProductTexts.back().id < kFirstOwnId, "the product's IDs end below 2000");
static_assert(kOwnTexts.front().id >= kFirstOwnId, "own IDs begin at 2000");

}  // namespace

Language LanguageOfLocale(std::string_view lcAll, std::string_view lcMessages,
                          std::string_view lang) {
    std::string_view locale = lang;
    if (!lcMessages.empty()) locale = lcMessages;
    if (!lcAll.empty()) locale = lcAll;
    return locale.starts_with("es") ? Language::Spanish : Language::English;
}

std::string CompiledStrings::LoadResString(std::int32_t id) const {
    const std::span<const Row> rows =
        id < kFirstOwnId ? std::span<const Row>(kProductTexts) : kOwnTexts;
    const auto found = std::ranges::lower_bound(rows, id, {}, &Row::id);
    if (found == rows.end() || found->id != id) throw MissingText(id);
    return std::string(mLanguage == Language::Spanish ? found->spanish : found->english);
}

}  // namespace vantor
