#include "tests/traces/Recorder.hpp"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "controls/Controls.hpp"
#include "controls/Form.hpp"
#include "controls/TreeView.hpp"
#include "support/text/Text.hpp"
#include "terminal/TerminalControl.hpp"

namespace vantor::traces {
namespace {

constexpr const char* kIcons[] = {"none", "stop", "question", "warning", "information"};
constexpr const char* kButtons[] = {"OK", "YesNo", "YesNoCancel"};
constexpr const char* kFlowControls[] = {"", " RTS/CTS", " XON/XOFF"};
constexpr const char* kAnswers[] = {"OK", "Yes", "No", "Cancel"};

// Without the program's own conversion, which a fault could turn into the opposite of itself.
std::string Line(const LineSettings& line) {
    return std::to_string(line.bitsPerSecond) + "," + "NOE"[static_cast<std::size_t>(line.parity)] +
           "," + std::to_string(line.dataBits) + "," + std::to_string(line.stopBits) +
           kFlowControls[static_cast<std::size_t>(line.flowControl)];
}

std::string Point(float x, float y) {
    return std::to_string(std::lrint(x)) + "," + std::to_string(std::lrint(y));
}

std::string Numbers(const Place& place) {
    return Point(place.left, place.top) + " " + std::to_string(std::lrint(place.width)) + "x" +
           std::to_string(std::lrint(place.height));
}

/// The text of a window that shows only one; those of other windows are in the tests of windows.
std::string MessageOf(const Form& form) {
    std::vector<std::string> texts;
    for (const Control* control : form.Controls())
        if (control->Kind() == ControlKind::Label && !control->Caption().empty())
            texts.push_back(control->Caption());
    return texts.size() == 1 ? ": " + Quoted(texts.front()) : "";
}

/// A service of the program that notes what it does before the `Inner` one does it.
template <typename Service, typename Inner>
struct Recorded : Service {
    Recorded(Recorder& recorder, Inner inner)
        : mRecorder(recorder), mInner(std::forward<Inner>(inner)) {}
    Recorded(const Recorded&) = delete;
    Recorded& operator=(const Recorded&) = delete;

    void Note(const std::string& event) { mRecorder.Note(event); }

    Recorder& mRecorder;
    Inner mInner;
};

struct RecordedPeer : Recorded<FormPeer, std::unique_ptr<FormPeer>> {
    RecordedPeer(Recorder& recorder, Form& form, std::unique_ptr<FormPeer> inner)
        : Recorded(recorder, std::move(inner)), mForm(form) {}
    ~RecordedPeer() override { mRecorder.Closed(mForm); }

    void Show(ShowMode mode, NativeWindow owner) override {
        Note("show " + mForm.Name() + (mode == ShowMode::Modal ? " modal" : "") + " at " +
             Numbers(mForm.Place()) + ", owner " + mRecorder.NameOf(owner) + MessageOf(mForm));
        for (const Control* control : mForm.Controls())
            if (const auto* combo = dynamic_cast<const ComboBox*>(control))
                Note(mForm.Name() + "." + control->Name() + " is " + Quoted(combo->Text()));
        mInner->Show(mode, owner);
    }
    void FormChanged(Property property) override {
        mInner->FormChanged(property);
        if (!mForm.Visible()) return;
        if (property == Property::Caption) Note(mForm.Name() + " title " + Quoted(mForm.Caption()));
        if (property == Property::Place) Note(mForm.Name() + " at " + Numbers(mForm.Place()));
    }
    void ControlChanged(const Control& control, Property property) override {
        mInner->ControlChanged(control, property);
        mRecorder.ControlChanged(mForm, control, property);
    }
    void DrawLine(const ThinLine& line) override {
        Note("line " + Point(line.left, line.top) + " to " + Point(line.right, line.bottom) +
             (line.colour == SystemColour::ButtonShadow ? ", shadow" : ", highlight"));
        mInner->DrawLine(line);
    }
    Size TextSize(const Control& control, const std::string& face,
                  const std::string& text) const override {
        return mInner->TextSize(control, face, text);
    }
    Size TerminalSize(const Control& control, int columns, int rows) const override {
        return mInner->TerminalSize(control, columns, rows);
    }
    std::optional<Place> NormalPlace() const override { return mInner->NormalPlace(); }
    NativeWindow WindowHandle() const override { return mInner->WindowHandle(); }

    Form& mForm;
};

struct RecordedPeers : Recorded<Peers, HeadlessPeers&> {
    using Recorded::Recorded;
    std::unique_ptr<FormPeer> Draw(Form& form) override {
        auto peer = std::make_unique<RecordedPeer>(mRecorder, form, mInner.Draw(form));
        mRecorder.Opened(form, peer->WindowHandle());
        return peer;
    }
    Size ScreenSize() const override { return mInner.ScreenSize(); }
    void SetMousePointer(MousePointer pointer) override {
        if (pointer != mInner.pointer)
            Note(pointer == MousePointer::Hourglass ? "pointer wait" : "pointer default");
        mInner.SetMousePointer(pointer);
    }
    void HoldSystem(const std::string& reason) override {
        Note(reason.empty() ? "release the system" : "hold the system " + Quoted(reason));
        mInner.HoldSystem(reason);
    }
};

struct RecordedBoxes : Recorded<MessageBoxes, HeadlessMessageBoxes&> {
    using Recorded::Recorded;
    BoxAnswer Show(const MessageBoxRequest& request) override {
        const NativeWindow owner =
            request.owner == 0 ? mRecorder.Headless().peers.Active() : request.owner;
        Note(std::string("box ") + kIcons[static_cast<int>(request.icon)] + " " +
             kButtons[static_cast<int>(request.buttons)] + ", owner " + mRecorder.NameOf(owner) +
             ", " + Quoted(request.title) + ": " + Quoted(request.text));
        const BoxAnswer answer = mInner.Show(request);
        if (request.buttons != BoxButtons::Ok)
            Note(std::string("answer ") + kAnswers[static_cast<int>(answer)]);
        return answer;
    }
    void Beep() override {
        Note("beep");
        mInner.Beep();
    }
};

struct RecordedDialogs : Recorded<CommonDialogs, HeadlessDialogs&> {
    using Recorded::Recorded;
    bool OpenFile(FileDialogRecord& record) override {
        NoteDialog("open", record);
        return Chosen(mInner.OpenFile(record), record);
    }
    bool SaveFile(FileDialogRecord& record) override {
        NoteDialog("save", record);
        return Chosen(mInner.SaveFile(record), record);
    }
    void NoteDialog(const char* kind, const FileDialogRecord& record) {
        std::string filter = record.filter;
        while (filter.ends_with('\0')) filter.pop_back();
        std::ranges::replace(filter, '\0', '|');
        Note(std::string("dialog ") + kind + " " + Quoted(record.title) + ", owner " +
             mRecorder.NameOf(record.owner) + ", extension " + Quoted(record.defaultExtension) +
             ", folder " + Quoted(record.initialFolder) + ", filter " + Quoted(filter) +
             ", flags " + std::to_string(record.flags));
    }
    bool Chosen(bool chosen, const FileDialogRecord& record) {
        Note(chosen ? "chosen " + Quoted(record.file.c_str()) : "cancelled");
        return chosen;
    }
};

struct RecordedPort : Recorded<SerialPort, std::unique_ptr<SerialPort>> {
    RecordedPort(Recorder& recorder, std::string name, std::unique_ptr<SerialPort> inner)
        : Recorded(recorder, std::move(inner)), mName(std::move(name)) {}
    ~RecordedPort() override { Note("close " + mName); }

    std::size_t Read(std::span<char> into) override {
        const std::size_t count = mInner->Read(into);
        if (count > 0) Note("< " + Quoted({into.data(), count}, Quoting::Bytes));
        return count;
    }
    std::size_t Write(std::string_view bytes) override {
        const std::size_t count = mInner->Write(bytes);
        Note("> " + Quoted(bytes.substr(0, count), Quoting::Bytes));
        return count;
    }
    std::size_t InputCount() override { return mInner->InputCount(); }
    std::size_t OutputCount() override { return mInner->OutputCount(); }
    void DiscardInput() override {
        std::string bytes(mInner->InputCount(), '\0');
        if (!bytes.empty()) bytes.resize(mInner->Read(bytes));
        if (!bytes.empty()) Note("discarded " + Quoted(bytes, Quoting::Bytes));
        mInner->DiscardInput();
    }
    void NotifyOnInput(std::function<void()> notify) override {
        if (mListens != static_cast<bool>(notify))
            Note(mListens ? "receive events off" : "receive events on");
        mListens = static_cast<bool>(notify);
        mInner->NotifyOnInput(std::move(notify));
    }

    void Break(bool on) override { mInner->Break(Noted("break", on)); }
    void Dtr(bool asserted) override { mInner->Dtr(Noted("DTR", asserted)); }
    void Rts(bool asserted) override { mInner->Rts(Noted("RTS", asserted)); }
    std::optional<ModemLines> Lines() override { return mInner->Lines(); }
    LineErrors Errors() override { return mInner->Errors(); }

    bool Noted(const std::string& signal, bool on) {
        Note(signal + (on ? " on" : " off"));
        return on;
    }

    std::string mName;
    bool mListens = false;
};

struct RecordedPorts : Recorded<SerialPorts, HeadlessSerialPorts&> {
    using Recorded::Recorded;
    std::unique_ptr<SerialPort> Open(const std::string& name, const LineSettings& line) override {
        const std::string what = "open " + name + " " + Line(line);
        try {
            auto port = mInner.Open(name, line);
            Note(what);
            return std::make_unique<RecordedPort>(mRecorder, name, std::move(port));
        } catch (const RuntimeError&) {
            Note(what + " fails");
            throw;
        }
    }
    std::vector<SerialPortInfo> List() const override { return mInner.List(); }
};

/// Notes timers of a second or more; shorter ones pace the program's own work.
struct RecordedPump : Recorded<MessagePump, HeadlessPump&> {
    using Recorded::Recorded;
    void PumpPending() override { mInner.PumpPending(); }
    void Run() override { mInner.Run(); }
    void Quit() override { mInner.Quit(); }
    TimerId StartTimer(std::uint32_t intervalMs, std::function<void()> tick) override {
        if (intervalMs < 1000) return mInner.StartTimer(intervalMs, std::move(tick));
        const TimerId id = mInner.StartTimer(intervalMs, [this, call = std::move(tick)] {
            Note("timer ticks");
            call();
        });
        Note("timer " + std::to_string(intervalMs) + " ms on");
        return *mLong.insert(id).first;
    }
    void StopTimer(TimerId id) override {
        if (mLong.erase(id) != 0) Note("timer off");
        mInner.StopTimer(id);
    }
    std::set<TimerId> mLong;
};

struct RecordedShell : Recorded<Shell, HeadlessShell&> {
    using Recorded::Recorded;
    std::int32_t Execute(const ShellRequest& request) override {
        return Noted("execute", request, mInner.Execute(request));
    }
    std::int32_t Start(const ShellRequest& request, ShellProcess& process) override {
        return Noted("start", request, mInner.Start(request, process));
    }
    bool IsActive(ShellProcess process) const override { return mInner.IsActive(process); }
    void Release(ShellProcess process) override { mInner.Release(process); }
    std::int32_t Noted(const char* how, const ShellRequest& request, std::int32_t result) {
        Note(std::string("shell ") + how + " " + Quoted(request.verb) + " " + Quoted(request.file) +
             ", owner " + mRecorder.NameOf(request.owner));
        return result;
    }
};

struct RecordedOutput : Recorded<OutputFile, std::unique_ptr<OutputFile>> {
    using Recorded::Recorded;
    ~RecordedOutput() override { Note("close the file"); }
    void Write(std::string_view bytes) override {
        Note("write " + Quoted(bytes, Quoting::Bytes));
        mInner->Write(bytes);
    }
};

/// Notes what is written and deleted; reading has no effect that anybody notices.
struct RecordedFiles : Recorded<Files, HeadlessFiles&> {
    using Recorded::Recorded;
    bool Exists(const std::string& path) const override { return mInner.Exists(path); }
    bool SameFile(const std::string& path, const std::string& other) const override {
        return mInner.SameFile(path, other);
    }
    std::uint64_t Size(const std::string& path) const override { return mInner.Size(path); }
    std::string ReadStart(const std::string& path, std::size_t most) const override {
        return mInner.ReadStart(path, most);
    }
    void WriteAll(const std::string& path, std::string_view bytes) override {
        Note("write " + Quoted(path) + " " + Quoted(bytes));
        mInner.WriteAll(path, bytes);
    }
    void Append(const std::string& path, std::string_view bytes) override {
        Note("append to " + Quoted(path) + " " + Quoted(bytes));
        mInner.Append(path, bytes);
    }
    std::unique_ptr<OutputFile> Create(const std::string& path) override {
        Note("create " + Quoted(path));
        return std::make_unique<RecordedOutput>(mRecorder, mInner.Create(path));
    }
    void Delete(const std::string& path) override {
        Note("delete " + Quoted(path));
        mInner.Delete(path);
    }
    void CreateFolders(const std::string& path) override {
        Note("create folder " + Quoted(path));
        mInner.CreateFolders(path);
    }
    std::vector<std::string> List(const std::string& folder, const std::string& pattern,
                                  ListFilter filter) const override {
        return mInner.List(folder, pattern, filter);
    }
};

}  // namespace

std::string Quoted(std::string_view text, Quoting quoting) {
    std::string quoted = "\"";
    for (const char c : text) {
        const bool beyondAscii = static_cast<unsigned char>(c) > 0x7F;
        if (c == '"')
            quoted += "\\\"";
        else if (beyondAscii && quoting == Quoting::Text)
            quoted += c;
        else
            quoted += Escaped({&c, 1}, "\r\n");
    }
    return quoted + "\"";
}

struct Recorder::Wrappers {
    explicit Wrappers(Recorder& recorder) : mRecorder(recorder) {}

    Recorder& mRecorder;
    HeadlessPlatform& headless = mRecorder.mHeadless;
    RecordedPeers peers{mRecorder, headless.peers};
    RecordedBoxes boxes{mRecorder, headless.boxes};
    RecordedDialogs dialogs{mRecorder, headless.dialogs};
    RecordedPorts ports{mRecorder, headless.ports};
    RecordedPump pump{mRecorder, headless.pump};
    RecordedShell shell{mRecorder, headless.shell};
    RecordedFiles files{mRecorder, headless.files};
    Platform platform = headless.With({.boxes = &boxes,
                                       .dialogs = &dialogs,
                                       .files = &files,
                                       .pump = &pump,
                                       .peers = &peers,
                                       .ports = &ports,
                                       .shell = &shell});
};

Recorder::Recorder()
    : mWrappers(std::make_unique<Wrappers>(*this)), mStart(mHeadless.clock.Milliseconds()) {}

Recorder::~Recorder() = default;

Platform& Recorder::Services() {
    return mWrappers->platform;
}

void Recorder::Note(const std::string& event) {
    const std::uint32_t now = mHeadless.clock.Milliseconds();
    std::string time = std::to_string(now - mStart) + " ms";
    if (std::exchange(mNotedAt, now) == now) time.clear();
    mTrace +=
        std::string(10 - std::min<std::size_t>(10, time.size()), ' ') + time + "  " + event + "\n";
}

std::string Recorder::NameOf(NativeWindow window) const {
    const auto found = mForms.find(window);
    return found == mForms.end() ? "none" : found->second->Name();
}

namespace {

std::string KeyOf(const TreeView& tree, int node) {
    return tree.Nodes()[static_cast<std::size_t>(node)].key;
}

/// What a user sees of a control: a name for each value, and the value.
std::map<std::string, std::string> ValuesOf(const Control& control) {
    std::map<std::string, std::string> values = {
        {"caption", Quoted(control.Caption())},
        {"enabled", control.Enabled() ? "enabled" : "disabled"},
        {"visible", control.Visible() ? "shown" : "hidden"}};
    if (const auto* bar = dynamic_cast<const ProgressBar*>(&control))
        values["value"] = std::to_string(bar->Value()) + " %";
    if (const auto* combo = dynamic_cast<const ComboBox*>(&control))
        values["value"] = "is " + Quoted(combo->Text());
    if (const auto* terminal = dynamic_cast<const TerminalControl*>(&control))
        values["font"] = std::to_string(terminal->Options().fontPoints) + " points";
    if (const auto* status = dynamic_cast<const StatusBar*>(&control))
        for (const StatusBar::Panel& panel : status->Panels())
            values[panel.key] = panel.key + " " + Quoted(panel.text);
    if (const auto* tree = dynamic_cast<const TreeView*>(&control)) {
        values["selected"] =
            "selects " + (tree->Selected() < 0 ? "nothing" : KeyOf(*tree, tree->Selected()));
        values["expanded"] = "expands";
        for (const TreeNode& node : tree->Nodes())
            if (node.expanded) values["expanded"] += " " + node.key;
    }
    if (const auto* picture = dynamic_cast<const PictureBox*>(&control)) {
        values["picture"] = picture->Loaded() ? "shows the picture" : "shows its background";
        values["printed"] = "prints";
        for (const PictureBox::Printed& printed : picture->PrintedTexts())
            values["printed"] += " " + Quoted(printed.text);
    }
    return values;
}

std::string FullName(const Form& form, const Control& control) {
    std::string name = form.Name() == "frmMain" ? "" : form.Name() + ".";
    name += control.Name();
    if (control.Index() >= 0) name += "(" + std::to_string(control.Index()) + ")";
    return name;
}

/// How the control looks now, and differs from the default as its design says.
std::string LooksOf(const Control& control, const ControlStyle& style) {
    const auto* const picture = dynamic_cast<const PictureBox*>(&control);
    const std::initializer_list<std::pair<bool, std::string>> looks = {
        {!control.Enabled(), "disabled"},
        {!control.Visible(), "hidden"},
        {control.Border() == Border::Static, "thin border"},
        {control.Border() == Border::Sunken, "sunken border"},
        {picture && picture->Loaded(), "with a picture"},
        {!control.ToolTip().empty(), "tool tip " + Quoted(control.ToolTip())},
        {!control.SpokenName().empty(), "named " + Quoted(control.SpokenName())},
        {style.points != ControlStyle{}.points,
         std::to_string(std::lround(style.points)) + " points"},
        {*style.face != '\0', style.face},
        {style.bold, "bold"},
        {style.centred, "centred"},
        {style.verbatim, "verbatim"},
        {style.defaultButton, "default button"},
        {style.cancelButton, "cancel button"},
        {style.holdsFocus, "holds the focus"},
        {style.clickable, "clickable"},
        {style.editable, "editable"},
        {style.ground == Ground::Banner, "banner"},
        {style.ground == Ground::CaptionBar, "caption bar"}};
    std::string text;
    for (const auto& [holds, look] : looks)
        if (holds) text += ", " + look;
    return text;
}

}  // namespace

void Recorder::Describe(const Form& form) {
    const Size& smallest = form.Design().smallest;
    Note(form.Name() + " " + Quoted(form.Caption()) + " " + Numbers(form.Place()) +
         (smallest == Size{} ? ", fixed"
                             : ", at least " + Numbers({0, 0, smallest.width, smallest.height})));
    for (const ControlDesign& row : form.Design().controls) {
        const Control& control = form.ControlOf(row);
        std::string text = FullName(form, control) + " " + Quoted(control.Caption());
        if (control.Kind() != ControlKind::MenuItem) text += " " + Numbers(control.Place());
        if (*row.parent != '\0') text += std::string(" in ") + row.parent;
        Note(text + LooksOf(control, row.style));
        if (const auto* combo = dynamic_cast<const ComboBox*>(&control))
            for (const std::string& item : combo->Items()) Note("    item " + Quoted(item));
        if (const auto* tree = dynamic_cast<const TreeView*>(&control))
            for (const TreeNode& node : tree->Nodes())
                Note("    node " + node.key + " under " + Quoted(node.parent) + " " +
                     Quoted(node.text) + (node.bold ? ", bold" : "") +
                     (node.expanded ? ", expanded" : ""));
        if (const auto* picture = dynamic_cast<const PictureBox*>(&control))
            for (const PictureBox::Printed& printed : picture->PrintedTexts())
                Note("    prints " + Quoted(printed.text) + " at " +
                     Point(printed.left, printed.top) + " in " + printed.fontName);
        if (const auto* terminal = dynamic_cast<const TerminalControl*>(&control))
            if (terminal->FollowOutput()) Note("    follows its output");
    }
}

void Recorder::Opened(const Form& form, NativeWindow window) {
    mForms[window] = &form;
    for (const Control* control : form.Controls()) mSeen[control] = ValuesOf(*control);
}

void Recorder::Closed(const Form& form) {
    Note("unload " + form.Name());
    std::erase_if(mForms, [&form](const auto& entry) { return entry.second == &form; });
}

// What has not been shown yet is no change; the texts and places of a new window are part of the
// tests of windows.
void Recorder::ControlChanged(const Form& form, const Control& control, Property property) {
    auto& seen = mSeen[&control];
    for (const auto& [what, value] : ValuesOf(control))
        if (std::exchange(seen[what], value) != value && form.Visible())
            Note(FullName(form, control) + " " + value);
    if (property == Property::Repaint && control.Kind() == ControlKind::Label && form.Visible())
        Note(FullName(form, control) + " drawn");
    if (property == Property::ZOrder && form.Visible()) Note(FullName(form, control) + " in front");
    if (property == Property::Caption && onText) onText(control.Caption());
}

}  // namespace vantor::traces
