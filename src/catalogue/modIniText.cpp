#include "catalogue/modIniText.h"

#include "base/CodePage.h"
#include "base/modText.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <utility>

namespace vesk {

namespace {

constexpr char kDelete = 0x7F;

bool IsPlainByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    // In many code pages the last two are a line end and a blank, which some readers cut off.
    return byte >= ' ' && c != kDelete && byte != 0x85 && byte != 0xA0;
}

bool IsPlainName(std::string_view name) {
    return !name.empty() && name.front() != ' ' && name.back() != ' ' &&
           std::ranges::all_of(
               name, [](char c) { return c >= ' ' && c < kDelete && c != '[' && c != ']'; });
}

std::string_view WithoutSpaceAround(std::string_view text) {
    constexpr std::string_view kSpace(" \t\v\f\r");
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

bool BeginsWithQuote(std::string_view value) {
    return value.starts_with('"') || value.starts_with('\'');
}

std::string_view Unquoted(std::string_view value) {
    return IsInQuotes(value) ? value.substr(1, value.size() - 2) : value;
}

/// Where the bracket behind a section's name is.
std::size_t SectionEnd(std::string_view line) {
    return WithoutTrailBytes(line).find(']');
}

class Parser {
public:
    IniText Run(std::string_view text) {
        while (!text.empty()) {
            const std::size_t end = text.find_first_of("\r\n");
            const bool isLast = end == std::string_view::npos;
            ++number_;
            TakeLine(text.substr(0, end));
            if (isLast)
                break;
            const bool isPair = text.substr(end).starts_with("\r\n");
            ini_.linesArePlain &= isPair || text[end] == '\n';
            text.remove_prefix(end + (isPair ? 2 : 1));
        }
        CloseSection();
        ini_.isPlain = ini_.linesArePlain && listsFit_ &&
                       SectionListLength(ini_.sections) < kLongestSectionList;
        return std::move(ini_);
    }

private:
    void TakeLine(std::string_view raw) {
        ini_.linesArePlain &= std::ranges::all_of(raw, IsPlainByte);
        const std::string_view line = WithoutSpaceAround(raw);
        if (line.empty() || line.front() == ';')
            return;
        // A blank before it is not cut off by everybody.
        ini_.linesArePlain &= raw.front() != ' ';
        if (line.front() == '[')
            TakeSection(line);
        else
            TakeKey(line);
    }

    void TakeSection(std::string_view line) {
        const std::size_t end = SectionEnd(line);
        if (end == std::string_view::npos)
            return Lose("line " + std::to_string(number_) + " has no \"]\"");
        const std::string_view name = WithoutSpaceAround(line.substr(1, end - 1));
        ini_.linesArePlain &= IsPlainName(name) && name.size() + 2 == line.size();
        if (!sectionNames_.insert(LowerCase(name)).second)
            Lose("there are two sections [" + std::string(name) + "]");
        CloseSection();
        ini_.sections.push_back({std::string(name), {}});
    }

    void TakeKey(std::string_view line) {
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos || equals == 0 || ini_.sections.empty())
            return Lose("line " + std::to_string(number_) + " is " +
                        (ini_.sections.empty() ? "before the first section" : "not a key"));
        const std::string_view name = WithoutSpaceAround(line.substr(0, equals));
        const std::string_view value = WithoutSpaceAround(line.substr(equals + 1));
        ini_.linesArePlain &= IsPlainName(name) && name.size() == equals &&
                              !BeginsWithQuote(value) && value.size() <= kLongestIniValue;
        IniSection& section = ini_.sections.back();
        if (!keyNames_.insert(LowerCase(name)).second)
            Lose("section [" + section.name + "] has the key " + std::string(name) + " twice");
        section.keys.push_back({std::string(name), std::string(Unquoted(value))});
    }

    void CloseSection() {
        keyNames_.clear();
        if (!ini_.sections.empty())
            listsFit_ &= KeyListLength(ini_.sections.back()) < kLongestKeyList;
    }

    void Lose(std::string sentence) {
        ini_.linesArePlain = false;
        if (ini_.lost.empty())
            ini_.lost = std::move(sentence);
    }

    IniText ini_;
    bool listsFit_ = true;
    std::size_t number_ = 0;
    std::set<std::string> sectionNames_;
    std::set<std::string> keyNames_;
};

} // namespace

bool IsInQuotes(std::string_view value) {
    return value.size() > 1 && BeginsWithQuote(value) && value.back() == value.front();
}

IniText ParseIni(std::string_view text) {
    return Parser().Run(text);
}

std::size_t SectionListLength(const std::vector<IniSection>& sections) {
    std::size_t length = 0;
    for (const IniSection& section : sections)
        length += section.name.size() + 1;
    return length;
}

std::size_t KeyListLength(const IniSection& section) {
    std::size_t length = 0;
    for (const IniKey& key : section.keys)
        length += key.name.size() + 1;
    return length;
}

std::vector<std::string> SectionNames(std::string_view iniText) {
    std::vector<std::string> names;
    for (const std::string& piece : Split(iniText, '\n')) {
        const std::string line = TrimBlanks(piece);
        if (line.starts_with('['))
            names.push_back(TrimBlanks(line.substr(1, SectionEnd(line) - 1)));
    }
    return names;
}

std::optional<bool> ToBoolean(std::string_view text) {
    const std::string word = LowerCase(TrimBlanks(text));
    if (word == "true")
        return true;
    if (word == "false")
        return false;
    if (word.find_first_not_of("0123456789+-.e") != std::string::npos)
        return std::nullopt; // strtod also takes "inf", "nan" and hexadecimal digits
    char* end = nullptr;
    const double number = std::strtod(word.c_str(), &end);
    if (word.empty() || end != word.c_str() + word.size())
        return std::nullopt;
    return number != 0;
}

} // namespace vesk
