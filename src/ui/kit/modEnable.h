#pragma once

#include <windows.h>

/// Controls that work only while they would do something.
namespace vesk {

/// Enables or disables a control. One that has the keyboard when it is disabled hands it on,
/// because keys that reach a disabled control reach nobody.
/// @param heir who gets the keyboard
void EnableControl(HWND control, bool enable, HWND heir);

/// The same for two buttons that do the opposite of each other: each is the other's first heir.
void EnablePair(HWND first, bool enableFirst, HWND second, bool enableSecond, HWND heir);

} // namespace vesk
