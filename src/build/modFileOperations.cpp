#include "build/modFileOperations.h"

#include "base/UniqueHandle.h"
#include "base/modFile.h"

#include <windows.h>

namespace vesk {

namespace {

template <class Visitor>
void ForEachEntry(const std::string& pattern, Visitor&& visit) {
    WIN32_FIND_DATAA entry{};
    const FindHandle find(FindFirstFileA(pattern.c_str(), &entry));
    if (!find)
        return;
    do {
        visit(entry);
    } while (FindNextFileA(find.Get(), &entry) != FALSE);
}

bool IsSearchedFolder(const WIN32_FIND_DATAA& entry) {
    const std::string name = entry.cFileName;
    // A link is not entered: what lies behind it is not part of the build tree.
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 && name != "." &&
           name != "..";
}

void Search(const std::string& folder, const std::string& pattern,
            std::vector<std::string>& found) {
    ForEachEntry(folder + pattern, [&](const WIN32_FIND_DATAA& entry) {
        if (entry.nFileSizeHigh != 0 || entry.nFileSizeLow != 0)
            found.push_back(folder + entry.cFileName);
    });
    std::vector<std::string> subfolders;
    ForEachEntry(folder + "*.*", [&](const WIN32_FIND_DATAA& entry) {
        if (IsSearchedFolder(entry))
            subfolders.emplace_back(entry.cFileName);
    });
    for (const std::string& subfolder : subfolders)
        Search(folder + subfolder + "\\", pattern, found);
}

} // namespace

void DeleteFileLogged(const BuildContext& context, const std::string& path) {
    context.Status("Deleting file");
    context.Log("Deleting File: " + path);
    RemoveFile(path);
}

void DeleteFolderLogged(const BuildContext& context, const std::string& path) {
    context.Status("Deleting folder");
    context.Log("Deleting Folder: " + path);
    RemoveFolder(path);
}

void CreateFolderLogged(const BuildContext& context, const std::string& path) {
    context.Log("Creating Directory: " + path);
    CreateFolder(path);
}

void LogIndented(const BuildContext& context, const std::string& text) {
    context.Log(text + "  ");
}

std::vector<std::string> FindFiles(const std::string& folder, std::string& pattern) {
    if (pattern.empty())
        pattern = "*.inf";
    std::vector<std::string> found;
    Search(folder, pattern, found);
    return found;
}

} // namespace vesk
