// Runs the scripts of tsflash.sessions: tsflash against m40sim over a pseudo-terminal, as processes
// of their own. README.md describes the words of a script.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <list>
#include <map>
#include <optional>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "console/Json.hpp"
#include "tests/TemporaryFolder.hpp"
#include "tests/Words.hpp"
#include "tests/faults/Images.hpp"
#include "tests/pty/Child.hpp"

namespace vantor {
namespace {

namespace fs = std::filesystem;

class Session : public testing::Test {
public:
    explicit Session(Words lines) : mLines(std::move(lines)) {
        setenv("XDG_CONFIG_HOME", mFolder.Path().c_str(), 1);
        setenv("LC_ALL", "C.UTF-8", 1);
        WriteImage({"40"});
    }

    void TestBody() override {
        for (const std::string& line : mLines) {
            SCOPED_TRACE(line);
            Perform(WordsOf(Replaced(line, "$F", mFolder.Path().string())));
        }
    }

private:
    using Verb = void (*)(Session&, const Words&);

    void Perform(const Words& words) {
        Verbs().at(words.at(0))(*this, Words(words.begin() + 1, words.end()));
    }
    static const std::map<std::string, Verb>& Verbs();

    void WriteImage(const Words& parts) const {
        std::ofstream(mImage, std::ios::binary) << ImageFrom(parts);
    }

    void StartIndicator(const Words& options) {
        Words command = {TOOLS_FOLDER "/m40sim", "--image", mImage};
        command.insert(command.end(), options.begin(), options.end());
        mIndicator.emplace(command);
        if (!mIndicator->WaitFor("\n")) throw std::runtime_error("m40sim does not start");
        mPort = mIndicator->Out().substr(6, mIndicator->Out().find('\n') - 6);
    }

    void Start(const Words& options, Child::Output output) {
        Words command = {TOOLS_FOLDER "/tsflash"};
        if (!mPort.empty()) command.insert(command.end(), {"--port", mPort});
        command.insert(command.end(), options.begin(), options.end());
        command.push_back(mImage);
        mRuns.emplace_back(command, output);
    }

    /// Waits for the end of the run that was started last. On a busy machine replies may be late
    /// without a fault, so the hint at late replies becomes a text of its own.
    void End(int status) {
        EXPECT_EQ(mRuns.back().Wait(), status);
        mTexts = {{"out", mRuns.back().Out()}, {"err", mRuns.back().Err()}, {"hint", ""}};
        mRuns.pop_back();
        std::string& err = mTexts["err"];
        const std::size_t at = err.find("The replies arrive");
        if (at == std::string::npos) return;
        mTexts["hint"] = err.substr(at, err.find('\n', at) + 1 - at);
        err.erase(at, mTexts["hint"].size());
    }

    /// Checks a text as the words "is TEXT", "has TEXT", "lacks TEXT" or "matches TEXT" say.
    static void Check(const std::string& actual, const std::string& how, const std::string& text) {
        const bool has = actual.find(text) != std::string::npos;
        const bool expected = how == "is"      ? actual == text
                              : how == "lacks" ? !has
                              : how == "has"   ? has
                                               : std::regex_search(actual, std::regex(text));
        EXPECT_TRUE(expected) << actual;
    }

    /// Requires that all output is JSON of this port, and of `event` a count and, in the last one,
    /// values of members.
    void CheckJson(const Words& words) {
        std::istringstream out(mTexts["out"]);
        int count = 0;
        std::map<std::string, std::string> last;
        for (std::string line; std::getline(out, line);) {
            const auto members = JsonMembers(line);
            ASSERT_TRUE(members) << line;
            EXPECT_EQ(members->at("port"), mPort);
            if (members->at("event") != words.at(0)) continue;
            last = *members;
            ++count;
        }
        EXPECT_EQ(count, std::stoi(words.at(1)));
        for (std::size_t i = 2; i < words.size(); i += 2)
            EXPECT_EQ(last[words[i]], words.at(i + 1));
    }

    const Words mLines;
    const TemporaryFolder mFolder;
    const std::string mImage = mFolder / "image.run";
    std::string mPort;
    std::optional<Child> mIndicator;
    std::list<Child> mRuns;  ///< that have not been waited for
    std::map<std::string, std::string> mTexts;
};

const std::map<std::string, Session::Verb>& Session::Verbs() {
    using S = Session;
    using W = const Words;
    static const std::map<std::string, Verb> kVerbs = {
        {"image", [](S& s, W& w) { s.WriteImage(w); }},
        {"indicator", [](S& s, W& w) { s.StartIndicator(w); }},
        {"port", [](S& s, W& w) { s.mPort = w.at(0); }},
        {"flash", [](S& s, W& w) { s.Start(w, Child::Output::Pipes); }},
        {"terminal", [](S& s, W& w) { s.Start(w, Child::Output::Terminal); }},
        {"closed", [](S& s, W& w) { s.Start(w, Child::Output::None); }},
        {"times",
         [](S& s, W& w) {
             for (int i = std::stoi(w.at(0)); i > 0; --i) s.Perform({w.begin() + 1, w.end()});
         }},
        {"waits",
         [](S& s, W& w) {
             if (!s.mRuns.back().WaitFor(w.at(0))) throw std::runtime_error("waits in vain");
         }},
        {"signal", [](S& s, W& w) { s.mRuns.back().Signal(std::stoi(w.at(0))); }},
        {"types", [](S& s, W& w) { s.mRuns.back().Type(w.at(0)); }},
        {"hangs-up", [](S& s, W&) { s.mRuns.back().HangUp(); }},
        {"vanishes", [](S& s, W&) { s.mIndicator.reset(); }},
        {"ends",
         [](S& s, W& w) {
             s.End(std::stoi(w.at(0)));
             if (w.size() > 1) Check(s.mTexts["err"], "has", w[1]);
         }},
        {"indicator-ends",
         [](S& s, W& w) {
             EXPECT_EQ(s.mIndicator->Wait(), std::stoi(w.at(0)));
             EXPECT_EQ(s.mIndicator->Err(), w.size() > 1 ? w[1] : "") << "a protocol violation";
         }},
        {"out", [](S& s, W& w) { Check(s.mTexts["out"], w.at(0), w.at(1)); }},
        {"err", [](S& s, W& w) { Check(s.mTexts["err"], w.at(0), w.at(1)); }},
        {"hint", [](S& s, W& w) { Check(s.mTexts["hint"], w.at(0), w.at(1)); }},
        {"file", [](S&, W& w) { Check(ContentOf(w.at(0)), w.at(1), w.at(2)); }},
        {"json", [](S& s, W& w) { s.CheckJson(w); }},
        {"writes",
         [](S&, W& w) {
             fs::create_directories(fs::path(w.at(0)).parent_path());
             std::ofstream(w[0], std::ios::binary) << w.at(1);
         }},
        {"removes", [](S&, W& w) { fs::remove(w.at(0)); }},
        {"hard-link", [](S& s, W& w) { fs::create_hard_link(s.mImage, w.at(0)); }},
        {"soft-link", [](S& s, W& w) { fs::create_symlink(s.mImage, w.at(0)); }},
    };
    return kVerbs;
}

}  // namespace
}  // namespace vantor

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const auto scripts = vantor::ScriptsIn(SESSIONS);
    for (const auto& [title, lines] : scripts)
        testing::RegisterTest(
            "TsFlash", title.c_str(), nullptr, nullptr, __FILE__, __LINE__,
            [lines = lines]() -> testing::Test* { return new vantor::Session(lines); });
    return scripts.empty() ? 1 : RUN_ALL_TESTS();
}
