#include "console/SeveralPorts.hpp"

#include <algorithm>

#include "console/PortRow.hpp"
#include "console/SessionReport.hpp"
#include "support/Traps.hpp"
#include "support/text/Unicode.hpp"

namespace vantor {
namespace {

constexpr std::uint32_t kPollMs = 20;
constexpr std::uint32_t kRedrawMs = 200;

void Add(std::vector<std::string>& arguments, const char* option,
         const std::optional<std::string>& value) {
    if (value) arguments.insert(arguments.end(), {option, *value});
}

/// The command line of the process for `port`.
std::vector<std::string> ArgumentsFor(const Options& options, const std::string& port) {
    std::vector<std::string> arguments = {"--json", "--yes", "--port", port};
    Add(arguments, "--baud", options.baud);
    Add(arguments, "--parity", options.parity);
    Add(arguments, "--data-bits", options.dataBits);
    Add(arguments, "--stop-bits", options.stopBits);
    Add(arguments, "--wait", options.wait);
    Add(arguments, "--expect", options.expect);
    if (options.strict) arguments.emplace_back("--strict");
    if (options.practice) arguments.emplace_back("--practice");
    for (const std::string& fault : options.faults) Add(arguments, "--fault", fault);
    if (!options.record.empty()) Add(arguments, "--record", options.record);
    if (!options.note.empty()) Add(arguments, "--note", options.note);
    arguments.insert(arguments.end(), {"--", options.image});
    return arguments;
}

/// Shows the rows of several ports.
class Board {
public:
    Board(NativePlatform& native, const Options& options, const JsonEvents& events,
          std::vector<PortRow>& rows)
        : mNative(native), mOptions(options), mEvents(events), mRows(rows) {
        for (const PortRow& row : rows)
            mNameWidth = std::max(mNameWidth, CharacterCount(row.Port()));
        for (const PortRow& row : rows)
            if (row.Ended()) ShowEnd(row);  // not started
        mStates.resize(rows.size());
    }

    /// Reads and shows what has changed; true while a process runs.
    bool Round();
    void Conclude(ExitStatus status);

private:
    bool OnTerminal() const {
        return mNative.console->OutputIsTerminal() && !mOptions.json && !mOptions.quiet;
    }
    void ShowEnd(const PortRow& row);
    void ShowLines();
    void Draw();

    NativePlatform& mNative;
    const Options& mOptions;
    const JsonEvents& mEvents;
    std::vector<PortRow>& mRows;
    std::vector<std::string> mStates;  // shown last, without a terminal
    std::size_t mNameWidth = 0;
    unsigned mDrawn = 0;  // rows above the cursor
    std::uint32_t mDrawnAt = 0;
};

bool Board::Round() {
    const std::uint32_t now = mNative.clock->Milliseconds();
    bool running = false;
    std::string messages;
    for (PortRow& row : mRows) {
        const bool ranBefore = !row.Ended();
        const std::string lines = row.Read(now);
        if (mOptions.json) mNative.console->Write(lines);
        messages += row.TakeMessages();
        if (ranBefore && row.Ended()) ShowEnd(row);
        running |= !row.Ended();
    }
    if (!messages.empty() && !mOptions.json) {
        // The messages take the place of the rows, which are drawn again below them.
        if (mDrawn > 0) mNative.console->ClearRowsAbove(mDrawn);
        mDrawn = 0;
        mNative.console->WriteError(messages);
    }
    if (!OnTerminal())
        ShowLines();
    else if (mDrawn == 0 || !running || now - mDrawnAt >= kRedrawMs)
        Draw();
    return running;
}

void Board::ShowEnd(const PortRow& row) {
    if (!mOptions.json || !row.Lost()) return;
    JsonEvents events = mEvents;
    events.SetPort(row.Port());
    WriteRefusal(events, row.Status(), row.State());
}

/// Without a terminal: a line for each ten per cent and for what is not progress.
void Board::ShowLines() {
    if (mOptions.json) return;
    for (std::size_t i = 0; i < mRows.size(); ++i) {
        const PortRow& row = mRows[i];
        std::string state =
            row.Streaming() ? std::to_string(row.Percent() / 10 * 10) + " %" : row.State();
        if (state == mStates[i] || (mOptions.quiet && !row.Ended())) continue;
        mNative.console->Write(row.Port() + ": " + state + "\n");
        mStates[i] = std::move(state);
    }
}

void Board::Draw() {
    const std::uint32_t now = mNative.clock->Milliseconds();
    // One column less than the terminal width: a full line would wrap and scroll.
    const std::size_t width = std::max(mNative.console->Columns(), 2u) - 1;
    if (mDrawn > 0) mNative.console->ClearRowsAbove(mDrawn);
    std::string text;
    for (const PortRow& row : mRows) text += FixedWidth(row.Row(mNameWidth, now), width) + "\n";
    mNative.console->Write(text);
    mDrawn = static_cast<unsigned>(mRows.size());
    mDrawnAt = now;
}

void Board::Conclude(ExitStatus status) {
    const auto done = std::ranges::count(mRows, ExitStatus::Done, &PortRow::Status);
    const auto count = static_cast<std::int64_t>(mRows.size());
    if (mOptions.json) {
        WriteSummary(mEvents, done, count - done, status);
        return;
    }
    mNative.console->Write(Filled(mNative.strings->Text(Str::SeveralSummary), std::to_string(done),
                                  std::to_string(count)) +
                           "\n");
}

}  // namespace

ExitStatus FlashSeveral(NativePlatform& native, const Options& options,
                        const std::vector<std::string>& ports, const JsonEvents& events) {
    std::vector<PortRow> rows;
    for (const std::string& port : ports) {
        std::unique_ptr<ChildProcess> process;
        Ignoring([&] {
            process = native.children->Start(native.process->ExecutablePath(),
                                             ArgumentsFor(options, port));
        });
        rows.emplace_back(port, std::move(process), *native.strings);
    }
    Board board(native, options, events, rows);
    while (board.Round()) {
        if (native.console->TakeInterrupt())
            for (PortRow& row : rows) row.Interrupt();
        if (native.console->ReaderGone())
            for (PortRow& row : rows) row.EndWait();
        native.clock->Sleep(kPollMs);
    }
    ExitStatus status = ExitStatus::Done;
    for (const PortRow& row : rows) status = Worse(status, row.Status());
    board.Conclude(status);
    return status;
}

}  // namespace vantor
