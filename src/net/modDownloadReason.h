#pragma once

#include "net/modHttpText.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Why a download did not end well, in one line for people.
namespace vesk {

/// What is known of the download from one address when it is over.
struct DownloadFacts {
    std::string url;
    ProxySettings proxy;
    std::string statusLine;             ///< First line of the answer's header; empty for none.
    std::int32_t errorNumber = 0;       ///< What the download reported; 0: it was complete.
    std::string errorText;              ///< The description that came with it.
    bool failedHere = false;            ///< The error was on this machine.
    std::uint32_t secondsOfSilence = 0; ///< After which it was given up; 0 when it was not.
    bool counted = false;               ///< The answer counts as a success.
    std::int64_t announced = 0;         ///< Bytes; 0 when no length came.
    std::int64_t received = 0;          ///< Bytes of the file.
    std::string content;                ///< How the file begins.
};

/// How much of a file's beginning is worth looking at.
inline constexpr std::size_t kContentLooked = 8192;

/// Who is connected to: "host", or "proxy name".
std::string ConnectsTo(const std::string& url, const ProxySettings& proxy);

/// Why nothing usable came.
std::string WhyFailed(const DownloadFacts& facts);

/// Why what came is not the expected file. @param found its checksum; empty when it has none
std::string WhyCrcDiffers(const DownloadFacts& facts, const std::string& expected,
                          const std::string& found);

/// The same where another check found that something else came. @param fault what it found
std::string WhyNotExpected(const DownloadFacts& facts, const std::string& fault);

/// The first words of a text or an HTML page (tags, scripts and styles left out, at most some 60
/// characters of plain ASCII); empty when the file does not begin like a text.
std::string PageWords(std::string_view content);

} // namespace vesk
