#include "platform/portable/Utf16.hpp"

#include <cstddef>

namespace vantor {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& text, char32_t point) {
    const auto continuation = [&](unsigned shift) {
        text += static_cast<char>(0x80u | (point >> shift & 0x3Fu));
    };
    if (point < 0x80) {
        text += static_cast<char>(point);
        return;
    }
    if (point < 0x800) {
        text += static_cast<char>(0xC0u | point >> 6u);
    } else {
        if (point < 0x10000) {
            text += static_cast<char>(0xE0u | point >> 12u);
        } else {
            text += static_cast<char>(0xF0u | point >> 18u);
            continuation(12);
        }
        continuation(6);
    }
    continuation(0);
}

}  // namespace

std::string Utf8FromUtf16(std::string_view bytes, ByteOrder order) {
    const std::size_t high = order == ByteOrder::HighFirst ? 0 : 1;
    const auto unitAt = [&](std::size_t at) -> char32_t {
        const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
        return static_cast<char32_t>(byte(at + high) << 8u | byte(at + 1 - high));
    };
    std::string text;
    text.reserve(bytes.size() / 2);
    std::size_t at = 0;
    for (; at + 1 < bytes.size(); at += 2) {
        const char32_t unit = unitAt(at);
        const bool leads = unit >= 0xD800 && unit <= 0xDBFF && at + 3 < bytes.size();
        const char32_t next = leads ? unitAt(at + 2) : 0;
        if (next >= 0xDC00 && next <= 0xDFFF) {
            AppendUtf8(text, 0x10000 + ((unit - 0xD800) << 10u) + (next - 0xDC00));
            at += 2;
        } else {
            AppendUtf8(text, unit >= 0xD800 && unit <= 0xDFFF ? kReplacement : unit);
        }
    }
    if (at < bytes.size()) AppendUtf8(text, kReplacement);
    return text;
}

}  // namespace vantor
