// One test per scenario file: runs its script and compares the trace, line by line, with the
// expected one below "---". `trace_tests --accept` writes the traces into the files instead, for
// review as a change of behaviour.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/traces/Scenario.hpp"

namespace vantor::traces {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSeparator = "---\n";

bool accept = false;

std::string ReadText(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class TraceTest : public testing::Test {
public:
    explicit TraceTest(fs::path file) : mFile(std::move(file)) {}

    void TestBody() override {
        const std::string text = ReadText(mFile);
        const std::size_t separator = text.find(kSeparator);
        ASSERT_TRUE(accept || separator != std::string::npos) << "has no expected trace";
        const std::string script = text.substr(0, separator);
        const std::string trace = RunScenario(script);
        if (accept)
            std::ofstream(mFile, std::ios::binary) << script << kSeparator << trace;
        else
            EXPECT_EQ(text.substr(separator + std::string(kSeparator).size()), trace);
    }

private:
    fs::path mFile;
};

}  // namespace
}  // namespace vantor::traces

int main(int argc, char** argv) {
    using namespace vantor::traces;
    testing::InitGoogleTest(&argc, argv);
    accept = argc == 2 && argv[1] == std::string("--accept");
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(SCENARIOS))
        if (entry.path().extension() == ".trace") files.push_back(entry.path());
    std::ranges::sort(files);
    for (const fs::path& file : files)
        testing::RegisterTest("Trace", file.stem().string().c_str(), nullptr, nullptr, __FILE__,
                              __LINE__, [file]() -> testing::Test* { return new TraceTest(file); });
    return files.empty() ? 1 : RUN_ALL_TESTS();
}
