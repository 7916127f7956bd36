#pragma once

#include "ui/kit/clsSubclass.h"

#include <windows.h>

#include <string>

namespace vesk {

/// A sentence that a list view shows while it has no lines.
class clsListNote {
public:
    /// @param list a list view; may be destroyed first
    void Attach(HWND list, std::string text);

    /// Changes the sentence; an empty one shows nothing.
    void SetNote(const std::string& text);

private:
    void Paint() const;

    HWND list_ = nullptr;
    std::string text_;
    clsSubclass link_;
};

} // namespace vesk
