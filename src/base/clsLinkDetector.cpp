#include "base/clsLinkDetector.h"

#include "base/UniqueHandle.h"
#include "base/modFolderEntries.h"
#include "base/modRealPath.h"
#include "base/modSystemLibrary.h"
#include "base/modWide.h"

#include <windows.h>

namespace vesk {

namespace {

/// Windows XP lacks the function, and needs none of this.
bool MarkForDeletion(HANDLE file) {
    using Function = BOOL(WINAPI*)(HANDLE, int, LPVOID, DWORD);
    static const auto function =
        LoadedFunction<Function>("kernel32.dll", "SetFileInformationByHandle");
    constexpr int kFileDispositionInfo = 4;
    BOOLEAN goes = TRUE;
    return function != nullptr && function(file, kFileDispositionInfo, &goes, sizeof goes) != FALSE;
}

} // namespace

bool clsLinkDetector::SystemHidesLinks() {
    static const bool hides = FindLoadedFunction("ntdll.dll", "wine_get_version") != nullptr;
    return hides;
}

bool clsLinkDetector::IsFileLink(const std::wstring& folder, const std::wstring& name,
                                 std::uint32_t attributes) {
    if (IsLink(LongPath(folder + L"\\" + name), attributes))
        return true;
    if (!SystemHidesLinks())
        return false;
    return !LeadsTo(RealPath(folder + L"\\" + name), folder, name);
}

bool clsLinkDetector::DeleteAtOnce(const std::wstring& folder, const std::wstring& name) {
    if (!SystemHidesLinks())
        return false;
    const FileHandle file(CreateFileW(LongPath(folder + L"\\" + name).c_str(), DELETE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
    return file && LeadsTo(RealPathOf(file.Get()), folder, name) && MarkForDeletion(file.Get());
}

/// Whether a real path is that of an entry itself.
bool clsLinkDetector::LeadsTo(const std::wstring& real, const std::wstring& folder,
                              const std::wstring& name) {
    if (folder != folder_) {
        folder_ = folder;
        realFolder_ = RealPath(folder);
    }
    const std::wstring separator = realFolder_.ends_with(L'\\') ? L"" : L"\\";
    return IsSamePath(real, realFolder_ + separator + name);
}

} // namespace vesk
