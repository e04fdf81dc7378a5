#include "platform/portable/CompiledStrings.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <span>

#include "platform/portable/MissingText.hpp"

namespace vantor {
namespace {

struct Row {
    std::int32_t id;
    std::string_view english;
    std::string_view spanish;
};

// The closing row avoids a zero-length array when a table has no texts.
constexpr Row kClosingRow = {std::numeric_limits<std::int32_t>::max(), "-", "-"};

#define STRING(id, identifier, english, spanish) Row{id, english, spanish},

// clang-format off
constexpr std::array kClosedProductTexts = {
#include "resources/texts/Strings.def"
    kClosingRow
};

constexpr std::array kClosedOwnTexts = {
#include "resources/texts/OwnTexts.def"
    kClosingRow
};
// clang-format on

#undef STRING

constexpr std::span<const Row> kProductTexts(kClosedProductTexts.data(),
                                             kClosedProductTexts.size() - 1);
constexpr std::span<const Row> kOwnTexts(kClosedOwnTexts.data(), kClosedOwnTexts.size() - 1);

constexpr std::size_t kProductRows = 147;
constexpr std::int32_t kFirstOwnId = 2000;

constexpr bool StrictlyAscending(std::span<const Row> rows) {
    for (std::size_t i = 1; i < rows.size(); ++i)
        if (rows[i - 1].id >= rows[i].id) return false;
    return true;
}

constexpr bool InBothLanguages(std::span<const Row> rows) {
    for (const Row& row : rows)
        if (row.english.empty() || row.spanish.empty()) return false;
    return true;
}

static_assert(kProductTexts.size() == kProductRows, "a text of the product is missing or extra");
static_assert(StrictlyAscending(kProductTexts), "a text ID is out of order or given twice");
static_assert(StrictlyAscending(kOwnTexts), "a text ID is out of order or given twice");
static_assert(InBothLanguages(kProductTexts) && InBothLanguages(kOwnTexts), "a text is empty");
static_assert(kProductTexts.back().id < kFirstOwnId, "the product's IDs end below 2000");
static_assert(kOwnTexts.empty() || kOwnTexts.front().id >= kFirstOwnId, "own IDs begin at 2000");

}  // namespace

Language LanguageOfLocale(std::string_view lcAll, std::string_view lcMessages,
                          std::string_view lang) {
    std::string_view locale = lang;
    if (!lcMessages.empty()) locale = lcMessages;
    if (!lcAll.empty()) locale = lcAll;
    return locale.starts_with("es") ? Language::Spanish : Language::English;
}

std::string CompiledStrings::LoadResString(std::int32_t id) const {
    const std::span<const Row> rows = id < kFirstOwnId ? kProductTexts : kOwnTexts;
    const auto found =
        std::lower_bound(rows.begin(), rows.end(), id,
                         [](const Row& row, std::int32_t key) { return row.id < key; });
    if (found == rows.end() || found->id != id) throw MissingText(id);
    return std::string(mLanguage == Language::Spanish ? found->spanish : found->english);
}

}  // namespace vantor
