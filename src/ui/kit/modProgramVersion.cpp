#include "ui/kit/modProgramVersion.h"

#include <windows.h>

#include <array>
#include <vector>

namespace vesk {

std::string LegalNotice() {
    std::array<char, MAX_PATH * 2> program{};
    GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size() - 1));
    DWORD ignored = 0;
    std::vector<char> block(GetFileVersionInfoSizeA(program.data(), &ignored));
    void* text = nullptr;
    UINT length = 0;
    if (block.empty() ||
        !GetFileVersionInfoA(program.data(), 0, static_cast<DWORD>(block.size()), block.data()) ||
        !VerQueryValueA(block.data(), R"(\StringFileInfo\040904E4\LegalCopyright)", &text,
                        &length) ||
        length == 0)
        return {};
    return static_cast<const char*>(text);
}

unsigned SystemMajorVersion() {
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version;
    return GetVersionExA(&version) ? version.dwMajorVersion : 0;
}

} // namespace vesk
