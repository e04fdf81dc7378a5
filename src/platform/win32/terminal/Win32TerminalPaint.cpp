#include "platform/win32/terminal/Win32TerminalPaint.hpp"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

#include "platform/win32/terminal/Win32TerminalGlyphs.hpp"

namespace vantor {
namespace {

bool LooksLike(const Cell& one, const Cell& other) {
    return one.foreground == other.foreground && one.background == other.background &&
           one.flags == other.flags;
}

/// Appends `character` in UTF-16.
void AppendLetter(std::wstring& text, char32_t character) {
    constexpr char32_t kFirstPair = 0x10000;
    if (character < kFirstPair) {
        text += static_cast<wchar_t>(character);
    } else {
        text += static_cast<wchar_t>(0xD7C0 + (character >> 10U));
        text += static_cast<wchar_t>(0xDC00 + (character & 0x3FFU));
    }
}

/// One paint of a terminal.
class Painter {
public:
    Painter(const Win32TerminalWindow& window, const ColourScheme& scheme, HDC target)
        : mView(window.control.View()), mFont(window.font), mScheme(scheme), mTarget(target) {}

    void PaintRow(int row) {
        const ShownRow shown = mView.Row(row);
        const auto columns = static_cast<std::size_t>(mView.Columns());
        mCells.assign(shown.cells.begin(),
                      shown.cells.begin() +
                          static_cast<std::ptrdiff_t>(std::min(shown.cells.size(), columns)));
        mCells.resize(columns);
        const auto markOf = [&shown](std::size_t column) {
            return column < shown.marks.size() ? shown.marks[column] : Mark::None;
        };
        for (std::size_t from = 0; from < columns;) {
            std::size_t to = from + 1;
            while (to < columns && LooksLike(mCells[to], mCells[from]) &&
                   markOf(to) == markOf(from))
                ++to;
            PaintRun({static_cast<int>(from) * mFont.width, row * mFont.height},
                     std::span(mCells).subspan(from, to - from), markOf(from));
            from = to;
        }
    }

private:
    /// Cells with equal attributes, from the pixel `at`. Blinking is not animated:
    /// an idle window must use no processor time.
    void PaintRun(POINT at, std::span<const Cell> run, Mark mark) {
        const Cell& look = run.front();
        const CellColours colours = ColoursOf(look, mScheme, mark);
        const auto count = static_cast<int>(run.size());
        const RECT area = {at.x, at.y, at.x + count * mFont.width, at.y + mFont.height};
        mText.clear();
        mSteps.clear();
        bool anyDrawn = false;
        for (const Cell& cell : run) {
            const bool drawn = IsDrawn(cell.character);
            anyDrawn = anyDrawn || drawn;
            AppendLetter(mText, drawn ? U' ' : cell.character);
            mSteps.push_back(mFont.width);
            mSteps.resize(mText.size());  // 0 for the second half of a surrogate pair
        }
        SelectObject(mTarget, mFont.Look((look.flags & kBold) != 0, (look.flags & kItalic) != 0));
        SetTextColor(mTarget, colours.ink);
        SetBkColor(mTarget, colours.ground);
        ExtTextOutW(mTarget, static_cast<int>(at.x), static_cast<int>(at.y),
                    ETO_OPAQUE | ETO_CLIPPED, &area, mText.data(), static_cast<UINT>(mText.size()),
                    mSteps.data());
        if (anyDrawn) PaintGlyphs(run, area, colours);
        PaintLines(look, area, colours.ink);
    }

    void PaintGlyphs(std::span<const Cell> run, RECT cell, const CellColours& colours) const {
        for (const Cell& each : run) {
            cell.right = cell.left + mFont.width;
            if (IsDrawn(each.character))
                DrawGlyph(mTarget, each.character, cell, colours, mFont.small.get());
            cell.left = cell.right;
        }
    }

    void PaintLines(const Cell& look, const RECT& area, COLORREF ink) const {
        const LONG thick = LineThickness(mFont.width);
        if ((look.flags & kUnderlined) != 0)
            FillArea(mTarget, {area.left, area.bottom - thick, area.right, area.bottom}, ink);
        const LONG middle = area.top + (area.bottom - area.top) / 2;
        if ((look.flags & kStruckOut) != 0)
            FillArea(mTarget, {area.left, middle, area.right, middle + thick}, ink);
    }

    const TerminalViewport& mView;
    const Win32TerminalFont& mFont;
    const ColourScheme& mScheme;
    HDC mTarget;
    std::vector<Cell> mCells;  // of the current row
    // Of the current run, in UTF-16, and the pixels from each unit to the next:
    std::wstring mText;
    std::vector<INT> mSteps;
};

}  // namespace

void PaintTerminal(const Win32TerminalWindow& window, const ColourScheme& scheme, HDC target,
                   const RECT& area) {
    const TerminalViewport& view = window.control.View();
    const Win32TerminalFont& font = window.font;
    const int first = static_cast<int>(area.top) / font.height;
    const int end = (static_cast<int>(area.bottom) - 1) / font.height + 1;
    {
        Painter painter(window, scheme, target);
        const Win32Selected restoresTheFont(target, font.Look(false, false));
        for (int row = first; row < std::min(end, view.Rows()); ++row) painter.PaintRow(row);
    }
    RECT right = window.Client();
    RECT below = right;
    right.left = view.Columns() * font.width;
    below.top = view.Rows() * font.height;
    const COLORREF ground = DefaultColours(scheme).ground;
    FillArea(target, right, ground);
    FillArea(target, below, ground);
}

void PaintTerminalSize(const Win32TerminalWindow& window, HDC target) {
    constexpr float kPoints = 9;
    const TerminalScreen& screen = window.control.Screen();
    const std::wstring text =
        ToWide(std::to_string(screen.Columns()) + " x " + std::to_string(screen.Rows()));
    const Win32Selected selected(target, window.context.Font(kPoints, false));
    SIZE size{};
    GetTextExtentPoint32W(target, text.c_str(), static_cast<int>(text.size()), &size);
    const RECT client = window.Client();
    const LONG margin = size.cy / 2;
    RECT box = {0, 0, size.cx + 2 * margin, size.cy + margin};
    OffsetRect(&box, static_cast<int>((client.right - box.right) / 2),
               static_cast<int>((client.bottom - box.bottom) / 2));
    FillRect(target, &box, GetSysColorBrush(COLOR_INFOBK));
    FrameRect(target, &box, GetSysColorBrush(COLOR_INFOTEXT));
    SetTextColor(target, GetSysColor(COLOR_INFOTEXT));
    SetBkMode(target, TRANSPARENT);
    DrawTextW(target, text.c_str(), -1, &box, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
}

}  // namespace vantor
