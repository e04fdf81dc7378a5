#include "platform/win32/terminal/Win32TerminalGlyphs.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace vantor {
namespace {

/// The lines from the middle of a cell to its edges.
enum Arm : std::uint8_t { kUp = 1, kDown = 2, kLeft = 4, kRight = 8 };

struct Lines {
    char32_t character;
    unsigned arms;
};
constexpr std::array kLines = {Lines{U'\u2500', kLeft | kRight},
                               Lines{U'\u2502', kUp | kDown},
                               Lines{U'\u250C', kDown | kRight},
                               Lines{U'\u2510', kDown | kLeft},
                               Lines{U'\u2514', kUp | kRight},
                               Lines{U'\u2518', kUp | kLeft},
                               Lines{U'\u251C', kUp | kDown | kRight},
                               Lines{U'\u2524', kUp | kDown | kLeft},
                               Lines{U'\u252C', kDown | kLeft | kRight},
                               Lines{U'\u2534', kUp | kLeft | kRight},
                               Lines{U'\u253C', kUp | kDown | kLeft | kRight}};

/// A part of a cell, in eighths of its width and height, and how much of it is ink, in quarters.
struct Block {
    char32_t character;
    int left;
    int top;
    int right;
    int bottom;
    int ink = 4;
};
constexpr std::array kBlocks = {Block{U'\u2580', 0, 0, 8, 4},    Block{U'\u2584', 0, 4, 8, 8},
                                Block{U'\u2588', 0, 0, 8, 8},    Block{U'\u258C', 0, 0, 4, 8},
                                Block{U'\u2590', 4, 0, 8, 8},    Block{U'\u2591', 0, 0, 8, 8, 1},
                                Block{U'\u2592', 0, 0, 8, 8, 2}, Block{U'\u2593', 0, 0, 8, 8, 3}};

/// Horizontal lines at the height of the scan lines 1, 3, 7 and 9 of nine.
constexpr char32_t kFirstScanLine = U'\u23BA';
constexpr char32_t kLastScanLine = U'\u23BD';

constexpr char32_t kDiamond = U'\u25C6';

/// Of the control characters 0 to 32 and 127, and of the line end; two letters each.
constexpr char32_t kFirstName = U'\u2400';
constexpr std::wstring_view kNames =
    L"NUSHSXEXETEQAKBLBSHTLFVTFFCRSOSIDLD1D2D3D4NKSYEBCNEMSBECFSGSRSUSSPDT";
constexpr char32_t kLineEnd = U'\u2424';

template <typename Table>
auto Find(const Table& table, char32_t character) {
    return std::ranges::find(table, character, &Table::value_type::character);
}

void DrawLines(HDC target, unsigned arms, const RECT& cell, COLORREF ink) {
    const LONG thick = LineThickness(static_cast<int>(cell.right - cell.left));
    const LONG x = cell.left + (cell.right - cell.left - thick) / 2;
    const LONG y = cell.top + (cell.bottom - cell.top - thick) / 2;
    if ((arms & (kUp | kDown)) != 0)
        FillArea(target,
                 {x, (arms & kUp) != 0 ? cell.top : y, x + thick,
                  (arms & kDown) != 0 ? cell.bottom : y + thick},
                 ink);
    if ((arms & (kLeft | kRight)) != 0)
        FillArea(target,
                 {(arms & kLeft) != 0 ? cell.left : x, y,
                  (arms & kRight) != 0 ? cell.right : x + thick, y + thick},
                 ink);
}

void DrawScanLine(HDC target, char32_t character, const RECT& cell, COLORREF ink) {
    constexpr std::array<LONG, 4> kEighths = {0, 2, 6, 8};
    const LONG thick = LineThickness(static_cast<int>(cell.right - cell.left));
    const LONG room = cell.bottom - cell.top - thick;
    const LONG y = cell.top + room * kEighths[character - kFirstScanLine] / 8;
    FillArea(target, {cell.left, y, cell.right, y + thick}, ink);
}

void DrawBlock(HDC target, const Block& block, const RECT& cell, const CellColours& colours) {
    const LONG width = cell.right - cell.left;
    const LONG height = cell.bottom - cell.top;
    FillArea(target,
             {cell.left + width * block.left / 8, cell.top + height * block.top / 8,
              cell.left + width * block.right / 8, cell.top + height * block.bottom / 8},
             Blended(colours, block.ink));
}

void DrawDiamond(HDC target, const RECT& cell, COLORREF ink) {
    const LONG half = (cell.right - cell.left) / 2;
    const LONG middle = (cell.top + cell.bottom) / 2;
    for (LONG row = -half; row <= half; ++row) {
        const LONG inset = std::abs(row);
        FillArea(target, {cell.left + inset, middle + row, cell.right - inset, middle + row + 1},
                 ink);
    }
}

bool IsName(char32_t character) {
    return character >= kFirstName &&
           (character < kFirstName + kNames.size() / 2 || character == kLineEnd);
}

/// The first letter in the upper left corner, the second one in the lower right one.
void DrawName(HDC target, char32_t character, const RECT& cell, COLORREF ink, HFONT font) {
    const std::wstring_view name =
        character == kLineEnd ? L"NL" : kNames.substr(2 * (character - kFirstName), 2);
    SelectObject(target, font);
    SetTextColor(target, ink);
    SetBkMode(target, TRANSPARENT);
    RECT area = cell;
    DrawTextW(target, name.data(), 1, &area, DT_LEFT | DT_TOP | DT_SINGLELINE | DT_NOPREFIX);
    DrawTextW(target, name.data() + 1, 1, &area,
              DT_RIGHT | DT_BOTTOM | DT_SINGLELINE | DT_NOPREFIX);
    SetBkMode(target, OPAQUE);
}

}  // namespace

int LineThickness(int width) {
    constexpr int kCellsPerLine = 8;
    return std::max(1, width / kCellsPerLine);
}

void FillArea(HDC target, const RECT& area, COLORREF colour) {
    SetBkColor(target, colour);
    ExtTextOutW(target, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
}

bool IsDrawn(char32_t character) {
    if (character < kFirstScanLine) return false;  // nearly always
    return character <= kLastScanLine || IsName(character) || character == kDiamond ||
           Find(kLines, character) != kLines.end() || Find(kBlocks, character) != kBlocks.end();
}

void DrawGlyph(HDC target, char32_t character, const RECT& cell, const CellColours& colours,
               HFONT font) {
    if (IsName(character)) return DrawName(target, character, cell, colours.ink, font);
    if (character == kDiamond) return DrawDiamond(target, cell, colours.ink);
    if (character >= kFirstScanLine && character <= kLastScanLine)
        return DrawScanLine(target, character, cell, colours.ink);
    if (const auto* const lines = Find(kLines, character); lines != kLines.end())
        return DrawLines(target, lines->arms, cell, colours.ink);
    if (const auto* const block = Find(kBlocks, character); block != kBlocks.end())
        DrawBlock(target, *block, cell, colours);
}

}  // namespace vantor
