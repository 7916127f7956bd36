#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vesk {

/// What the portable operations on text must know of the system's ANSI code page.
struct CodePage {
    /// Whether a byte begins a character of two bytes; null where every character has one. The
    /// second byte may look like a backslash or a letter.
    bool (*isLeadByte)(unsigned char byte) = nullptr;

    /// The pound and the negation sign, as far as the code page has them.
    std::string poundAndNegation = "\xA3\xAC";

    /// Whether it is UTF-8, whose characters have one to four bytes.
    bool isUtf8 = false;
};

/// The one in use: Windows-1252 until another one is set.
const CodePage& CurrentCodePage();

/// Sets the one in use, for the whole program: before any text is worked on.
void SetCodePage(CodePage page);

/// The text with a "0" in place of each second byte of a character: of the same length, and to be
/// searched for bytes that mean what they look like.
std::string WithoutTrailBytes(std::string_view text);

/// Bytes of the character at the start of a text that is not empty.
std::size_t CharacterSize(std::string_view text);

/// How many characters the text has.
std::size_t CharacterCount(std::string_view text);

} // namespace vesk
