// Message boxes, file dialogs and modal windows while they are open.
#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "dialogs/frmAbout.hpp"
#include "dialogs/frmStatus.hpp"
#include "platform/win32/services/Win32Services.hpp"
#include "tests/windows/RealWindows.hpp"

#include <dlgs.h>

namespace vantor {
namespace {

const std::string kTitle = "A dialog of this test";

class Dialogs : public OnRealWindows {
protected:
    Dialogs() {
        owner->Show();
        other->Show();
        SetActiveWindow(WindowOf(*owner));
    }
    ~Dialogs() override {
        other->Unload();
        owner->Unload();
    }

    /// Calls `show`, and `use` with the dialog that opens.
    void Run(const std::function<void()>& show, const std::function<void(HWND)>& use) {
        bool used = false;
        const TimerId timer = platform.queue.StartTimer(10, [&] {
            const HWND dialog = FindWindowW(nullptr, ToWide(kTitle).c_str());
            if (IsWindowVisible(dialog) != 0 && !std::exchange(used, true)) use(dialog);
        });
        show();
        platform.queue.StopTimer(timer);
        EXPECT_TRUE(used);
    }

    std::shared_ptr<Form> owner = std::make_shared<frmStatus>(platform.manager, platform.strings);
    std::shared_ptr<Form> other = std::make_shared<frmStatus>(platform.manager, platform.strings);
    std::unique_ptr<MessageBoxes> boxes = MakeWin32MessageBoxes(kTitle);
    std::unique_ptr<CommonDialogs> dialogs = MakeWin32CommonDialogs();
};

TEST_F(Dialogs, EachBelongsToItsOwnerAndDisablesItAndEveryOtherWindow) {
    const NativeWindow window = owner->WindowHandle();
    FileDialogRecord record;
    record.title = kTitle;
    record.owner = window;
    const auto modal = [this](const Form* above) {
        const auto about = std::make_shared<frmAbout>(platform.manager, platform.strings);
        about->Load();
        about->Caption(kTitle);
        about->Show(ShowMode::Modal, above);
    };
    const std::function<void()> kShows[] = {
        [&] { boxes->Show({.text = "With an owner", .owner = window}); },
        [&] { boxes->Show({.text = "For the window in use"}); },
        [&] { dialogs->OpenFile(record); },
        [&] { dialogs->SaveFile(record); },
        [&] { modal(owner.get()); },
        [&] { modal(nullptr); }};
    int row = 0;
    for (const auto& show : kShows) {
        SCOPED_TRACE(row++);
        Run(show, [&](HWND dialog) {
            EXPECT_EQ(GetWindow(dialog, GW_OWNER), WindowOf(*owner));
            EXPECT_FALSE(IsWindowEnabled(WindowOf(*owner))) << "the owner";
            EXPECT_FALSE(IsWindowEnabled(WindowOf(*other))) << "another window";
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        });
        EXPECT_TRUE(IsWindowEnabled(WindowOf(*owner)) && IsWindowEnabled(WindowOf(*other)));
    }
    other->Show();  // again
    EXPECT_EQ(GetActiveWindow(), WindowOf(*other));
}

TEST_F(Dialogs, ABoxHasTheWantedTextIconAndButtonsAndReturnsTheAnswer) {
    constexpr int kIcon = 1088;
    constexpr int kText = 0xffff;
    const struct {
        BoxIcon icon;
        const wchar_t* system;
        BoxButtons buttons;
        int press;
        BoxAnswer answer;
    } kRows[] = {{BoxIcon::None, nullptr, BoxButtons::Ok, IDOK, BoxAnswer::Ok},
                 {BoxIcon::Critical, IDI_ERROR, BoxButtons::YesNo, IDYES, BoxAnswer::Yes},
                 {BoxIcon::Question, IDI_QUESTION, BoxButtons::YesNo, IDNO, BoxAnswer::No},
                 {BoxIcon::Exclamation, IDI_WARNING, BoxButtons::Ok, IDOK, BoxAnswer::Ok},
                 {BoxIcon::Information, IDI_INFORMATION, BoxButtons::YesNoCancel, IDCANCEL,
                  BoxAnswer::Cancel}};
    for (const auto& row : kRows) {
        BoxAnswer answer{};
        Run(
            [&] {
                answer = boxes->Show({.text = "Año",
                                      .icon = row.icon,
                                      .buttons = row.buttons,
                                      .declinesByDefault = row.press == IDNO});
            },
            [&](HWND box) {
                EXPECT_EQ(driver::TextOf(GetDlgItem(box, kText)), "Año");
                EXPECT_EQ(SendDlgItemMessageW(box, kIcon, STM_GETICON, 0, 0),
                          reinterpret_cast<LRESULT>(
                              row.system == nullptr ? nullptr : LoadIconW(nullptr, row.system)));
                EXPECT_EQ(GetDlgItem(box, IDCANCEL) != nullptr, row.press == IDCANCEL);
                EXPECT_EQ(GetDlgCtrlID(GetFocus()), row.press == IDCANCEL ? IDYES : row.press);
                driver::PressIn(box, row.press);
            });
        EXPECT_EQ(answer, row.answer);
    }
}

TEST_F(Dialogs, AFileDialogStartsInItsFolderWithItsFilterAndASavedNameGetsTheExtension) {
    const std::string folder = std::filesystem::temp_directory_path().string();
    const std::wstring current = CurrentFolder();
    for (const bool save : {false, true}) {
        FileDialogRecord record;
        record.title = kTitle;
        record.initialFolder = folder;
        record.defaultExtension = ".txt";
        record.filter = std::string("Texts\0*.txt\0All\0*.*\0", 20);
        record.filterIndex = 2;
        bool chosen = false;
        Run([&] { chosen = save ? dialogs->SaveFile(record) : dialogs->OpenFile(record); },
            [&](HWND dialog) {
                EXPECT_EQ(driver::TextOf(GetDlgItem(dialog, cmb1)), "All");
                driver::Fill(dialog, save ? "año" : "año.txt");
            });
        EXPECT_TRUE(chosen);
        EXPECT_EQ(record.file.c_str(), folder + "año.txt");
        EXPECT_STREQ(record.fileTitle.c_str(), "año.txt");
        EXPECT_EQ(CurrentFolder(), current);
    }
}

}  // namespace
}  // namespace vantor
