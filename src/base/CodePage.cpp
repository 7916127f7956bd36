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

std::size_t CharacterCount(std::string_view text) {
    const CodePage& page = CurrentCodePage();
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (page.isUtf8 && (byte & 0xC0) == 0x80) // goes on with a character
            continue;
        ++count;
        if (page.isLeadByte != nullptr && page.isLeadByte(byte))
            ++i;
    }
    return count;
}

} // namespace vesk
