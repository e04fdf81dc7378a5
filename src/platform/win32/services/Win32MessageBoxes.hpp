// The message boxes and the default sound of Windows.
#pragma once

#include <string>

#include "platform/MessageBoxes.hpp"

namespace vantor {

class Win32MessageBoxes : public MessageBoxes {
public:
    /// `defaultTitle` is the title of boxes that have none of their own.
    explicit Win32MessageBoxes(std::string defaultTitle) : mDefaultTitle(std::move(defaultTitle)) {}

    BoxAnswer Show(const MessageBoxRequest& request) override;
    void Beep() override;

private:
    std::string mDefaultTitle;
};

}  // namespace vantor
