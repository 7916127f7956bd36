#include "archive/modUnzip.h"

#include "archive/ArchiveProblem.h"
#include "archive/ByteSource.h"
#include "archive/ZipMember.h"
#include "archive/clsDosClock.h"
#include "archive/clsExtractionTarget.h"
#include "archive/clsFileSource.h"
#include "archive/clsSharedNames.h"
#include "archive/clsZipDirectory.h"
#include "archive/clsZipMemberReader.h"
#include "archive/modMemberFailure.h"
#include "archive/modMemberPath.h"
#include "archive/modUnzipName.h"
#include "archive/modZipTexts.h"
#include "base/Problem.h"
#include "base/modWide.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <span>
#include <string_view>
#include <utility>

namespace vesk {

namespace {

constexpr const char* kNotReadWhole = "not read whole";

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

/// An archive's bytes, with a call now and then while they are read.
class TickingSource : public ByteSource {
public:
    TickingSource(ByteSource& source, std::function<void()> tick)
        : source_(source), tick_(std::move(tick)) {}

    [[nodiscard]] std::uint64_t Size() const override { return source_.Size(); }
    std::size_t Read(std::uint64_t at, std::span<std::byte> to) override {
        constexpr std::size_t kBetween = std::size_t{256} << 10;
        if (sinceTick_ >= kBetween) {
            sinceTick_ = 0;
            tick_();
        }
        sinceTick_ += to.size();
        return source_.Read(at, to);
    }

private:
    ByteSource& source_;
    std::function<void()> tick_;
    std::size_t sinceTick_ = 0;
};

/// How far an extraction is: packed bytes, and something for each member's own cost.
class Progress {
public:
    Progress(const clsZipDirectory& directory, const std::function<void(double)>& tell)
        : tell_(tell),
          total_(static_cast<double>(directory.PackedSize()) +
                 kForEach * static_cast<double>(directory.Count())) {}

    /// @param packedDone of the member that is being extracted
    void Within(std::uint64_t packedDone) const {
        if (tell_)
            AskOwner(
                [&] { tell_(std::min(1.0, (done_ + static_cast<double>(packedDone)) / total_)); });
    }
    void Done(const ZipMember& member) {
        // A member without data may claim any size.
        done_ += kForEach + (member.IsLocated() ? static_cast<double>(member.packedSize) : 0);
        Within(0);
    }

private:
    static constexpr double kForEach = 1000; ///< About what a file's creation is worth.

    const std::function<void(double)>& tell_;
    double total_;
    double done_ = 0;
};

/// One run over one archive.
class Extraction {
public:
    Extraction(const DCL& options, const UnzipCallbacks& callbacks)
        : options_(options), callbacks_(callbacks) {}

    ExtractionOutcome Run() {
        try {
            clsFileSource file(options_.Zip);
            TickingSource ticking(file, [this] { Tick(); });
            directory_.emplace(ticking);
            if (!directory_->Problem().empty())
                Tell({"", kNotReadWhole, directory_->Problem()});
            totals_.commentLength = directory_->Comment().size();
            if (options_.nvflag)
                List();
            else
                Extract(file);
        } catch (const std::exception& problem) {
            const std::string reason = ReasonOf(problem);
            Tell(outcome_.extracted == 0 ? NotExtracted("", reason)
                                         : MemberFailure{"", kNotReadWhole, reason});
        } catch (const OwnerThrew& owner) {
            std::rethrow_exception(owner.thrown);
        }
        messageBuffer += Summary(ZipVersion(), totals_);
        return std::move(outcome_);
    }

private:
    void Tell(const MemberFailure& failure) {
        if (outcome_.Tell(failure))
            messageBuffer += (failure.member.empty() ? options_.Zip : failure.member) + ": " +
                             failure.what + ", " + failure.reason + "\r\n";
    }

    /// While the archive's directory is read, which may be long.
    void Tick() const {
        if (progress_)
            progress_->Within(0);
        else if (callbacks_.progress)
            AskOwner([this] { callbacks_.progress(0); });
    }

    void List() {
        messageBuffer += ListingHeading();
        for (std::size_t number = 0; number < directory_->Count(); ++number) {
            const ZipMember member = directory_->Described(number);
            messageBuffer += ListingLine(member, ShownName(member));
            totals_.Add(member);
        }
    }

    void Extract(ByteSource& archive) {
        if (!options_.ntflag)
            target_ = clsExtractionTarget(options_.ExtractDir);
        target_.ExpectShared(SharedNames());
        clsZipMemberReader reader(archive, *directory_, [this](bool wrongBefore) {
            return AskOwner([&] {
                return callbacks_.password ? callbacks_.password(wrongBefore) : std::nullopt;
            });
        });
        progress_.emplace(*directory_, callbacks_.progress);
        for (std::size_t number = 0; number < directory_->Count(); ++number) {
            const ZipMember member = directory_->Member(number);
            totals_.Add(member);
            ExtractOrFail(number, member, reader);
            if (cancelled_)
                break;
            progress_->Done(member);
        }
        target_.FinishFolders([&](std::size_t number, std::uint32_t error) {
            Tell(NotStamped(NameOf(number), error));
        });
    }

    clsSharedNames SharedNames() {
        clsSharedNames names;
        for (std::size_t number = 0; number < directory_->Count(); ++number) {
            try {
                names.Add(std::wstring_view(PathOf(directory_->Described(number)))
                              .substr(target_.Folder().size()));
            } catch (const ArchiveProblem&) { // its turn to be told of comes with its extraction
            }
        }
        names.Finish();
        return names;
    }

    [[nodiscard]] std::wstring PathOf(const ZipMember& member) const {
        return MemberPath(target_.Folder(), ZipEntryName(member), member.IsFolder());
    }

    [[nodiscard]] std::string NameOf(std::size_t number) {
        return ShownName(directory_->Described(number));
    }

    void ExtractOrFail(std::size_t number, const ZipMember& member, clsZipMemberReader& reader) {
        try {
            const auto added = ExtractMember(number, member, reader);
            if (!added)
                return;
            ++outcome_.extracted;
            if (const auto& both = added->overwriting)
                Tell(WrittenOver(NameOf(both->later), NameOf(both->earlier)));
            if (added->stampError != 0)
                Tell(NotStamped(ShownName(member), added->stampError));
        } catch (const std::exception& problem) {
            Tell(FailureOf(ShownName(member), problem));
        }
    }

    /// @return nothing when the owner wants to keep an old file
    std::optional<AddedFile> ExtractMember(std::size_t number, const ZipMember& member,
                                           clsZipMemberReader& reader) {
        if (!member.refusal.empty())
            throw ArchiveProblem(member.refusal);
        const std::wstring path = PathOf(member);
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
            progress_->Within(packedDone);
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
    std::optional<clsZipDirectory> directory_;
    std::optional<Progress> progress_;
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
