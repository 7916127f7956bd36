#pragma once

#include <windows.h>

#include <shobjidl.h>

namespace vesk {

/// Files that a dialog offers: what it calls them, and the patterns of their names.
struct FileType {
    const wchar_t* name;
    const wchar_t* pattern;
};

/// The file dialog that Windows has had since Vista. The headers declare it only for programs that
/// need Vista; this one asks for it at run time. The order of the methods is the interface.
struct FileDialog : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Show(HWND owner) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFileTypes(UINT count, const FileType* types) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFileTypeIndex(UINT) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFileTypeIndex(UINT*) = 0;
    virtual HRESULT STDMETHODCALLTYPE Advise(IUnknown*, DWORD*) = 0;
    virtual HRESULT STDMETHODCALLTYPE Unadvise(DWORD) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetOptions(DWORD options) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetOptions(DWORD* options) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDefaultFolder(IShellItem*) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFolder(IShellItem* folder) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFolder(IShellItem**) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCurrentSelection(IShellItem**) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFileName(LPCWSTR) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFileName(LPWSTR*) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetTitle(LPCWSTR title) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetOkButtonLabel(LPCWSTR) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFileNameLabel(LPCWSTR) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetResult(IShellItem** chosen) = 0;

protected:
    ~FileDialog() = default;
};

inline constexpr CLSID kFileOpenDialogClass{
    0xDC1C5A9C, 0xE88A, 0x4DDE, {0xA5, 0xA1, 0x60, 0xF8, 0x2A, 0x20, 0xAE, 0xF7}};
inline constexpr IID kFileDialogInterface{
    0x42F85136, 0xDB7E, 0x439C, {0x85, 0xF1, 0xE4, 0x07, 0x5D, 0x13, 0x5F, 0xC8}};
inline constexpr DWORD kPickFolders = 0x20;
inline constexpr DWORD kForceFileSystem = 0x40;
inline constexpr DWORD kFileMustExist = 0x1000;
inline constexpr DWORD kNoChangeDir = 0x8;

} // namespace vesk
