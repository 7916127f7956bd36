#include "build/modInfText.h"

#include "base/CodePage.h"
#include "base/Failure.h"
#include "base/RunTimeError.h"
#include "base/modText.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace vesk {

namespace {

constexpr std::string_view kAppend = "[Append]";
constexpr std::string_view kMenu = "nu2menu.xml";
constexpr std::size_t kNone = std::string_view::npos;

/// Whether the text holds another one, from the beginning of a character on.
bool HoldsCharacters(const std::string& text, std::string_view sought) {
    const std::string plain = WithoutTrailBytes(text);
    std::size_t at = text.find(sought);
    while (at != kNone && plain[at] != text[at])
        at = text.find(sought, at + 1);
    return at != kNone;
}

} // namespace

std::optional<std::string> CommentedOutAppendMenu(std::string_view text) {
    const std::size_t header = FindNoCase(text, kAppend);
    if (header == kNone || (header > 0 && text[header - 1] == ';') ||
        FindNoCase(text, kMenu) == kNone)
        return std::nullopt;
    return ReplaceAllNoCase(ReplaceAllNoCase(text, kAppend, ";[Append]"), "nu2menu.xml,",
                            ";nu2menu.xml,");
}

std::string AppendMenuFile(std::string_view text) {
    const std::size_t header = FindNoCase(text, kAppend);
    // The menu's name counts in lower case only, unlike where the section is commented out.
    if (header == kNone || text.find(kMenu, header) == kNone)
        return {};
    // The file's last character is left out on purpose: a name needs a line end behind it.
    const std::string_view section = text.substr(header, text.size() - header - 1);
    const std::size_t comma = section.find(',');
    if (comma == kNone)
        return {};
    const std::string_view rest = section.substr(comma + 1);
    const std::size_t lineEnd = rest.find('\r');
    return lineEnd == kNone ? std::string() : TrimBlanks(rest.substr(0, lineEnd));
}

std::string StripLeadingNumbering(std::string_view name) {
    // Without the blank.
    const std::string numbering =
        "0123456789\\,./?~#'@;:{}=+-_()*&^%$!`" + CurrentCodePage().poundAndNegation;
    const std::size_t start = name.find_first_not_of(numbering);
    return start == kNone ? std::string() : TrimBlanks(name.substr(start));
}

std::optional<std::string> PrefixedName(std::string_view name, std::string_view prefix) {
    const std::string stripped = StripLeadingNumbering(name);
    const std::size_t blank = stripped.find(' ');
    // Without a blank the length is that of the whole name, numbering included: the left part of
    // the shorter text is then all of it.
    const std::size_t length = blank == std::string::npos ? name.size() : blank;
    const std::string first = stripped.substr(0, length);
    if (HoldsCharacters(first, prefix))
        return std::nullopt;
    return std::string(prefix) + " " + stripped;
}

bool ListHolds(std::string_view list, std::string_view code) {
    const std::vector<std::string> items = Split(list, ',');
    return std::ranges::find(items, code) != items.end();
}

std::string SeparatorName(std::string_view prefix, std::string_view title) {
    constexpr std::size_t kWidth = 50;
    const std::size_t length = CharacterCount(title);
    if (length > kWidth)
        throw Failure(kInvalidCall, "CreateCategorySeparator",
                      "category title of more than 50 characters: " + std::string(title));
    return std::string(prefix) + " " + std::string(12, '=') + "[ " + std::string(title) + " ]" +
           std::string(kWidth - length, '=');
}

} // namespace vesk
