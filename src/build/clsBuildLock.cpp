#include "build/clsBuildLock.h"

#include "archive/clsCRC.h"
#include "base/RealPath.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <windows.h>

#include <array>
#include <string>

namespace vesk {

namespace {

constexpr DWORD kNoteSize = 512;

/// Object names hold no backslashes and are short: two checksums of the path stand for it.
std::string NoteName(const std::string& path) {
    std::wstring real = RealPath(Widen(path));
    CharUpperBuffW(real.data(), static_cast<DWORD>(real.size()));
    const std::string name = Narrowed(real);
    const auto number = [](const std::string& text) {
        return std::to_string(static_cast<std::uint32_t>(clsCRC().CalculateString(text)));
    };
    return "VeskBuilder-" + number(name) + "-" + number(std::string(name.rbegin(), name.rend()));
}

MappingHandle MakeNote(const std::string& name) {
    return MappingHandle(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                            kNoteSize, name.c_str()));
}

std::string ProgramName() {
    std::array<char, MAX_PATH> path{};
    GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size() - 1));
    return FileNameOf(path.data());
}

} // namespace

clsBuildLock::clsBuildLock(const clsInstallFolder& folder) {
    const std::string name = NoteName(folder.Path());
    // Users of other sessions count as well, where the user may make what they can see.
    note_ = MakeNote("Global\\" + name);
    if (!note_)
        note_ = MakeNote("Local\\" + name);
    if (!note_)
        throw FolderRefused("It cannot be told whether another build works in " + folder.Path());
    const bool taken = GetLastError() == ERROR_ALREADY_EXISTS;
    const MappedView view(MapViewOfFile(note_.Get(), FILE_MAP_ALL_ACCESS, 0, 0, kNoteSize));
    auto* const text = static_cast<char*>(const_cast<void*>(view.Get()));
    if (taken)
        throw FolderRefused("Another build is at work in " + folder.Path() + ": " +
                            std::string(text != nullptr ? text : "an unknown program"));
    if (text != nullptr)
        lstrcpynA(text,
                  (ProgramName() + ", process " + std::to_string(GetCurrentProcessId())).c_str(),
                  static_cast<int>(kNoteSize));
}

} // namespace vesk
