#include "base/modFile.h"

#include "base/Failure.h"
#include "base/UniqueHandle.h"
#include "base/modSystemError.h"
#include "base/modText.h"

#include <windows.h>

#include <array>
#include <exception>
#include <optional>

namespace vesk {

namespace {

bool HasAttribute(DWORD attributes, DWORD wanted) {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & wanted) != 0;
}

FileHandle OpenForReading(const std::string& path) {
    return FileHandle(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

bool WriteAll(const FileHandle& file, const std::string& text) {
    DWORD written = 0;
    return WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) !=
               0 &&
           written == text.size();
}

void ClearAttributes(const std::string& path) {
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

/// Calls visit(full path, attributes) for everything in a folder.
template <class Visitor>
void ForEachEntry(const std::string& folder, Visitor&& visit) {
    WIN32_FIND_DATAA entry{};
    const FindHandle find(FindFirstFileA((folder + "\\*").c_str(), &entry));
    if (!find)
        return;
    do {
        const std::string name = entry.cFileName;
        if (name != "." && name != "..")
            visit(folder + "\\" + name, entry.dwFileAttributes);
    } while (FindNextFileA(find.Get(), &entry) != FALSE);
}

/// Removes what one directory entry stands for and remembers the first failure.
class TreeRemover {
public:
    void RemoveFolderTree(const std::string& folder) {
        const DWORD attributes = GetFileAttributesA(folder.c_str());
        if (!HasAttribute(attributes, FILE_ATTRIBUTE_REPARSE_POINT))
            RemoveContents(folder);
        if (HasAttribute(attributes, FILE_ATTRIBUTE_READONLY))
            ClearAttributes(folder);
        if (RemoveDirectoryA(folder.c_str()) == 0)
            Remember(GetLastError(), folder);
    }

    void ThrowFirstFailure() const {
        if (first_)
            throw Failure(*first_);
    }

private:
    void RemoveContents(const std::string& folder) {
        ForEachEntry(folder, [&](const std::string& path, DWORD attributes) {
            if (HasAttribute(attributes, FILE_ATTRIBUTE_DIRECTORY))
                RemoveFolderTree(path);
            else
                RemoveOneFile(path);
        });
    }

    void RemoveOneFile(const std::string& path) {
        try {
            RemoveFile(path);
        } catch (const Failure& failure) {
            Remember(failure.number, path);
        }
    }

    void Remember(std::uint32_t code, const std::string& path) {
        if (!first_)
            first_.emplace(code, "RemoveFolder",
                           "cannot delete " + path + ": " + SystemErrorText(code));
    }

    std::optional<Failure> first_;
};

} // namespace

std::string ReadWholeFile(const std::string& path) {
    const FileHandle file = OpenForReading(path);
    LARGE_INTEGER size{};
    if (!file || GetFileSizeEx(file.Get(), &size) == 0 || size.HighPart != 0)
        return {};
    std::string text(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (ReadFile(file.Get(), text.data(), size.LowPart, &read, nullptr) == 0)
        return {};
    text.resize(read);
    return text;
}

void WriteWholeFile(const std::string& path, const std::string& text) {
    if (text.empty())
        return;
    if (FileExists(path))
        ClearAttributes(path);
    const FileHandle file(CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file)
        WriteAll(file, text);
}

void WriteCompleteFile(const std::string& path, const std::string& text) {
    const std::string beside = path + ".new";
    {
        const FileHandle file(CreateFileA(beside.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file)
            ThrowLastError("cannot create", beside);
        if (!WriteAll(file, text) || FlushFileBuffers(file.Get()) == 0) {
            const DWORD error = GetLastError();
            DeleteFileA(beside.c_str());
            ThrowSystemError(error, "cannot write", beside);
        }
    }
    if (FileExists(path))
        ClearAttributes(path);
    if (MoveFileExA(beside.c_str(), path.c_str(),
                    MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
        const DWORD error = GetLastError();
        DeleteFileA(beside.c_str());
        ThrowSystemError(error, "cannot replace", path);
    }
}

bool FileExists(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool FolderExists(const std::string& path) {
    return HasAttribute(GetFileAttributesA(path.c_str()), FILE_ATTRIBUTE_DIRECTORY);
}

bool HasLinkBelow(const std::string& folder, const std::string& path) {
    const std::size_t top = WithoutTrailingBackslash(folder).size();
    for (std::string level = path; level.size() > top; level = ParentOf(level)) {
        if (HasAttribute(GetFileAttributesA(level.c_str()), FILE_ATTRIBUTE_REPARSE_POINT))
            return true;
    }
    return false;
}

bool HoldsLink(const std::string& folder) {
    if (HasAttribute(GetFileAttributesA(folder.c_str()), FILE_ATTRIBUTE_REPARSE_POINT))
        return true;
    bool found = false;
    ForEachEntry(folder, [&](const std::string& path, DWORD attributes) {
        found = found || (HasAttribute(attributes, FILE_ATTRIBUTE_DIRECTORY) && HoldsLink(path));
    });
    return found;
}

void RemoveFile(const std::string& path) {
    ClearAttributes(path);
    if (DeleteFileA(path.c_str()) == 0)
        ThrowLastError("cannot delete", path);
}

void RemoveFolder(const std::string& path) {
    if (!FolderExists(path))
        ThrowSystemError(ERROR_PATH_NOT_FOUND, "cannot delete", path);
    TreeRemover remover;
    remover.RemoveFolderTree(path);
    remover.ThrowFirstFailure();
}

void CreateFolder(const std::string& path) {
    if (CreateDirectoryA(path.c_str(), nullptr) == 0)
        ThrowLastError("cannot create", path);
}

void CreateFolderPath(const std::string& path) {
    if (FolderExists(path) || CreateDirectoryA(path.c_str(), nullptr) != 0)
        return;
    const DWORD error = GetLastError();
    const std::string parent = ParentOf(path);
    if (error != ERROR_PATH_NOT_FOUND || parent.empty())
        ThrowSystemError(error, "cannot create", path);
    CreateFolderPath(parent);
    CreateFolder(path);
}

void CopyFileOver(const std::string& source, const std::string& target) {
    if (FileExists(target))
        ClearAttributes(target);
    if (CopyFileA(source.c_str(), target.c_str(), FALSE) == 0)
        ThrowLastError("cannot copy", source + " to " + target);
}

void MovePath(const std::string& source, const std::string& target) {
    if (MoveFileA(source.c_str(), target.c_str()) == 0)
        ThrowLastError("cannot move", source + " to " + target);
}

std::string AbsolutePath(const std::string& path) {
    std::array<char, MAX_PATH * 4> buffer{};
    const DWORD length =
        GetFullPathNameA(path.c_str(), static_cast<DWORD>(buffer.size()), buffer.data(), nullptr);
    if (length == 0 || length >= buffer.size())
        ThrowLastError("not a path:", path);
    return {buffer.data(), length};
}

} // namespace vesk
