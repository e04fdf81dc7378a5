// One test per scenario (*.trace) and per script of a terminal (*.terminal): runs the file and
// compares what comes about with what it states. `trace_tests --accept` writes that into the files
// instead, for review as a change of behaviour.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/Words.hpp"
#include "tests/traces/Scenario.hpp"

namespace vantor::traces {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSeparator = "---\n";

bool accept = false;

class TraceTest : public testing::Test {
public:
    explicit TraceTest(fs::path file) : mFile(std::move(file)) {}

    void TestBody() override {
        const std::string text = ContentOf(mFile.string());
        const std::string now = Rerun(text);
        if (accept)
            std::ofstream(mFile, std::ios::binary) << now;
        else
            EXPECT_EQ(text, now);
    }

private:
    /// The text of the file with what it expects written anew.
    std::string Rerun(const std::string& text) const {
        if (mFile.extension() == ".trace") {
            const std::string script = text.substr(0, text.find(kSeparator));
            return script + kSeparator + RunScenario(script);
        }
        const std::string now = RunTerminal(text, false);
        EXPECT_EQ(now, RunTerminal(text, true)) << "received byte by byte";
        return now;
    }

    fs::path mFile;
};

}  // namespace
}  // namespace vantor::traces

int main(int argc, char** argv) {
    using namespace vantor::traces;
    testing::InitGoogleTest(&argc, argv);
    accept = argc == 2 && argv[1] == std::string("--accept");
    std::vector<fs::path> files;
    for (const char* const folder : {TESTS "/traces", TESTS "/terminal"})
        for (const auto& entry : fs::directory_iterator(folder))
            if (const fs::path& file = entry.path();
                file.extension() == ".trace" || file.extension() == ".terminal")
                files.push_back(file);
    std::ranges::sort(files);
    for (const fs::path& file : files)
        testing::RegisterTest("Trace", file.stem().string().c_str(), nullptr, nullptr, __FILE__,
                              __LINE__, [file]() -> testing::Test* { return new TraceTest(file); });
    return files.empty() ? 1 : RUN_ALL_TESTS();
}
