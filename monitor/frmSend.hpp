// The progress window of a file that is being sent.
#pragma once

#include <array>
#include <string>

#include "controls/Controls.hpp"
#include "controls/Form.hpp"

namespace vantor {

class StringTable;

/// Lives for one transmission, which asks it whether the user has cancelled. Closing it by its
/// title bar cancels too.
class frmSend : public Form {
public:
    frmSend(Desktop& desktop, const StringTable& strings);

    /// Takes the full name of the file and shows it without its folder.
    void Initialize(const std::string& fileName);

    std::string FileName() const;
    /// Shows `text` at once. Nothing once the window is gone.
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
    /// Draws four lines around `control`, so that it looks sunken.
    void DrawEdge(const Control& control);

    const StringTable& mStrings;
    std::string mFileName;
    bool mCancelled = false;
};

}  // namespace vantor
