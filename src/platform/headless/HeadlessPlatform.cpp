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
    Size TerminalSize(const Control&, int columns, int rows) const override {
        constexpr Size kEdges = {600, 375};
        const Size& cell = mPeers.terminalCell;
        return {kEdges.width + cell.width * static_cast<float>(columns),
                kEdges.height + cell.height * static_cast<float>(rows)};
    }
    std::optional<Place> NormalPlace() const override { return mPeers.normalPlace; }
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

bool HeadlessVersions::ReadBlock(const std::string& path, std::vector<char>& block) const {
    block.assign(path.begin(), path.end());
    return resources.contains(path);
}

bool HeadlessVersions::QueryTranslation(const std::vector<char>& block, std::uint16_t& language,
                                        std::uint16_t& codePage) const {
    language = Of(block).language;
    codePage = Of(block).codePage;
    return true;
}

bool HeadlessVersions::QueryString(const std::vector<char>& block, const std::string& subBlock,
                                   std::string& value) const {
    const Resource& resource = Of(block);
    const auto found = resource.strings.find(subBlock);
    if (found == resource.strings.end()) return false;
    value = found->second;
    return true;
}

std::unique_ptr<FormPeer> HeadlessPeers::Draw(Form& form) {
    if (refuse) throw RuntimeError(ErrorNumber::OutOfMemory);
    return std::make_unique<HeadlessPeer>(*this, form);
}

Platform HeadlessPlatform::With(const Replacements& replacements) {
    const auto oneOf = [](auto* replacement, auto& own) -> auto& {
        return replacement != nullptr ? *replacement : own;
    };
    return {.clipboard = clipboard,
            .clock = oneOf(replacements.clock, clock),
            .codePage = codePage,
            .dialogs = oneOf(replacements.dialogs, dialogs),
            .files = oneOf(replacements.files, files),
            .versions = versions,
            .folders = folders,
            .boxes = oneOf(replacements.boxes, boxes),
            .pump = oneOf(replacements.pump, pump),
            .peers = oneOf(replacements.peers, peers),
            .pictures = oneOf(replacements.pictures, pictures),
            .process = process,
            .registry = registry,
            .ports = oneOf(replacements.ports, ports),
            .shell = oneOf(replacements.shell, shell),
            .strings = strings};
}

}  // namespace vantor
