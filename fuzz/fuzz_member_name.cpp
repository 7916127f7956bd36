#include "archive/modMemberName.h"
#include "base/modUtf8.h"

#include <cstdint>
#include <cstdlib>

using namespace vesk;

namespace {

/// A path that is handed out lies below the folder, part by part.
template <class Char>
void CheckPath(const std::basic_string<Char>& path) {
    const auto text = [](const char* ascii) {
        return std::basic_string<Char>(ascii, ascii + std::char_traits<char>::length(ascii));
    };
    if (!path.starts_with(text("C:\\tree\\")) ||
        path.find_first_of(text("/:*?\"<>|"), 3) != path.npos)
        std::abort();
    const auto rest = path.substr(7) + text("\\"); // each part stands between two backslashes
    for (const char* hostile : {"\\\\", "\\..\\", "\\.\\", ".\\", " \\", "\\nul\\", "\\CON.txt\\"})
        if (rest.find(text(hostile)) != rest.npos)
            std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string name(reinterpret_cast<const char*>(data), size);
    if (const auto path = PathInside("C:\\tree", name))
        CheckPath(*path);
    const auto wide = FromUtf8(name);
    if (!wide)
        return 0;
    const auto path = PathInside(L"C:\\tree", *wide);
    if (path)
        CheckPath(*path);
    if (path && NamesFolderItself(*wide))
        std::abort();
    return 0;
}
