// A complete platform without a screen. Only the message pump advances its clock:
// one millisecond per pump. Boxes and dialogs are answered from a script and recorded.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Clipboard.hpp"
#include "platform/Clock.hpp"
#include "platform/CommonDialogs.hpp"
#include "platform/FileVersions.hpp"
#include "platform/Folders.hpp"
#include "platform/MessageBoxes.hpp"
#include "platform/Peers.hpp"
#include "platform/Pictures.hpp"
#include "platform/Platform.hpp"
#include "platform/Process.hpp"
#include "platform/Shell.hpp"
#include "platform/headless/HeadlessFiles.hpp"
#include "platform/headless/HeadlessSerial.hpp"
#include "platform/portable/CodePage1252.hpp"
#include "platform/portable/CompiledStrings.hpp"
#include "platform/portable/PolledPump.hpp"
#include "platform/portable/RegistryHive.hpp"
#include "support/errors/RuntimeError.hpp"

namespace vantor {

class HeadlessClock : public Clock {
public:
    std::uint32_t Milliseconds() const override { return mNow; }
    void Sleep(std::uint32_t ms) override { mNow += ms; }
    DateTime Now() const override { return {2026, 11, 24, 21, 18, 5}; }
    std::int64_t LocalMilliseconds() const override { return kStartMs + mNow; }
    void Set(std::uint32_t ms) { mNow = ms; }

private:
    static constexpr std::int64_t kStartMs = 1'795'555'084'000;  // a second before that `Now`

    std::uint32_t mNow = 1000;
};

class HeadlessPump : public PolledPump {
public:
    explicit HeadlessPump(HeadlessClock& clock) : PolledPump(clock) {}

    void PumpPending() override {
        ++pumps;
        mClock.Sleep(1);
        PolledPump::PumpPending();
    }

    TimerId StartTimer(std::uint32_t intervalMs, std::function<void()> tick) override {
        if (refuse) throw RuntimeError(ErrorNumber::OutOfMemory);
        return PolledPump::StartTimer(intervalMs, std::move(tick));
    }

    std::uint64_t pumps = 0;
    bool refuse = false;  ///< timers cannot be created

protected:
    void Rest() override {}  // each pump has already advanced the clock
};

class HeadlessDialogs : public CommonDialogs {
public:
    bool OpenFile(FileDialogRecord& record) override { return Answer(record); }
    bool SaveFile(FileDialogRecord& record) override { return Answer(record); }

    std::vector<FileDialogRecord> shown;
    std::deque<std::string> choices;  ///< paths used in order; then every dialog is cancelled

private:
    bool Answer(FileDialogRecord& record);
};

class HeadlessFolders : public Folders {
public:
    std::string ApplicationData() const override { return Home() + "/.config"; }
    std::string PersonalDocuments() const override { return Home() + "/Documents"; }
    std::string Current() const override { return "/home/tech"; }

    std::string home = "/home/tech";  ///< empty: the system has neither folder

private:
    const std::string& Home() const {
        if (home.empty()) throw RuntimeError(ErrorNumber::PathNotFound);
        return home;
    }
};

class HeadlessProcess : public Process {
public:
    const std::vector<std::string>& Arguments() const override { return arguments; }
    std::string ExecutablePath() const override {
        if (executable.empty()) throw RuntimeError(ErrorNumber::FileNotFound);
        return executable;
    }
    bool AnotherInstanceRuns(const std::string& title) override { return title == running; }
    void InstallUnhandledExceptionFilter(const std::string&) override { ++filters; }

    std::vector<std::string> arguments;
    std::string executable = "/opt/vantor/tsupdate";  ///< empty: the system does not report it
    std::string running;                              ///< title of another program of this user
    int filters = 0;
};

/// Draws nothing; records what was shown.
class HeadlessPeers : public Peers {
public:
    /// Raises RuntimeError 7 while `refuse` is set.
    std::unique_ptr<FormPeer> Draw(Form& form) override;
    Size ScreenSize() const override { return {28800, 16200}; }  // 1920 by 1080 at 96 dpi
    void SetMousePointer(MousePointer shape) override { pointer = shape; }

    void HoldSystem(const std::string& reason) override { held = reason; }

    /// The active window: of the open ones, the one shown last; 0 for none.
    NativeWindow Active() const { return mShown.empty() ? 0 : mShown.back(); }

    /// Simulates the user of a modal window; the window returns afterwards.
    std::function<void(Form&)> whileModal;
    std::vector<ThinLine> lines;  ///< drawn on forms
    std::string held;             ///< reason that blocks shutdown; empty when none does
    MousePointer pointer = MousePointer::Default;
    std::vector<std::string> open;     ///< names of the forms that have a peer now
    bool refuse = false;               ///< windows cannot be created
    Size terminalCell = {120, 270};    ///< of a terminal's font
    std::optional<Place> normalPlace;  ///< of a minimised form
    /// Called on every change of a control's property.
    std::function<void(const Control&, Property)> onChange;

private:
    friend class HeadlessPeer;
    std::vector<NativeWindow> mShown;
    NativeWindow mLastHandle = 0;
};

class HeadlessMessageBoxes : public MessageBoxes {
public:
    explicit HeadlessMessageBoxes(const HeadlessPeers& peers) : mPeers(peers) {}

    BoxAnswer Show(const MessageBoxRequest& request) override;
    void Beep() override { ++beeps; }

    std::vector<MessageBoxRequest> shown;  ///< with the owner that each box had
    std::deque<BoxAnswer> answers;         ///< taken one by one; then Yes, or Ok
    /// Runs while a box is open, to simulate events meanwhile.
    std::function<void(const MessageBoxRequest&)> whileOpen;
    int beeps = 0;

private:
    const HeadlessPeers& mPeers;
};

/// Accepts any file whose header is that of a picture, except one marked as damaged.
class HeadlessPictures : public Pictures {
public:
    explicit HeadlessPictures(const Files& files) : mFiles(files) {}
    std::shared_ptr<const Picture> Load(const std::string& path) override {
        if (mFiles.ReadAll(path).find("damaged") != std::string::npos)
            throw RuntimeError(ErrorNumber::InvalidPicture);
        return std::make_shared<Picture>();
    }

private:
    const Files& mFiles;
};

/// Records the requests to open something.
class HeadlessShell : public Shell {
public:
    std::int32_t Execute(const ShellRequest& request) override {
        asked.push_back(request);
        return code;
    }
    std::int32_t Start(const ShellRequest& request, ShellProcess& process) override {
        asked.push_back(request);
        process = ++mLastProcess;
        running = true;
        return code;
    }
    bool IsActive(ShellProcess process) const override {
        return process == mLastProcess && running;
    }
    void Release(ShellProcess process) override {
        if (process != 0) ++released;
    }

    std::vector<ShellRequest> asked;
    std::int32_t code = 42;  ///< what the next launches return
    bool running = false;
    int released = 0;

private:
    ShellProcess mLastProcess = 0;
};

/// Version resources of the files in `resources`. The block of a file is its path.
class HeadlessVersions : public FileVersions {
public:
    struct Resource {
        std::uint16_t language = 0;
        std::uint16_t codePage = 0;
        std::map<std::string, std::string> strings;  ///< by sub-block
    };

    std::uint32_t BlockSize(const std::string& path) const override {
        return resources.contains(path) ? static_cast<std::uint32_t>(path.size()) : 0;
    }
    bool ReadBlock(const std::string& path, std::vector<char>& block) const override;
    bool QueryTranslation(const std::vector<char>& block, std::uint16_t& language,
                          std::uint16_t& codePage) const override;
    bool QueryString(const std::vector<char>& block, const std::string& subBlock,
                     std::string& value) const override;

    std::map<std::string, Resource> resources;  ///< by path

private:
    const Resource& Of(const std::vector<char>& block) const {
        return resources.at({block.begin(), block.end()});
    }
};

/// Services that replace headless ones; those that are null do not.
struct Replacements {
    MessageBoxes* boxes = nullptr;
    Clock* clock = nullptr;
    CommonDialogs* dialogs = nullptr;
    Files* files = nullptr;
    MessagePump* pump = nullptr;
    Peers* peers = nullptr;
    Pictures* pictures = nullptr;
    SerialPorts* ports = nullptr;
    Shell* shell = nullptr;
};

struct HeadlessPlatform {
    explicit HeadlessPlatform(Language language = Language::English)
        : strings(language), platform(With({})) {}

    /// This platform with `replacements`, which must outlive the result.
    Platform With(const Replacements& replacements);

    MemoryClipboard clipboard;
    HeadlessClock clock;
    HeadlessPump pump{clock};
    CodePage1252 codePage;
    HeadlessDialogs dialogs;
    HeadlessFiles files;
    HeadlessVersions versions;
    HeadlessFolders folders;
    HeadlessPeers peers;
    HeadlessMessageBoxes boxes{peers};
    HeadlessPictures pictures{files};
    HeadlessProcess process;
    RegistryHive registry;
    HeadlessSerialPorts ports{pump};
    HeadlessShell shell;
    CompiledStrings strings;

    Platform platform;
};

}  // namespace vantor
