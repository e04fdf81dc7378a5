// The picture of the main window: one of those that the sibling program keeps in its cache, or
// the built-in one; and the web address that belongs to it. Fetches nothing.
#pragma once

#include <string>

#include "controls/Controls.hpp"
#include "flash/FirmwareImage.hpp"
#include "platform/Platform.hpp"

namespace vantor {

class PromotionalPicture {
public:
    /// `box` shows the picture; its `Tag` holds the bare name of the cached file shown, and is
    /// empty for the built-in one. Both must outlive this object.
    PromotionalPicture(PictureBox& box, Platform& platform);

    /// Shows one of the cached pictures, chosen at random. Whatever goes wrong shows the
    /// built-in one instead; nothing is reported.
    void Choose();

    /// The lines of the cache's index; an unsized list when there is none.
    ImageLines Index() const;

    /// The address behind the picture shown: the maker's web site for the built-in one, else
    /// what `index` says, as it stands; empty when it says nothing. Raises RuntimeError 9 when
    /// a cached picture is shown and the index is unsized.
    std::string Address(const ImageLines& index) const;

private:
    std::string CacheFolder() const;
    void ShowOneOf(const std::string& folder);
    void Show(const std::string& folder, const std::string& name);
    void ShowBuiltIn();

    PictureBox& mBox;
    Platform& mPlatform;
};

}  // namespace vantor
