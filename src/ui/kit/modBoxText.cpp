#include "ui/kit/modBoxText.h"

#include <windows.h>

#include <cstddef>

namespace vesk {

namespace {

constexpr std::size_t kWidestWord = 80;
constexpr std::size_t kLongestName = 60;

/// Bytes of the letter at the start of a text that is not empty; some code pages have two.
std::size_t LetterSize(std::string_view text) {
    const bool two = IsDBCSLeadByte(static_cast<BYTE>(text.front())) != FALSE;
    return two && text.size() > 1 ? 2 : 1;
}

} // namespace

std::string WithBreaks(std::string_view text) {
    std::string broken;
    for (std::size_t letters = 0; !text.empty();) {
        const std::size_t size = LetterSize(text);
        const bool parts = text.front() == ' ' || text.front() == '\r' || text.front() == '\n';
        letters = parts ? 0 : letters + 1;
        if (letters > kWidestWord) {
            broken += "\r\n";
            letters = 1;
        }
        broken += text.substr(0, size);
        text.remove_prefix(size);
    }
    return broken;
}

std::string Shortened(const std::string& name) {
    if (name.size() <= kLongestName)
        return name;
    std::size_t end = 0;
    while (end < kLongestName)
        end += LetterSize(std::string_view(name).substr(end));
    return name.substr(0, end) + "...";
}

std::string AsSentence(const std::string& text) {
    if (text.empty())
        return text;
    std::string sentence = text;
    const std::string first = text.substr(0, text.find(' '));
    if (first.find_first_of(".:\\/") == std::string::npos)
        CharUpperBuffA(sentence.data(), 1);
    const char last = sentence.back();
    return last == '.' || last == '!' || last == '?' ? sentence : sentence + ".";
}

} // namespace vesk
