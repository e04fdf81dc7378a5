#include "support/Traps.hpp"

#include <exception>
#include <string>
#include <utility>

namespace vantor {
namespace {

ErrorSink* gSink = nullptr;

void ShowInBox(std::string_view title, const std::string& text) {
    if (gSink) gSink->ShowBox(title, text);
}

}  // namespace

ErrorSink* SetErrorSink(ErrorSink* sink) noexcept {
    return std::exchange(gSink, sink);
}

bool Trapped(std::string_view name, const std::function<void()>& body,
             const std::function<void()>& exit) {
    ErrorSink* const sink = gSink;
    if (sink) sink->Push(name);
    const auto run = [sink](const std::function<void()>& step) {
        try {
            step();
            return true;
        } catch (...) {
            if (sink) sink->HandleError();
            return false;
        }
    };
    bool clean = run(body);
    if (exit) clean = run(exit) && clean;
    if (sink) sink->Pop();
    return clean;
}

bool Boxed(std::string_view name, const std::function<void()>& body) {
    try {
        body();
        return true;
    } catch (...) {
        const RuntimeError error = PendingError();
        ShowInBox(name, "Error: " + std::to_string(error.Number()) + ". " + error.Description());
        return false;
    }
}

bool BoxedSetup(std::string_view where, const std::function<void()>& body) {
    try {
        body();
        return true;
    } catch (...) {
        const RuntimeError error = PendingError();
        // "occured" is misspelt in all of these boxes; kept for compatibility.
        ShowInBox({}, "An error has occured in " + std::string(where) +
                          " \r\nError:" + std::to_string(error.Number()) + "\r\nDescription:" +
                          error.Description() + "\r\nLine:" + std::to_string(error.Line()));
        return false;
    }
}

bool Ignoring(const std::function<void()>& step) noexcept {
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
