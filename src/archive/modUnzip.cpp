#include "archive/modUnzip.h"

#include "archive/clsUnzipTarget.h"
#include "archive/modMemberName.h"
#include "archive/modUnzipName.h"
#include "archive/modZipMember.h"
#include "archive/modZipTexts.h"
#include "base/Problem.h"
#include "base/UniqueHandle.h"
#include "base/modFile.h"
#include "base/modSystemError.h"

#include <new>

namespace vesk {

namespace {

std::string messageBuffer;

/// Larger members are inflated into the mapped file, not into memory: for smaller ones a buffer
/// and one write are faster.
constexpr std::uint64_t kLargeMember = std::uint64_t{256} << 20;

/// A file as memory. Nobody may write to it meanwhile, so its bytes stay as they were checked.
class MappedArchive {
public:
    explicit MappedArchive(const std::string& path)
        : file_(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                            nullptr)) {
        LARGE_INTEGER size{};
        if (!file_ || GetFileSizeEx(file_.Get(), &size) == 0)
            ThrowLastError("cannot open", path);
        if (size.QuadPart == 0)
            return; // cannot be mapped, and holds no archive anyway
        mapping_.Reset(CreateFileMappingA(file_.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
        if (mapping_)
            view_.Reset(MapViewOfFile(mapping_.Get(), FILE_MAP_READ, 0, 0, 0));
        if (!view_)
            ThrowLastError("cannot read", path);
        bytes_ = {static_cast<const std::byte*>(view_.Get()),
                  static_cast<std::size_t>(size.QuadPart)};
    }

    [[nodiscard]] std::span<const std::byte> Bytes() const { return bytes_; }

private:
    FileHandle file_;
    MappingHandle mapping_;
    MappedView view_;
    std::span<const std::byte> bytes_;
};

/// One run over one archive.
class Extraction {
public:
    Extraction(const DCL& options, const UnzipCallbacks& callbacks)
        : options_(options), callbacks_(callbacks) {}

    ExtractionOutcome Run() {
        try {
            const MappedArchive archive(options_.Zip);
            const ZipDirectory directory = ReadZipDirectory(archive.Bytes());
            if (!directory.problem.empty())
                Fail("", "not read whole", directory.problem);
            totals_.commentLength = directory.comment.size();
            if (options_.nvflag)
                List(directory);
            else
                Extract(archive.Bytes(), directory);
        } catch (const std::exception& problem) {
            Fail("", "not extracted", ReasonOf(problem));
        }
        messageBuffer += Summary(ZipVersion(), totals_);
        return std::move(outcome_);
    }

private:
    /// @param member empty for the archive as a whole
    void Fail(const std::string& member, const std::string& what, const std::string& reason) {
        const std::string name = PrintableName(member);
        messageBuffer +=
            (name.empty() ? options_.Zip : name) + ": " + what + ", " + reason + "\r\n";
        outcome_.failures.push_back({name, what, AsReason(reason)});
    }

    static std::string NameOf(const ZipMember& member) {
        return AnsiName(member).value_or(member.name);
    }

    void List(const ZipDirectory& directory) {
        messageBuffer += ListingHeading();
        for (const ZipMember& member : directory.members) {
            messageBuffer += ListingLine(member, NameOf(member));
            totals_.Add(member);
        }
    }

    void Extract(std::span<const std::byte> archive, const ZipDirectory& directory) {
        clsUnzipTarget target(options_.ExtractDir);
        ZipMemberReader reader(archive, [this](const ZipMember& member) {
            return callbacks_.password ? callbacks_.password(NameOf(member)) : std::nullopt;
        });
        for (const ZipMember& member : directory.members) {
            totals_.Add(member);
            try {
                ExtractMember(member, reader, target);
                ++outcome_.extracted;
            } catch (const std::exception& problem) {
                Fail(NameOf(member), "not written", ReasonOf(problem));
            }
            if (cancelled_)
                break;
            if (callbacks_.letEventsRun)
                callbacks_.letEventsRun();
        }
        target.FinishFolders();
    }

    void ExtractMember(const ZipMember& member, ZipMemberReader& reader, clsUnzipTarget& target) {
        if (!member.refusal.empty())
            throw ZipProblem("refused, " + member.refusal);
        const auto name = AnsiName(member);
        if (!name)
            throw ZipProblem("refused, the system's code page cannot hold its name");
        const auto path = PathInside(target.Folder(), *name);
        if (!path)
            throw ZipProblem("refused, its name is not a plain one below the target folder");
        const FileStamp stamp = stamps_.Of(member);
        if (member.IsFolder())
            target.AddFolder(*path, stamp);
        else if (!MayWrite(*path))
            return;
        else if (member.IsDeflated() && member.size >= kLargeMember)
            target.AddLargeFile(
                *path, member.size,
                [&](std::span<std::byte> content) { reader.InflateInto(member, content); }, stamp);
        else
            target.AddFile(*path, reader.Read(member), stamp);
    }

    bool MayWrite(const std::string& path) {
        if ((options_.noflag && !options_.PromptToOverwrite) || !FileExists(path))
            return true;
        using Replace = UnzipCallbacks::Replace;
        Replace answer = Replace::No;
        if (options_.PromptToOverwrite && callbacks_.replace)
            answer = callbacks_.replace(path);
        cancelled_ = answer == Replace::Cancel;
        return answer == Replace::Yes;
    }

    const DCL& options_;
    const UnzipCallbacks& callbacks_;
    StampMaker stamps_;
    ZipTotals totals_;
    ExtractionOutcome outcome_;
    bool cancelled_ = false;
};

} // namespace

std::string ReplaceQuestion(const std::string& fileName) {
    return "Overwrite " + fileName + "?";
}

ExtractionOutcome SingleEntryUnzip(const DCL& options, const UnzipCallbacks& callbacks) {
    messageBuffer.clear();
    return Extraction(options, callbacks).Run();
}

ExtractionOutcome UnzipFile(const std::string& zipPath, const std::string& targetFolder,
                            const UnzipCallbacks& callbacks) {
    DCL options;
    options.nvflag = targetFolder.empty();
    options.Zip = zipPath;
    options.ExtractDir = targetFolder;
    return SingleEntryUnzip(options, callbacks);
}

const std::string& UnzipMessages() {
    return messageBuffer;
}

} // namespace vesk
