#include "console/ConsoleView.hpp"

#include "app/base/AppInfo.hpp"
#include "app/base/modSupport.hpp"
#include "platform/Console.hpp"
#include "platform/StringTable.hpp"
#include "support/Conversions.hpp"
#include "support/text/Text.hpp"

namespace vantor {
namespace {

/// `text` with "\n" line ends, and without spaces before them.
std::string ForConsole(const std::string& text) {
    std::string lines;
    for (const char c : text) {
        if (c == '\r') continue;
        if (c == '\n')
            while (lines.ends_with(' ')) lines.pop_back();
        lines += c;
    }
    return lines;
}

}  // namespace

BoxAnswer ConsoleView::Show(const MessageBoxRequest& request) {
    mProgress.Finish();
    const bool bad = request.icon == BoxIcon::Critical || request.icon == BoxIcon::Exclamation;
    const bool asks = request.buttons != BoxButtons::Ok && !mOptions.yes;
    std::string text = (request.title.empty() ? AppInfo{}.title : request.title) + "\n" +
                       ForConsole(request.text) + "\n";
    if (asks) text += mStrings.Text(Str::YesNoPrompt);
    // Nobody sees a question in redirected output.
    if (bad || (asks && !mConsole.OutputIsTerminal()))
        mConsole.WriteError(text);
    else
        mConsole.Write(text);
    if (request.buttons == BoxButtons::Ok) return BoxAnswer::Ok;
    return asks ? Answer() : BoxAnswer::Yes;
}

void ConsoleView::Tell(const Notice& notice) {
    if (notice.duringProgress)
        mProgress.Break();
    else
        mProgress.Finish();
    mConsole.WriteError(notice.text + "\n");
}

BoxAnswer ConsoleView::Answer() {
    const std::string answer = UpperCase(TrimBlanks(mConsole.ReadLine().value_or("")));
    const bool yes =
        !answer.empty() && answer.substr(0, 1) == UpperCase(mStrings.Text(Str::YesLetter));
    return yes ? BoxAnswer::Yes : BoxAnswer::No;
}

void ConsoleView::Beep() {
    mConsole.WriteError("\a");
}

void ConsoleView::HoldSystem(const std::string& reason) {
    mConsole.HoldSystem(reason);
}

bool ConsoleView::Confirm(const std::string& question) {
    return Show({.text = question, .icon = BoxIcon::Question, .buttons = BoxButtons::YesNo}) ==
           BoxAnswer::Yes;
}

void ConsoleView::ShowLine(std::int32_t index, std::int32_t last, std::int16_t elapsedSeconds) {
    mLine = LineOf(mStrings, index, last);
    mElapsed = TimeOfDay(elapsedSeconds);
}

void ConsoleView::ShowPercent(std::int16_t percent) {
    if (!mOptions.quiet) mProgress.Show(percent, mLine, mElapsed);
}

void ConsoleView::ShowWarning(const std::string& text) {
    if (!text.empty()) Print(text);
}

void ConsoleView::OpenStatus(const std::string& message) {
    Print(message);
}

void ConsoleView::Report(BoxIcon icon, const std::string& text, const std::string& title) {
    Show({.text = text, .title = title, .icon = icon});
}

void ConsoleView::Print(const std::string& text) {
    if (mOptions.quiet) return;
    mProgress.Finish();
    mConsole.Write(ForConsole(text) + "\n");
}

}  // namespace vantor
