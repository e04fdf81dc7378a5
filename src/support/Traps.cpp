#include "support/Traps.hpp"

#include <exception>
#include <string>
#include <utility>

namespace vantor {
namespace {

ErrorSink* gSink = nullptr;

/// Runs `body`. An error is shown in a box with the text that `describe` makes of it.
bool ShownInBox(std::string_view title, FunctionRef<void()> body,
                FunctionRef<std::string(const RuntimeError&)> describe) {
    try {
        body();
        return true;
    } catch (...) {
        const std::string text = describe(PendingError());
        if (gSink) gSink->ShowBox(title, text);
        return false;
    }
}

}  // namespace

ErrorSink* SetErrorSink(ErrorSink* sink) noexcept {
    return std::exchange(gSink, sink);
}

bool Trapped(std::string_view name, FunctionRef<void()> body) {
    return Trapped(name, body, [] {});
}

bool Trapped(std::string_view name, FunctionRef<void()> body, FunctionRef<void()> exit) {
    ErrorSink* const sink = gSink;
    if (sink) sink->Push(name);
    const auto run = [sink](FunctionRef<void()> step) {
        try {
            step();
            return true;
        } catch (...) {
            if (sink) sink->HandleError();
            return false;
        }
    };
    const bool clean = run(body);
    const bool left = run(exit);
    if (sink) sink->Pop();
    return clean && left;
}

bool Boxed(std::string_view name, FunctionRef<void()> body) {
    return ShownInBox(name, body, [](const RuntimeError& error) {
        return "Error: " + std::to_string(error.Number()) + ". " + error.Description();
    });
}

void BoxedSetup(std::string_view where, FunctionRef<void()> body) {
    ShownInBox({}, body, [where](const RuntimeError& error) {
        // "occured" is misspelt in all of these boxes; kept for compatibility.
        return "An error has occured in " + std::string(where) +
               " \r\nError:" + std::to_string(error.Number()) +
               "\r\nDescription:" + error.Description() +
               "\r\nLine:" + std::to_string(error.Line());
    });
}

bool Ignoring(FunctionRef<void()> step) noexcept {
    try {
        step();
        return true;
    } catch (...) {
        return false;
    }
}

void ReportPending(std::string_view name) noexcept {
    if (gSink == nullptr) std::terminate();
    const bool named = Ignoring([name] { gSink->Push(name); });
    gSink->HandleError();
    if (named) gSink->Pop();
}

}  // namespace vantor
