// Runs a script of what a terminal receives and what its user does. See README.md for its words.
#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <sstream>
#include <string_view>
#include <utility>

#include "controls/Form.hpp"
#include "monitor/TerminalOptionsStore.hpp"
#include "support/errors/RuntimeError.hpp"
#include "support/text/Unicode.hpp"
#include "terminal/TerminalControl.hpp"
#include "tests/Words.hpp"
#include "tests/faults/ReportingPlatform.hpp"
#include "tests/traces/Recorder.hpp"
#include "tests/traces/Scenario.hpp"
#include "tests/unit/Wire.hpp"

namespace vantor::traces {
namespace {

using std::to_string;
using Notes = std::map<std::string, std::string>;  // by kind

class CountedPump : public PolledPump {
public:
    using PolledPump::PolledPump;
    TimerId StartTimer(std::uint32_t intervalMs, std::function<void()> tick) override {
        if (refuses) throw RuntimeError(ErrorNumber::OutOfMemory);
        return *running.insert(PolledPump::StartTimer(intervalMs, std::move(tick))).first;
    }
    void StopTimer(TimerId id) override {
        running.erase(id);
        PolledPump::StopTimer(id);
    }
    std::set<TimerId> running;
    bool refuses = false;
};

constexpr std::array kRows = {ControlDesign{ControlKind::Terminal, "com", -1, "", {}, "", ""}};
const FormDesign kDesign = {"frmTest", "", "", {}, kRows};

struct Window : Form {
    Window(WindowManager& manager, Platform& platform)
        : Form(manager, kDesign), com(*this, "com", platform) {}
    TerminalControl com;
};

/// The looks of `cell` as the parameters that set them; "0" for none.
std::string LooksOf(const Cell& cell) {
    constexpr std::array kCodes = {1, 4, 5, 7, 8, 2, 3, 9};  // in the order of the flags
    std::string codes;
    for (std::size_t bit = 0; bit < kCodes.size(); ++bit)
        if (cell.flags >> bit & 1) codes += ";" + to_string(kCodes[bit]);
    for (const auto& [number, base] :
         {std::pair<std::uint32_t, int>{cell.foreground, 30}, {cell.background, 40}}) {
        const int colour = static_cast<int>(number);
        if (colour >= 16 && number != kDefaultColour)
            codes += ";" + to_string(base + 8) + ";5;" + to_string(colour);
        else if (number != kDefaultColour)
            codes += ";" + to_string(base + colour + (colour < 8 ? 0 : 52));
    }
    return codes.empty() ? "0" : codes.substr(1);
}

constexpr const char* kIndent = "\n        ";

/// The characters of each line followed by "|", or by "~" where the text continues in the next.
/// "^" stands between up to 12 lines of history and the screen; the cursor's row and column follow.
std::string TextOf(const TerminalScreen& screen) {
    const bool large = screen.Rows() == 24;  // one row a line, without history
    const std::int64_t first =
        large ? screen.TopLine() : std::max(screen.FirstLine(), screen.TopLine() - 12);
    std::string text =
        screen.FirstLine() == first || large ? "" : "from line " + to_string(first) + " ";
    for (std::int64_t line = first; line < screen.EndLine(); ++line) {
        if (large)
            text += kIndent;
        else if (line == screen.TopLine() && line > screen.FirstLine())
            text += '^';
        std::string characters;
        for (const Cell& cell : screen.Line(line)) AppendUtf8(characters, cell.character);
        characters.resize(characters.find_last_not_of(' ') + 1);
        const std::string quoted = Quoted(characters);
        text += quoted.substr(1, quoted.size() - 2) + (screen.Continues(line) ? '~' : '|');
    }
    for (const std::int64_t none : {screen.FirstLine() - 1, screen.EndLine()})
        if (!screen.Line(none).empty() || screen.Continues(none)) text += " and a line beyond ";
    const ScreenModes& modes = screen.modes;
    return text + (large ? kIndent : "") + to_string(screen.Cursor().row) + "," +
           to_string(screen.Cursor().column) + (modes.cursorVisible ? "" : " hidden") +
           (modes.reverseScreen ? " reversed" : "") +
           (modes.applicationCursorKeys ? " cursor-keys" : "") +
           (modes.applicationKeypad ? " keypad" : "");
}

/// A terminal in a window, with its line and its system.
struct Subject {
    Subject() {
        platform.ports.Plug("COM3", wire);
        platform.peers.onChange = [this](const Control&, Property property) {
            told = true;
            if (property == Property::Repaint) events["repaint"] = "all";
        };
        window->Load();
        com.Port().name = "3";
        com.Port().settings = "9600,E,7,1";
        com.Command.Connect([this](TerminalCommand command, bool& handled) {
            events["owner"] += to_string(static_cast<int>(command));
            handled = handles;
            if (onCommand) onCommand();
        });
        com.PerformCommand(TerminalCommand::Open);
        com.ScreenSize(8, 4);
        Changes();
    }
    ~Subject() { Close(); }

    void Pump(int count = 1) {
        for (; count > 0; --count) {
            platform.pump.PumpPending();
            pump.PumpPending();
        }
    }

    /// What is received next arrives at the same time as the last.
    void StopTime() {
        platform.clock.Set(platform.clock.Milliseconds() - 1);
        --platform.pump.pumps;
    }

    void Receive(std::string bytes) {
        wire.sent = std::move(bytes);
        Pump();
        before["screen"].clear();  // stated even if it is the same
    }

    void Close() {
        if (const std::shared_ptr<Window> closing = std::exchange(window, {})) closing->Unload();
    }

    /// The changes of state and the events since the last call.
    std::string Changes() {
        Notes now;
        if (window) Look(now);
        now["port"] = platform.ports.IsOpen("COM3") ? "open" : "closed";
        now["slept"] = to_string(platform.clock.Milliseconds() - platform.pump.pumps - 1000);
        now["timers"] = to_string(pump.running.size());
        now["clipboard"] = Quoted(platform.clipboard.Text());
        const std::string sent = std::exchange(wire.received, {});
        events["sent"] =
            sent.size() > 10'000 ? to_string(sent.size()) + " bytes" : Quoted(sent, Quoting::Bytes);
        events["beeps"] = to_string(std::exchange(platform.boxes.beeps, 0));
        events["line"] = std::exchange(wire.signals, {});
        for (const std::string& box : Told(platform)) events["box"] += Quoted(box);
        for (const MessageBoxRequest& box : platform.boxes.shown)
            if (box.icon == BoxIcon::Question)
                events["question"] = Quoted(box.text) + (box.declinesByDefault ? " No" : " Yes");
        platform.boxes.shown.clear();
        std::string text;
        for (const auto& [kind, value] : now)
            if (value != before[kind]) text += "    " + kind + " " + value + "\n";
        for (const auto& [kind, value] : std::exchange(events, {}))
            if (value != "\"\"" && value != "0" && !value.empty())
                text += "    " + kind + " " + value + "\n";
        before = std::move(now);
        return text;
    }

    void Look(Notes& now) {
        TerminalScreen& screen = com.Screen();
        now["screen"] = TextOf(screen);
        now["selected"] = com.Selection().Empty() ? "nothing" : Quoted(com.SelectedText());
        now["looks"] = "0";
        now["capture"] = Quoted(com.CaptureFile());
        now["pasting"] = com.Pasting() ? "yes" : "no";
        now["asserted"] = std::string(com.Dtr() ? " DTR" : "") + (com.Rts() ? " RTS" : "");
        const bool newest = com.FirstShownLine() == com.View().TopLine();
        now["view"] = newest ? "newest" : "from " + to_string(com.FirstShownLine());
        for (int row = 0; row < screen.Rows(); ++row) {
            const std::span<const Cell> cells = screen.Line(screen.TopLine() + row);
            std::string looks = "0";
            std::string picture;
            for (std::size_t column = 0; column <= TerminalScreen::kMostColumns; ++column) {
                const Cell cell = column < cells.size() ? cells[column] : Cell{};
                if (LooksOf(cell) != std::exchange(looks, LooksOf(cell)))
                    now["looks"] += " " + to_string(row) + "," + to_string(column) + ":" + looks;
                AppendUtf8(picture, cell.character);
                picture += looks;
            }
            if (screen.Cursor().row == row && screen.modes.cursorVisible)
                picture += to_string(screen.Cursor().column);
            const bool same = picture == std::exchange(pictures[row], picture);
            if (!same && !screen.Dirty(row)) events["NOT REDRAWN"] += to_string(row);
            if (paints && screen.Dirty(row)) events["redrawn"] += to_string(row);
        }
        if (com.View().AnyDirty() && !std::exchange(told, false)) events["VIEW"] = "not told";
        if (shows) now["window"] = LookAtWindow();
        com.View().Clean();
    }

    /// The rows of the window, their marks behind them ("h" a hit, "H" the current one, "s"
    /// selected), and the cursor.
    std::string LookAtWindow() {
        const TerminalViewport& view = com.View();
        const std::optional<ScreenCursor> cursor = view.Cursor();
        std::string text = cursor ? to_string(cursor->row) + "," + to_string(cursor->column) : "-";
        for (int row = 0; row < view.Rows(); ++row) {
            const auto [cells, marks] = view.Row(row);
            std::string picture;
            for (const Cell& cell : cells) AppendUtf8(picture, cell.character);
            picture.resize(picture.find_last_not_of(' ') + 1);
            std::string marked;
            for (const Mark mark : marks) marked += ".hHs"[static_cast<int>(mark)];
            picture += "|" + marked.substr(0, marked.find_last_not_of('.') + 1);
            text += "\n        " + picture;
            if (cursor && cursor->row == row) picture += to_string(cursor->column);
            const bool same = picture == std::exchange(windowRows[row], picture);
            const bool redrawn = view.AnyDirty() && view.Dirty(row);
            if (!same && !redrawn && !events.contains("repaint"))
                events["WINDOW NOT REDRAWN"] += to_string(row);
        }
        return text;
    }

    Wire wire;  // outlives the window
    ReportingPlatform platform;
    CountedPump pump{platform.clock};
    Platform services = platform.With({.pump = &pump});
    std::shared_ptr<Window> window = std::make_shared<Window>(platform.manager, services);
    TerminalControl& com = window->com;
    Notes before;  // the last stated state
    Notes events;
    std::map<int, std::string> pictures;  // of the rows as last seen
    std::map<int, std::string> windowRows;
    std::function<void()> onCommand;
    bool shows = false;
    bool handles = false;
    bool told = false;
    bool paints = false;
};

void Perform(Subject& subject, const Words& words);

int Number(const Words& words, std::size_t at = 1) {
    return std::stoi(words.at(at));
}

bool Says(const Words& words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

void Press(Subject& subject, const Words& words) {
    const SelectBy by = Says(words, "word")   ? SelectBy::Word
                        : Says(words, "line") ? SelectBy::Line
                                              : SelectBy::Character;
    subject.com.BeginSelecting({Number(words), Number(words, 2), Says(words, "right")}, by,
                               Says(words, "rectangle"));
}

void Find(Subject& subject, const Words& words) {
    const Found found = subject.com.Find(
        words.at(1), {.matchCase = Says(words, "case"), .backwards = Says(words, "backwards")});
    constexpr std::array kFound = {"nothing", "hit", "hit after wrapping"};
    subject.events["found"] = kFound.at(static_cast<std::size_t>(found));
}

using Verb = void (*)(Subject&, const Words&);
const std::map<std::string, Verb> kVerbs = {
    {"+", [](auto& s, auto& w) { s.Receive(w.at(1)); }},
    {"repeat",
     [](auto& s, auto& w) {
         std::string bytes;
         for (int i = Number(w); i > 0; --i) bytes += w.at(2);
         s.Receive(bytes);
     }},
    {"arrives", [](auto& s, auto& w) { s.wire.sent = w.at(1); }},
    {"gone", [](auto& s, auto& w) { s.wire.gone = w.at(1) == "yes"; }},
    {"pump", [](auto& s, auto& w) { s.Pump(Number(w)); }},
    {"size", [](auto& s, auto& w) { s.com.ScreenSize(Number(w), Number(w, 2)); }},
    {"paints", [](auto& s, auto&) { s.paints = true; }},
    {"closes", [](auto& s, auto&) { s.Close(); }},
    {"key", [](auto& s, auto& w) { s.com.Key(w.at(1)); }},
    {"type", [](auto& s, auto& w) { s.com.Type(w.at(1)); }},
    {"output", [](auto& s, auto& w) { s.com.Output(w.at(1)); }},
    {"choose",
     [](auto& s, auto& w) {
         s.platform.registry.Import(
             RegistryWith("Terminal", Quoted(w.at(1)) + "=" + Quoted(w.at(2)) + "\n"));
         s.com.Options(TerminalOptionsStore(s.platform.registry, s.platform.codePage).Load());
     }},
    {"bytes", [](auto& s, auto& w) { s.com.SendBytes(w.at(1)); }},
    {"break", [](auto& s, auto&) { s.com.SendBreak(); }},
    {"timerless", [](auto& s, auto&) { s.pump.refuses = true; }},
    {"dtr", [](auto& s, auto& w) { s.com.Dtr(w.at(1) == "on"); }},
    {"rts", [](auto& s, auto& w) { s.com.Rts(w.at(1) == "on"); }},
    {"cancel", [](auto& s, auto&) { s.com.DropPendingLines(); }},
    {"declines", [](auto& s, auto&) { s.platform.boxes.answers = {BoxAnswer::No}; }},
    {"endless", [](auto& s, auto&) { s.com.EndLines = false; }},
    {"clipboard", [](auto& s, auto& w) { s.platform.clipboard.Text(w.at(1)); }},
    {"perform", [](auto& s, auto& w) { s.com.PerformCommand(TerminalCommand(Number(w))); }},
    {"invoke", [](auto& s, auto& w) { s.com.Invoke(TerminalCommand(Number(w))); }},
    {"always", [](auto& s, auto& w) { s.com.OfferAlways(TerminalCommand(Number(w))); }},
    {"scroll", [](auto& s, auto& w) { s.com.ScrollTo(Number(w)); }},
    {"follow", [](auto& s, auto& w) { s.com.FollowOutput(w.at(1) == "yes"); }},
    {"select",
     [](auto& s, auto& w) {
         s.com.Select({Number(w), Number(w, 2)}, {Number(w, 3), Number(w, 4)});
     }},
    {"contains",
     [](auto& s, auto& w) {
         s.events["contains"] = to_string(s.com.Selection().Contains({Number(w), Number(w, 2)}));
     }},
    {"menu",
     [](auto& s, auto&) {
         for (const OfferedCommand& entry : s.com.ContextMenu())
             s.events["menu"] += (entry.startsGroup ? " -- " : " ") +
                                 to_string(static_cast<int>(entry.command)) + " " + entry.caption +
                                 (entry.enabled ? ";" : " (grey);");
     }},
    {"asks",  // received where requests are answered
     [](auto& s, auto& w) {
         TerminalParser parser(s.com.Screen());
         parser.Reply = [&s](std::string_view bytes) {
             s.events["answer"] += Quoted(bytes, Quoting::Bytes);
         };
         parser.Write(w.at(1));
         s.told = true;
     }},
    {"decode",  // as a LineEncoding, byte by byte
     [](auto& s, auto& w) {
         TerminalParser parser(s.com.Screen());
         parser.Encoding({LineEncoding(Number(w)), s.platform.codePage});
         for (const char byte : w.at(2)) parser.Write({&byte, 1});
         s.told = true;
     }},
    {"encode",
     [](auto& s, auto& w) {
         const TextEncoding encoding(LineEncoding(Number(w)), s.platform.codePage);
         const std::optional<std::string> bytes = encoding.Encode(w.at(2));
         s.events["bytes"] = bytes ? Quoted(*bytes, Quoting::Bytes)
                                   : "lacks " + std::string(encoding.FirstMissing(w.at(2)));
     }},
    {"time",
     [](auto& s, auto& w) {
         s.com.Screen().Now(Number(w));
         TerminalParser(s.com.Screen()).Write(w.at(2));
         s.told = true;
     }},
    {"arrived",
     [](auto& s, auto& w) {
         s.events["time"] = "at " + to_string(s.com.Screen().ArrivedAt(Number(w)));
     }},
    {"owner",  // performs or leaves commands, after an ACTION
     [](auto& s, auto& w) {
         s.handles = w.at(1) == "performs";
         s.onCommand = {};
         if (w.size() > 2) s.onCommand = [&s, w] { Perform(s, From(w, 2)); };
     }},
    {"capture", [](auto& s, auto& w) { s.com.CaptureFile(w.at(1)); }},
    {"drain", [](auto& s, auto&) { s.com.DrainOutput(); }},
    {"slow",
     [](auto& s, auto& w) { s.platform.ports.LimitWrites(static_cast<std::size_t>(Number(w))); }},
    {"file", [](auto& s, auto& w) { s.platform.files.Add(w.at(1), w.at(2)); }},
    {"fails", [](auto& s, auto& w) { s.platform.files.FailOn(w.at(1), Number(w, 2)); }},
    {"reads",
     [](auto& s, auto& w) {
         const std::string bytes = s.platform.files.ReadAll(w.at(1));
         s.events["file"] =
             to_string(bytes.size()) + " bytes " + Quoted(bytes.substr(0, 60), Quoting::Bytes);
     }},
    {"shows",
     [](auto& s, auto&) {
         s.shows = true;
         s.events["repaint"] = "all";  // the first picture
     }},
    {"step",
     [](auto& s, auto& w) {
         constexpr std::array kSteps = {"up", "down", "pageup", "pagedown", "start", "end"};
         const auto* const step = std::ranges::find(kSteps, w.at(1));
         s.com.Scroll(static_cast<ScrollStep>(step - kSteps.begin()));
     }},
    {"wheel", [](auto& s, auto& w) { s.com.Wheel(Number(w), Number(w, 2)); }},
    {"press", Press},
    {"drag",
     [](auto& s, auto& w) {
         s.com.ExtendSelection({Number(w), Number(w, 2), Says(w, "right")});
     }},
    {"unselect", [](auto& s, auto&) { s.com.Unselect(); }},
    {"find", Find},
    {"endfind", [](auto& s, auto&) { s.com.EndFind(); }},
    {"save", [](auto& s, auto& w) { s.com.SaveScrollback(w.at(1)); }},
    {"forget", [](auto& s, auto&) { s.com.ClearScrollback(); }},
    {"box",  // during which ACTION takes place
     [](auto& s, auto& w) {
         s.platform.boxes.whileOpen = [&s, w](const auto&) { Perform(s, From(w, 1)); };
     }},
};

void Perform(Subject& subject, const Words& words) {
    try {
        kVerbs.at(words.at(0))(subject, words);
    } catch (const RuntimeError& error) {
        subject.events["error"] = to_string(error.Number());
    }
}

}  // namespace

std::string RunTerminal(const std::string& script, bool inPieces) {
    std::unique_ptr<Subject> subject;
    std::istringstream lines(script);
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("    ")) continue;
        result += line + "\n";
        if (line.empty() || line.starts_with('#')) continue;
        Words words = WordsOf(line);
        if (line.starts_with('"')) {
            subject.reset();  // before the next one installs its error handler
            subject = std::make_unique<Subject>();
            words.insert(words.begin(), "+");
        }
        if (words.at(0) == "+" && inPieces && !words.at(1).empty())
            for (std::size_t i = 0; i < words[1].size(); ++i) {
                if (i > 0) subject->StopTime();
                subject->Receive({words[1][i]});
            }
        else
            Perform(*subject, words);
        result += subject->Changes();
    }
    return result;
}

}  // namespace vantor::traces
