// Small test images: data records of two bytes each, and an end record.
#pragma once

#include <array>
#include <cstdio>
#include <string>

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

}  // namespace vantor
