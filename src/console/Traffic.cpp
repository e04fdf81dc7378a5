#include "console/Traffic.hpp"

#include <cstddef>
#include <functional>
#include <span>

#include "support/errors/RuntimeError.hpp"

namespace vantor {
namespace {

class WatchedPort : public SerialPort {
public:
    WatchedPort(std::unique_ptr<SerialPort> inner, const std::vector<TrafficListener*>& listeners)
        : mInner(std::move(inner)), mListeners(listeners) {}
    ~WatchedPort() override {
        for (TrafficListener* const listener : mListeners) listener->Closed();
    }
    WatchedPort(const WatchedPort&) = delete;
    WatchedPort& operator=(const WatchedPort&) = delete;

    std::size_t Read(std::span<char> into) override {
        const std::size_t count = mInner->Read(into);
        if (count > 0)
            for (TrafficListener* const listener : mListeners)
                listener->Received({into.data(), count});
        return count;
    }
    std::size_t Write(std::string_view bytes) override {
        const std::size_t count = mInner->Write(bytes);
        if (count > 0)
            for (TrafficListener* const listener : mListeners)
                listener->Sent(bytes.substr(0, count));
        return count;
    }
    std::size_t InputCount() override { return mInner->InputCount(); }
    std::size_t OutputCount() override { return mInner->OutputCount(); }
    void DiscardInput() override {
        // Read first, so that the listeners get the bytes that the program discards.
        // Only those available now: continuous input must not block the program here.
        std::string bytes(mInner->InputCount(), '\0');
        if (!bytes.empty()) bytes.resize(mInner->Read(bytes));
        mInner->DiscardInput();
        for (TrafficListener* const listener : mListeners) listener->Discarded(bytes);
    }
    void NotifyOnInput(std::function<void()> notify) override {
        mInner->NotifyOnInput(std::move(notify));
    }
    void Break(bool on) override { mInner->Break(on); }
    void Dtr(bool asserted) override { mInner->Dtr(asserted); }
    void Rts(bool asserted) override { mInner->Rts(asserted); }
    std::optional<ModemLines> Lines() override { return mInner->Lines(); }
    LineErrors Errors() override { return mInner->Errors(); }

private:
    std::unique_ptr<SerialPort> mInner;
    const std::vector<TrafficListener*>& mListeners;
};

}  // namespace

std::unique_ptr<SerialPort> WatchedSerialPorts::Open(const std::string& name,
                                                     const LineSettings& line) {
    try {
        auto port = mInner.Open(name, line);
        for (TrafficListener* const listener : mListeners) listener->Opened(name, line);
        return std::make_unique<WatchedPort>(std::move(port), mListeners);
    } catch (const RuntimeError& error) {
        for (TrafficListener* const listener : mListeners)
            listener->Refused(name, line, error.Description());
        throw;
    }
}

}  // namespace vantor
