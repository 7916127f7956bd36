#include "ui/kit/modEnable.h"

namespace vesk {

void EnableControl(HWND control, bool enable, HWND heir) {
    if ((IsWindowEnabled(control) != FALSE) == enable)
        return;
    if (!enable && GetFocus() == control)
        SendMessageA(GetAncestor(control, GA_ROOT), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(heir),
                     TRUE);
    EnableWindow(control, enable);
}

void EnablePair(HWND first, bool enableFirst, HWND second, bool enableSecond, HWND heir) {
    // An heir must be enabled before it inherits.
    if (enableFirst)
        EnableWindow(first, TRUE);
    if (enableSecond)
        EnableWindow(second, TRUE);
    EnableControl(first, enableFirst, enableSecond ? second : heir);
    EnableControl(second, enableSecond, enableFirst ? first : heir);
}

} // namespace vesk
