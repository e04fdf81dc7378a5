#include "tests/driver/PictureCache.hpp"

#include <filesystem>
#include <fstream>

#include "platform/win32/services/Windows.hpp"
#include "tests/driver/Script.hpp"

namespace vantor::driver {
namespace {

// The handler of the whole prefix: Wine ignores a per-user one. The original key is kept under
// another name meanwhile.
constexpr wchar_t kHandler[] = L"http";
constexpr wchar_t kBefore[] = L"http-before-the-driver";
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

}  // namespace

PictureCache::PictureCache() {
    std::wstring driver(MAX_PATH, L'\0');
    driver.resize(GetModuleFileNameW(nullptr, driver.data(), MAX_PATH));
    const std::wstring command = L"\"" + driver + L"\" --open \"%1\"";
    RestoreHandler();  // left over from an interrupted run
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
    Ask("draw " + kind + " " + std::to_string(width / 2) + "x" + std::to_string(height));
    std::filesystem::create_directories(Folder());
    std::filesystem::copy_file(FileOfRun(("picture." + kind).c_str()), Folder() / name);
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

}  // namespace vantor::driver
