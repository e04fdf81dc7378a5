// Stores the position and size of a window in the registry, and restores them.
#pragma once

#include <string>

#include "app/base/StoredValues.hpp"

namespace vantor {

class Form;

/// The stored position of one window. The record is one string value named after the window, in the
/// sub-key "Positions": "L=left;T=top;W=width;H=height;S=state;", positions in twips, state 0
/// normal, 1 minimised, 2 maximised. Errors are shown in boxes of this class.
class CFormPos : public StoredTexts {
public:
    CFormPos(Registry& registry, const CodePage& codePage);

    vantor::Form* Form = nullptr;  ///< the window to manage

    /// Writes the record of the window's current state.
    void SaveForm();

    /// Applies the record; returns false, with nothing changed, when there is none. For a minimised
    /// or maximised state only the state is applied. With `keepOnScreen`, a window whose corner
    /// is beyond the right or bottom edge is moved back; one that only overlaps the edge is not.
    /// A number beyond 32 bits and a negative size raise errors (6, 380).
    bool RestoreForm(bool keepOnScreen);

    /// Centres the window on the screen without changing its size.
    void CenterForm();

private:
    vantor::Form& Window() const;
    void Apply(const std::string& record, bool keepOnScreen);
};

}  // namespace vantor
