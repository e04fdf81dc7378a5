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
    : mPlatform(platform),
      mErrors({platform.clock, platform.files, platform.folders, platform.boxes, platform.process}),
      mManager(platform.peers, platform.pump) {}

modStartup::~modStartup() {
    SetErrorSink(nullptr);
}

bool modStartup::Main() {
    SetErrorSink(&mErrors);
    mErrors.Title = AppInfo{}.title;
    // Without an application-data folder the reports go to the default file.
    Ignoring([this] { mErrors.Destination(ErrorLogPath(mPlatform.folders)); });
    mErrors.DisplayMsgOnError = true;
    const bool clean = Trapped("modStartup.Main", [this] {
        static bool blnFilterInstalled = false;
        if (!blnFilterInstalled) {
            mPlatform.process.InstallUnhandledExceptionFilter(mErrors.Title);
            blnFilterInstalled = true;
        }
        if (mPlatform.process.AnotherInstanceRuns(mErrors.Title)) return;
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
        const bool found = mPlatform.files.Exists(mHelpFile);
        if (found && mPlatform.shell.Execute({.owner = owner, .verb = "open", .file = mHelpFile}) >=
                         kFirstShellSuccess)
            return;
        const Str complaint = found ? Str::HelpNotOpened : Str::HelpNotFound;
        mPlatform.boxes.Show({.text = mPlatform.strings.Text(complaint),
                              .icon = BoxIcon::Exclamation,
                              .owner = owner});
    });
}

}  // namespace vantor
