#include "build/clsBuildLock.h"

#include "archive/clsCRC.h"
#include "base/modText.h"
#include "base/modWide.h"
#include "build/clsFolderReader.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace vesk {

namespace {

constexpr DWORD kNoteSize = 512;

std::string NumberOf(std::wstring name) {
    CharUpperBuffW(name.data(), static_cast<DWORD>(name.size()));
    const std::string text = Narrowed(name);
    return std::to_string(static_cast<std::uint32_t>(clsCRC().CalculateString(text))) + "-" +
           std::to_string(text.size());
}

/// Only the number that is the same through every drive and at any time. A folder of another volume
/// that happens to have it as well is refused for as long as the other build runs. Where the file
/// system has no numbers, the path must do.
std::string NumberOf(const FolderLevel& level) {
    return level.identity ? std::to_string(level.identity->index) : NumberOf(level.path);
}

/// A folder by the one that it lies in and its name there: a build replaces the folder itself.
std::string AtName(const FolderLevel& above, const std::wstring& path) {
    const std::size_t start = above.path.size() + (above.path.ends_with(L'\\') ? 0 : 1);
    return "VeskBuilder-at-" + NumberOf(above) + "-" + NumberOf(path.substr(start));
}

std::string BelowName(const FolderLevel& level) {
    return "VeskBuilder-below-" + NumberOf(level);
}

std::string TreeName(const FolderLevel& level) {
    return "VeskBuilder-tree-" + NumberOf(level);
}

std::string ProgramName() {
    std::array<char, MAX_PATH> path{};
    GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size() - 1));
    return FileNameOf(path.data());
}

/// Where notes are looked for, the one that is tried first to make them in first.
constexpr std::array kSpaces{"Global\\", "Local\\"};

std::string WhoHas(const MappingHandle& note) {
    const MappedView view(MapViewOfFile(note.Get(), FILE_MAP_READ, 0, 0, 0));
    const auto* text = static_cast<const char*>(view.Get());
    return text != nullptr && *text != '\0' ? text : "another program";
}

void SignNote(const MappingHandle& note) {
    const MappedView view(MapViewOfFile(note.Get(), FILE_MAP_WRITE, 0, 0, 0));
    if (!view)
        return;
    const std::string signature =
        ProgramName() + ", process " + std::to_string(GetCurrentProcessId());
    lstrcpynA(static_cast<char*>(const_cast<void*>(view.Get())), signature.c_str(),
              static_cast<int>(kNoteSize));
}

/// For all sessions of the machine; where that is not allowed, for this one.
/// GetLastError says afterwards whether it was there already.
MappingHandle MakeNote(const std::string& name) {
    const auto make = [&name](const char* space) {
        return CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kNoteSize,
                                  (space + name).c_str());
    };
    const HANDLE everywhere = make(kSpaces[0]);
    return MappingHandle(everywhere != nullptr ? everywhere : make(kSpaces[1]));
}

} // namespace

clsBuildLock::clsBuildLock(const clsInstallFolder& folder) : path_(folder.Path()) {
    clsFolderReader reader;
    const std::vector<FolderLevel> way = reader.WayUp(Widen(path_));
    // First the folder is taken and then others are looked for, so that of two that start at once
    // one at least sees the other.
    for (std::size_t i = 1; i < way.size(); ++i) {
        if (!way[i].IsMissing())
            Take(AtName(way[i], way[0].path));
    }
    for (std::size_t i = 1; i < way.size(); ++i) {
        for (std::size_t above = i + 1; above < way.size(); ++above) {
            if (!way[above].IsMissing())
                RefuseIfTaken(AtName(way[above], way[i].path));
        }
    }
    for (const auto& anyWay : reader.WaysUp(Widen(path_))) {
        for (const FolderLevel& level : anyWay)
            RefuseIfTaken(TreeName(level));
    }
    if (!way[0].IsMissing())
        RefuseIfTaken(BelowName(way[0]));
    for (std::size_t i = 1; i < way.size(); ++i) {
        if (!way[i].IsMissing())
            Sign(BelowName(way[i]));
    }
}

void clsBuildLock::NoteFolder() {
    const FolderLevel folder = clsFolderReader().WayUp(Widen(path_)).front();
    if (!folder.IsMissing())
        Sign(TreeName(folder));
}

void clsBuildLock::Sign(const std::string& name) {
    notes_.push_back(MakeNote(name));
    if (notes_.back())
        SignNote(notes_.back());
}

void clsBuildLock::Take(const std::string& name) {
    MappingHandle note = MakeNote(name);
    const bool taken = GetLastError() == ERROR_ALREADY_EXISTS;
    if (!note)
        throw FolderRefused("Whether another build is running there cannot be determined: " +
                            path_);
    if (taken)
        throw FolderRefused("Another build is running in " + path_ + ": " + WhoHas(note));
    SignNote(note);
    notes_.push_back(std::move(note));
}

void clsBuildLock::RefuseIfTaken(const std::string& name) const {
    for (const char* space : kSpaces) {
        const MappingHandle note(OpenFileMappingA(FILE_MAP_READ, FALSE, (space + name).c_str()));
        if (note)
            throw FolderRefused("Another build is running in a folder above or below " + path_ +
                                ": " + WhoHas(note));
    }
}

} // namespace vesk
