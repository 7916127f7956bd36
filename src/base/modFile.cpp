#include "base/modFile.h"

#include "base/Failure.h"
#include "base/Problem.h"
#include "base/UniqueHandle.h"
#include "base/clsLinkDetector.h"
#include "base/clsPatience.h"
#include "base/modFlush.h"
#include "base/modFolderEntries.h"
#include "base/modRealPath.h"
#include "base/modSystemError.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <windows.h>

#include <cstddef>
#include <ranges>
#include <utility>
#include <vector>

namespace vesk {

namespace {

bool HasAttribute(DWORD attributes, DWORD wanted) {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & wanted) != 0;
}

FileHandle OpenForReading(const std::string& path) {
    return FileHandle(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

[[noreturn]] void ThrowTooLong(const std::string& path) {
    static_assert(kLongestText == 16 << 20);
    constexpr const char* kReason = "it is larger than 16 MB";
    throw Failure(ERROR_FILE_TOO_LARGE, "ReadFileIfThere", "cannot read " + path + ": " + kReason,
                  kReason);
}

bool WriteAll(const FileHandle& file, const std::string& text) {
    DWORD written = 0;
    if (WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) == 0)
        return false;
    if (written < text.size())
        SetLastError(ERROR_DISK_FULL); // which may take a part without an error
    return written == text.size();
}

void ClearAttributes(const std::string& path) {
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

} // namespace

std::string ReadWholeFile(const std::string& path) {
    try {
        return ReadFileIfThere(path);
    } catch (const Failure&) {
        return {};
    }
}

std::string ReadFileIfThere(const std::string& path) {
    const FileHandle file = OpenForReading(path);
    if (!file && (GetLastError() == ERROR_FILE_NOT_FOUND || GetLastError() == ERROR_PATH_NOT_FOUND))
        return {};
    LARGE_INTEGER known{};
    if (!file || GetFileSizeEx(file.Get(), &known) == 0)
        ThrowLastError("cannot read", path);
    if (known.QuadPart > kLongestText + kRoomForEdits)
        ThrowTooLong(path);
    const DWORD size = known.LowPart;
    std::string text(size, '\0');
    DWORD done = 0;
    while (done < size) { // one call may bring a part only
        DWORD read = 0;
        if (ReadFile(file.Get(), text.data() + done, size - done, &read, nullptr) == 0)
            ThrowLastError("cannot read", path);
        if (read == 0)
            break; // it has become shorter
        done += read;
    }
    text.resize(done);
    return text;
}

void RequireTextSize(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data) != 0 &&
        (data.nFileSizeHigh != 0 || data.nFileSizeLow > kLongestText))
        ThrowTooLong(path);
}

std::string WhyUnreadable(const std::string& path) {
    const FileHandle file = OpenForReading(path);
    LARGE_INTEGER size{};
    if (!file || GetFileSizeEx(file.Get(), &size) == 0)
        return AsReason(SystemErrorText(GetLastError()));
    return size.QuadPart == 0 ? "it is empty" : "it cannot be read in full";
}

bool WriteWholeFile(const std::string& path, const std::string& text) {
    if (text.empty())
        return true;
    if (FileExists(path))
        ClearAttributes(path);
    const FileHandle file(CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file && WriteAll(file, text);
}

namespace {

/// Where a file is made that is to replace the one at the path. What a run that was cut off left
/// there goes; a link stays, and is a failure: nothing is written through it. @throws Failure
std::string MakeRoomBeside(const std::string& path) {
    std::string beside = path + ".vesk-new";
    RemoveOwnFile(beside);
    return beside;
}

/// Told by the system after each piece of a copy. @param meanwhile a function without parameters
DWORD CALLBACK AfterPiece(LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, DWORD, DWORD,
                          HANDLE, HANDLE, void* meanwhile) noexcept {
    (*static_cast<const std::function<void()>*>(meanwhile))();
    return PROGRESS_CONTINUE;
}

bool Delete(const std::string& path) {
    return TryPatiently([&] { return DeleteFileA(path.c_str()) != 0; });
}

/// Replaces or removes a file, a read-only one too. One that stays is as it was.
/// @param call as clsPatience::Try takes it @return what it returned; the last error is its
template <class Call>
bool WithoutAttributes(const std::string& path, Call call) {
    const DWORD before = GetFileAttributesA(path.c_str());
    const bool isFile = FileExists(path);
    if (isFile)
        ClearAttributes(path);
    if (call())
        return true;
    const DWORD error = GetLastError();
    if (isFile)
        SetFileAttributesA(path.c_str(), before);
    SetLastError(error);
    return false;
}

/// Gives the complete file beside a path its name. @throws Failure; nothing then stays beside it
void MoveIntoPlace(const std::string& beside, const std::string& path) {
    const auto move = [&] {
        return MoveFileExA(beside.c_str(), path.c_str(),
                           MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
    };
    // A folder in its place stays there.
    if (FolderExists(path) ? move() : WithoutAttributes(path, [&] { return TryPatiently(move); }))
        return;
    const DWORD error = GetLastError();
    ClearAttributes(beside);
    Delete(beside);
    ThrowSystemError(error, "cannot replace", path);
}

} // namespace

void WriteCompleteFile(const std::string& path, const std::string& text) {
    const std::string beside = MakeRoomBeside(path);
    {
        // Without the last flag the system would create what a link leads to and lacks.
        FileHandle file(CreateFileA(beside.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        if (!file)
            ThrowLastError("cannot create", beside);
        if (!WriteAll(file, text) || !FlushToDisk(file.Get())) {
            const DWORD error = GetLastError();
            file.Reset(); // nobody deletes an open file
            Delete(beside);
            ThrowSystemError(error, "cannot write", beside);
        }
    }
    MoveIntoPlace(beside, path);
}

PathState StateOf(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES)
        return HasAttribute(attributes, FILE_ATTRIBUTE_DIRECTORY) ? PathState::Folder
                                                                  : PathState::File;
    switch (GetLastError()) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
        return PathState::Nothing;
    default:
        return PathState::Unknown;
    }
}

bool FileExists(const std::string& path) {
    return StateOf(path) == PathState::File;
}

bool FolderExists(const std::string& path) {
    return StateOf(path) == PathState::Folder;
}

bool HasLinkBelow(const std::string& folder, const std::string& path) {
    const std::size_t top = WithoutTrailingBackslash(folder).size();
    for (std::string level = path; level.size() > top; level = ParentOf(level)) {
        const std::wstring name = LongPath(AbsolutePath(level));
        const DWORD attributes = GetFileAttributesW(name.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && IsLink(name, attributes))
            return true;
    }
    return false;
}

namespace {

/// Wine does not even list a link that leads to nothing. What it is in cannot be removed, though
/// nothing seems to be in it.
bool HidesSomething(const std::wstring& folder) {
    return RemoveDirectoryW(LongPath(folder).c_str()) == 0 && GetLastError() == ERROR_DIR_NOT_EMPTY;
}

} // namespace

bool HoldsLink(const std::string& folder) {
    const DWORD attributes = GetFileAttributesA(folder.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && IsLink(LongPath(folder), attributes))
        return true;
    std::vector<std::wstring> folders{Widen(folder)};
    clsLinkDetector links;
    bool found = false;
    while (!found && !folders.empty()) {
        const std::wstring current = std::move(folders.back());
        folders.pop_back();
        bool empty = true;
        ForEachEntry(current, [&](const FolderEntry& entry) {
            empty = false;
            found = found ||
                    (entry.IsFolder() ? entry.IsLink()
                                      : links.IsFileLink(current, entry.name, entry.attributes));
            if (entry.IsPlainFolder())
                folders.push_back(current + L"\\" + entry.name);
        });
        found = found || (empty && clsLinkDetector::SystemHidesLinks() && HidesSomething(current));
    }
    return found;
}

void MakeWritable(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (HasAttribute(attributes, FILE_ATTRIBUTE_READONLY))
        SetFileAttributesA(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
}

void RemoveFile(const std::string& path) {
    if (!WithoutAttributes(path, [&] { return Delete(path); }))
        ThrowLastError("cannot delete", path);
    AwaitRemoval(Widen(path)); // another file may be about to get its name
}

bool PlainFileExists(const std::string& path) {
    if (!FileExists(path))
        return false;
    // A file whose name the code page lacks is known by its short one.
    const std::wstring wide = WithLongNames(Widen(AbsolutePath(path)));
    const std::size_t slash = wide.rfind(L'\\');
    return !clsLinkDetector().IsFileLink(wide.substr(0, slash), wide.substr(slash + 1),
                                         GetFileAttributesA(path.c_str()));
}

void RemoveOwnFile(const std::string& path) {
    const PathState state = StateOf(path);
    if (state == PathState::Nothing || state == PathState::Folder)
        return;
    if (state == PathState::Unknown)
        ThrowLastError("cannot look at", path);
    if (!PlainFileExists(path))
        ThrowSystemError(ERROR_CANT_RESOLVE_FILENAME, "cannot replace", path);
    RemoveFile(path);
}

namespace {

bool MakeFolder(const std::string& path) {
    return CreatePatiently(Widen(path),
                           [&] { return CreateDirectoryA(path.c_str(), nullptr) != 0; });
}

} // namespace

void CreateFolder(const std::string& path) {
    if (!MakeFolder(path))
        ThrowLastError("cannot create", path);
}

void CreateFolderPath(const std::string& path) {
    // The missing levels, the innermost first: a path may be as deep as it likes.
    std::vector<std::string> missing;
    for (std::string level = WithoutTrailingBackslash(path); !FolderExists(level);
         level = ParentOf(level)) {
        if (MakeFolder(level))
            break;
        const DWORD error = GetLastError();
        if (error != ERROR_PATH_NOT_FOUND || ParentOf(level).empty())
            ThrowSystemError(error, "cannot create", level);
        missing.push_back(level);
    }
    for (const std::string& level : std::views::reverse(missing))
        CreateFolder(level);
}

namespace {

/// For the last error.
[[noreturn]] void ThrowTransferError(const char* what, const std::string& source,
                                     const std::string& target) {
    const DWORD error = GetLastError();
    ThrowSystemError(error, what, source + " to " + target);
}

/// @param flags as the system's function takes them @return whether it worked; else see
/// GetLastError
bool Copy(const std::string& source, const std::string& target,
          const std::function<void()>& meanwhile, DWORD flags) {
    std::function<void()> afterPiece = meanwhile;
    return CopyFileExA(source.c_str(), target.c_str(), meanwhile ? AfterPiece : nullptr,
                       &afterPiece, nullptr, flags) != 0;
}

} // namespace

void CopyFileOver(const std::string& source, const std::string& target) {
    if (FileExists(target))
        ClearAttributes(target);
    if (!Copy(source, target, {}, 0))
        ThrowTransferError("cannot copy", source, target);
}

void CopyCompleteFile(const std::string& source, const std::string& target,
                      const std::function<void()>& meanwhile) {
    const std::string beside = MakeRoomBeside(target);
    if (!Copy(source, beside, meanwhile, COPY_FILE_FAIL_IF_EXISTS)) {
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_EXISTS)
            Delete(beside); // of a full disk, say
        SetLastError(error);
        ThrowTransferError("cannot copy", source, target);
    }
    MoveIntoPlace(beside, target);
}

void MovePath(const std::string& source, const std::string& target) {
    // While anybody has a file in a folder open, the folder keeps its name.
    if (!TryPatiently([&] { return MoveFileA(source.c_str(), target.c_str()) != 0; }))
        ThrowTransferError("cannot move", source, target);
}

std::string AbsolutePath(const std::string& path) {
    // The current folder's name may have characters that only look like the code page's.
    const auto exact = NarrowedExactly(AbsoluteWidePath(path));
    if (!exact)
        ThrowSystemError(ERROR_NO_UNICODE_TRANSLATION, "cannot use", path);
    return *exact;
}

} // namespace vesk
