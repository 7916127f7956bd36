#pragma once

#include "base/ComPointer.h"

#include <windows.h>

#include <shobjidl.h>

#include <cstddef>

namespace vesk {

/// Progress shown on a window's taskbar button, where the system has that (Windows 7 on); nothing
/// elsewhere.
class clsTaskbar {
public:
    /// Connects to the taskbar when there is something to show. COM must be ready on this thread
    /// then. @param window a top-level window
    explicit clsTaskbar(HWND window) : window_(window) {}

    /// Shows how much of a total is done; nothing changes with a total of 0.
    void SetProgress(std::size_t done, std::size_t total);

    /// Shows that the work stopped because something went wrong.
    void SetFailed();

    /// Takes the progress off the button.
    void Clear();

private:
    void Connect();

    HWND window_;
    bool isConnected_ = false; ///< Or cannot be.
    ComPointer<ITaskbarList3> taskbar_;
};

} // namespace vesk
