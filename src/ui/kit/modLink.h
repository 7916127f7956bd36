#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Finds the link in a plain text that a click or the caret points at.
namespace vesk {

/// The word around a caret position: from just after the previous blank (a line break does not end
/// it there) to just before the next blank or line break, without blanks at its ends. Empty when
/// the caret is on a blank.
/// @param caret characters before the caret; at the text's end the last word is meant
std::string WordAtCaret(std::string_view text, std::size_t caret);

/// The word without one punctuation character at its start and one at its end, and without line
/// breaks. A full stop is none of them.
std::string TrimLinkPunctuation(std::string_view word);

/// The address that the word stands for, or an empty text when it is no link.
std::string MakeLink(const std::string& word);

/// The three above in a row.
std::string LinkAtCaret(std::string_view text, std::size_t caret);

} // namespace vesk
