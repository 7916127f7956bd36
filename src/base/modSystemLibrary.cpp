#include "base/modSystemLibrary.h"

#include <windows.h>

#include <delayimp.h>

#include <cstdlib>
#include <string>

namespace vesk {

namespace {

void (*missingLibraryHandler)(const char* library) = nullptr;

FARPROC WINAPI EndForMissingLibrary(unsigned /*stage*/, PDelayLoadInfo info) {
    missingLibraryHandler(info->szDll);
    std::_Exit(EXIT_FAILURE);
}

} // namespace

void OnMissingLibrary(void (*handler)(const char* library)) {
    missingLibraryHandler = handler;
    __pfnDliFailureHook2 = &EndForMissingLibrary;
}

void LoadFromSystemOnly() {
    constexpr DWORD kSystemFolder = 0x800;
    // Windows 8, or 7 with its updates.
    const auto setFolders =
        LoadedFunction<BOOL(WINAPI*)(DWORD)>("kernel32.dll", "SetDefaultDllDirectories");
    if (setFolders != nullptr && setFolders(kSystemFolder) != FALSE)
        return;
    // Windows XP SP1: only the current folder can be left out.
    if (const auto setFolder =
            LoadedFunction<BOOL(WINAPI*)(LPCSTR)>("kernel32.dll", "SetDllDirectoryA"))
        setFolder("");
}

void* FindLoadedFunction(const char* library, const char* function) {
    return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(library), function));
}

void* FindSystemFunction(const char* library, const char* function) {
    std::string path(MAX_PATH, '\0');
    const UINT length = GetSystemDirectoryA(path.data(), static_cast<UINT>(path.size()));
    if (length == 0 || length >= path.size()) // or the drive's root would be looked in
        return nullptr;
    path.resize(length);
    path.append("\\").append(library);
    // Never freed: the function may be called at any later time.
    const HMODULE module = LoadLibraryA(path.c_str());
    return module == nullptr ? nullptr : reinterpret_cast<void*>(GetProcAddress(module, function));
}

} // namespace vesk
