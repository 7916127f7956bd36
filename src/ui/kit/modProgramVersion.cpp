#include "ui/kit/modProgramVersion.h"

#include "base/modFileVersion.h"

#include <windows.h>

#include <array>

namespace vesk {

std::string LegalNotice() {
    std::array<char, MAX_PATH * 2> program{};
    GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size() - 1));
    const std::string text =
        FileVersionPart(program.data(), R"(\StringFileInfo\040904E4\LegalCopyright)");
    return text.c_str(); // without the NUL that ends it there
}

unsigned SystemMajorVersion() {
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version;
    return GetVersionExA(&version) ? version.dwMajorVersion : 0;
}

} // namespace vesk
