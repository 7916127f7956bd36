#include "build/clsShellLink.h"

#include "base/ComLibrary.h"
#include "base/ComPointer.h"
#include "base/modSystemError.h"
#include "base/modWide.h"

#include <windows.h>

#include <shlobj.h>

#include <cstdint>

namespace vesk {

namespace {

void Require(HRESULT result, const std::string& linkFile) {
    if (FAILED(result))
        ThrowSystemError(static_cast<std::uint32_t>(result), "cannot create the shortcut",
                         linkFile);
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
    Require(file->Save(Widen(LnkFile).c_str(), TRUE), LnkFile);
}

} // namespace vesk
