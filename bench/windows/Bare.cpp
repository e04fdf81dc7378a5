// The least that any program of this kind brings along: a window's entry point, texts, and an error
// that is thrown and caught. Measures are taken of its size alone.
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
