#include "ui/kit/frmBrowse.h"

#include "base/ComPointer.h"
#include "base/Failure.h"
#include "base/modText.h"
#include "base/modWide.h"
#include "ui/kit/FileDialog.h"

#include <commdlg.h>
#include <shlobj.h>

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace vesk {

namespace {

struct TaskMemoryFree {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};
using ItemIdList = std::unique_ptr<ITEMIDLIST, TaskMemoryFree>;

/// The program works with paths in the code page; one that it would misspell is another path.
/// @throws Failure
std::string UsablePath(const std::wstring& chosen) {
    if (const auto exact = NarrowedExactly(chosen))
        return *exact;
    throw Failure(ERROR_NO_UNICODE_TRANSLATION, "frmBrowse",
                  "What was chosen has a letter in its path that the system's code page lacks, and "
                  "cannot be used: " +
                      Narrowed(chosen));
}

std::string PathOf(LPCITEMIDLIST item) {
    std::array<wchar_t, MAX_PATH> path{};
    return item && SHGetPathFromIDListW(item, path.data()) ? UsablePath(path.data())
                                                           : std::string();
}

ItemIdList ItemOf(const std::string& folder) {
    IShellFolder* rawDesktop = nullptr;
    if (folder.empty() || FAILED(SHGetDesktopFolder(&rawDesktop)))
        return {};
    const ComPointer<IShellFolder> desktop(rawDesktop);
    std::wstring wide = Widen(folder);
    LPITEMIDLIST item = nullptr;
    if (FAILED(desktop->ParseDisplayName(nullptr, nullptr, wide.data(), nullptr, &item, nullptr)))
        return {};
    return ItemIdList(item);
}

ComPointer<IShellItem> ShellItemOf(const std::string& folder) {
    const ItemIdList list = ItemOf(folder);
    IShellItem* item = nullptr;
    if (!list || FAILED(SHCreateShellItem(nullptr, nullptr, list.get(), &item)))
        return {};
    return ComPointer<IShellItem>(item);
}

std::string PathOf(IShellItem& item) {
    wchar_t* rawName = nullptr;
    if (FAILED(item.GetDisplayName(SIGDN_FILESYSPATH, &rawName)))
        return {};
    const std::unique_ptr<wchar_t, TaskMemoryFree> name(rawName);
    return UsablePath(name.get());
}

/// The dialog of Windows Vista and later; nothing on a system that lacks it.
/// @param types files to choose from; none: a folder is chosen
std::optional<std::string> ChooseInFileDialog(HWND owner, const std::string& title,
                                              const std::string& startFolder,
                                              std::span<const FileType> types) {
    void* created = nullptr;
    if (FAILED(CoCreateInstance(kFileOpenDialogClass, nullptr, CLSCTX_INPROC_SERVER,
                                kFileDialogInterface, &created)))
        return std::nullopt;
    const ComPointer<FileDialog> dialog(static_cast<FileDialog*>(created));
    DWORD options = 0;
    dialog->GetOptions(&options);
    dialog->SetOptions(options | (types.empty() ? kPickFolders : kFileMustExist) |
                       kForceFileSystem | kNoChangeDir);
    if (!types.empty())
        dialog->SetFileTypes(static_cast<UINT>(types.size()), types.data());
    dialog->SetTitle(Widen(title).c_str());
    if (const auto start = ShellItemOf(startFolder))
        dialog->SetFolder(start.get());
    IShellItem* chosen = nullptr;
    if (FAILED(dialog->Show(owner)) || FAILED(dialog->GetResult(&chosen)))
        return std::string();
    return PathOf(*ComPointer<IShellItem>(chosen));
}

int CALLBACK SelectStart(HWND dialog, UINT message, LPARAM, LPARAM startFolder) {
    if (message == BFFM_INITIALIZED && startFolder != 0)
        SendMessageA(dialog, BFFM_SETSELECTIONA, TRUE, startFolder);
    return 0;
}

std::string ChooseInFolderTree(HWND owner, const std::string& title,
                               const std::string& startFolder) {
    BROWSEINFOA info{};
    std::array<char, MAX_PATH> name{};
    info.hwndOwner = owner;
    info.pszDisplayName = name.data();
    info.lpszTitle = title.c_str();
    info.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE | BIF_EDITBOX;
    info.lpfn = SelectStart;
    info.lParam = startFolder.empty() ? 0 : reinterpret_cast<LPARAM>(startFolder.c_str());
    return PathOf(ItemIdList(SHBrowseForFolderA(&info)).get());
}

/// The dialog of systems before Vista. Windows 7 and later would open it where the user chose last,
/// and not where it is to begin.
std::string ChooseInOldDialog(HWND owner, const std::string& title, const std::string& startFolder,
                              std::span<const FileType> types) {
    std::wstring filter;
    for (const FileType& type : types)
        filter += std::wstring(type.name) + L'\0' + type.pattern + L'\0';
    const std::wstring start = Widen(startFolder);
    const std::wstring caption = Widen(title);
    std::array<wchar_t, 1024> path{};
    OPENFILENAMEW request{};
    request.lStructSize = sizeof request;
    request.hwndOwner = owner;
    request.lpstrFilter = filter.c_str();
    request.lpstrFile = path.data();
    request.nMaxFile = static_cast<DWORD>(path.size());
    request.lpstrInitialDir = start.c_str();
    request.lpstrTitle = caption.c_str();
    request.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    return GetOpenFileNameW(&request) ? UsablePath(path.data()) : std::string();
}

/// A folder as the dialogs take it: without a backslash at its end, unless it is a drive.
std::string StartOf(const std::string& folder) {
    return folder.size() > 3 ? WithoutTrailingBackslash(folder) : folder;
}

} // namespace

std::string frmBrowse::ChooseFolder(const std::string& title,
                                    const std::string& startFolder) const {
    const std::string start = StartOf(startFolder);
    if (const auto chosen = ChooseInFileDialog(owner_, title, start, {}))
        return *chosen;
    return ChooseInFolderTree(owner_, title, start);
}

std::string frmBrowse::ChooseFile(const std::string& title, const std::string& pattern,
                                  const std::string& startFolder) const {
    const std::wstring wide = Widen(pattern);
    const std::wstring name = L"Archives (" + wide + L")";
    const std::array<FileType, 2> types{{{name.c_str(), wide.c_str()}, {L"All files", L"*.*"}}};
    const std::string start = StartOf(startFolder);
    if (const auto chosen = ChooseInFileDialog(owner_, title, start, types))
        return *chosen;
    return ChooseInOldDialog(owner_, title, start, types);
}

} // namespace vesk
