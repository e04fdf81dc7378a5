#include "content/PromotionalPicture.hpp"

#include <optional>
#include <random>
#include <string_view>
#include <vector>

#include "app/base/modSupport.hpp"
#include "content/CImageInfo.hpp"
#include "content/PictureFiles.hpp"
#include "platform/Clock.hpp"
#include "platform/Files.hpp"
#include "platform/Folders.hpp"
#include "platform/Pictures.hpp"
#include "support/Traps.hpp"

namespace vantor {
namespace {

// Backslashes are intentional; the shell converts them.
constexpr const char* kWebSite = "http:\\\\www.tessmar.example";

/// The fourth of the fields separated by "|"; the sibling program uses the first three.
std::optional<std::string_view> AddressField(std::string_view line) {
    for (int field = 0; field < 3; ++field) {
        const std::size_t bar = line.find('|');
        if (bar == std::string_view::npos) return std::nullopt;
        line.remove_prefix(bar + 1);
    }
    return line.substr(0, line.find('|'));
}

}  // namespace

std::string PromotionalPicture::CacheFolder() const {
    return ProductDataFolder(mPlatform.folders) + "cache\\";
}

void PromotionalPicture::Choose() {
    ShowBuiltIn();
    if (!Ignoring([this] { ShowCached(); })) ShowBuiltIn();
}

void PromotionalPicture::ShowCached() {
    const std::string folder = CacheFolder();
    mPlatform.files.CreateFolders(folder);
    std::vector<std::string> names;
    if (PictureFilesToArray(mPlatform.files, folder, false, false, names) == 0) return;
    std::minstd_rand random(mPlatform.clock.Milliseconds());
    const double drawn = std::uniform_real_distribution(0.0, 1.0)(random);
    const std::string& name =
        names[static_cast<std::size_t>(drawn * static_cast<double>(names.size()))];
    CImageInfo info(mPlatform.files);
    info.ReadImageInfo(folder + name);
    if (info.ImageType() == CImageInfo::Type::Unknown) return;
    mBox.Loaded(mPlatform.pictures.Load(folder + name));
    mBox.Tag(name);
}

void PromotionalPicture::ShowBuiltIn() {
    mBox.Loaded(nullptr);
    mBox.Tag({});
}

ImageLines PromotionalPicture::Index() const {
    return FileToStringArray(CacheFolder() + "cache.txt", mPlatform.files);
}

// The name may be anywhere in a line, so an earlier line with a longer name wins.
std::string PromotionalPicture::Address(const ImageLines& index) const {
    if (mBox.Tag().empty()) return kWebSite;
    const std::size_t last = index.UBound();
    for (std::size_t i = 0; i <= last; ++i) {
        if (index[i].find(mBox.Tag()) == std::string_view::npos) continue;
        if (const auto address = AddressField(index[i])) return std::string(*address);
    }
    return {};
}

}  // namespace vantor
