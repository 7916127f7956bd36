#include "ui/kit/frmBrowse.h"

#include "base/Com.h"
#include "base/modText.h"
#include "ui/kit/FileDialogInterface.h"

#include <commdlg.h>
#include <shlobj.h>

#include <array>
#include <memory>
#include <optional>

namespace vesk {

namespace {

struct TaskMemoryFree {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};
using ItemIdList = std::unique_ptr<ITEMIDLIST, TaskMemoryFree>;

std::string PathOf(LPCITEMIDLIST item) {
    std::array<char, MAX_PATH> path{};
    return item && SHGetPathFromIDListA(item, path.data()) ? path.data() : std::string();
}

ItemIdList ItemOf(const std::string& folder) {
    IShellFolder* rawDesktop = nullptr;
    if (folder.empty() || FAILED(SHGetDesktopFolder(&rawDesktop)))
        return {};
    const ComPointer<IShellFolder> desktop(rawDesktop);
    std::array<wchar_t, MAX_PATH> wide{};
    MultiByteToWideChar(CP_ACP, 0, folder.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
    LPITEMIDLIST item = nullptr;
    if (FAILED(desktop->ParseDisplayName(nullptr, nullptr, wide.data(), nullptr, &item, nullptr)))
        return {};
    return ItemIdList(item);
}

std::wstring Wide(const std::string& text) {
    std::wstring wide(text.size() + 1, L'\0');
    wide.resize(static_cast<std::size_t>(MultiByteToWideChar(
                    CP_ACP, 0, text.c_str(), -1, wide.data(), static_cast<int>(wide.size()))) -
                1);
    return wide;
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
    std::array<char, MAX_PATH> path{};
    WideCharToMultiByte(CP_ACP, 0, name.get(), -1, path.data(), static_cast<int>(path.size()) - 1,
                        nullptr, nullptr);
    return path.data();
}

/// The folder dialog of Windows Vista and later; nothing on a system that lacks it.
std::optional<std::string> ChooseInFileDialog(HWND owner, const std::string& title,
                                              const std::string& startFolder) {
    void* created = nullptr;
    if (FAILED(CoCreateInstance(kFileOpenDialogClass, nullptr, CLSCTX_INPROC_SERVER,
                                kFileDialogInterface, &created)))
        return std::nullopt;
    const ComPointer<FileDialog> dialog(static_cast<FileDialog*>(created));
    DWORD options = 0;
    dialog->GetOptions(&options);
    dialog->SetOptions(options | kPickFolders | kForceFileSystem | kNoChangeDir);
    dialog->SetTitle(Wide(title).c_str());
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

} // namespace

std::string frmBrowse::ChooseFolder(const std::string& title,
                                    const std::string& startFolder) const {
    const std::string start =
        startFolder.size() > 3 ? WithoutTrailingBackslash(startFolder) : startFolder;
    if (const auto chosen = ChooseInFileDialog(owner_, title, start))
        return *chosen;
    return ChooseInFolderTree(owner_, title, start);
}

std::string frmBrowse::ChooseFile(const std::string& title, const std::string& pattern,
                                  const std::string& startFolder) const {
    std::string filter = "Archives (" + pattern + ")" + '\0' + pattern + '\0';
    filter += std::string("All files") + '\0' + "*.*" + '\0';
    std::array<char, 1024> path{};
    OPENFILENAMEA request{};
    request.lStructSize = sizeof request;
    request.hwndOwner = owner_;
    request.lpstrFilter = filter.c_str();
    request.lpstrFile = path.data();
    request.nMaxFile = static_cast<DWORD>(path.size());
    request.lpstrInitialDir = startFolder.c_str();
    request.lpstrTitle = title.c_str();
    request.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    return GetOpenFileNameA(&request) ? path.data() : std::string();
}

} // namespace vesk
