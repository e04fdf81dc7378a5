#include "app/modStartup.hpp"

#include "app/base/AppInfo.hpp"
#include "app/base/modSupport.hpp"
#include "app/frmMain.hpp"
#include "platform/Files.hpp"
#include "platform/Folders.hpp"
#include "platform/Process.hpp"
#include "platform/Shell.hpp"
#include "platform/StringTable.hpp"
#include "support/Traps.hpp"

namespace vantor {

modStartup::modStartup(Platform& platform)
    : mPlatform(platform), mManager(platform.peers, platform.pump) {}

modStartup::~modStartup() {
    if (mErrors) SetErrorSink(nullptr);
}

bool modStartup::Main() {
    PrepareErrorHandler();
    const bool clean = Trapped("modStartup.Main", [this] {
        static bool blnFilterInstalled = false;
        if (!blnFilterInstalled) {
            mPlatform.process.InstallUnhandledExceptionFilter(mErrors->Title);
            blnFilterInstalled = true;
        }
        if (mPlatform.process.AnotherInstanceRuns(mErrors->Title)) return;
        mHelpFile = AppPath(mPlatform.process) + "tswuhelp.chm";
        mManager.Help = [this](const Form& form) { ShowHelp(form.WindowHandle()); };
        mMain = std::make_shared<frmMain>(mManager, mPlatform);
        mMain->Load();
        mMain->Show(ShowMode::Modeless);
    });
    // A loaded but invisible window would keep the process running, and the single-instance check
    // would end every later start.
    if (!clean && mMain) mMain->Unload();
    return !mManager.OpenForms().empty();
}

void modStartup::ShowHelp(NativeWindow owner) {
    Trapped("modStartup.ShowHelp", [&] {
        // A message box or a process start could delay the reply to a line, so this command is
        // disabled during an update.
        if (!mMain->cmdFlash.Enabled()) return;
        Str complaint = Str::None;
        if (!mPlatform.files.Exists(mHelpFile))
            complaint = Str::HelpNotFound;
        else if (mPlatform.shell.Execute({.owner = owner, .verb = "open", .file = mHelpFile}) <
                 kFirstShellSuccess)
            complaint = Str::HelpNotOpened;
        if (complaint == Str::None) return;
        mPlatform.boxes.Show({.text = mPlatform.strings.Text(complaint),
                              .icon = BoxIcon::Exclamation,
                              .owner = owner});
    });
}

// No error handler is installed yet, so errors in these steps are ignored.
void modStartup::PrepareErrorHandler() {
    Ignoring([this] {
        mErrors = std::make_unique<CErrHandler>(
            CErrHandler::Services{mPlatform.clock, mPlatform.files, mPlatform.folders,
                                  mPlatform.boxes, mPlatform.process});
        SetErrorSink(mErrors.get());
    });
    Ignoring([this] { mErrors->Title = AppInfo{}.title; });
    Ignoring([this] { mErrors->Destination(ErrorLogPath(mPlatform.folders)); });
    Ignoring([this] { mErrors->DisplayMsgOnError = true; });
}

}  // namespace vantor
