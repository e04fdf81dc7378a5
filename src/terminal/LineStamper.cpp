#include "terminal/LineStamper.hpp"

#include "terminal/TimeStamp.hpp"

namespace vantor {

std::string LineStamper::Stamped(TimeStamps kind, std::string_view bytes, std::int64_t timeMs) {
    std::string text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        if (mAtStart || (mAfterReturn && byte != '\n')) {
            text += StampText(kind, timeMs, mStamped ? mPreviousMs : timeMs);
            mPreviousMs = timeMs;
            mStamped = true;
        }
        text += byte;
        mAtStart = byte == '\n';
        mAfterReturn = byte == '\r';
    }
    return text;
}

}  // namespace vantor
