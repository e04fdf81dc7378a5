#include "tests/traces/Scenario.hpp"

#include <algorithm>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "app/base/modSupport.hpp"
#include "app/frmMain.hpp"
#include "app/modStartup.hpp"
#include "controls/TreeView.hpp"
#include "monitor/frmMonitor.hpp"
#include "simulator/VirtualIndicator.hpp"
#include "tests/Words.hpp"
#include "tests/faults/Images.hpp"
#include "tests/faults/Judge.hpp"
#include "tests/faults/ReportingPlatform.hpp"
#include "tests/traces/Recorder.hpp"
#include "tests/unit/Wire.hpp"

namespace vantor::traces {
namespace {

const std::string kImage = "/home/tech/m40.run";

std::uint32_t Number(const std::string& word) {
    return static_cast<std::uint32_t>(std::stoul(word));
}

/// An indicator whose verdict can be replaced.
class ScriptedFarEnd : public IndicatorFarEnd {
public:
    using IndicatorFarEnd::IndicatorFarEnd;
    std::string Transmit() override {
        const std::string text = IndicatorFarEnd::Transmit();
        return verdict.empty() || text.find("DONE") == std::string::npos ? text : verdict;
    }
    std::string verdict;
};

/// Actions that wait for a text to be shown, or for a window to be shown modally.
struct Waiting {
    std::string text;
    std::uint32_t delayMs = 0;
    Words action;
    std::string line;
};

class Scenario {
public:
    explicit Scenario(const std::string& script) {
        std::istringstream lines(script);
        for (std::string line; std::getline(lines, line);) {
            if (line.empty() || line.starts_with('#')) continue;
            mLines.push_back(line);
        }
    }

    // A window that is left open closes here: its way out is no part of the scenario.
    ~Scenario() {
        const std::shared_ptr<frmMain> main = Main();
        if (main && !main->Gone()) {
            main->Session().Flags().mblnFlashing = false;
            main->Unload();
        }
        SetErrorSink(nullptr);
    }
    Scenario(const Scenario&) = delete;
    Scenario& operator=(const Scenario&) = delete;

    std::string Run() {
        Language language = Language::English;
        std::erase_if(mLines, [&](const std::string& line) {
            if (line != "language es") return false;
            language = Language::Spanish;
            return true;
        });
        mRecorder.emplace(language);
        mRecorder->onText = [this](const std::string& text) { Shown(text); };
        mRecorder->onModal = [this](Form& form) { Modal(form); };
        for (const std::string& line : mLines) Perform(WordsOf(line), line);
        if (!mMain && !mStartup) throw std::runtime_error("the script starts nothing");
        return End();
    }

private:
    HeadlessPlatform& Headless() { return mRecorder->Headless(); }
    std::shared_ptr<frmMain> Main() const { return mStartup ? mStartup->MainWindow() : mMain; }

    void Perform(const Words& words, const std::string& line) {
        if (words[0] == "when" || words[0] == "in") {
            // when TEXT [+ MS]: ACTION    in WINDOW: ACTION
            Waiting waiting{.text = words.at(1), .action = {}, .line = line};
            std::size_t at = 2;
            if (words.at(at) == "+") {
                waiting.delayMs = Number(words.at(at + 1));
                at += 2;
            }
            waiting.action.assign(words.begin() + static_cast<std::ptrdiff_t>(at), words.end());
            (words[0] == "in" ? mModal : mWaiting).push_back(waiting);
            return;
        }
        const auto verb = Verbs().find(words[0]);
        if (verb == Verbs().end()) {
            mFailure = "not understood: " + line;
            return;
        }
        try {
            verb->second(*this, words);
        } catch (const std::exception& error) {
            // Thrown inside a handler, it would be reported as an error of the program.
            mFailure = line + ": " + error.what();
        }
    }

    using Verb = void (*)(Scenario&, const Words&);
    static const std::map<std::string, Verb>& Verbs();

    void Shown(const std::string& text) {
        const auto waiting = std::ranges::find_if(mWaiting, [&](const Waiting& candidate) {
            return text.find(candidate.text) != std::string::npos;
        });
        if (waiting == mWaiting.end()) return;
        const Waiting due = *waiting;
        mWaiting.erase(waiting);
        After(due.delayMs, due);
    }

    void After(std::uint32_t delayMs, const Waiting& due) {
        if (delayMs == 0) return Perform(due.action, due.line);
        const auto timer = std::make_shared<TimerId>();
        *timer = Headless().pump.StartTimer(delayMs, [this, timer, due] {
            Headless().pump.StopTimer(*timer);
            Perform(due.action, due.line);
        });
    }

    void Modal(Form& form) {
        for (;;) {
            const auto waiting = std::ranges::find(mModal, form.Name(), &Waiting::text);
            if (form.Gone()) return;
            if (waiting == mModal.end()) return mRecorder->Note(form.Name() + " stays open");
            const Waiting due = *waiting;
            mModal.erase(waiting);
            Perform(due.action, due.line);
        }
    }

    WindowManager& Manager() {
        return mStartup ? mStartup->MainWindow()->Manager() : mRecorder->Manager();
    }

    /// The control `name` of the window opened last that has one; "WINDOW.name" for another.
    template <typename Kind>
    Kind& Find(const std::string& fullName) {
        const std::size_t dot = fullName.find('.');
        const std::string window = dot == std::string::npos ? "" : fullName.substr(0, dot);
        const std::string name = fullName.substr(dot == std::string::npos ? 0 : dot + 1);
        const auto& forms = Manager().OpenForms();
        for (auto form = forms.rbegin(); form != forms.rend(); ++form) {
            if (!window.empty() && window != (*form)->Name()) continue;
            for (Control* control : (*form)->Controls())
                if (control->Name() == name)
                    if (auto* found = dynamic_cast<Kind*>(control)) return *found;
        }
        throw std::runtime_error("no control " + fullName);
    }

    Form& Window(const std::string& name) {
        for (const auto& form : Manager().OpenForms())
            if (form->Name() == name) return *form;
        throw std::runtime_error("no window " + name);
    }

    void NoteMenu(const std::vector<OfferedCommand>& menu, const std::string& indent) {
        for (const OfferedCommand& entry : menu) {
            const int number = static_cast<int>(entry.command);
            mRecorder->Note(indent + (entry.startsGroup ? "-- " : "") +
                            (number == 0 ? "" : std::to_string(number) + " ") + entry.caption +
                            (entry.checked ? ", checked" : "") + (entry.enabled ? "" : ", grey"));
            NoteMenu(entry.children, indent + "    ");
        }
    }

    void Connect() {
        Headless().ports.Plug("COM1", mWire ? static_cast<FarEnd&>(*mWire) : *mFarEnd);
    }

    void MakeIndicator(const std::string& image) {
        mOptions.expected = FlashMemory::FromRecords(image);
        mIndicator.emplace(mOptions);
        mFarEnd.emplace(*mIndicator, Headless().clock);
        Headless().files.Add(kImage, image);
        Headless().dialogs.choices.push_back(kImage);
        Connect();
    }

    std::string End() {
        if (!mFailure.empty()) throw std::runtime_error(mFailure);
        for (const std::list<Waiting>* list : {&mWaiting, &mModal})
            if (!list->empty()) throw std::runtime_error("never came about: " + list->front().line);
        if (mIndicator) {
            mRecorder->Note(std::string("indicator: ") +
                            (mIndicator->Booted() ? "booted" : "not booted") + ", image " +
                            (mIndicator->Memory() == mOptions.expected ? "whole" : "not whole"));
            for (const std::string& violation : mIndicator->Violations())
                mRecorder->Note("indicator: " + violation);
        }
        const std::shared_ptr<frmMain> main = Main();
        if (const auto outcome = main ? main->Session().Outcome() : FlashOutcome::None;
            outcome != FlashOutcome::None)
            mRecorder->Note("outcome " + OutcomeName(outcome));
        std::string open;
        for (const std::string& name : Headless().peers.open) open += " " + name;
        mRecorder->Note("open windows:" + (open.empty() ? " none" : open));
        if (const std::string stored = Headless().registry.Export(); stored != mStored)
            mRecorder->Note("registry: " + Quoted(stored));
        return mRecorder->Trace();
    }

    std::vector<std::string> mLines;
    std::optional<Recorder> mRecorder;
    IndicatorOptions mOptions;
    std::optional<VirtualIndicator> mIndicator;
    std::optional<ScriptedFarEnd> mFarEnd;
    std::optional<Wire> mWire;
    std::unique_ptr<CErrHandler> mErrors;
    std::shared_ptr<frmMain> mMain;
    std::optional<modStartup> mStartup;
    std::string mStored = RegistryHive().Export();  // before the program wrote to it
    std::string mFailure;
    std::list<Waiting> mWaiting;
    std::list<Waiting> mModal;
};

const std::map<std::string, Scenario::Verb>& Scenario::Verbs() {
    using S = Scenario;
    using W = const Words;
    static const std::map<std::string, Verb> kVerbs = {
        // What there is.
        {"fault", [](S& s, W& w) { s.mOptions.faults.push_back(ParseFault(w.at(1))); }},
        {"speed", [](S& s, W& w) { s.mOptions.bitsPerSecond = Number(w.at(1)); }},
        {"writes", [](S& s, W& w) { s.mOptions.writeFlash = Micros{Number(w.at(1))} * 1000; }},
        {"image", [](S& s, W& w) { s.MakeIndicator(ImageFrom({w.at(1)})); }},
        {"verdict",  // the bytes that the indicator sends instead of DONE
         [](S& s, W& w) { s.mFarEnd->verdict = w.at(1); }},
        {"version",  // of a program file: BLOCK, NAME of the text, TEXT
         [](S& s, W& w) {
             s.Headless().versions.resources[AppPath(s.Headless().process) + w.at(1)] = {
                 0x0409, 0x04B0, {{"\\StringFileInfo\\" + w.at(2) + "\\" + w.at(3), w.at(4)}}};
         }},
        {"hides", [](S& s, W& w) { s.Headless().files.SetHidden(w.at(1)); }},
        {"eager",  // lists: they report a selection while they are filled
         [](S& s, W&) {
             s.Headless().peers.onChange = [](const Control& control, Property) {
                 auto* combo = dynamic_cast<ComboBox*>(const_cast<Control*>(&control));
                 if (combo && combo->ListIndex() < 0)
                     combo->Choose(static_cast<int>(combo->Items().size()) - 1);
             };
         }},
        {"nowhere",  // the system does not name the program's folder
         [](S& s, W&) { s.Headless().process.executable.clear(); }},
        {"homeless",  // the system names no folders
         [](S& s, W&) { s.Headless().folders.home.clear(); }},
        {"another",  // instance of the program runs
         [](S& s, W&) { s.Headless().process.running = "Tessmar Vantor Update"; }},
        {"cells",  // of a terminal are so large
         [](S& s, W& w) {
             s.Headless().peers.terminalCell = {static_cast<float>(Number(w.at(1))),
                                                static_cast<float>(Number(w.at(2)))};
         }},
        {"slow",  // driver: it accepts so many bytes a write
         [](S& s, W& w) { s.Headless().ports.LimitWrites(Number(w.at(1))); }},
        {"ports",  // beside COM1
         [](S& s, W& w) {
             for (std::size_t i = 1; i < w.size(); ++i)
                 s.Headless().ports.Plug(w[i], static_cast<FarEnd&>(*s.mWire));
         }},
        {"wire",
         [](S& s, W&) {
             s.mWire.emplace();
             s.Connect();
         }},
        {"registry",
         [](S& s, W& w) {
             s.Headless().registry.Import(RegistryWith(w.at(1), w.at(2)));
             s.mStored = s.Headless().registry.Export();
         }},
        {"file", [](S& s, W& w) { s.Headless().files.Add(w.at(1), w.at(2)); }},
        {"fails",
         [](S& s, W& w) {
             s.Headless().files.FailOn(w.at(1), static_cast<std::int32_t>(Number(w.at(2))));
         }},
        {"main",
         [](S& s, W&) {
             s.mErrors = s.mRecorder->MakeErrorHandler();
             SetErrorSink(s.mErrors.get());
             s.mMain = std::make_shared<frmMain>(s.mRecorder->Manager(), s.mRecorder->Services());
             s.mMain->Load();
             s.mMain->Show();
         }},
        {"program",
         [](S& s, W&) {
             s.mStartup.emplace(s.mRecorder->Services());
             s.mRecorder->Note(s.mStartup->Main() ? "runs" : "does not run");
         }},
        // What the user does.
        {"answers",
         [](S& s, W& w) {
             s.Headless().boxes.answers.push_back(w.at(1) == "Yes"  ? BoxAnswer::Yes
                                                  : w.at(1) == "No" ? BoxAnswer::No
                                                                    : BoxAnswer::Cancel);
         }},
        {"chooses", [](S& s, W& w) { s.Headless().dialogs.choices.push_back(w.at(1)); }},
        {"presses", [](S& s, W& w) { s.Find<ClickControl>(w.at(1)).Press(); }},
        {"picks",
         [](S& s, W& w) {
             auto& combo = s.Find<ComboBox>(w.at(1));
             combo.Choose(FindStringComboBox(combo, w.at(2)));
         }},
        {"enters", [](S& s, W& w) { s.Find<ComboBox>(w.at(1)).Text(w.at(2)); }},
        {"offers",  // the terminal's context menu
         [](S& s, W&) {
             s.NoteMenu(s.Find<TerminalControl>("comMonitor").ContextMenu(), "menu ");
         }},
        {"selects",
         [](S& s, W& w) {
             auto& tree = s.Find<TreeView>(w.at(1));
             const int before = tree.Selected();
             tree.Select(tree.NodeIndex(w.at(2)));
             tree.RaiseIfMoved(before);
         }},
        {"row",
         [](S& s, W& w) { s.Find<ListView>(w.at(1)).Choose(static_cast<int>(Number(w.at(2)))); }},
        {"closes", [](S& s, W& w) { s.Window(w.at(1)).Unload(); }},
        {"types", [](S& s, W& w) { s.Find<TerminalControl>("comMonitor").Type(w.at(1)); }},
        {"invokes",
         [](S& s, W& w) {
             s.Find<TerminalControl>("comMonitor")
                 .Invoke(static_cast<TerminalCommand>(Number(w.at(1))));
         }},
        {"describes", [](S& s, W& w) { s.mRecorder->Describe(s.Window(w.at(1))); }},
        {"paints", [](S& s, W& w) { s.Window(w.at(1)).Painting(); }},
        {"resizes",  // WINDOW WIDTH HEIGHT, or WINDOW minimised
         [](S& s, W& w) {
             Form& form = s.Window(w.at(1));
             std::optional<Place>& normal = s.Headless().peers.normalPlace;
             const Place at = normal.value_or(form.Place());
             normal = at;
             if (w.at(2) == "minimised")
                 return form.Placed({-480'000, -480'000, 2400, 600}, WindowState::Minimised, {});
             const Size size{std::stof(w.at(2)), std::stof(w.at(3))};
             form.Placed({at.left, at.top, size.width, size.height}, WindowState::Normal, size);
         }},
        {"helps", [](S& s, W& w) { s.Window(w.at(1)).HelpWanted(); }},
        // What happens to the line and the system.
        {"pump",
         [](S& s, W& w) {
             for (std::uint32_t i = 0; i < Number(w.at(1)); ++i) s.Headless().pump.PumpPending();
         }},
        {"after",
         [](S& s, W& w) {
             s.After(Number(w.at(1)), {.text = {}, .action = {w.begin() + 2, w.end()}, .line = {}});
         }},
        {"stops",  // the process, for so long
         [](S& s, W& w) { s.Headless().clock.Sleep(Number(w.at(1))); }},
        {"stalls",  // the process, for so long, between the poll of the port and the timers
         [](S& s, W& w) {
             const auto source = std::make_shared<SourceId>();
             *source = s.Headless().pump.AddSource([&s, source, ms = Number(w.at(1))] {
                 s.Headless().pump.RemoveSource(*source);
                 s.Headless().clock.Sleep(ms);
             });
         }},
        {"modem",  // the lines that are asserted, of a port that has them
         [](S& s, W& w) {
             const auto on = [&w](const char* line) { return std::ranges::count(w, line) > 0; };
             s.mWire->modem = {on("cts"), on("dsr"), on("dcd"), on("ri")};
         }},
        {"errors",  // FRAMING PARITY
         [](S& s, W& w) {
             s.mWire->errors = {Number(w.at(1)), Number(w.at(2)), 0};
         }},
        {"receive", [](S& s, W& w) { s.mWire->sent += w.at(1); }},
        {"unplug", [](S& s, W&) { s.Headless().ports.Unplug("COM1"); }},
        {"plug", [](S& s, W&) { s.Headless().ports.Plug("COM1", static_cast<FarEnd&>(*s.mWire)); }},
        {"busy", [](S& s, W& w) { s.Headless().ports.Hold(w.at(1), true); }},
        {"delete", [](S& s, W& w) { s.Headless().files.Delete(w.at(1)); }},
        {"shell",  // returns this code from now on
         [](S& s, W& w) { s.Headless().shell.code = static_cast<std::int32_t>(Number(w.at(1))); }},
        {"flashing",  // as if a session were in progress
         [](S& s, W&) { s.mMain->Session().Flags().mblnFlashing = true; }},
        {"idle",  // ends `flashing`
         [](S& s, W&) { s.mMain->Session().Flags().mblnFlashing = false; }},
        {"refuse",  // windows or timers
         [](S& s, W& w) {
             (w.at(1) == "windows" ? s.Headless().peers.refuse : s.Headless().pump.refuse) = true;
         }},
    };
    return kVerbs;
}

}  // namespace

std::string RunScenario(const std::string& script) {
    return Scenario(script).Run();
}

}  // namespace vantor::traces
