#pragma once

#include <string>
#include <string_view>

/// Texts for message boxes, which the system makes as wide as their longest word.
namespace vesk {

/// Breaks words of more than 80 letters into lines; nothing is lost.
std::string WithBreaks(std::string_view text);

/// A name that is mentioned in a sentence: its first 60 letters and "..." when it is longer.
std::string Shortened(const std::string& name);

/// A failure's text as a sentence: with a capital letter, unless it begins with a file's name, and
/// a full stop.
std::string AsSentence(const std::string& text);

} // namespace vesk
