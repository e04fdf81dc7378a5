#include "tests/driver/Script.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "platform/win32/services/Windows.hpp"

namespace vantor::driver {
namespace {

constexpr unsigned kPatienceMs = 100'000;

}  // namespace

bool Comes(const std::function<bool()>& condition, unsigned patienceMs) {
    const ULONGLONG start = GetTickCount64();
    while (!condition()) {
        if (GetTickCount64() - start > patienceMs) return false;
        Sleep(5);
    }
    return true;
}

void Await(const std::string& what, const std::function<bool()>& condition) {
    if (!Comes(condition, kPatienceMs)) throw std::runtime_error("waited in vain for: " + what);
}

std::string Setting(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string FileOfRun(const char* name) {
    return Setting("DRIVE_FOLDER") + "\\" + name;
}

std::string Content(const char* name) {
    std::ifstream file(FileOfRun(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void Ask(const std::string& words) {
    const std::string request = FileOfRun("request");
    std::ofstream(request + ".part", std::ios::binary) << words << '\n';
    std::filesystem::rename(request + ".part", request);
    Await("the script to: " + words, [&] { return !std::filesystem::exists(request); });
}

int Indicator::Wait() {
    Await("the end of the indicator",
          [] { return std::filesystem::exists(FileOfRun("indicator.status")); });
    return std::stoi(Content("indicator.status"));
}

std::string Indicator::Passed(char direction) {
    std::istringstream log(Content("indicator.log"));
    std::string passed;
    for (std::string line; std::getline(log, line);) {
        const std::size_t at = line.find_first_of("<>-");
        if (at != std::string::npos && line[at] == direction) passed += line.substr(at + 2);
    }
    return passed;
}

}  // namespace vantor::driver
