#include "build/clsShellLink.h"

#include "base/Com.h"
#include "base/modSystemError.h"

#include <windows.h>

#include <shlobj.h>

#include <vector>

namespace vesk {

namespace {

void Require(HRESULT result, const std::string& linkFile) {
    if (FAILED(result))
        ThrowSystemError(static_cast<std::uint32_t>(result), "cannot create the shortcut",
                         linkFile);
}

std::vector<WCHAR> Wide(const std::string& text) {
    const int length = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, nullptr, 0);
    std::vector<WCHAR> wide(static_cast<std::size_t>(length));
    MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), length);
    return wide;
}

} // namespace

void clsShellLink::CreateShellLink(const std::string& LnkFile, const std::string& ExeFile,
                                   const std::string& WorkDir, const std::string& ExeArgs,
                                   const std::string& IconFile, int IconIdx, int ShowCmd,
                                   const std::string& strDescription) {
    const ComLibrary library;
    void* created = nullptr;
    Require(
        CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA, &created),
        LnkFile);
    const ComPointer<IShellLinkA> link(static_cast<IShellLinkA*>(created));
    Require(link->SetPath(ExeFile.c_str()), LnkFile);
    Require(link->SetWorkingDirectory(WorkDir.c_str()), LnkFile);
    Require(link->SetArguments(ExeArgs.c_str()), LnkFile);
    if (!IconFile.empty())
        Require(link->SetIconLocation(IconFile.c_str(), IconIdx), LnkFile);
    Require(link->SetShowCmd(ShowCmd), LnkFile);
    Require(link->SetDescription(strDescription.c_str()), LnkFile);

    void* queried = nullptr;
    Require(link->QueryInterface(IID_IPersistFile, &queried), LnkFile);
    const ComPointer<IPersistFile> file(static_cast<IPersistFile*>(queried));
    Require(file->Save(Wide(LnkFile).data(), TRUE), LnkFile);
}

} // namespace vesk
