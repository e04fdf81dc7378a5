// The progress window of a file transmission.
#pragma once

#include <array>
#include <string>

#include "controls/Controls.hpp"
#include "controls/Form.hpp"

namespace vantor {

class StringTable;

/// Exists for one transmission, which polls it for cancellation. Closing it by
/// the title bar also cancels.
class frmSend : public Form {
public:
    frmSend(WindowManager& manager, const StringTable& strings);

    /// Takes the full file name and shows it without its folder.
    void Initialize(const std::string& fileName);

    std::string FileName() const;
    /// Shows `text` at once. No effect once the window is unloaded.
    void status(const std::string& text);
    bool Cancelled() const;

    /// "Filename:", "Sending:".
    std::array<Label, 2> lblLabels{Label{*this, "lblLabels", 0}, Label{*this, "lblLabels", 1}};
    Label lblFilename{*this, "lblFilename"};
    Label lblStatus{*this, "lblStatus"};
    CommandButton cmdCancel{*this, "cmdCancel"};

protected:
    void Form_Load() override;
    bool Form_QueryUnload() override;
    void Form_Paint() override;

private:
    void cmdCancel_Click();
    /// Draws a sunken edge around `control`.
    void DrawEdge(const Control& control);

    const StringTable& mStrings;
    std::string mFileName;
    bool mCancelled = false;
};

}  // namespace vantor
