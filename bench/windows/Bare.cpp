// Minimal Windows program with the C++ runtime (GUI entry point, strings, exceptions): the size
// reference for tsupdate.exe. It is not run.
#include "platform/win32/Windows.hpp"

#include <stdexcept>
#include <string>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t* line, int) {
    try {
        throw std::runtime_error(std::to_string(std::wstring(line).size()));
    } catch (const std::exception& error) {
        return static_cast<int>(std::string(error.what()).size());
    }
}
