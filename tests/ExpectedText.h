#pragma once

#include "base/Failure.h"
#include "base/modText.h"

#include <doctest/doctest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

namespace vesk::test {

inline bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

inline void CheckHolds(const std::string& text, const std::string& part) {
    CHECK_MESSAGE(Holds(text, part), "\"", text, "\" holds \"", part, "\"");
}

inline void CheckStarts(const std::string& text, const std::string& start) {
    CHECK_MESSAGE(text.starts_with(start), "\"", text, "\" starts with \"", start, "\"");
}

/// The failure that an action ends with; its number is 0 where there is none.
inline Failure FailureIn(const std::function<void()>& action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure;
    }
    return {0, "", ""};
}

/// Each "\XX" as the byte of that number.
inline std::string Unescaped(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '\\';
        bytes +=
            isEscape ? static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16)) : text[i];
        i += isEscape ? 2 : 0;
    }
    return bytes;
}

inline std::string Escaped(const std::string& text) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string escaped;
    for (const char c : text) {
        const auto byte = static_cast<std::uint8_t>(c);
        escaped += c >= ' ' && c < 0x7F ? std::string(1, c)
                                        : std::string{'\\', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return escaped;
}

/// What tests/data/NAME.txt says is to come.
inline std::string ExpectedText(const std::string& name) {
    const char* const folder = std::getenv("VESK_DATA");
    REQUIRE_MESSAGE(folder, "VESK_DATA names the folder of the expected texts");
    std::ifstream file(std::string(folder) + "/" + name + ".txt", std::ios::binary);
    REQUIRE_MESSAGE(file, "the expected text cannot be read: ", name);
    return ReplaceAll(std::string(std::istreambuf_iterator<char>(file), {}), "\r", "");
}

/// Compares a text with tests/data/NAME.txt as a whole, and shows both where they differ.
inline void CheckExpected(const std::string& name, const std::string& found) {
    const std::string wanted = ExpectedText(name);
    CHECK_MESSAGE(found == wanted, name, "\n--- wanted\n", wanted, "--- found\n", found, "---");
}

/// Compares as a whole what is said of each line of tests/data/NAME.txt in front of " => ".
template <class Say>
void CheckLines(const std::string& name, Say&& say) {
    std::string found;
    int said = 0;
    for (const std::string& line : Split(ExpectedText(name), '\n')) {
        const std::size_t arrow = line.find(" => ");
        found += (found.empty() ? "" : "\n") + line.substr(0, arrow);
        if (arrow == std::string::npos)
            continue;
        found += " => " + say(line.substr(0, arrow));
        ++said;
    }
    CHECK(said > 0);
    CheckExpected(name, found);
}

using TextFunctions = std::map<std::string, std::function<std::string(const std::string&)>>;

/// Compares as a whole what functions give for each line "FUNCTION text" of tests/data/NAME.txt in
/// front of " => ". "^" stands for CR LF, "\XX" for a byte that would not be seen.
/// @param functions by the names that lines begin with
inline void CheckFunctions(const std::string& name, const TextFunctions& functions) {
    CheckLines(name, [&](const std::string& line) {
        const std::size_t blank = line.find(' ');
        const std::string text = Unescaped(ReplaceAll(line.substr(blank + 1), "^", "\r\n"));
        return Escaped(ReplaceAll(functions.at(line.substr(0, blank))(text), "\r\n", "^"));
    });
}

/// Compares tests/data/NAME.txt with the answers to the questions in it, which are the lines that
/// begin with "= ". Lines that begin with "#" are remarks.
/// @param answer gives the lines that belong under a question
template <class Answer>
void CheckAnswers(const std::string& name, const Answer& answer) {
    std::istringstream wanted(ExpectedText(name));
    std::string found;
    for (std::string line; std::getline(wanted, line);) {
        const bool asks = line.starts_with("= ");
        found += asks || line.starts_with("#") ? line + "\n" : "";
        found += asks ? answer(line.substr(2)) : "";
    }
    CHECK_FALSE(found.empty());
    CheckExpected(name, found);
}

} // namespace vesk::test
