#include "source/clsDriveScan.h"

#include "base/UniqueHandle.h"
#include "source/modSourceFolder.h"

#include <windows.h>

namespace vesk {

namespace {

constexpr std::string_view kI386 = "I386\\";

/// True when the file carries a version, as every real NTDLL.DLL does.
bool HasFileVersion(const std::string& path) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA(path.c_str(), &ignored);
    if (size == 0)
        return false;
    std::vector<char> block(size);
    void* info = nullptr;
    UINT length = 0;
    if (!GetFileVersionInfoA(path.c_str(), 0, size, block.data()) ||
        !VerQueryValueA(block.data(), "\\", &info, &length) || length < sizeof(VS_FIXEDFILEINFO))
        return false;
    const auto& version = *static_cast<const VS_FIXEDFILEINFO*>(info);
    return version.dwFileVersionMS != 0 || version.dwFileVersionLS != 0;
}

} // namespace

std::vector<std::string> SearchableDrives(std::uint32_t driveMask) {
    std::vector<std::string> roots;
    for (char letter = 'C'; letter <= 'Z'; ++letter) {
        if ((driveMask >> (letter - 'A') & 1U) != 0)
            roots.push_back(std::string(1, letter) + ":\\");
    }
    return roots;
}

void clsDriveScan::Run(const std::vector<std::string>& roots) {
    stopped_ = false;
    for (const std::string& root : roots) {
        if (stopped_)
            return;
        SearchFolder(root);
    }
}

void clsDriveScan::SearchFolder(const std::string& folder) {
    WIN32_FIND_DATAA entry{};
    const FindHandle search(FindFirstFileA((folder + "*.*").c_str(), &entry));
    if (!search)
        return;
    // The case is compared: the folder of a Windows CD is spelled so, its copies elsewhere are not.
    const bool isI386 = folder.ends_with(kI386);
    do {
        if (stopped_)
            return;
        const std::string name = entry.cFileName;
        const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (!name.empty() && name.front() != '.') {
            if (isFolder) {
                // A junction may lead back up: what it leads to is searched at its own place.
                if ((entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
                    SearchFolder(folder + name + "\\");
                events_.OnFolder(folder);
            } else if (isI386 && IsI386Folder(folder)) {
                ReportFound(folder);
                return;
            }
        }
        events_.OnEntryDone();
    } while (FindNextFileA(search.Get(), &entry));
}

void clsDriveScan::ReportFound(const std::string& i386Folder) {
    source_.valid = true; // before the version is asked for: the flag is for everything found
    if (!HasFileVersion(i386Folder + "NTDLL.DLL"))
        return;
    const SourceProduct product = ReadSourceProduct(i386Folder);
    events_.OnFound({i386Folder.substr(0, i386Folder.size() - kI386.size()), product.productName,
                     product.servicePackTag});
}

} // namespace vesk
