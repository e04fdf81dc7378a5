#include "app/MainLayout.hpp"

#include <algorithm>

namespace vantor {
namespace {

constexpr Size kLeast = {7200, 5100};
constexpr float kMargin = 180;
constexpr float kGap = 150;
constexpr float kButtonHeight = 405;
constexpr float kButtonWidth = 1650;

void LayoutStartup(MainLayout& layout, Size panel) {
    constexpr Size kFlashButton = {3600, 690};
    const float width = std::min(panel.width, 7800.0f);
    const float left = (panel.width - width) / 2;
    constexpr float kTextHeight = 1080;  // four lines, for the language with the longer text
    const float spare = panel.height - kTextHeight - kFlashButton.height;
    layout.welcome = {left, spare / 4, width, kTextHeight};
    layout.flash = {(panel.width - kFlashButton.width) / 2, spare / 2 + kTextHeight,
                    kFlashButton.width, kFlashButton.height};
}

void LayoutFlash(MainLayout& layout, Size panel) {
    // The labels fit the longest text of both languages.
    constexpr float kLabelWidth = 2700;
    constexpr float kRow = 420;
    constexpr float kBarHeight = 450;
    const float valueLeft = kLabelWidth + kGap;
    const float valueWidth = panel.width - valueLeft;
    layout.flashLabels = {Place{0, 0, kLabelWidth, kRow}, Place{0, kRow, kLabelWidth, kRow}};
    layout.status = {valueLeft, 0, valueWidth, kRow};
    layout.elapsed = {valueLeft, kRow, valueWidth, kRow};
    layout.progress = {0, 2 * kRow + kGap, panel.width, kBarHeight};
    layout.abort = {panel.width - kButtonWidth, panel.height - kButtonHeight, kButtonWidth,
                    kButtonHeight};
    const float warningTop = layout.progress.top + kBarHeight + kGap;
    layout.warning = {0, warningTop, panel.width, layout.abort.top - kGap - warningTop};
}

void LayoutUpdates(MainLayout& layout, Size panel) {
    constexpr float kLine = 270;
    const float buttonsTop = panel.height - kButtonHeight;
    const float statusTop = buttonsTop - kGap - kLine;
    layout.updatesLabel = {0, 0, panel.width, kLine};
    layout.updates = {0, kLine, panel.width, statusTop - kGap - kLine};
    layout.updateStatus = {0, statusTop, panel.width, kLine};
    layout.details = {0, buttonsTop, kButtonWidth, kButtonHeight};
    layout.downloadAll = {panel.width - kButtonWidth, buttonsTop, kButtonWidth, kButtonHeight};
    layout.download = {layout.downloadAll.left - kGap - kButtonWidth, buttonsTop, kButtonWidth,
                       kButtonHeight};
}

}  // namespace

MainLayout LayoutMainWindow(Size inner) {
    const float width = std::max(inner.width, kLeast.width) - 2 * kMargin;
    const float height = std::max(inner.height, kLeast.height) - 2 * kMargin;
    MainLayout layout;
    // A quarter of the height for the picture, within sensible limits for a banner.
    const float pictureHeight = std::clamp(height / 4, 1200.0f, 2400.0f);
    // Two pixels less, so that rounding never clips an edge.
    constexpr float kEdge = 30;
    layout.picture = {kMargin, kMargin, width - kEdge, pictureHeight};
    layout.panel = {kMargin, kMargin + pictureHeight + kGap, width, height - pictureHeight - kGap};
    const Size panel = {layout.panel.width - kEdge, layout.panel.height - kEdge};
    LayoutStartup(layout, panel);
    LayoutFlash(layout, panel);
    LayoutUpdates(layout, panel);
    return layout;
}

}  // namespace vantor
