#include "archive/modMemberName.h"

#include <cstdint>
#include <cstdlib>

/// A path that is handed out lies below the folder, part by part.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string name(reinterpret_cast<const char*>(data), size);
    const auto path = vesk::PathInside("C:\\tree", name);
    if (!path)
        return 0;
    if (!path->starts_with("C:\\tree\\") || path->find_first_of("/:*?\"<>|", 3) != path->npos)
        std::abort();
    const std::string rest = path->substr(7) + "\\"; // each part stands between two backslashes
    for (const char* hostile : {"\\\\", "\\..\\", "\\.\\", ".\\", " \\", "\\nul\\", "\\CON.txt\\"})
        if (rest.find(hostile) != std::string::npos)
            std::abort();
    return 0;
}
