#include "catalogue/modNameList.h"

#include <cstddef>

namespace vesk {

std::vector<std::string> SplitNameList(std::string_view buffer) {
    std::vector<std::string> names;
    for (std::size_t end = buffer.find('\0'); end != std::string_view::npos && end > 0;
         end = buffer.find('\0')) {
        names.emplace_back(buffer.substr(0, end));
        buffer.remove_prefix(end + 1);
    }
    names.emplace_back();
    return names;
}

} // namespace vesk
