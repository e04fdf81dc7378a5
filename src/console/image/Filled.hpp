// Fills the placeholders of a text for people.
#pragma once

#include <string>

namespace vantor {

/// `text` with "%1" and "%2" replaced.
std::string Filled(std::string text, const std::string& first, const std::string& second = {});

}  // namespace vantor
