// Implements forms as native windows.
#pragma once

#include "platform/Peers.hpp"
#include "platform/win32/drawing/Win32Context.hpp"
#include "platform/win32/services/Win32MessagePump.hpp"

namespace vantor {

class Win32Peers : public Peers {
public:
    /// Handles keyboard input of controls through `pump`, which must outlive the peers.
    explicit Win32Peers(Win32MessagePump& pump);
    ~Win32Peers() override;
    Win32Peers(const Win32Peers&) = delete;
    Win32Peers& operator=(const Win32Peers&) = delete;

    std::unique_ptr<FormPeer> Draw(Form& form) override;
    Size ScreenSize() const override;
    float TwipsPerPixel() const override;
    Place WorkArea(const Place& place) const override;
    void SetMousePointer(MousePointer pointer) override;
    void HoldSystem(const std::string& reason) override;

    const HeldObjects& Held() const { return mContext.held; }

private:
    Win32MessagePump& mPump;
    Win32Context mContext;
};

}  // namespace vantor
