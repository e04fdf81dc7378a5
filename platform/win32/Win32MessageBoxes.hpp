// The system's message boxes and default sound.
#pragma once

#include <string>

#include "platform/MessageBoxes.hpp"

namespace vantor {

class Win32MessageBoxes : public MessageBoxes {
public:
    /// `defaultTitle` heads the boxes that bring no title of their own.
    explicit Win32MessageBoxes(std::string defaultTitle) : mDefaultTitle(std::move(defaultTitle)) {}

    BoxAnswer Show(const MessageBoxRequest& request) override;
    void Beep() override;

private:

    std::string mDefaultTitle;
};

}  // namespace vantor
