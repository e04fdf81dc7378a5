#include "app/modStartup.hpp"

#include "app/base/AppInfo.hpp"
#include "app/base/modSupport.hpp"
#include "app/frmMain.hpp"
#include "platform/Folders.hpp"
#include "platform/Process.hpp"
#include "support/Traps.hpp"

namespace vantor {

modStartup::modStartup(Platform& platform)
    : mPlatform(platform), mDesktop(platform.peers, platform.pump) {}

modStartup::~modStartup() {
    if (mErrors) SetErrorSink(nullptr);
}

bool modStartup::Main() {
    PrepareErrorHandler();
    bool first = true;
    Trapped("modStartup.Main", [&] {
        static bool blnFilterInstalled = false;
        if (!blnFilterInstalled) {
            mPlatform.process.InstallUnhandledExceptionFilter(mErrors->Title);
            blnFilterInstalled = true;
        }
        if (mPlatform.process.AnotherInstanceRuns(mErrors->Title)) {
            first = false;
            return;
        }
        mHelpFile = AppPath(mPlatform.process) + "tswuhelp.chm";
        mMain = std::make_shared<frmMain>(mDesktop, mPlatform);
        mMain->Load();
        mMain->Show(ShowMode::Modeless);
    });
    return first;
}

// Nothing can be reported before the handler stands, so each step's error is passed over.
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
