// Headless platform with a window manager and the error handler installed, for fault sessions and
// unit tests: errors that the code under test reports appear in the recorded message boxes.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/base/CErrHandler.hpp"
#include "controls/Form.hpp"
#include "platform/headless/HeadlessPlatform.hpp"
#include "support/Traps.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {

struct ReportingPlatform : HeadlessPlatform {
    explicit ReportingPlatform(Language language = Language::English) : HeadlessPlatform(language) {
        errors.DisplayMsgOnError = true;
        before = SetErrorSink(&errors);
    }
    ~ReportingPlatform() { SetErrorSink(before); }
    ReportingPlatform(const ReportingPlatform&) = delete;
    ReportingPlatform& operator=(const ReportingPlatform&) = delete;

    CErrHandler errors{CErrHandler::Services{clock, files, folders, boxes, process}};
    ErrorSink* before = nullptr;
    WindowManager manager{peers, pump};
};

using Texts = std::vector<std::string>;

/// The message boxes shown on `platform`, "icon|title|text" each, without questions.
inline Texts Told(const HeadlessPlatform& platform) {
    constexpr std::array kIcons = {"none|", "stop|", "?|", "!|", "i|"};
    Texts told;
    for (const MessageBoxRequest& box : platform.boxes.shown)
        if (box.icon != BoxIcon::Question)
            told.push_back(kIcons.at(static_cast<std::size_t>(box.icon)) + box.title + "|" +
                           box.text);
    return told;
}

/// The message box that reports `error` ("(13) Type mismatch") raised in `procedure`.
inline std::string ReportBox(const std::string& procedure, const std::string& error) {
    return "stop|Tessmar Vantor Update|The following error has occurred in procedure: \r\n" +
           procedure + " on line 0\r\nError " + error;
}

/// The text form of a registry in which the program's key `key` holds `values` and nothing else
/// exists.
inline std::string RegistryWith(const std::string& key, const std::string& values) {
    return "REGEDIT4\n\n[HKEY_CURRENT_USER\\SOFTWARE\\Tessmar Instruments"
           "\\Tessmar Vantor Update\\" +
           key + "]\n" + values;
}

/// The error that `operation` raises; number 0 if none.
inline RuntimeError Raised(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const RuntimeError& error) {
        return error;
    }
    return RuntimeError(0);
}

}  // namespace vantor
