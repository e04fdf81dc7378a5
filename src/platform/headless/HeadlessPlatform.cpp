#include "platform/headless/HeadlessPlatform.hpp"

#include "controls/Form.hpp"
#include "support/text/Text.hpp"

namespace vantor {

class HeadlessPeer : public FormPeer {
public:
    HeadlessPeer(HeadlessPeers& peers, Form& form)
        : mPeers(peers), mForm(form), mName(form.Name()), mHandle(++peers.mLastHandle) {
        mPeers.open.push_back(mName);
    }
    ~HeadlessPeer() override {
        std::erase(mPeers.open, mName);
        std::erase(mPeers.mShown, mHandle);
    }
    HeadlessPeer(const HeadlessPeer&) = delete;
    HeadlessPeer& operator=(const HeadlessPeer&) = delete;

    void Show(ShowMode mode, NativeWindow) override {
        std::erase(mPeers.mShown, mHandle);
        mPeers.mShown.push_back(mHandle);
        if (mode == ShowMode::Modal && mPeers.whileModal) mPeers.whileModal(mForm);
    }
    void FormChanged(Property) override {}
    void ControlChanged(const Control& control, Property property) override {
        const auto told = mPeers.onChange;  // it may replace itself while it runs
        if (told) told(control, property);
    }
    void DrawLine(const ThinLine& line) override { mPeers.lines.push_back(line); }
    // A fixed letter width: the results of tests depend on no font.
    Size TextSize(const Control&, const std::string&, const std::string& text) const override {
        constexpr float kLetter = 100;
        constexpr float kLine = 200;
        return {kLetter * static_cast<float>(text.size()), kLine};
    }
    NativeWindow WindowHandle() const override { return mHandle; }

private:
    HeadlessPeers& mPeers;
    Form& mForm;
    std::string mName;
    NativeWindow mHandle;
};

BoxAnswer HeadlessMessageBoxes::Show(const MessageBoxRequest& request) {
    shown.push_back(request);
    if (request.owner == 0) shown.back().owner = mPeers.Active();
    if (whileOpen) whileOpen(request);
    if (answers.empty()) return request.buttons == BoxButtons::Ok ? BoxAnswer::Ok : BoxAnswer::Yes;
    const BoxAnswer answer = answers.front();
    answers.pop_front();
    return answer;
}

bool HeadlessDialogs::Answer(FileDialogRecord& record) {
    shown.push_back(record);
    if (choices.empty()) return false;
    record.file = choices.front() + std::string(2, '\0');
    record.fileTitle = std::string(FileNameOf(choices.front())) + std::string(2, '\0');
    choices.pop_front();
    return true;
}

std::shared_ptr<const Picture> HeadlessPictures::Load(const std::string& path) {
    if (mFiles.ReadAll(path).find("damaged") != std::string::npos)
        throw RuntimeError(ErrorNumber::InvalidPicture);
    return std::make_shared<Picture>();
}

const std::string& HeadlessFolders::Home() const {
    if (home.empty()) throw RuntimeError(ErrorNumber::PathNotFound);
    return home;
}

std::string HeadlessProcess::ExecutablePath() const {
    if (executable.empty()) throw RuntimeError(ErrorNumber::FileNotFound);
    return executable;
}

std::unique_ptr<FormPeer> HeadlessPeers::Draw(Form& form) {
    if (refuse) throw RuntimeError(ErrorNumber::OutOfMemory);
    return std::make_unique<HeadlessPeer>(*this, form);
}

HeadlessPlatform::HeadlessPlatform(Language language)
    : strings(language),
      platform{.clipboard = clipboard,
               .clock = clock,
               .codePage = codePage,
               .dialogs = dialogs,
               .files = files,
               .versions = versions,
               .folders = folders,
               .boxes = boxes,
               .pump = pump,
               .peers = peers,
               .pictures = pictures,
               .process = process,
               .registry = registry,
               .ports = ports,
               .shell = shell,
               .strings = strings} {}

}  // namespace vantor
