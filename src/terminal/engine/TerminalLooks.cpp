// SGR: the parameters that set colours and other attributes of characters.
#include <algorithm>
#include <array>
#include <cstdint>

#include "terminal/engine/TerminalSequence.hpp"

namespace vantor {
namespace {

constexpr int kForeground = 38;
constexpr int kBackground = 48;
constexpr int kByNumber = 5;
constexpr int kByParts = 2;

struct Switch {
    int on;
    int off;
    CellFlag flag;
};
constexpr std::array kSwitches = {Switch{1, 22, kBold},        Switch{2, 22, kFaint},
                                  Switch{3, 23, kItalic},      Switch{4, 24, kUnderlined},
                                  Switch{21, 24, kUnderlined}, Switch{5, 25, kBlinking},
                                  Switch{6, 25, kBlinking},    Switch{7, 27, kReversed},
                                  Switch{8, 28, kConcealed},   Switch{9, 29, kStruckOut}};

void SetLook(int code, Cell& pen) {
    if (code == 0) pen = {};
    for (const Switch& entry : kSwitches) {
        if (code == entry.on) pen.flags |= std::uint32_t{entry.flag};
        if (code == entry.off) pen.flags &= ~std::uint32_t{entry.flag} & 0xFFu;
    }
    const auto colour = static_cast<std::uint8_t>(code % 10);
    if (code >= 30 && code <= 37) pen.foreground = colour;
    if (code == 39) pen.foreground = kDefaultColour;
    if (code >= 40 && code <= 47) pen.background = colour;
    if (code == 49) pen.background = kDefaultColour;
    constexpr std::uint8_t kBright = 8;
    if (code >= 90 && code <= 97) pen.foreground = static_cast<std::uint8_t>(colour + kBright);
    if (code >= 100 && code <= 107) pen.background = static_cast<std::uint8_t>(colour + kBright);
}

/// The colour of the 256 that is nearest to one given by its parts, 0 to 255 each.
int Nearest(std::array<int, 3> parts) {
    constexpr std::array kSteps = {0, 95, 135, 175, 215, 255};
    constexpr int kFirstCube = 16;
    constexpr int kFirstGrey = 232;
    int cube = 0;
    int cubeDistance = 0;
    int sum = 0;
    for (int& part : parts) {
        part = std::min(part, 255);
        const auto* const step = std::ranges::min_element(
            kSteps, {}, [part](int value) { return (value - part) * (value - part); });
        cube = cube * 6 + static_cast<int>(step - kSteps.begin());
        cubeDistance += (*step - part) * (*step - part);
        sum += part;
    }
    const int grey = std::clamp((sum / 3 - 3) / 10, 0, 23);
    int greyDistance = 0;
    for (const int part : parts) greyDistance += (8 + 10 * grey - part) * (8 + 10 * grey - part);
    return greyDistance < cubeDistance ? kFirstGrey + grey : kFirstCube + cube;
}

void SetColour(int code, int colour, Cell& pen) {
    if (colour < 0 || colour >= kDefaultColour) return;
    const auto number = static_cast<std::uint8_t>(colour);
    if (code == kForeground)
        pen.foreground = number;
    else
        pen.background = number;
}

/// A colour whose number or parts follow as parameters: those from `at` to `end` (exclusive) after
/// colons, otherwise as many as there are for its kind. Returns the index after the last one.
std::size_t SetExtendedColour(const TerminalSequence& sequence, std::size_t at, std::size_t end,
                              Cell& pen) {
    const bool colons = end > at + 1;
    const int code = sequence.At(at);
    const int kind = sequence.At(at + 1);
    std::size_t first = at + 2;
    if (kind == kByParts && colons && end > at + 5) ++first;  // the number of a colour space
    const std::size_t last = first + (kind == kByParts ? 2 : 0);
    const bool complete = last < (colons ? end : TerminalSequence::kMostParameters);
    if (kind == kByNumber && complete) SetColour(code, sequence.At(first), pen);
    if (kind == kByParts && complete)
        SetColour(code,
                  Nearest({sequence.At(first), sequence.At(first + 1), sequence.At(first + 2)}),
                  pen);
    if (colons) return end;
    return kind == kByNumber || kind == kByParts ? last + 1 : first;
}

}  // namespace

void SetLooks(const TerminalSequence& sequence, Cell& pen) {
    const std::size_t count = std::max<std::size_t>(sequence.Count(), 1);
    for (std::size_t at = 0; at < count;) {
        std::size_t end = at + 1;
        while (sequence.BelongsToPrevious(end)) ++end;
        const int code = sequence.At(at);
        if (code == kForeground || code == kBackground) {
            at = SetExtendedColour(sequence, at, end, pen);
            continue;
        }
        if (end == at + 1) SetLook(code, pen);
        // Kinds of underlines, 0 for none.
        if (code == 4 && end > at + 1) SetLook(sequence.At(at + 1) == 0 ? 24 : 4, pen);
        at = end;
    }
}

}  // namespace vantor
