// Decodes UTF-16 in files, on every system.
#pragma once

#include <string>
#include <string_view>

namespace vantor {

enum class ByteOrder : bool { LowFirst, HighFirst };

/// UTF-8 of UTF-16 text given as bytes. An unpaired surrogate and an odd last byte become U+FFFD.
std::string Utf8FromUtf16(std::string_view bytes, ByteOrder order = ByteOrder::LowFirst);

}  // namespace vantor
