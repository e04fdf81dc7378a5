#include "terminal/session/LineStamper.hpp"

#include "terminal/options/TimeStamp.hpp"

namespace vantor {

std::string LineStamper::Stamped(TimeStamps kind, std::string_view bytes, std::int64_t timeMs) {
    if (kind == TimeStamps::Off) {
        if (!bytes.empty()) Pass(bytes.back());
        return std::string(bytes);
    }
    std::string text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        if (mAtStart || (mAfterReturn && byte != '\n')) {
            text += StampText(kind, timeMs, mStamped ? mPreviousMs : timeMs);
            mPreviousMs = timeMs;
            mStamped = true;
        }
        text += byte;
        Pass(byte);
    }
    return text;
}

void LineStamper::Pass(char byte) {
    mAtStart = byte == '\n';
    mAfterReturn = byte == '\r';
}

}  // namespace vantor
