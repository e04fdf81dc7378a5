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
ComPointer<IStream> StreamOver(const std::string& bytes) {
    const HGLOBAL memory = GlobalCopy(bytes.data(), bytes.size());
    IStream* stream = nullptr;
    if (memory == nullptr || CreateStreamOnHGlobal(memory, TRUE, &stream) != S_OK)
        GlobalFree(memory);  // null is allowed
    return ComPointer<IStream>(stream);
}

}  // namespace

Win32Picture::Win32Picture(ComPointer<IPicture> picture, int& held)
    : mPicture(std::move(picture)), mHeld(held) {
    ++mHeld;
}

Win32Picture::~Win32Picture() {
    --mHeld;
}

void Win32Picture::Draw(HDC target, const RECT& area) const {
    FillRect(target, &area, GetSysColorBrush(COLOR_BTNFACE));
    OLE_XSIZE_HIMETRIC width = 0;
    OLE_YSIZE_HIMETRIC height = 0;
    if (mPicture->get_Width(&width) != S_OK || mPicture->get_Height(&height) != S_OK ||
        width <= 0 || height <= 0)
        return;
    const RECT place = Fitted(area, width, height);
    SetStretchBltMode(target, HALFTONE);
    SetBrushOrgEx(target, 0, 0, nullptr);
    // The y axis of the picture points upwards.
    mPicture->Render(target, place.left, place.top, place.right - place.left,
                     place.bottom - place.top, 0, height, width, -height, nullptr);
}

Win32Pictures::Win32Pictures(const Files& files)
    : mFiles(files), mPrepared(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}

Win32Pictures::~Win32Pictures() {
    if (mPrepared) CoUninitialize();
}

std::shared_ptr<const Picture> Win32Pictures::Load(const std::string& path) {
    const ComPointer<IStream> stream = StreamOver(mFiles.ReadAll(path));
    if (!stream) throw RuntimeError(ErrorNumber::OutOfMemory);
    void* picture = nullptr;
    const HRESULT result = OleLoadPicture(stream.get(), 0, FALSE, IID_IPicture, &picture);
    if (result != S_OK || picture == nullptr) throw RuntimeError(ErrorNumber::InvalidPicture);
    return std::make_shared<Win32Picture>(ComPointer<IPicture>(static_cast<IPicture*>(picture)),
                                          mHeld);
}

}  // namespace vantor
