// Pictures decoded by Windows.
#pragma once

#include "platform/Files.hpp"
#include "platform/Pictures.hpp"
#include "platform/win32/services/Win32Handle.hpp"

struct IPicture;

namespace vantor {

class Win32Picture : public Picture {
public:
    /// Counts itself in `held`.
    Win32Picture(ComPointer<IPicture> picture, int& held);
    ~Win32Picture() override;

    /// Draws it centred in `area`, as large as its aspect ratio allows, on the window colour.
    void Draw(HDC target, const RECT& area) const;

private:
    ComPointer<IPicture> mPicture;
    int& mHeld;
};

class Win32Pictures : public Pictures {
public:
    /// Initialises COM on this thread. `files` must outlive this object, and this object
    /// the pictures that it loads.
    explicit Win32Pictures(const Files& files);
    ~Win32Pictures() override;
    Win32Pictures(const Win32Pictures&) = delete;
    Win32Pictures& operator=(const Win32Pictures&) = delete;

    std::shared_ptr<const Picture> Load(const std::string& path) override;

    /// Number of pictures that exist now.
    int Held() const { return mHeld; }

private:
    const Files& mFiles;
    int mHeld = 0;
    bool mPrepared;
};

}  // namespace vantor
