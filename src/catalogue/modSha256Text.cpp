#include "catalogue/modSha256Text.h"

#include "archive/modArchiveName.h"
#include "base/modText.h"

#include <cstddef>
#include <optional>
#include <set>
#include <utility>

namespace vesk {

namespace {

constexpr std::size_t kDigits = 64;

/// The line without its end.
std::string_view WithoutEnd(std::string_view line) {
    return line.substr(0, line.find_last_not_of("\r\n") + 1);
}

/// The first line of a text, with its end.
std::string_view FirstLine(std::string_view text) {
    const std::size_t end = text.find('\n');
    return text.substr(0, end == std::string_view::npos ? end : end + 1);
}

/// Digest and name of a line, both in lower case; nothing when it is malformed.
std::optional<std::pair<std::string, std::string>> DigestAndName(std::string_view line) {
    constexpr std::size_t kName = kDigits + 2;
    if (line.size() <= kName || line[kDigits] != ' ' ||
        (line[kDigits + 1] != ' ' && line[kDigits + 1] != '*'))
        return std::nullopt;
    std::string digest = LowerCase(line.substr(0, kDigits));
    if (digest.find_first_not_of("0123456789abcdef") != std::string::npos)
        return std::nullopt;
    return std::pair(std::move(digest), LowerCase(line.substr(kName)));
}

} // namespace

Sha256Text ParseSha256Text(std::string_view text) {
    Sha256Text list;
    std::set<std::string> contested;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view raw = FirstLine(text);
        text.remove_prefix(raw.size());
        const std::string_view line = WithoutEnd(raw);
        if (line.empty() || line.front() == '#')
            continue;
        const std::string place = "line " + std::to_string(number);
        const auto entry = DigestAndName(line);
        if (!entry) {
            list.faults.push_back(place + " is not a SHA-256 digest and a name");
            continue;
        }
        if (entry->second != TrimBlanks(entry->second) || !IsPlainFileName(entry->second)) {
            list.faults.push_back(place + " names no file in the program folder: " + entry->second);
            continue;
        }
        const auto [known, isNew] = list.digests.try_emplace(entry->second, entry->first);
        if (isNew || known->second == entry->first)
            continue;
        list.faults.push_back(place + " gives another digest for " + entry->second +
                              " than a line before it");
        contested.insert(entry->second);
    }
    // Whichever of them was meant: no file has both.
    for (const std::string& name : contested)
        list.digests[name] = "one of several";
    return list;
}

std::string WithSha256(std::string_view text, const std::string& name, const std::string& digest) {
    const std::string lineEnd = text.find("\r\n") == std::string_view::npos ? "\n" : "\r\n";
    const std::string own = digest + " *" + name + lineEnd;
    std::string result;
    bool isThere = false;
    while (!text.empty()) {
        const std::string_view line = FirstLine(text);
        text.remove_prefix(line.size());
        const auto entry = DigestAndName(WithoutEnd(line));
        const bool isOwn = entry && entry->second == LowerCase(name);
        if (!isOwn)
            result.append(line);
        else if (!std::exchange(isThere, true))
            result.append(own);
    }
    if (isThere)
        return result;
    if (!result.empty() && result.back() != '\n')
        result += lineEnd;
    return result + own;
}

} // namespace vesk
