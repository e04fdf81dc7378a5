// Where a window was and how large: remembered in the registry, put back the next time.
#pragma once

#include <string>

#include "platform/Registry.hpp"

namespace vantor {

class CodePage;
class Form;

/// One window's position memory. The record is one text value named after the window:
/// "L=left;T=top;W=width;H=height;S=state;", places in twips, state 0 normal, 1 minimised,
/// 2 maximised. Errors are shown in the class's own boxes.
class CFormPos {
public:
    CFormPos(vantor::Registry& registry, const CodePage& codePage);

    vantor::Form* Form = nullptr;  ///< the window to manage
    RegistryRoot RootKey = RegistryRoot::CurrentUser;
    std::string RegistryPath;  ///< at first that of the program
    std::string SubKey;        ///< "Positions" at first

    /// Writes the record of the window as it is now.
    void SaveForm();

    /// Applies the record; false, with nothing changed, when there is none. A minimised or
    /// maximised state is taken without the place. With `keepOnScreen` a window whose corner
    /// lies off the right or bottom edge is pulled back, one that overhangs is left. A number
    /// beyond 32 bits and a negative size are errors (6, 380).
    bool RestoreForm(bool keepOnScreen);

    /// Moves the window to the middle of the screen, its size unchanged.
    void CenterForm();

private:
    std::string KeyPath() const;
    void Apply(const std::string& record, bool keepOnScreen);
    std::string RegistryGetKeyValue(const std::string& name);
    void RegistrySetKeyValue(const std::string& name, const std::string& value);

    vantor::Registry& mRegistry;
    const CodePage& mCodePage;
};

}  // namespace vantor
