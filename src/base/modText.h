#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Small operations on text in the system's ANSI code page. Letter case is ASCII's: every word that
/// the program compares without regard to case is plain English.
namespace vesk {

/// The text without the blanks (and only blanks) at its two ends.
std::string TrimBlanks(std::string_view text);

/// The text with its ASCII letters in lower, or upper, case.
std::string LowerCase(std::string_view text);
std::string UpperCase(std::string_view text);

/// Whether the texts are equal, or the first begins with the second, without regard to case.
bool EqualNoCase(std::string_view left, std::string_view right);
bool StartsWithNoCase(std::string_view text, std::string_view start);

/// Position of the first `what` at or after `from`, without regard to case; npos when absent.
std::size_t FindNoCase(std::string_view text, std::string_view what, std::size_t from = 0);

/// The text in double quotes, for a sentence of our own.
std::string Quoted(std::string_view text);

/// Replaces every occurrence, left to right; what was put in is not searched again.
std::string ReplaceAll(std::string_view text, std::string_view what, std::string_view with);

/// The same without regard to the case of what is replaced.
std::string ReplaceAllNoCase(std::string_view text, std::string_view what, std::string_view with);

/// The pieces between the separators, untrimmed. An empty text has no pieces.
std::vector<std::string> Split(std::string_view text, char separator);

/// The part after the last backslash; the whole text when there is none.
std::string FileNameOf(std::string_view path);

/// The path without its last "\name"; empty when it holds no backslash.
std::string ParentOf(std::string_view path);

/// What stands behind the file name's last dot, without the dot; empty when it has none.
std::string ExtensionOf(std::string_view path);

/// The file name without folder and extension.
std::string BaseNameOf(std::string_view path);

/// The text without the backslashes at its end.
std::string WithoutTrailingBackslash(std::string_view path);

/// The text with a backslash at its end, added only when there is none.
std::string WithTrailingBackslash(std::string_view path);

/// The folder that a typed text means: without blanks around it and without a trailing backslash,
/// except for a whole drive, which without it would mean that drive's current folder.
std::string TypedFolder(std::string_view text);

/// The first word of a command line, words being separated by blanks and tabs; empty when there is
/// none. At most `maxWords` words are looked at, so 0 gives an empty text.
std::string FirstWord(std::string_view commandLine, int maxWords);

/// What a text in UTF-16, little end first, begins with where it says so.
inline constexpr std::string_view kUtf16Mark("\xFF\xFE");

/// True for text in UTF-16, in either order of bytes, with its mark or without: what works on the
/// ANSI code page finds nothing in it, and damages what it writes to.
bool IsUtf16(std::string_view text);

/// Why such a text was left alone, as Problem::reason has it.
inline constexpr const char* kIsUtf16 = "it is UTF-16 text";

/// Text in UTF-16, little end first, with "?" for each character that is not ASCII.
std::string AsciiOfUtf16(std::string_view text);

} // namespace vesk
