// A main window on a headless platform with a virtual indicator on COM1: whole sessions in
// milliseconds of real time.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/frmMain.hpp"
#include "simulator/VirtualIndicator.hpp"
#include "tests/faults/AtRest.hpp"
#include "tests/faults/Images.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {

/// An indicator that records its line, and whose verdict text can be replaced.
class SpiedFarEnd : public IndicatorFarEnd {
public:
    using IndicatorFarEnd::IndicatorFarEnd;
    void Receive(std::string_view bytes) override {
        received += bytes;
        IndicatorFarEnd::Receive(bytes);
    }
    std::string Transmit() override {
        std::string text = IndicatorFarEnd::Transmit();
        if (text.find("DONE") != std::string::npos) text = verdict;
        return text;
    }

    std::string received;
    std::string verdict = "DONE\r\n";
};

class SessionFixture : public testing::Test {
protected:
    static constexpr const char* kPath = "/home/tech/Documents/Caldor Downloads/m40.run";

    SessionFixture() {
        window->Load();
        window->Show();
    }
    ~SessionFixture() override {
        if (!window->Gone()) ExpectAtRest();
        window->Session().Flags().mblnFlashing = false;
        window->Unload();
    }

    /// Connects an indicator with `faults` that expects `image`, which the dialog will select.
    void Connect(const std::string& image, const std::vector<std::string>& faults = {}) {
        IndicatorOptions options;
        options.expected = FlashMemory::FromRecords(image);
        for (const std::string& fault : faults) options.faults.push_back(ParseFault(fault));
        indicator.emplace(std::move(options));
        farEnd.emplace(*indicator, headless.clock);
        headless.ports.Plug("COM1", *farEnd);
        headless.files.Add(kPath, image);
    }

    /// Presses "Update Indicator" and selects the image.
    void Flash() {
        headless.dialogs.choices = {kPath};
        window->cmdFlash.Press();
    }

    /// Runs `action` once, when a label shows `status`, "Updating Indicator" of the status window
    /// included.
    void WhenStatusIs(const std::string& status, std::function<void()> action) {
        headless.peers.onChange = [this, status, action](const Control& control, Property what) {
            if (what != Property::Caption || control.Caption() != status) return;
            headless.peers.onChange = {};
            action();
        };
    }

    void ExpectAtRest() { EXPECT_EQ(NotAtRest(*window, headless), ""); }

    bool MemoryIs(const std::string& image) const {
        return indicator->Memory() == FlashMemory::FromRecords(image);
    }

    /// The boxes after the warning.
    Texts Boxes() const { return Told(headless); }

    ReportingPlatform headless;
    std::shared_ptr<frmMain> window =
        std::make_shared<frmMain>(headless.manager, headless.platform);
    std::optional<VirtualIndicator> indicator;
    std::optional<SpiedFarEnd> farEnd;
};

}  // namespace vantor
