#include "tests/e2e/Pictures.hpp"

#include "platform/win32/Windows.hpp"

#include <objidl.h>

#include <gdiplus.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>

#include "tests/ProgramFile.hpp"
#include "tests/e2e/App.hpp"

namespace vantor::e2e {
namespace {

// The whole prefix's handler: Wine does not look at that of the user. What was there waits under
// another name.
constexpr wchar_t kHandler[] = L"http";
constexpr wchar_t kBefore[] = L"http-before-the-tests";
constexpr char kOpen[] = "--open";

std::filesystem::path Folder() {
    return std::filesystem::path(Setting("APPDATA")) / "TSMR" / "CALDOR" / "cache";
}

void MoveKey(const wchar_t* from, const wchar_t* to) {
    HKEY target = nullptr;
    RegDeleteTreeW(HKEY_CLASSES_ROOT, to);
    RegCreateKeyExW(HKEY_CLASSES_ROOT, to, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &target,
                    nullptr);
    RegCopyTreeW(HKEY_CLASSES_ROOT, from, target);
    RegCloseKey(target);
    RegDeleteTreeW(HKEY_CLASSES_ROOT, from);
}

void RestoreHandler() {
    HKEY before = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, kBefore, 0, KEY_READ, &before) != ERROR_SUCCESS) return;
    RegCloseKey(before);
    MoveKey(kBefore, kHandler);
}

CLSID EncoderOf(const std::string& kind) {
    static const std::map<std::string, const wchar_t*> kTypes = {
        {"jpg", L"image/jpeg"}, {"bmp", L"image/bmp"}, {"png", L"image/png"}};
    UINT count = 0;
    UINT bytes = 0;
    Gdiplus::GetImageEncodersSize(&count, &bytes);
    std::vector<char> room(bytes);
    auto* const encoders = reinterpret_cast<Gdiplus::ImageCodecInfo*>(room.data());
    Gdiplus::GetImageEncoders(count, bytes, encoders);
    for (UINT i = 0; i < count; ++i)
        if (std::wstring(encoders[i].MimeType) == kTypes.at(kind)) return encoders[i].Clsid;
    throw std::runtime_error("no encoder for " + kind);
}

/// A GIF of the colours red and blue. Its codes have a byte each, since they start anew before they
/// would grow; the system's own encoder writes no pixels here.
std::string GifOf(int width, int height) {
    constexpr char kStartAnew = '\x80';
    constexpr char kEnd = '\x81';
    std::string codes;
    for (int i = 0; i < width * height; ++i) {
        if (i % 100 == 0) codes += kStartAnew;
        codes += i % width < width / 2 ? '\0' : '\1';
    }
    codes += kEnd;
    std::string palette = std::string("\xFF\0\0\0\0\xFF", 6);
    palette.resize(3 * 128);
    std::string gif = "GIF89a" + U16(static_cast<std::size_t>(width)) +
                      U16(static_cast<std::size_t>(height)) + std::string("\xF6\0\0", 3) + palette;
    gif += "," + U32(0) + gif.substr(6, 4) + std::string("\0\7", 2);
    for (std::size_t at = 0; at < codes.size(); at += 255) {
        const std::string block = codes.substr(at, 255);
        gif += static_cast<char>(block.size()) + block;
    }
    return gif + std::string(1, '\0') + ";";
}

}  // namespace

PictureCache::PictureCache() {
    std::wstring driver(MAX_PATH, L'\0');
    driver.resize(GetModuleFileNameW(nullptr, driver.data(), MAX_PATH));
    const std::wstring command = L"\"" + driver + L"\" --open \"%1\"";
    RestoreHandler();  // of a run that was cut off
    MoveKey(kHandler, kBefore);
    RegSetKeyValueW(HKEY_CLASSES_ROOT, kHandler, L"URL Protocol", REG_SZ, L"", sizeof(wchar_t));
    RegSetKeyValueW(HKEY_CLASSES_ROOT, (std::wstring(kHandler) + L"\\shell\\open\\command").c_str(),
                    nullptr, REG_SZ, command.c_str(),
                    static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t)));
    Clear();
    std::filesystem::remove(FileOfRun("opened"));
}

PictureCache::~PictureCache() {
    RestoreHandler();
    Clear();
}

void PictureCache::Clear() const {
    std::filesystem::remove_all(Folder());
}

void PictureCache::Put(const std::string& name, const std::string& bytes) const {
    std::filesystem::create_directories(Folder());
    std::ofstream(Folder() / name, std::ios::binary) << bytes;
}

void PictureCache::Remove(const std::string& name) const {
    std::filesystem::remove(Folder() / name);
}

void PictureCache::Draw(const std::string& name, const std::string& kind, int width,
                        int height) const {
    if (kind == "gif") return Put(name, GifOf(width, height));
    std::filesystem::create_directories(Folder());
    ULONG_PTR session = 0;
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&session, &input, nullptr);
    {
        Gdiplus::Bitmap bitmap(width, height, PixelFormat24bppRGB);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                bitmap.SetPixel(
                    x, y, x < width / 2 ? Gdiplus::Color(255, 0, 0) : Gdiplus::Color(0, 0, 255));
        const CLSID encoder = EncoderOf(kind);
        if (bitmap.Save((Folder() / name).wstring().c_str(), &encoder, nullptr) != Gdiplus::Ok)
            throw std::runtime_error("not encoded: " + name);
    }
    Gdiplus::GdiplusShutdown(session);
}

std::vector<std::string> PictureCache::Opened() {
    std::ifstream file(FileOfRun("opened"), std::ios::binary);
    std::vector<std::string> addresses;
    for (std::string address; std::getline(file, address);) addresses.push_back(address);
    return addresses;
}

bool OpensAnAddress(int argc, char** argv) {
    if (argc != 3 || std::string(argv[1]) != kOpen) return false;
    std::ofstream(FileOfRun("opened"), std::ios::binary | std::ios::app) << argv[2] << '\n';
    return true;
}

}  // namespace vantor::e2e
