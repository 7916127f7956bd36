#include "ui/kit/modVersions.h"

#include "base/modFileVersion.h"

#include <windows.h>

#include <algorithm>
#include <array>

namespace vesk {

std::string LegalNotice() {
    std::array<char, MAX_PATH * 2> program{};
    GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size() - 1));
    std::string text =
        FileVersionPart(program.data(), R"(\StringFileInfo\040904E4\LegalCopyright)");
    text.erase(std::min(text.find('\0'), text.size())); // the NUL that ends it there
    return text;
}

unsigned SystemMajorVersion() {
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version;
    return GetVersionExA(&version) ? version.dwMajorVersion : 0;
}

} // namespace vesk
