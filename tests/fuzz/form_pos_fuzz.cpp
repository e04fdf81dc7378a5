// Stored window positions: the first byte selects whether the window is kept on the screen, the
// rest is the record.
#include "app/base/CFormPos.hpp"
#include "dialogs/frmAbout.hpp"
#include "tests/faults/ReportingPlatform.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {
namespace {

struct Bench {
    ReportingPlatform headless;
    std::shared_ptr<frmAbout> window =
        std::make_shared<frmAbout>(headless.manager, headless.strings);
    CFormPos position{headless.registry, headless.codePage};
    RegistryKey key = 0;

    Bench() {
        window->Load();
        position.Form = window.get();
        Require(headless.registry.CreateKey(position.RootKey,
                                            position.RegistryPath + "\\" + position.SubKey,
                                            kRegistryAllButOwner, key) == kRegistrySuccess);
    }
    std::string Saved() {
        position.SaveForm();
        std::string record(256, '\0');
        auto size = static_cast<std::uint32_t>(record.size());
        std::uint32_t type = 0;
        Require(headless.registry.QueryValue(key, window->Name(), type, record.data(), size) ==
                kRegistrySuccess);
        return record.substr(0, size);
    }
};

}  // namespace

std::vector<std::string> Seeds() {
    return {"1L=10;T=-20;W=300.5;H=4e3;S=0;", "0L=28800;T=16200;W=300;H=400;S=0;", "1S=2;"};
}

void Fuzz(std::string_view input) {
    static Bench bench;
    constexpr Place kBefore = {1, 2, 3000, 4000};
    bench.headless.boxes.shown.clear();
    bench.window->Place(kBefore);
    bench.window->State(WindowState::Normal);
    const bool keepOnScreen = (TakeByte(input) & 1) != 0;
    bench.headless.registry.SetValue(bench.key, bench.window->Name(), kRegistryString, input);
    const bool restored = bench.position.RestoreForm(keepOnScreen);
    const Place place = bench.window->Place();
    if (!restored || bench.window->State() != WindowState::Normal) {
        Require(place == kBefore);
        return;
    }
    Require(bench.headless.boxes.shown.empty());
    Require(place.width >= 0 && place.height >= 0);
    const Size screen = bench.headless.peers.ScreenSize();
    // A position at the far edge is allowed for a window smaller than one twip only.
    const auto onScreen = [](float at, float size, float limit) {
        return at >= 0 && (at < limit || (at == limit && size < 1));
    };
    Require(!keepOnScreen || (onScreen(place.left, place.width, screen.width) &&
                              onScreen(place.top, place.height, screen.height)));
    const std::string saved = bench.Saved();
    Require(bench.position.RestoreForm(keepOnScreen) && bench.Saved() == saved);
}

}  // namespace vantor
