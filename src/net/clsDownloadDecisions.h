#pragma once

#include "net/DownloadResult.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

/// What the download of one archive decides on its way: whether the answer counts as a success,
/// which address is tried after an error, what became of it all.
class clsDownloadDecisions {
public:
    /// @param urls one address, or several separated by ","; blanks around each do not matter, an
    /// empty one keeps its place
    explicit clsDownloadDecisions(std::string_view urls);

    /// The address to download from now.
    [[nodiscard]] const std::string& Url() const { return urls_[current_]; }

    /// Judges an answer by its header.
    void OnStarting(std::int32_t fileSize, std::string_view header);

    /// Counts bytes of the file.
    void OnDataArrival(std::int32_t bytesTotal) { received_ += bytesTotal; }

    /// Takes in an error. @return true when Url() is now another one that is to be tried at once
    bool OnError(std::int32_t number);

    /// The server was silent for too long and is given up, which is as good as no answer.
    /// @return as OnError
    bool OnSilence();

    /// True when fewer bytes of the file came than the present answer announced.
    [[nodiscard]] bool IsShort() const { return received_ < announced_; }

    /// True when more of the present answer came than can be of use, and no end of it is to be
    /// waited for: of one that does not count what is looked at to tell why, of one that counts a
    /// good deal more than it announced.
    [[nodiscard]] bool IsEndless() const;

    [[nodiscard]] std::int64_t Received() const { return received_; }
    [[nodiscard]] std::int64_t Announced() const { return announced_; }

    /// True when the present answer counts.
    [[nodiscard]] bool Counts() const { return succeeded_; }

    /// The user cancelled and confirmed it.
    void OnCancelled() { cancelled_ = true; }

    /// What became of the download. @param expectedCrc checksum text to match exactly, or empty for
    /// any file that is not short @param fileCrc asked for the file's checksum text, only when it
    /// decides
    [[nodiscard]] DownloadResult Result(const std::string& expectedCrc,
                                        const std::function<std::string()>& fileCrc) const;

private:
    std::vector<std::string> urls_;
    std::size_t current_ = 0;
    std::int64_t announced_ = 0;
    std::int64_t received_ = 0;
    bool succeeded_ = false;
    bool cancelled_ = false;
};

} // namespace vesk
