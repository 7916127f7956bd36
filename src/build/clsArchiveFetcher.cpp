#include "build/clsArchiveFetcher.h"

#include "archive/modArchiveName.h"
#include "base/UniqueHandle.h"
#include "base/modFile.h"
#include "base/modText.h"
#include "build/modArchiveFault.h"

#include <windows.h>

#include <array>
#include <optional>

namespace vesk {

namespace {

/// The partial archive that stands there before a download, if any: a killed build left it, or
/// another one that runs now is writing it, whose it is to remove.
class PartBefore {
public:
    explicit PartBefore(const std::string& archive)
        : path_(PartialPath(archive)), state_(Read()), isInUse_(IsInUse()) {}

    /// Whether there is one now that was made since.
    [[nodiscard]] bool IsReplaced() const {
        const auto now = Read();
        return now && !isInUse_ && now != state_;
    }

private:
    /// When it was written, and its size.
    using State = std::array<DWORD, 4>;

    [[nodiscard]] std::optional<State> Read() const {
        WIN32_FILE_ATTRIBUTE_DATA data{};
        if (!FileExists(path_) ||
            GetFileAttributesExA(path_.c_str(), GetFileExInfoStandard, &data) == 0)
            return std::nullopt;
        return State{data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime,
                     data.nFileSizeHigh, data.nFileSizeLow};
    }
    [[nodiscard]] bool IsInUse() const {
        const FileHandle file(CreateFileA(path_.c_str(), DELETE,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                          nullptr, OPEN_EXISTING, 0, nullptr));
        return !file && GetLastError() == ERROR_SHARING_VIOLATION;
    }

    std::string path_;
    std::optional<State> state_;
    bool isInUse_;
};

} // namespace

DownloadOutcome clsArchiveFetcher::Fetch(const CatalogueEntry& component) {
    context_.Log("Downloading: " + component.zip);
    DownloadOutcome outcome;
    if (IsReplaceableArchiveName(component.zip))
        outcome = Download(component, context_.ArchivePath(component));
    else
        outcome.reason = "its name in the catalogue cannot be an archive's";
    if (outcome.result == DownloadResult::Done)
        return outcome;
    context_.report({component.zip, "not downloaded", outcome.reason});
    notFetched_.insert(component.zip);
    if (outcome.result == DownloadResult::Failed)
        context_.Warn(component, " could not be downloaded. !!!");
    if (outcome.result == DownloadResult::Cancelled)
        context_.Log("Warning: download cancelled by user. !!!");
    return outcome;
}

/// Downloads to a path, and removes what is not right there.
DownloadOutcome clsArchiveFetcher::Download(const CatalogueEntry& component,
                                            const std::string& archive) {
    const PartBefore partBefore(archive);
    DownloadOutcome outcome;
    ResumeNext([&](const Problem& problem) { outcome.reason = problem.reason; }, {},
               [&] {
                   outcome =
                       context_.frontEnd.DownloadFile({component.url, archive, component.crc,
                                                       context_.sha256.Expected(component.zip)});
               });
    if (outcome.result == DownloadResult::Done)
        return outcome;
    if (TrimBlanks(component.url).empty())
        outcome.reason = "the catalogue has no address for it";
    // A file that is there is downloaded again only because it is not the right one.
    const bool wasThere = FileExists(archive);
    const std::string fault = wasThere ? ArchiveFault(context_, archive, component) : "";
    const std::string partial = partBefore.IsReplaced() ? PartialPath(archive) : "";
    if (wasThere && fault.empty()) { // unless another build brought it meanwhile
        RemoveLeftovers({partial});
        return {DownloadResult::Done, ""};
    }
    if (wasThere || !partial.empty()) {
        // One line for the archive, wherever it was written to.
        context_.Status("Deleting file");
        context_.Log("Deleting File: " + archive);
        RemoveLeftovers({wasThere ? archive : "", partial});
    }
    if (wasThere)
        outcome.reason += std::string("; the file that was there ") +
                          (FileExists(archive) ? "is still there, " : "was removed, ") + fault;
    return outcome;
}

/// @param paths of files; an empty one stands for none
void clsArchiveFetcher::RemoveLeftovers(std::initializer_list<std::string> paths) const {
    for (const std::string& path : paths) {
        if (!path.empty())
            context_.ResumeNext({path, "not removed"}, [&] { RemoveFile(path); });
    }
}

} // namespace vesk
