#include "console/JsonView.hpp"

namespace vantor {
namespace {

const char* SeverityOf(BoxIcon icon) {
    switch (icon) {
        case BoxIcon::Critical:
            return "critical";
        case BoxIcon::Exclamation:
            return "warning";
        default:
            return "information";
    }
}

/// `text` with "\n" line ends, and without carriage returns.
std::string Plain(const std::string& text) {
    std::string plain;
    for (const char c : text)
        if (c != '\r') plain += c;
    return plain;
}

}  // namespace

JsonObject JsonEvents::Begin(const char* event) const {
    JsonObject object;
    object.Number("v", kVersion)
        .Text("event", event)
        .Number("ms", mClock.Milliseconds() - mStart)
        .TextOrNull("port", mPort);
    return object;
}

BoxAnswer JsonView::Show(const MessageBoxRequest& request) {
    mEvents.Write(mEvents.Begin("report")
                      .Text("severity", SeverityOf(request.icon))
                      .TextOrNull("title", request.title)
                      .Text("text", Plain(request.text)));
    return request.buttons == BoxButtons::Ok ? BoxAnswer::Ok : BoxAnswer::Yes;
}

void JsonView::Tell(const Notice& notice) {
    JsonObject object = mEvents.Begin("warning");
    object.Text("code", notice.code).Text("text", notice.text);
    mEvents.Write(object.NumberOrNull("late_ms", notice.ms));
}

bool JsonView::Confirm(const std::string& question) {
    mEvents.Write(mEvents.Begin("question").Text("text", Plain(question)).Text("answer", "yes"));
    // An update that nobody would learn of is not begun.
    return !mConsole.ReaderGone();
}

void JsonView::ShowLine(std::int32_t index, std::int32_t last, std::int16_t) {
    if (!mSendingImage) Stage("image", {});
    mSendingImage = true;
    mPartSent = false;
    mIndex = index;
    mTotal = last + 1;
    mAttempt = 0;
}

void JsonView::Sent(std::string_view bytes) {
    if (!mSendingImage) return;
    if (!mPartSent) Attempt();
    mPartSent = !bytes.ends_with('\r');
}

void JsonView::Attempt() {
    if (++mAttempt > 1) {
        // The line end of the reply before may come as late as this.
        const bool silent = mReply.find_first_not_of("\r\n") == std::string::npos;
        const char* cause = silent ? "no-reply" : "unclear-reply";
        if (mReply.find("??") != std::string::npos) cause = "refused";
        mEvents.Write(mEvents.Begin("retry")
                          .Number("index", mIndex)
                          .Number("attempt", mAttempt)
                          .Text("cause", cause));
    }
    mReply.clear();
    mEvents.Write(mEvents.Begin("line")
                      .Number("index", mIndex)
                      .Number("total", mTotal)
                      .Number("attempt", mAttempt));
}

void JsonView::ShowWarning(const std::string& text) {
    if (!text.empty()) Tell({.code = "do-not-disconnect", .text = text});
}

void JsonView::Beep() {
    Tell({.code = "verdict-in-image", .text = {}});
}

void JsonView::OpenStatus(const std::string& message) {
    mSendingImage = false;
    Stage("verdict", message);
}

void JsonView::Report(BoxIcon icon, const std::string& text, const std::string& title) {
    Show({.text = text, .title = title, .icon = icon});
}

void JsonView::Stage(const char* code, const std::string& text) {
    mEvents.Write(mEvents.Begin("stage").Text("stage", code).TextOrNull("text", text));
}

}  // namespace vantor
