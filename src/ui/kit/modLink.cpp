#include "ui/kit/modLink.h"

#include "base/CodePage.h"
#include "base/modText.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace vesk {

namespace {

constexpr std::string_view kLineBreak = "\r\n";

/// The pound sign is one, too. In code pages that lack it its number is a letter's.
bool IsPunctuation(char c) {
    static constexpr std::string_view kPunctuation = ",!\"$%^&*()'#~][{}+";
    constexpr char kPound = '\xA3';
    return kPunctuation.find(c) != std::string_view::npos ||
           (c == kPound && CurrentCodePage().poundAndNegation.starts_with(kPound));
}

} // namespace

std::string WordAtCaret(std::string_view text, std::size_t caret) {
    caret = std::min(caret, text.size());
    if (caret < text.size() && text[caret] == ' ')
        return {};
    const std::size_t blankBefore =
        caret == 0 ? std::string_view::npos : text.rfind(' ', caret - 1);
    const std::size_t begin = blankBefore == std::string_view::npos ? 0 : blankBefore + 1;
    const std::size_t end =
        std::min({text.find(' ', caret), text.find(kLineBreak, caret), text.size()});
    return TrimBlanks(text.substr(begin, end - begin));
}

std::string TrimLinkPunctuation(std::string_view word) {
    if (!word.empty() && IsPunctuation(word.front()))
        word.remove_prefix(1);
    if (!word.empty() && IsPunctuation(WithoutTrailBytes(word).back()))
        word.remove_suffix(1);
    return ReplaceAll(word, kLineBreak, "");
}

std::string MakeLink(const std::string& word) {
    static constexpr std::array<std::string_view, 4> kStarts{"http://", "www.", "ftp.", "ftp://"};
    static constexpr std::array<std::string_view, 5> kEnds{".com", ".co.uk", ".org", ".net",
                                                           ".org.uk"};
    if (WithoutTrailBytes(word).find('@') != std::string::npos)
        return "mailto:" + word;
    const std::string lower = LowerCase(word);
    if (std::ranges::any_of(kStarts, [&](auto start) { return lower.starts_with(start); }))
        return word;
    if (std::ranges::any_of(kEnds, [&](auto end) { return lower.ends_with(end); }))
        return "http://" + word;
    return {};
}

std::string LinkAtCaret(std::string_view text, std::size_t caret) {
    return MakeLink(TrimLinkPunctuation(WordAtCaret(text, caret)));
}

} // namespace vesk
