#include "base/CodePage.h"

#include <cstddef>
#include <utility>

namespace vesk {

namespace {

CodePage& Current() {
    static CodePage page;
    return page;
}

} // namespace

const CodePage& CurrentCodePage() {
    return Current();
}

void SetCodePage(CodePage page) {
    Current() = std::move(page);
}

std::string WithoutTrailBytes(std::string_view text) {
    std::string plain(text);
    const auto isLeadByte = CurrentCodePage().isLeadByte;
    if (isLeadByte == nullptr)
        return plain;
    for (std::size_t i = 0; i + 1 < plain.size(); ++i) {
        if (isLeadByte(static_cast<unsigned char>(plain[i])))
            plain[++i] = '0';
    }
    return plain;
}

std::size_t CharacterSize(std::string_view text) {
    const CodePage& page = CurrentCodePage();
    std::size_t size = 1;
    if (page.isUtf8) {
        while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80)
            ++size; // goes on with the character
    } else if (page.isLeadByte != nullptr && text.size() > 1 &&
               page.isLeadByte(static_cast<unsigned char>(text.front()))) {
        size = 2;
    }
    return size;
}

std::size_t CharacterCount(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); text.remove_prefix(CharacterSize(text)))
        ++count;
    return count;
}

} // namespace vesk
