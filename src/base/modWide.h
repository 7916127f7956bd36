#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Between the system's ANSI code page, in which the program works, and UTF-16, in which the file
/// system does.
namespace vesk {

/// Makes the portable operations on text work in the system's code page. To be called once, before
/// any of them is.
void UseSystemCodePage();

/// The text, which is in the ANSI code page, in UTF-16.
std::wstring Widen(std::string_view text);

/// The same from the code page of DOS, in which old archives have their names.
std::wstring WidenFromOem(std::string_view text);

/// The text in the ANSI code page; what that lacks becomes "?" or a similar character. For showing.
std::string Narrowed(std::wstring_view wide);

/// The same, but nothing when the code page cannot hold all of it exactly: for names that have to
/// find their file again.
std::optional<std::string> NarrowedExactly(std::wstring_view wide);

/// The text as an ANSI function sees it: what the code page lacks has become a similar character,
/// where it has one, and "_" elsewhere.
std::wstring AsAnsiSees(std::wstring_view wide);

/// A path for the file system's UTF-16 functions that may be longer than MAX_PATH and is not
/// changed on its way ("\\?\C:\..."). @param absolute without ".", ".." and "/"
std::wstring LongPath(std::wstring_view absolute);
std::wstring LongPath(std::string_view absolute);

/// The absolute form of a path of any length, without ".", ".." and doubled backslashes. A bare
/// drive ("C:") stands for its root and not for its current folder. @throws Failure
std::wstring AbsoluteWidePath(std::string_view path);
std::wstring AbsoluteWidePath(std::wstring path);

/// LongPath of that. @throws Failure
std::wstring AbsoluteLongPath(std::string_view path);

/// The path that LongPath was made of.
std::wstring WithoutLongPrefix(std::wstring_view longPath);

/// Whether two spellings of a path differ in the case of letters at most.
bool IsSamePath(std::wstring_view left, std::wstring_view right);

} // namespace vesk
