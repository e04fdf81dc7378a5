// The rules that a business object breaks at the moment.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>

namespace vantor {

class CBrokenRules {
public:
    /// Raised when a rule breaks, and when the last broken one has been kept again.
    std::function<void()> BrokenRule;
    std::function<void()> NoBrokenRules;

    /// Enters or removes `rule`. Entering it twice raises RuntimeError 457, removing one that is
    /// not there RuntimeError 5, as a keyed collection does.
    void RuleBroken(const std::string& rule, bool isBroken);

    std::int16_t Count() const { return static_cast<std::int16_t>(mRules.size()); }

private:
    std::set<std::string> mRules;
};

}  // namespace vantor
