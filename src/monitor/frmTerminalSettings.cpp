#include "monitor/frmTerminalSettings.hpp"

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "app/base/LoadResources.hpp"
#include "platform/StringTable.hpp"
#include "resources/Designs.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

using Texts = std::initializer_list<Str>;  // of the values of an option, in their order

}  // namespace

frmTerminalSettings::frmTerminalSettings(WindowManager& manager, const StringTable& strings,
                                         const TerminalOptions& options)
    : Form(manager, kTerminalSettingsWindowDesign), mStrings(strings), mOptions(options) {
    cmdOK.Click.Connect([this] { cmdOK_Click(); });
    cmdCancel.Click.Connect(
        [this] { Trapped("frmTerminalSettings.cmdCancel_Click", [this] { Unload(); }); });
}

/// Calls `visit(list, option, texts)` for each list.
template <typename Visit>
void frmTerminalSettings::ForEachList(Visit&& visit) {
    using enum Str;
    visit(cboEnterKey, mOptions.enterKey, Texts{EnterSendsCr, EnterSendsLf, EnterSendsCrLf});
    visit(cboBackspaceKey, mOptions.backspaceKey, Texts{BackspaceSendsBs, BackspaceSendsDel});
    visit(cboBreakKey, mOptions.breakKey, Texts{OptionOff, OptionOn});
    visit(cboLocalEcho, mOptions.localEcho, Texts{OptionOff, OptionOn});
    visit(cboPastePace, mOptions.pastePace, Texts{PasteAtOnce, PasteByLine});
    visit(cboLongPaste, mOptions.askBeforeLongPaste, Texts{OptionOff, OptionOn});
    visit(cboReturnFeeds, mOptions.returnFeeds, Texts{OptionOff, OptionOn});
    visit(cboAnswers, mOptions.answersQueries, Texts{OptionOff, OptionOn});
    visit(cboNotation, mOptions.controlNotation, Texts{NotationPictures, NotationNumbers});
    visit(cboCaptureStamps, mOptions.captureTimeStamps, Texts{OptionOff, OptionOn});
    visit(cboReopens, mOptions.reopens, Texts{OptionOff, OptionOn});
}

void frmTerminalSettings::Form_Load() {
    Trapped("frmTerminalSettings.Form_Load", [this] {
        LoadResources(*this, mStrings);
        ForEachList([this](ComboBox& list, auto option, Texts texts) {
            std::vector<std::string> items;
            for (const Str text : texts) items.push_back(mStrings.Text(text));
            list.Items(std::move(items));
            list.ListIndex(static_cast<int>(option));
        });
    });
}

void frmTerminalSettings::cmdOK_Click() {
    Trapped("frmTerminalSettings.cmdOK_Click", [this] {
        ForEachList([](const ComboBox& list, auto& option, Texts) {
            option = static_cast<std::remove_reference_t<decltype(option)>>(list.ListIndex());
        });
        mChosen = mOptions;
        Unload();
    });
}

}  // namespace vantor
