// Contract of ChildProcesses and SharedFiles. The child process is this program with the argument
// "child", which `main` recognises.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>

#include "tests/contract/Contract.hpp"

namespace vantor::contract {
namespace {

constexpr int kStatusOfChild = 7;
constexpr int kRecordsOfEach = 25;

std::string RecordOf(const std::string& name) {
    return name + std::string(200, 'x') + "\r\n";
}

/// The child: repeats its arguments, or appends records of a name to a file.
int RunChild(const Words& words) {
    if (words[0] == "append") {
        const ProcessServices services = MakeProcessServices();
        for (int i = 0; i < kRecordsOfEach; ++i)
            services.sharedFiles->Append(words[1], "head\r\n", RecordOf(words[2]));
    }
    if (words[0] == "repeat")
        for (const std::string& word : words) std::cout << word << '|';
    return kStatusOfChild;
}

class ProcessesContract : public testing::Test {
protected:
    std::unique_ptr<ChildProcess> Start(Words words) const {
        words.insert(words.begin(), "child");
        return services.children->Start(services.process->ExecutablePath(), words);
    }
    std::string Ended(ChildProcess& child) const {
        std::string output;
        while (child.Read(output)) services.clock->Sleep(1);
        EXPECT_EQ(child.ExitStatus(), kStatusOfChild);
        return output;
    }

    const ProcessServices services = MakeProcessServices();
    const TemporaryFolder folder;
    const std::string file = folder / "records.csv";
};

TEST_F(ProcessesContract, AChildGetsItsArgumentsAndGivesBackItsOutputAndStatus) {
    EXPECT_EQ(Ended(*Start({"repeat", "", "a b", "\"", "c:\\d e\\", "\\\"f", "g\\\\"})),
              "repeat||a b|\"|c:\\d e\\|\\\"f|g\\\\|");
    EXPECT_EQ(Raised([&] { services.children->Start(folder / "none.exe", {}); }).Number(), 53);
}

TEST_F(ProcessesContract, RecordsOfSeveralProcessesAreWholeBelowOneHeader) {
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (const char* const name : {"a", "b", "c", "d"})
        children.push_back(Start({"append", file, name}));
    for (const auto& child : children) Ended(*child);
    std::map<std::string, int> lines;
    std::ifstream stream(file, std::ios::binary);
    for (std::string line; std::getline(stream, line);) ++lines[line + '\n'];
    std::map<std::string, int> expected = {{"head\r\n", 1}};
    for (const char* const name : {"a", "b", "c", "d"}) expected[RecordOf(name)] = kRecordsOfEach;
    EXPECT_EQ(lines, expected);
}

TEST_F(ProcessesContract, ARecordBeginsALineAndTheHeaderIsThatOfAnEmptyFile) {
    // The record, then what the file has before.
    ExpectTable("contract/records", [this](const Words& words) {
        std::filesystem::remove(file);
        if (words.size() > 1) std::ofstream(file, std::ios::binary) << words[1];
        services.sharedFiles->Append(file, "head\n", words.at(0));
        return ContentOf(file);
    });
    for (const std::string& path : {folder.Path().string(), folder / "none/records.csv"})
        EXPECT_NE(Raised([&] { services.sharedFiles->Append(path, "", "r"); }).Number(), 0) << path;
}

// PosixSubject.cpp and run_under_wine.sh set the time zone.
TEST_F(ProcessesContract, TheMachineIsNamedAndKnowsItsTimeZone) {
    EXPECT_EQ(services.machine->UtcOffsetMinutes(), 330);
    EXPECT_FALSE(services.machine->HostName().empty() || services.machine->UserName().empty());
}

}  // namespace
}  // namespace vantor::contract

int main(int argc, char** argv) {
    if (argc > 2 && std::string_view(argv[1]) == "child")
        return vantor::contract::RunChild({argv + 2, argv + argc});
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
