// The date and time of reports as text.
#pragma once

#include <string>

#include "platform/Clock.hpp"

namespace vantor {

/// "2026-11-24 21:18:05", the form that reports use.
std::string FormatDateTime(const DateTime& time);

}  // namespace vantor
