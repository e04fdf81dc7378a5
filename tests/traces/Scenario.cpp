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

/// Actions that wait for a text, or for a window.
using Waiting = std::list<std::pair<std::string, Words>>;

class Scenario {
public:
    Scenario() {
        mRecorder.onText = [this](const std::string& text) { Shown(text); };
        Headless().boxes.whileOpen = [this](const MessageBoxRequest& box) { Shown(box.text); };
        Headless().peers.whileModal = [this](Form& form) { Modal(form); };
    }

    // A window that is left open closes here: its way out is no part of the scenario.
    ~Scenario() {
        if (const std::shared_ptr<frmMain> main = mProgram.MainWindow(); main && !main->Gone()) {
            main->Session().Flags().mblnFlashing = false;
            main->Unload();
        }
    }
    Scenario(const Scenario&) = delete;
    Scenario& operator=(const Scenario&) = delete;

    std::string Run(const std::string& script) {
        std::istringstream lines(script);
        for (std::string line; std::getline(lines, line);)
            if (!line.empty() && !line.starts_with('#')) Perform(WordsOf(line));
        return End();
    }

private:
    HeadlessPlatform& Headless() { return mRecorder.Headless(); }

    void Perform(const Words& words) {
        try {
            Verbs().at(words[0])(*this, words);
        } catch (const std::exception& error) {
            // Thrown inside a handler, it would be reported as an error of the program.
            mFailure = words[0] + ": " + error.what();
        }
    }

    using Verb = void (*)(Scenario&, const Words&);
    static const std::map<std::string, Verb>& Verbs();

    /// Takes the first action whose text is `fits`; none when there is no such action.
    static Words Take(Waiting& list, const std::function<bool(const std::string& text)>& fits) {
        const auto found = std::ranges::find_if(list, fits, &Waiting::value_type::first);
        if (found == list.end()) return {};
        const Words action = found->second;
        list.erase(found);
        return action;
    }

    void Shown(const std::string& text) {
        const auto fits = [&](const auto& part) { return text.find(part) != std::string::npos; };
        if (const Words action = Take(mWhenShown, fits); !action.empty()) Perform(action);
    }

    void Modal(Form& form) {
        while (!form.Gone()) {
            const Words action =
                Take(mInWindow, [&](const auto& name) { return name == form.Name(); });
            if (action.empty()) return mRecorder.Note(form.Name() + " stays open");
            Perform(action);
        }
    }

    void After(std::uint32_t delayMs, const Words& action) {
        const auto timer = std::make_shared<TimerId>();
        *timer = Headless().pump.StartTimer(delayMs, [this, timer, action] {
            Headless().pump.StopTimer(*timer);
            Perform(action);
        });
    }

    const std::vector<std::shared_ptr<Form>>& OpenForms() const {
        if (!mProgram.MainWindow()) throw std::runtime_error("no program");
        return mProgram.MainWindow()->Manager().OpenForms();
    }

    /// The control `name` of the window opened last that has one; "WINDOW.name" for another.
    template <typename Kind>
    Kind& Find(const std::string& fullName) {
        const std::size_t dot = fullName.find('.');
        const std::string window = dot == std::string::npos ? "" : fullName.substr(0, dot);
        const std::string name = fullName.substr(dot == std::string::npos ? 0 : dot + 1);
        const auto& forms = OpenForms();
        for (auto form = forms.rbegin(); form != forms.rend(); ++form) {
            if (!window.empty() && window != (*form)->Name()) continue;
            for (Control* control : (*form)->Controls())
                if (control->Name() == name)
                    if (auto* found = dynamic_cast<Kind*>(control)) return *found;
        }
        throw std::runtime_error("no control " + fullName);
    }

    Form& Window(const std::string& name) {
        for (const auto& form : OpenForms())
            if (form->Name() == name) return *form;
        throw std::runtime_error("no window " + name);
    }

    TerminalControl& Terminal() { return Find<TerminalControl>("comMonitor"); }

    void NoteMenu(const std::vector<OfferedCommand>& menu, const std::string& indent) {
        for (const OfferedCommand& entry : menu) {
            const int number = static_cast<int>(entry.command);
            mRecorder.Note(indent + (entry.startsGroup ? "-- " : "") +
                           (number == 0 ? "" : std::to_string(number) + " ") + entry.caption +
                           (entry.checked ? ", checked" : "") + (entry.enabled ? "" : ", grey"));
            NoteMenu(entry.children, indent + "    ");
        }
    }

    void MakeIndicator(const std::string& image) {
        mOptions.expected = FlashMemory::FromRecords(image);
        mIndicator.emplace(mOptions);
        mFarEnd.emplace(*mIndicator, Headless().clock);
        Headless().files.Add(kImage, image);
        Headless().dialogs.choices.push_back(kImage);
        Headless().ports.Plug("COM1", *mFarEnd);
    }

    std::string End() {
        if (!mFailure.empty()) throw std::runtime_error(mFailure);
        for (const Waiting* list : {&mWhenShown, &mInWindow})
            if (!list->empty())
                throw std::runtime_error("never came about: " + list->front().first);
        if (mIndicator) {
            mRecorder.Note(std::string("indicator: ") +
                           (mIndicator->Booted() ? "booted" : "not booted") + ", image " +
                           (mIndicator->Memory() == mOptions.expected ? "whole" : "not whole"));
            for (const std::string& violation : mIndicator->Violations())
                mRecorder.Note("indicator: " + violation);
        }
        const std::shared_ptr<frmMain> main = mProgram.MainWindow();
        if (const auto outcome = main ? main->Session().Outcome() : FlashOutcome::None;
            outcome != FlashOutcome::None)
            mRecorder.Note("outcome " + OutcomeName(outcome));
        std::string open;
        for (const std::string& name : Headless().peers.open) open += " " + name;
        mRecorder.Note("open windows:" + (open.empty() ? " none" : open));
        if (const std::string stored = Headless().registry.Export(); stored != mStored)
            mRecorder.Note("registry: " + Quoted(stored));
        return mRecorder.Trace();
    }

    Recorder mRecorder;
    IndicatorOptions mOptions;
    std::optional<VirtualIndicator> mIndicator;
    std::optional<ScriptedFarEnd> mFarEnd;
    std::optional<Wire> mWire;
    modStartup mProgram{mRecorder.Services()};
    std::string mStored = RegistryHive().Export();  // before the program wrote to it
    std::string mFailure;
    Waiting mWhenShown;
    Waiting mInWindow;
};

const std::map<std::string, Scenario::Verb>& Scenario::Verbs() {
    using S = Scenario;
    using W = const Words;
    static const std::map<std::string, Verb> kVerbs = {
        // What there is.
        {"language", [](S& s, W&) { s.Headless().strings = CompiledStrings(Language::Spanish); }},
        {"fault", [](S& s, W& w) { s.mOptions.faults.push_back(ParseFault(w.at(1))); }},
        {"speed", [](S& s, W& w) { s.mOptions.bitsPerSecond = Number(w.at(1)); }},
        {"writes", [](S& s, W& w) { s.mOptions.writeFlash = Micros{Number(w.at(1))} * 1000; }},
        {"image", [](S& s, W& w) { s.MakeIndicator(ImageFrom({w.at(1)})); }},
        {"verdict", [](S& s, W& w) { s.mFarEnd->verdict = w.at(1); }},
        {"version",
         [](S& s, W& w) {
             s.Headless().versions.resources[AppPath(s.Headless().process) + w.at(1)] = {
                 0x0409, 0x04B0, {{"\\StringFileInfo\\" + w.at(2) + "\\" + w.at(3), w.at(4)}}};
         }},
        {"hides", [](S& s, W& w) { s.Headless().files.SetHidden(w.at(1)); }},
        {"eager",
         [](S& s, W&) {
             s.Headless().peers.onChange = [](const Control& control, Property) {
                 auto* combo = dynamic_cast<ComboBox*>(const_cast<Control*>(&control));
                 if (combo && combo->ListIndex() < 0)
                     combo->Choose(static_cast<int>(combo->Items().size()) - 1);
             };
         }},
        {"nowhere", [](S& s, W&) { s.Headless().process.executable.clear(); }},
        {"homeless", [](S& s, W&) { s.Headless().folders.home.clear(); }},
        {"another", [](S& s, W&) { s.Headless().process.running = "Tessmar Vantor Update"; }},
        {"cells",
         [](S& s, W& w) {
             s.Headless().peers.terminalCell = {std::stof(w.at(1)), std::stof(w.at(2))};
         }},
        {"slow", [](S& s, W& w) { s.Headless().ports.LimitWrites(Number(w.at(1))); }},
        {"ports",
         [](S& s, W& w) {
             for (std::size_t i = 1; i < w.size(); ++i) s.Headless().ports.Plug(w[i], *s.mWire);
         }},
        {"wire", [](S& s, W&) { s.Headless().ports.Plug("COM1", s.mWire.emplace()); }},
        {"registry",
         [](S& s, W& w) {
             s.Headless().registry.Import(RegistryWith(w.at(1), w.at(2)));
             s.mStored = s.Headless().registry.Export();
         }},
        {"file", [](S& s, W& w) { s.Headless().files.Add(w.at(1), w.at(2)); }},
        {"fails", [](S& s, W& w) { s.Headless().files.FailOn(w.at(1), std::stoi(w.at(2))); }},
        {"main", [](S& s, W&) { s.mProgram.Main(); }},
        {"program",
         [](S& s, W&) { s.mRecorder.Note(s.mProgram.Main() ? "runs" : "does not run"); }},
        // What the user does.
        {"declines", [](S& s, W&) { s.Headless().boxes.answers.push_back(BoxAnswer::No); }},
        {"chooses", [](S& s, W& w) { s.Headless().dialogs.choices.push_back(w.at(1)); }},
        {"presses", [](S& s, W& w) { s.Find<ClickControl>(w.at(1)).Press(); }},
        {"picks",
         [](S& s, W& w) {
             auto& combo = s.Find<ComboBox>(w.at(1));
             combo.Choose(FindStringComboBox(combo, w.at(2)));
         }},
        {"enters", [](S& s, W& w) { s.Find<ComboBox>(w.at(1)).Text(w.at(2)); }},
        {"offers", [](S& s, W&) { s.NoteMenu(s.Terminal().ContextMenu(), "menu "); }},
        {"selects",
         [](S& s, W& w) {
             auto& tree = s.Find<TreeView>(w.at(1));
             const int before = tree.Selected();
             tree.Select(tree.NodeIndex(w.at(2)));
             tree.RaiseIfMoved(before);
         }},
        {"row", [](S& s, W& w) { s.Find<ListView>(w.at(1)).Choose(std::stoi(w.at(2))); }},
        {"closes", [](S& s, W& w) { s.Window(w.at(1)).Unload(); }},
        {"types", [](S& s, W& w) { s.Terminal().Type(w.at(1)); }},
        {"invokes", [](S& s, W& w) { s.Terminal().Invoke(TerminalCommand(Number(w.at(1)))); }},
        {"describes", [](S& s, W& w) { s.mRecorder.Describe(s.Window(w.at(1))); }},
        {"paints", [](S& s, W& w) { s.Window(w.at(1)).Painting(); }},
        {"resizes",
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
        {"after", [](S& s, W& w) { s.After(Number(w.at(1)), From(w, 2)); }},
        {"when", [](S& s, W& w) { s.mWhenShown.emplace_back(w.at(1), From(w, 2)); }},
        {"in", [](S& s, W& w) { s.mInWindow.emplace_back(w.at(1), From(w, 2)); }},
        {"stops", [](S& s, W& w) { s.Headless().clock.Sleep(Number(w.at(1))); }},
        {"stalls",  // between the poll of the port and the timers
         [](S& s, W& w) {
             const auto source = std::make_shared<SourceId>();
             *source = s.Headless().pump.AddSource([&s, source, ms = Number(w.at(1))] {
                 s.Headless().pump.RemoveSource(*source);
                 s.Headless().clock.Sleep(ms);
             });
         }},
        {"modem",
         [](S& s, W& w) {
             const auto on = [&w](const char* line) { return std::ranges::count(w, line) > 0; };
             s.mWire->modem = {on("cts"), on("dsr"), on("dcd"), on("ri")};
         }},
        {"errors",
         [](S& s, W& w) {
             s.mWire->errors = {Number(w.at(1)), Number(w.at(2)), 0};
         }},
        {"receive", [](S& s, W& w) { s.mWire->sent += w.at(1); }},
        {"unplug", [](S& s, W&) { s.Headless().ports.Unplug("COM1"); }},
        {"plug", [](S& s, W&) { s.Headless().ports.Plug("COM1", *s.mWire); }},
        {"busy", [](S& s, W& w) { s.Headless().ports.Hold(w.at(1), true); }},
        {"delete", [](S& s, W& w) { s.Headless().files.Delete(w.at(1)); }},
        {"shell", [](S& s, W& w) { s.Headless().shell.code = std::stoi(w.at(1)); }},
        {"flashing",
         [](S& s, W& w) {
             s.mProgram.MainWindow()->Session().Flags().mblnFlashing = w.at(1) == "yes";
         }},
        {"refuse",
         [](S& s, W& w) {
             (w.at(1) == "windows" ? s.Headless().peers.refuse : s.Headless().pump.refuse) = true;
         }},
    };
    return kVerbs;
}

}  // namespace

std::string RunScenario(const std::string& script) {
    return Scenario().Run(script);
}

}  // namespace vantor::traces
