// The picture of the main window: one from the cache of the sibling program, or the built-in one;
// and its URL. Downloads nothing.
#pragma once

#include <string>

#include "controls/Controls.hpp"
#include "flash/FirmwareImage.hpp"
#include "platform/Platform.hpp"

namespace vantor {

class PromotionalPicture {
public:
    /// `box` shows the picture; its `Tag` holds the name of the cached file (without folder),
    /// and is empty for the built-in one. Both must outlive this object.
    PromotionalPicture(PictureBox& box, Platform& platform) : mBox(box), mPlatform(platform) {}

    /// Shows one of the cached pictures, chosen at random. On any error shows the built-in one;
    /// nothing is reported.
    void Choose();

    /// The lines of the cache's index file; an unsized list when there is none.
    ImageLines Index() const;

    /// The URL for the picture shown: the maker's web site for the built-in one, else the one in
    /// `index`, unchanged; empty when `index` has none. Raises RuntimeError 9 when a cached picture
    /// is shown and the index is unsized.
    std::string Address(const ImageLines& index) const;

private:
    std::string CacheFolder() const;
    void ShowCached();
    void ShowBuiltIn();

    PictureBox& mBox;
    Platform& mPlatform;
};

}  // namespace vantor
