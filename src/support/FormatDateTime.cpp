#include "support/FormatDateTime.hpp"

#include <array>
#include <cstdio>

namespace vantor {

std::string FormatDateTime(const DateTime& time) {
    std::array<char, 64> text{};
    const int length =
        std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", time.year,
                      time.month, time.day, time.hour, time.minute, time.second);
    return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace vantor
