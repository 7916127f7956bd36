#include "base/modFileVersion.h"

#include "base/modSystemLibrary.h"

#include <windows.h>

#include <vector>

namespace vesk {

std::string FileVersionPart(const std::string& path, const std::string& part) {
    constexpr const char* kLibrary = "version.dll";
    static const auto sizeOf =
        SystemFunction<decltype(&GetFileVersionInfoSizeA)>(kLibrary, "GetFileVersionInfoSizeA");
    static const auto read =
        SystemFunction<decltype(&GetFileVersionInfoA)>(kLibrary, "GetFileVersionInfoA");
    static const auto query = SystemFunction<decltype(&VerQueryValueA)>(kLibrary, "VerQueryValueA");
    if (sizeOf == nullptr || read == nullptr || query == nullptr)
        return {};
    DWORD ignored = 0;
    std::vector<char> block(sizeOf(path.c_str(), &ignored));
    void* found = nullptr;
    UINT length = 0;
    if (block.empty() ||
        read(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) == FALSE ||
        query(block.data(), part.c_str(), &found, &length) == FALSE)
        return {};
    return {static_cast<const char*>(found), length};
}

} // namespace vesk
