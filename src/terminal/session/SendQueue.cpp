#include "terminal/session/SendQueue.hpp"

namespace vantor {
namespace {

constexpr std::uint32_t kLineIntervalMs = 50;  // as a text file is sent
constexpr std::size_t kMostBeforeReplies = 1'048'576;

}  // namespace

void SendQueue::AddPiece(std::string bytes, Kind kind) {
    if (bytes.empty()) return;
    mBytes += bytes.size();
    if (kind == Kind::Line) ++mLines;
    mPieces.push_back({std::move(bytes), kind});
}

void SendQueue::AddReply(std::string bytes) {
    if (mBytes + mPort.OutBufferCount() <= kMostBeforeReplies)
        AddPiece(std::move(bytes), Kind::Reply);
}

void SendQueue::AddLines(std::string_view text, std::string_view lineEnd) {
    while (!text.empty()) {
        const std::size_t end = text.find(lineEnd);
        const std::size_t size = end == std::string_view::npos ? text.size() : end + lineEnd.size();
        AddPiece(std::string(text.substr(0, size)), Kind::Line);
        text.remove_prefix(size);
    }
}

bool SendQueue::Due() const {
    if (mPieces.empty()) return false;
    if (mPieces.front().kind != Kind::Line || !mLineSentAt) return true;
    return mClock.Milliseconds() - *mLineSentAt >= kLineIntervalMs;
}

SendQueue::Piece SendQueue::Take() {
    Piece piece = std::move(mPieces.front());
    mPieces.pop_front();
    mBytes -= piece.bytes.size();
    if (piece.kind == Kind::Line) {
        --mLines;
        mLineSentAt = mClock.Milliseconds();
    }
    return piece;
}

bool SendQueue::Flush() {
    while (mPort.FlushPending()) {
        if (!Due()) return mPieces.empty();
        const Piece piece = Take();  // before the output: a lost port clears the queue
        mPort.Output(piece.bytes);
        if (mPort.IsOpen() && piece.kind != Kind::Reply) mSent(piece.bytes);
    }
    return false;
}

void SendQueue::DropLines() {
    for (const Piece& piece : mPieces)
        if (piece.kind == Kind::Line) mBytes -= piece.bytes.size();
    std::erase_if(mPieces, [](const Piece& piece) { return piece.kind == Kind::Line; });
    mLines = 0;
}

void SendQueue::Clear() {
    mPieces.clear();
    mBytes = 0;
    mLines = 0;
    mLineSentAt.reset();
}

}  // namespace vantor
