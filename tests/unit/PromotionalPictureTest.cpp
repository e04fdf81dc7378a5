// Which of the cached pictures the main window shows. The traces have the rest.
#include <gtest/gtest.h>

#include <set>

#include "app/frmMain.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

TEST(PromotionalPicture, EveryPictureOfTheCacheComesUpSometime) {
    ReportingPlatform platform;
    for (const char* name : {"a.gif", "b.gif", "c.gif"})
        platform.files.Add(std::string("/home/tech/.config/TSMR/CALDOR/cache/") + name,
                           "GIF89a\1\1\1\1\1");
    std::set<std::string> seen;
    for (int i = 0; i < 60; ++i) {
        const auto window = std::make_shared<frmMain>(platform.manager, platform.platform);
        window->Load();
        seen.insert(window->picPicture.Tag());
        window->Unload();
        platform.clock.Sleep(977);
    }
    EXPECT_EQ(seen, (std::set<std::string>{"a.gif", "b.gif", "c.gif"}));
}

}  // namespace
}  // namespace vantor
