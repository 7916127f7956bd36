#pragma once

#include "ui/kit/clsDialog.h"

#include <optional>
#include <string>
#include <utility>

namespace vesk {

/// The input box for the password of an archive.
class frmPassword : public clsDialog {
public:
    /// @param wrongBefore the last answer was a wrong one: the box says so
    frmPassword(std::string archiveName, bool wrongBefore)
        : archiveName_(std::move(archiveName)), wrongBefore_(wrongBefore) {}

    /// @return the password, or nothing when the user cancels
    std::optional<std::string> Ask(HWND owner);

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnCreated();
    void OnCommand(int id, int notification);

    std::string archiveName_;
    bool wrongBefore_;
    std::optional<std::string> password_;
};

} // namespace vesk
