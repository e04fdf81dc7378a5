#include "settings/CBrokenRules.hpp"

#include "support/errors/RuntimeError.hpp"

namespace vantor {

void CBrokenRules::RuleBroken(const std::string& rule, bool isBroken) {
    if (isBroken) {
        if (!mRules.insert(rule).second) throw RuntimeError(ErrorNumber::KeyAlreadyUsed);
        if (BrokenRule) BrokenRule();
        return;
    }
    if (mRules.erase(rule) == 0) throw RuntimeError(ErrorNumber::InvalidCall);
    if (mRules.empty() && NoBrokenRules) NoBrokenRules();
}

}  // namespace vantor
