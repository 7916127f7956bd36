#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>

namespace vesk {

/// Sees the messages of a control before the control does, for as long as object and control both
/// live; either may go first, also while a message is handled.
class clsSubclass {
public:
    /// @return the answer to the message; nothing when the control is to handle it
    using Handler = std::function<std::optional<LRESULT>(UINT message, WPARAM, LPARAM)>;

    clsSubclass() = default;
    clsSubclass(const clsSubclass&) = delete;
    clsSubclass& operator=(const clsSubclass&) = delete;
    ~clsSubclass();

    /// To be called once. A failure that leaves the handler is shown to the user.
    void Attach(HWND control, Handler handler);

    /// Lets the control handle a message now, from within the handler.
    LRESULT PassOn(UINT message, WPARAM wparam, LPARAM lparam) const;

private:
    struct Link;
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                      UINT_PTR id, DWORD_PTR data);

    std::shared_ptr<Link> link_;
};

} // namespace vesk
