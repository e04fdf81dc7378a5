// The currently broken rules of a business object.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>

#include "support/errors/RuntimeError.hpp"

namespace vantor {

class CBrokenRules {
public:
    /// Raised when a rule breaks, and when the last broken rule is satisfied again.
    std::function<void()> BrokenRule;
    std::function<void()> NoBrokenRules;

    /// Adds or removes `rule`. Adding it twice raises RuntimeError 457, removing a missing one
    /// RuntimeError 5, as in a keyed collection.
    void RuleBroken(const std::string& rule, bool isBroken) {
        if (isBroken) {
            if (!mRules.insert(rule).second) throw RuntimeError(ErrorNumber::KeyAlreadyUsed);
            if (BrokenRule) BrokenRule();
            return;
        }
        if (mRules.erase(rule) == 0) throw RuntimeError(ErrorNumber::InvalidCall);
        if (mRules.empty() && NoBrokenRules) NoBrokenRules();
    }

    std::int16_t Count() const { return static_cast<std::int16_t>(mRules.size()); }

private:
    std::set<std::string> mRules;
};

}  // namespace vantor
