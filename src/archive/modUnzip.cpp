#include "archive/modUnzip.h"

#include "archive/clsDosClock.h"
#include "archive/clsExtractionTarget.h"
#include "archive/clsMappedArchive.h"
#include "archive/clsZipMemberReader.h"
#include "archive/modMemberFailure.h"
#include "archive/modMemberPath.h"
#include "archive/modUnzipName.h"
#include "archive/modZipTexts.h"
#include "base/Problem.h"
#include "base/modWide.h"

#include <algorithm>
#include <exception>

namespace vesk {

namespace {

std::string messageBuffer;

std::string ShownName(const ZipMember& member) {
    return vesk::ShownName(ZipEntryName(member));
}

/// What an owner's callback threw, on its way past everything that deals with members' failures.
struct OwnerThrew {
    std::exception_ptr thrown;
};

template <class Call>
auto AskOwner(Call call) {
    try {
        return call();
    } catch (...) {
        throw OwnerThrew{std::current_exception()};
    }
}

FileStamp StampOf(const ZipMember& member, clsDosClock& clock) {
    FileStamp stamp;
    stamp.attributes |= member.externalAttributes &
                        (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    const auto take = [](const std::optional<std::uint64_t>& ticks) {
        return ticks ? std::optional(
                           FILETIME{static_cast<DWORD>(*ticks), static_cast<DWORD>(*ticks >> 32)})
                     : std::nullopt;
    };
    stamp.modified = take(member.times.modified);
    stamp.accessed = take(member.times.accessed);
    stamp.created = take(member.times.created);
    if (!stamp.modified)
        stamp.modified = clock.FileTimeOf(member.dosDate, member.dosTime, stamp.error);
    return stamp;
}

/// How far an extraction is: packed bytes, and something for each member's own cost.
class Progress {
public:
    Progress(const ZipDirectory& directory, const std::function<void(double)>& tell) : tell_(tell) {
        for (const ZipMember& member : directory.members)
            total_ += CostOf(member);
    }
    /// @param packedDone of the member that is being extracted
    void Within(std::uint64_t packedDone) const {
        if (tell_)
            AskOwner(
                [&] { tell_(std::min(1.0, (done_ + static_cast<double>(packedDone)) / total_)); });
    }
    void Done(const ZipMember& member) {
        done_ += CostOf(member);
        Within(0);
    }

private:
    static double CostOf(const ZipMember& member) {
        constexpr double kForEach = 1000; // about what a file's creation is worth
        // A refused member may claim any size.
        return kForEach + (member.refusal.empty() ? static_cast<double>(member.packedSize) : 0);
    }

    const std::function<void(double)>& tell_;
    double total_ = 0;
    double done_ = 0;
};

/// One run over one archive.
class Extraction {
public:
    Extraction(const DCL& options, const UnzipCallbacks& callbacks)
        : options_(options), callbacks_(callbacks) {}

    ExtractionOutcome Run() {
        try {
            const clsMappedArchive archive(options_.Zip);
            directory_ = ReadZipDirectory(archive.Bytes());
            if (!directory_.problem.empty())
                Tell({"", "not read whole", directory_.problem});
            totals_.commentLength = directory_.comment.size();
            if (options_.nvflag)
                List();
            else
                Extract(archive.Bytes());
        } catch (const std::exception& problem) {
            Tell(NotExtracted("", ReasonOf(problem)));
        } catch (const OwnerThrew& owner) {
            std::rethrow_exception(owner.thrown);
        }
        messageBuffer += Summary(ZipVersion(), totals_);
        return std::move(outcome_);
    }

private:
    void Tell(const MemberFailure& failure) {
        messageBuffer += (failure.member.empty() ? options_.Zip : failure.member) + ": " +
                         failure.what + ", " + failure.reason + "\r\n";
        outcome_.failures.push_back(failure);
    }

    void List() {
        messageBuffer += ListingHeading();
        for (const ZipMember& member : directory_.members) {
            messageBuffer += ListingLine(member, ShownName(member));
            totals_.Add(member);
        }
    }

    void Extract(std::span<const std::byte> archive) {
        if (!options_.ntflag)
            target_ = clsExtractionTarget(options_.ExtractDir);
        clsZipMemberReader reader(archive, directory_.members, [this](bool wrongBefore) {
            return AskOwner([&] {
                return callbacks_.password ? callbacks_.password(wrongBefore) : std::nullopt;
            });
        });
        Progress progress(directory_, callbacks_.progress);
        for (std::size_t number = 0; number < directory_.members.size(); ++number) {
            const ZipMember& member = directory_.members[number];
            totals_.Add(member);
            ExtractOrFail(number, reader, progress);
            if (cancelled_)
                break;
            progress.Done(member);
        }
        target_.FinishFolders([&](std::size_t number, std::uint32_t error) {
            Tell(NotStamped(NameOf(number), error));
        });
    }

    [[nodiscard]] std::string NameOf(std::size_t number) const {
        return ShownName(directory_.members[number]);
    }

    void ExtractOrFail(std::size_t number, clsZipMemberReader& reader, const Progress& progress) {
        try {
            const auto added = ExtractMember(number, reader, progress);
            if (!added)
                return;
            ++outcome_.extracted;
            if (const auto& both = added->overwriting)
                Tell(WrittenOver(NameOf(both->later), NameOf(both->earlier)));
            if (added->stampError != 0)
                Tell(NotStamped(NameOf(number), added->stampError));
        } catch (const std::exception& problem) {
            Tell(FailureOf(NameOf(number), problem));
        }
    }

    /// @return nothing when the owner wants to keep an old file
    std::optional<AddedFile> ExtractMember(std::size_t number, clsZipMemberReader& reader,
                                           const Progress& progress) {
        const ZipMember& member = directory_.members[number];
        if (!member.refusal.empty())
            throw ArchiveProblem(member.refusal);
        const std::wstring path =
            MemberPath(target_.Folder(), ZipEntryName(member), member.IsFolder());
        const FileStamp stamp = StampOf(member, clock_);
        if (member.IsFolder()) {
            target_.AddFolder(path, number, stamp);
            if (member.size != 0)
                throw ArchiveProblem(kFolderWithContent);
            return AddedFile();
        }
        if (!MayWrite(path))
            return std::nullopt;
        const MemberContent content{number, member.size, member.crc};
        if (!clsZipMemberReader::IsLarge(member))
            return target_.AddFile(path, content, reader.Read(member), stamp);
        clsExtractionTarget::LargeFile file(target_, path, stamp, member.size);
        reader.Stream(member, [&](std::span<const std::byte> piece, std::uint64_t packedDone) {
            file.Write(piece);
            progress.Within(packedDone);
        });
        return file.Keep(content);
    }

    bool MayWrite(const std::wstring& path) {
        const bool silent = options_.ntflag || (options_.noflag && !options_.PromptToOverwrite);
        const DWORD attributes =
            silent ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(path.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            return true;
        using Replace = UnzipCallbacks::Replace;
        Replace answer = Replace::No;
        if (options_.PromptToOverwrite && callbacks_.replace)
            answer =
                AskOwner([&] { return callbacks_.replace(Narrowed(WithoutLongPrefix(path))); });
        cancelled_ = answer == Replace::Cancel;
        return answer == Replace::Yes;
    }

    const DCL& options_;
    const UnzipCallbacks& callbacks_;
    clsDosClock clock_;
    clsExtractionTarget target_;
    ZipDirectory directory_;
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

ExtractionOutcome TestZip(const std::string& zipPath, const UnzipCallbacks& callbacks) {
    DCL options;
    options.ntflag = true;
    options.Zip = zipPath;
    return SingleEntryUnzip(options, callbacks);
}

const std::string& UnzipMessages() {
    return messageBuffer;
}

} // namespace vesk
