#include "ui/kit/modBoxText.h"

#include "base/CodePage.h"

#include <windows.h>

#include <cstddef>

namespace vesk {

namespace {

constexpr std::size_t kWidestWord = 80;
constexpr std::size_t kLongestName = 60;

} // namespace

std::string WithBreaks(std::string_view text) {
    std::string broken;
    for (std::size_t letters = 0; !text.empty();) {
        const std::size_t size = CharacterSize(text);
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
        end += CharacterSize(std::string_view(name).substr(end));
    return name.substr(0, end) + "...";
}

std::string AsSentence(const std::string& text) {
    if (text.empty())
        return text;
    std::string sentence = text;
    const std::string first = text.substr(0, text.find(' '));
    if (first.find_first_of(".:\\/") == std::string::npos)
        CharUpperBuffA(sentence.data(), static_cast<DWORD>(CharacterSize(sentence)));
    const char last = sentence.back();
    return last == '.' || last == '!' || last == '?' ? sentence : sentence + ".";
}

} // namespace vesk
