// Small test images: data records of two bytes each, and an end record.
#pragma once

#include <array>
#include <cctype>
#include <cstdio>
#include <string>
#include <vector>

namespace vantor {

/// A record that writes two bytes at address 2 * `index`.
inline std::string DataRecord(unsigned index) {
    const unsigned address = index * 2;
    const unsigned sum = 5 + (address >> 8) + (address & 0xffu) + 0xab + (index & 0xffu);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "S105%04XAB%02X%02X", address, index & 0xffu,
                  ~sum & 0xffu);
    return text.data();
}

inline constexpr const char* kEndRecord = "S9030000FC";

/// `dataLines` data records and the end record.
inline std::string ImageOf(unsigned dataLines) {
    std::string text;
    for (unsigned i = 0; i < dataLines; ++i) text += DataRecord(i) + "\r\n";
    return text + kEndRecord + "\r\n";
}

/// An image of `parts`, one after the other: "40" is 40 data records and the end record, "9*TEXT"
/// is a repetition, and what does not begin with a digit is text.
inline std::string ImageFrom(const std::vector<std::string>& parts) {
    std::string image;
    for (const std::string& part : parts) {
        std::size_t end = 0;
        const bool counted = !part.empty() && std::isdigit(part[0]) != 0;
        const unsigned long count = counted ? std::stoul(part, &end) : 1;
        const bool records = counted && end == part.size();
        if (records) image += ImageOf(static_cast<unsigned>(count));
        const std::string text = records ? "" : part.substr(counted ? end + 1 : 0);
        for (unsigned long i = 0; i < count; ++i) image += text;
    }
    return image;
}

}  // namespace vantor
