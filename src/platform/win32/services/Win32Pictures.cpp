#include "platform/win32/services/Win32Pictures.hpp"

#include <ole2.h>
#include <olectl.h>

#include <algorithm>
#include <cmath>

#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

/// The largest rectangle with the aspect ratio `width` to `height`, centred in `area`.
RECT Fitted(const RECT& area, double width, double height) {
    const double scale =
        std::min((area.right - area.left) / width, (area.bottom - area.top) / height);
    const auto across = static_cast<LONG>(std::lround(width * scale));
    const auto down = static_cast<LONG>(std::lround(height * scale));
    const LONG left = area.left + (area.right - area.left - across) / 2;
    const LONG top = area.top + (area.bottom - area.top - down) / 2;
    return {left, top, left + across, top + down};
}

/// A stream that owns a copy of `bytes`; null on failure.
IStream* StreamOver(const std::string& bytes) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, std::max<std::size_t>(bytes.size(), 1));
    if (memory == nullptr) return nullptr;
    void* const target = GlobalLock(memory);
    std::copy(bytes.begin(), bytes.end(), static_cast<char*>(target));
    static_cast<void>(GlobalUnlock(memory));
    IStream* stream = nullptr;
    if (CreateStreamOnHGlobal(memory, TRUE, &stream) != S_OK) static_cast<void>(GlobalFree(memory));
    return stream;
}

}  // namespace

Win32Picture::~Win32Picture() {
    mPicture->Release();
    --mHeld;
}

void Win32Picture::Draw(HDC target, const RECT& area) const {
    static_cast<void>(FillRect(target, &area, GetSysColorBrush(COLOR_BTNFACE)));
    OLE_XSIZE_HIMETRIC width = 0;
    OLE_YSIZE_HIMETRIC height = 0;
    if (mPicture->get_Width(&width) != S_OK || mPicture->get_Height(&height) != S_OK ||
        width <= 0 || height <= 0)
        return;
    const RECT place = Fitted(area, width, height);
    static_cast<void>(SetStretchBltMode(target, HALFTONE));
    static_cast<void>(SetBrushOrgEx(target, 0, 0, nullptr));
    // The y axis of the picture points upwards.
    static_cast<void>(mPicture->Render(target, place.left, place.top, place.right - place.left,
                                       place.bottom - place.top, 0, height, width, -height,
                                       nullptr));
}

Win32Pictures::Win32Pictures(const Files& files)
    : mFiles(files), mPrepared(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}

Win32Pictures::~Win32Pictures() {
    if (mPrepared) CoUninitialize();
}

std::shared_ptr<const Picture> Win32Pictures::Load(const std::string& path) {
    IStream* const stream = StreamOver(mFiles.ReadAll(path));
    if (stream == nullptr) throw RuntimeError(ErrorNumber::OutOfMemory);
    void* picture = nullptr;
    const HRESULT result = OleLoadPicture(stream, 0, FALSE, IID_IPicture, &picture);
    stream->Release();
    if (result != S_OK || picture == nullptr) throw RuntimeError(ErrorNumber::InvalidPicture);
    return std::make_shared<Win32Picture>(static_cast<IPicture*>(picture), mHeld);
}

}  // namespace vantor
