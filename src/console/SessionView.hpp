// What a session of tsflash shows: the view of the flash session, the boxes of the error handler,
// and the messages of the program itself.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "flash/FlashView.hpp"
#include "platform/MessageBoxes.hpp"

namespace vantor {

/// A message of the program itself.
struct Notice {
    const char* code;  ///< the same in every language and version: "late-replies"
    std::string text;
    std::optional<std::int64_t> ms{};  ///< how late replies are
    bool duringProgress = false;       ///< the progress goes on below it
};

class SessionView : public FlashView, public MessageBoxes {
public:
    virtual bool AbortAllowed() const = 0;
    virtual void Tell(const Notice& notice) = 0;
};

}  // namespace vantor
