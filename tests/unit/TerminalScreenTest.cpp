// The effect of received bytes on the terminal's screen, its history and its selection.
#include "terminal/TerminalScreen.hpp"

#include <gtest/gtest.h>

#include <string>

#include "terminal/TerminalParser.hpp"
#include "terminal/TerminalSelection.hpp"

namespace vantor {
namespace {

std::string Characters(const TerminalScreen& screen, std::int64_t line) {
    std::string text;
    for (const Cell& cell : screen.Line(line)) text += cell.character;
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

/// The lines from `first` on, each terminated by "|", and the cursor's row and column.
std::string Shown(const TerminalScreen& screen, std::int64_t first) {
    std::string text;
    for (std::int64_t line = first; line < screen.EndLine(); ++line)
        text += Characters(screen, line) + "|";
    return text + std::to_string(screen.Cursor().row) + "," +
           std::to_string(screen.Cursor().column);
}

struct Case {
    const char* bytes;
    const char* shown;  // a screen of 8 columns and 4 rows
};

constexpr Case kCases[] = {
    // characters and control characters
    {"ab\r\ncd\ne", "ab|cd|  e||2,3"},
    {"abc\b\bX\rY", "YXc||||0,1"},
    {"a\tb\t\tc", "a      c||||0,7"},
    {"\b\ba", "a||||0,1"},
    {"a\x7F\x05\x0E"
     "b",
     "ab||||0,2"},
    {"ab\fc", "c||||0,1"},
    {"1\r\n2\r\n3\r\n4\r\n5", "2|3|4|5|3,1"},
    // the right edge
    {"12345678", "12345678||||0,7"},
    {"123456789", "12345678|9|||1,1"},
    {"12345678\bX", "123456X8||||0,7"},
    {"\x1B[?7l123456789A", "1234567A||||0,7"},
    {"\x1B[?7l1\x1B[?7h234567890", "12345678|90|||1,2"},
    // moving the cursor
    {"\x1B[2;3Hx\x1B[Hy", "y|  x|||0,1"},
    {"\x1B[3;4fx\x1B[2Ay\x1B[5Dz\x1B[By\x1B[Cx", "z   y| y x|   x||1,4"},
    {"\x1B[2Ea\x1B[Fb\x1B[5Gc\x1B[4dd", "|b   c|a|     d|3,6"},
    {"ab\x1B"
     "7\x1B[4;4Hc\x1B"
     "8d",
     "abd|||   c|0,3"},
    {"a\x1B"
     "Eb\x1BMc\x1B"
     "Dd",
     "ac|b d|||1,3"},
    {"\x1B[3g\ta\x1B[5G\x1BH\r\tb", "    b  a||||0,5"},
    // erasing, inserting, deleting
    {"abcd\x1B[2D\x1B[K", "ab||||0,2"},
    {"abcd\x1B[3D\x1B[1K", "  cd||||0,1"},
    {"ab\r\ncd\r\nef\x1B[2;2H\x1B[J", "ab|c|||1,1"},
    {"ab\r\ncd\x1B[2J", "||||1,2"},
    {"abcd\x1B[3D\x1B[2X", "a  d||||0,1"},
    {"abcdefgh\x1B[1;2H\x1B[2@", "a  bcdef||||0,1"},
    {"abcd\x1B[1;2H\x1B[2P", "ad||||0,1"},
    {"abcd\x1B[1;2H\x1B[4hXY\x1B[4lZ", "aXYZcd||||0,4"},
    {"1\r\n2\r\n3\r\n4\x1B[2;1H\x1B[L", "1||2|3|1,0"},
    {"1\r\n2\r\n3\x1B[S", "2|3|||2,1"},
    {"1\r\n2\r\n3\r\n4\x1B[1;1H\x1B[2L", "||1|2|0,0"},
    {"1\r\n2\r\n3\r\n4\x1B[2;1H\x1B[9999L", "1||||1,0"},
    {"1\r\n2\r\n3\r\n4\x1B[1;1H\x1B[3M", "4||||0,0"},
    // the scroll region
    {"1\r\n2\r\n3\r\n4\x1B[2;3r\x1B[3;1H\nx", "1|3|x|4|2,1"},
    {"1\r\n2\r\n3\r\n4\x1B[2;3r\x1B[2;1H\x1BMx", "1|x|2|4|1,1"},
    {"1\r\n2\r\n3\r\n4\x1B[1;3r\x1B[2Sx", "x|||4|0,1"},
    {"\x1B[2;3r\x1B[?6h\x1B[1;1Ha\x1B[9;1Hb", "|a|b||2,1"},
    {"1\r\n2\r\n3\r\n4\x1B[3;2r\n5", "2|3|4| 5|3,2"},
    {"\x1B[2;3r\x1B[2;1H\x1B[9Aa\x1B[9Bb", "|a| b||2,2"},
    // unknown and incomplete sequences
    {"a\x1B[38;5;999mb\x1B[12;;;34zc\x1B[>0qd", "abcd||||0,4"},
    {"a\x1B(Bb\x1B#8c\x1B=d\x1B Fe", "abcde||||0,5"},
    {"a\x1B]0;title\x07"
     "b\x1BPq#1\x1B\\c",
     "abc||||0,3"},
    {"a\x1B]0;no end\r\nb", "a|b|||1,1"},
    {"a\x1B[12\x18"
     "b\x1B[3\x1B[1;5Hc",
     "ab  c||||0,5"},
    {"a\x1B[1;2\r\n;3mb", "a|b|||1,1"},
    {"a\x1B[\xF1"
     "b\x1B\xE9",
     "a\xF1"
     "b\xE9||||0,4"},
    {"a\x1B[1;2;3;4;5;6;7;8;9;1;2;3;4;5;6;7;8;9mb", "ab||||0,2"},
    {"\x1B[99999999999999999999Ca\x1B[0;0Hb", "b      a||||0,1"},
    {"a\x1B[6n\x1B[c\x1B[5nb", "ab||||0,2"},
    {"\x1B[2;3rab\x1B[?7l\x1B"
     "cc",
     "c||||0,1"},
};

TEST(TerminalScreen, EverySequenceDoesWhatTerminalsDoInAnyPortions) {
    for (const Case& test : kCases) {
        const std::string bytes = test.bytes;
        TerminalScreen whole(8, 4);
        TerminalParser(whole).Write(bytes);
        EXPECT_EQ(Shown(whole, whole.TopLine()), test.shown) << testing::PrintToString(bytes);
        TerminalScreen single(8, 4);
        TerminalParser parser(single);
        for (const char byte : bytes) parser.Write({&byte, 1});
        EXPECT_EQ(Shown(single, single.TopLine()), test.shown) << "byte by byte: " << bytes;
    }
}

TEST(TerminalScreen, LooksAreKeptPerCharacter) {
    TerminalScreen screen(20, 2);
    TerminalParser parser(screen);
    parser.Write(
        "\x1B[1;31;44ma\x1B[22;4;39mb\x1B[0mc\x1B[97;100;7md\x1B[38;5;3;48;2;9;9;9me\x1B[m");
    parser.Write("f");
    const auto cells = screen.Line(0);
    ASSERT_EQ(cells.size(), 6u);
    EXPECT_EQ(cells[0], (Cell{'a', 1, 4, kBold}));
    EXPECT_EQ(cells[1], (Cell{'b', kDefaultColour, 4, kUnderlined}));
    EXPECT_EQ(cells[2], Cell{'c'});
    EXPECT_EQ(cells[3], (Cell{'d', 15, 8, kReversed}));
    EXPECT_EQ(cells[4], (Cell{'e', 3, 8, kReversed}));
    EXPECT_EQ(cells[5], Cell{'f'});
}

TEST(TerminalScreen, TheHistoryKeepsTheNewestLinesUnderTheirNumbers) {
    TerminalScreen screen(20, 3, 100);
    TerminalParser parser(screen);
    constexpr int kLines = 1000;
    for (int i = 0; i < kLines; ++i) parser.Write(std::to_string(i) + "\r\n");
    EXPECT_EQ(screen.EndLine(), kLines + 1);
    EXPECT_GE(screen.TopLine() - screen.FirstLine(), 100);
    for (std::int64_t line = screen.FirstLine(); line < kLines; ++line)
        EXPECT_EQ(Characters(screen, line), std::to_string(line));
    EXPECT_TRUE(screen.Line(screen.FirstLine() - 1).empty() && screen.Line(kLines + 1).empty());
}

TEST(TerminalScreen, WhatLeavesTheScreenStaysReadableFurtherUp) {
    constexpr Case kPages[] = {
        {"1\r\n2\x1B[2J\x1B[Ha\fb\x1B"
         "cd",
         "1|2|a|b|d|||0,1"},
        {"a\x1B[2J\x1B[Hb\x1B[2J\x1B[Hc\x1B[2J\x1B[Hd", "a|d|||0,1"},  // redrawn, not scrolled
        {"a\x1B[2J\x1B[Hb\r\nc\r\nd\r\ne\x1B[2J\x1B[Hf", "a|b|c|d|e|f|||0,1"},
        {"1\r\n2\r\n3\x1B[1;2r\x1B[2;1H\n4\r\n5", "1|2|4|5|3|1,1"},
    };
    for (const Case& test : kPages) {
        TerminalScreen screen(8, 3);
        TerminalParser(screen).Write(test.bytes);
        EXPECT_EQ(Shown(screen, 0), test.shown) << testing::PrintToString(test.bytes);
    }
}

TEST(TerminalScreen, ALongTextForTheTerminalItselfIsSwallowedWhole) {
    for (const char* const begin : {"\x1B]0;", "\x1BPq"}) {
        TerminalScreen screen(8, 4);
        TerminalParser(screen).Write(begin + std::string(4094, 'x') + "\x1B\\b");
        EXPECT_EQ(Shown(screen, 0), "b||||0,1");
    }
}

TEST(TerminalScreen, AResizeLosesNoTextAndLeavesTheCursorOnIt) {
    TerminalScreen screen(8, 4);
    TerminalParser parser(screen);
    parser.Write("1234567\r\nb\r\nc");
    const struct {
        int columns;
        int rows;
        const char* shown;  // from the first line on
        std::int64_t top;
    } steps[] = {{8, 3, "1234567|b|c|2,1", 0},  {4, 2, "1234567|b|c|1,1", 1},
                 {8, 1, "1234567|b|c|0,1", 2},  {8, 5, "1234567|b|c|||2,1", 0},
                 {0, -3, "1234567|b|c|0,0", 2}, {9999, 9999, nullptr, 0}};
    for (const auto& step : steps) {
        screen.Resize(step.columns, step.rows);
        EXPECT_EQ(screen.TopLine(), step.top) << step.rows;
        if (step.shown == nullptr) continue;
        EXPECT_EQ(Shown(screen, 0), step.shown) << step.rows;
    }
    EXPECT_EQ(screen.Columns(), TerminalScreen::kMostColumns);
    EXPECT_EQ(screen.Rows(), TerminalScreen::kMostRows);
    parser.Write("\r\nd");
    EXPECT_EQ(Characters(screen, 3), "d");
}

TEST(TerminalScreen, OnlyWhatChangedIsToBeDrawn) {
    TerminalScreen screen(8, 4);
    TerminalParser parser(screen);
    const auto dirty = [&](const char* bytes) {
        screen.Clean();
        parser.Write(bytes);
        std::string rows;
        for (int row = 0; row < 4; ++row)
            if (screen.Dirty(row)) rows += std::to_string(row);
        EXPECT_EQ(screen.AnyDirty(), !rows.empty());
        return rows;
    };
    EXPECT_EQ(dirty(""), "");
    EXPECT_EQ(dirty("a"), "0");
    EXPECT_EQ(dirty("\x1B[3;1H"), "02") << "the cursor leaves one row and enters another";
    EXPECT_EQ(dirty("\x1B[2;3r\x1B[2;1H\x1B[L"), "012");
    EXPECT_EQ(dirty("\x1B[r\x1B[4;1H\n"), "0123");
    EXPECT_EQ(dirty("\x1B[?25l"), "3") << "where the cursor was";
}

TEST(TerminalSelection, GivesTheTextAsLinesWereSent) {
    TerminalScreen screen(8, 4, 1);
    TerminalParser parser(screen);
    TerminalSelection selection(screen);
    selection.SetAll();
    EXPECT_TRUE(selection.Empty()) << "there is no text";
    parser.Write("123456789\x1B[Hab");
    selection.SetAll();
    EXPECT_EQ(selection.Text(), "ab345678\r\n9") << "written anew, a line that was broken ends";
    parser.Write("\x1B[2;1H\x1B[K\x1B[H");
    parser.Write("12345678abc  \r\n\r\n  x ");
    selection.SetAll();
    EXPECT_EQ(selection.Text(), "12345678abc\r\n\r\n  x");
    selection.Set({3, 3}, {0, 6});
    EXPECT_EQ(selection.Text(), "78abc\r\n\r\n  x") << "marked from its end to its start";
    EXPECT_TRUE(selection.Contains({1, 0}) && !selection.Contains({0, 5}));
    selection.Set({1, 1}, {1, 3});
    EXPECT_EQ(selection.Text(), "bc");
    parser.Write("\r\ny\r\nz");
    EXPECT_EQ(selection.Text(), "bc") << "the text has moved up";
    for (int i = 0; i < 300; ++i) parser.Write("\r\n");
    EXPECT_EQ(selection.Text(), "") << "the text has dropped out";
    selection.Clear();
    EXPECT_TRUE(selection.Empty());
}

}  // namespace
}  // namespace vantor
