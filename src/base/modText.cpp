#include "base/modText.h"

#include "base/CodePage.h"

#include <algorithm>
#include <cstddef>

namespace vesk {

namespace {

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// The second byte of a character is no letter.
std::string Mapped(std::string_view text, char (*map)(char)) {
    const std::string plain = WithoutTrailBytes(text);
    std::string result(text);
    for (std::size_t i = 0; i < result.size(); ++i) {
        if (plain[i] == result[i])
            result[i] = map(result[i]);
    }
    return result;
}

std::size_t LastBackslash(std::string_view path) {
    return WithoutTrailBytes(path).rfind('\\');
}

using Finder = std::size_t (*)(std::string_view text, std::string_view what, std::size_t from);

std::string ReplaceFound(std::string_view text, std::string_view what, std::string_view with,
                         Finder find) {
    if (what.empty())
        return std::string(text);
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = find(text, what, from); at != std::string_view::npos;
         at = find(text, what, from)) {
        result.append(text.substr(from, at - from)).append(with);
        from = at + what.size();
    }
    return result.append(text.substr(from));
}

} // namespace

std::string TrimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string LowerCase(std::string_view text) {
    return Mapped(text, Lower);
}
std::string UpperCase(std::string_view text) {
    return Mapped(text, Upper);
}

bool EqualNoCase(std::string_view left, std::string_view right) {
    return left.size() == right.size() && std::ranges::equal(left, right, {}, Lower, Lower) &&
           (CurrentCodePage().isLeadByte == nullptr || LowerCase(left) == LowerCase(right));
}

bool StartsWithNoCase(std::string_view text, std::string_view start) {
    return EqualNoCase(text.substr(0, start.size()), start);
}

std::size_t FindNoCase(std::string_view text, std::string_view what, std::size_t from) {
    if (from > text.size())
        return std::string_view::npos;
    const auto rest = text.substr(from);
    // Not std::ranges::search: clang 14 cannot compile this library's version of it.
    const std::string_view::const_iterator found =
        std::search(rest.begin(), rest.end(), what.begin(), what.end(),
                    [](char left, char right) { return Lower(left) == Lower(right); });
    if (found == rest.end() && !what.empty())
        return std::string_view::npos;
    return from + static_cast<std::size_t>(found - rest.begin());
}

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string ReplaceAll(std::string_view text, std::string_view what, std::string_view with) {
    return ReplaceFound(text, what, with,
                        [](std::string_view in, std::string_view sought, std::size_t from) {
                            return in.find(sought, from);
                        });
}

std::string ReplaceAllNoCase(std::string_view text, std::string_view what, std::string_view with) {
    return ReplaceFound(text, what, with, FindNoCase);
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    if (text.empty())
        return pieces;
    for (std::size_t from = 0;;) {
        const std::size_t at = text.find(separator, from);
        pieces.emplace_back(text.substr(from, at - from));
        if (at == std::string_view::npos)
            return pieces;
        from = at + 1;
    }
}

std::string FileNameOf(std::string_view path) {
    return std::string(path.substr(LastBackslash(path) + 1)); // npos + 1 is 0: the whole text
}

std::string ParentOf(std::string_view path) {
    const std::size_t at = LastBackslash(path);
    return at == std::string_view::npos ? std::string() : std::string(path.substr(0, at));
}

std::string ExtensionOf(std::string_view path) {
    const std::string name = FileNameOf(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

std::string BaseNameOf(std::string_view path) {
    const std::string name = FileNameOf(path);
    return name.substr(0, name.rfind('.'));
}

std::string WithoutTrailingBackslash(std::string_view path) {
    return std::string(path.substr(0, WithoutTrailBytes(path).find_last_not_of('\\') + 1));
}

std::string WithTrailingBackslash(std::string_view path) {
    std::string result(path);
    if (!WithoutTrailBytes(path).ends_with('\\'))
        result += '\\';
    return result;
}

std::string TypedFolder(std::string_view text) {
    const std::string folder = WithoutTrailingBackslash(TrimBlanks(text));
    return folder.size() == 2 && folder.back() == ':' ? folder + "\\" : folder;
}

bool IsUtf16(std::string_view text) {
    if (text.starts_with(kUtf16Mark) || text.starts_with("\xFE\xFF"))
        return true;
    constexpr std::size_t kLooked = 4096;
    const std::size_t units = std::min(text.size(), kLooked) / 2;
    std::size_t littleEnd = 0;
    std::size_t bigEnd = 0;
    for (std::size_t i = 0; i < units; ++i) {
        const bool first = text[2 * i] != '\0';
        const bool second = text[2 * i + 1] != '\0';
        littleEnd += first && !second ? 1 : 0;
        bigEnd += second && !first ? 1 : 0;
    }
    // Every line of an INF or script has ASCII in it, whatever its language; ANSI text has no NULs.
    return std::max(littleEnd, bigEnd) > units / 4;
}

std::string AsciiOfUtf16(std::string_view text) {
    std::string ascii(text.size() / 2, '?');
    for (std::size_t i = 0; i < ascii.size(); ++i) {
        if (text[2 * i + 1] == '\0' && static_cast<unsigned char>(text[2 * i]) < 0x80)
            ascii[i] = text[2 * i];
    }
    return ascii;
}

std::string FirstWord(std::string_view commandLine, int maxWords) {
    constexpr std::string_view kSeparators = " \t";
    const std::size_t first = commandLine.find_first_not_of(kSeparators);
    if (maxWords < 1 || first == std::string_view::npos)
        return {};
    const std::size_t end = commandLine.find_first_of(kSeparators, first);
    return std::string(commandLine.substr(first, end - first));
}

} // namespace vesk
