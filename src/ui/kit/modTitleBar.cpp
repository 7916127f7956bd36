#include "ui/kit/modTitleBar.h"

#include "base/UniqueHandle.h"
#include "base/modSystemLibrary.h"

namespace vesk {

namespace {

using RegistryKey = UniqueHandle<::RegCloseKey, HKEY>;

bool UserWantsDark() {
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER,
                      R"(Software\Microsoft\Windows\CurrentVersion\Themes\Personalize)", 0,
                      KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS)
        return false;
    const RegistryKey key(opened);
    DWORD light = 1;
    DWORD size = sizeof light;
    DWORD type = 0;
    const LONG result = RegQueryValueExA(key.Get(), "AppsUseLightTheme", nullptr, &type,
                                         reinterpret_cast<BYTE*>(&light), &size);
    return result == ERROR_SUCCESS && type == REG_DWORD && light == 0;
}

} // namespace

void FollowDarkMode(HWND window) {
    if (!UserWantsDark())
        return;
    using SetAttribute = HRESULT(WINAPI*)(HWND, DWORD, LPCVOID, DWORD);
    const auto setAttribute = SystemFunction<SetAttribute>("dwmapi.dll", "DwmSetWindowAttribute");
    if (!setAttribute)
        return;
    constexpr DWORD kDarkMode = 20;      // DWMWA_USE_IMMERSIVE_DARK_MODE
    constexpr DWORD kFirstDarkMode = 19; // its number in the first systems that had it
    const BOOL dark = TRUE;
    if (FAILED(setAttribute(window, kDarkMode, &dark, sizeof dark)))
        setAttribute(window, kFirstDarkMode, &dark, sizeof dark);
}

} // namespace vesk
