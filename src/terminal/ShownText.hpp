// What a view mode shows: numbered lines of cells. Painting, selecting, searching and saving use
// only this interface and know no view mode.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "terminal/TerminalScreen.hpp"

namespace vantor {

/// What a search compares: the characters of a text, or the bytes where a view mode shows those.
enum class SearchIn : std::uint8_t { Characters, Bytes };

/// Lines from FirstLine to EndLine (exclusive) exist. Their numbers do not change while text is
/// added at the end or dropped at the start.
class ShownText {
public:
    virtual ~ShownText() = default;

    virtual std::int64_t FirstLine() const = 0;
    virtual std::int64_t EndLine() const = 0;
    /// The cells of a line, blank beyond; empty for a line that does not exist. Valid until the
    /// next call and the next change.
    virtual std::span<const Cell> Line(std::int64_t line) const = 0;
    /// True when the text of `line` continues in the next one without a line end.
    virtual bool Continues(std::int64_t line) const = 0;
    /// Arrival of the first byte of `line`, in milliseconds; empty when nothing has arrived for it.
    virtual std::optional<std::int64_t> ArrivedAt(std::int64_t line) const = 0;

    /// What a search sees of `line`; empty where the text has nothing of the kind.
    virtual std::u32string Searched(std::int64_t line, SearchIn what) const;
    /// True when a hit may extend from `line` into the next one.
    virtual bool SearchContinues(std::int64_t line) const { return Continues(line); }
    /// The index into `Searched` of what the cell at `column` shows; -1 for a cell that is not
    /// searched.
    virtual int SearchIndex(int column) const { return column; }

    /// The first and the last line of the wrapped line that `line` belongs to.
    std::int64_t WrappedFrom(std::int64_t line) const;
    std::int64_t WrappedTo(std::int64_t line) const;
};

/// The lines of a screen and its history.
class ScreenText : public ShownText {
public:
    /// `screen` outlives the text.
    explicit ScreenText(const TerminalScreen& screen) : mScreen(screen) {}

    std::int64_t FirstLine() const override { return mScreen.FirstLine(); }
    std::int64_t EndLine() const override { return mScreen.EndLine(); }
    std::span<const Cell> Line(std::int64_t line) const override { return mScreen.Line(line); }
    bool Continues(std::int64_t line) const override { return mScreen.Continues(line); }
    std::optional<std::int64_t> ArrivedAt(std::int64_t line) const override;

private:
    const TerminalScreen& mScreen;
};

}  // namespace vantor
