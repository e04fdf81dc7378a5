// The message boxes of a flash session, in the format of `Told`.
#pragma once

namespace vantor {

inline constexpr const char* kDone =
    "i|Flash Update Successful|Program Download Complete. Check the indicator for additional "
    "progress messages.";
inline constexpr const char* kNoPort =
    "!||Unable to open communications port. Check your settings and try again.";
inline constexpr const char* kNoMonitor =
    "i||Place indicator into boot monitor mode and try again.";
inline constexpr const char* kNoSysload = "!||Unable to initiate System Load.";
inline constexpr const char* kFailure =
    "!|Update Failure|Flash Update Failure. Cycle power on the indicator. Please try the update "
    "again before calling technical support.";
inline constexpr const char* kAborted =
    "!|Update Aborted|Flash Update Aborted. Cycle power on the indicator.";
inline constexpr const char* kVerify =
    "stop|Critical Error!|Critical Flash Update Failure! \r\n\r\nIt is recommended that you "
    "return the indicator to Tessmar Instruments for repair.";

}  // namespace vantor
