#include "archive/modUnzip.h"

#include "archive/clsMappedArchive.h"
#include "archive/clsUnzipTarget.h"
#include "archive/modUnzipName.h"
#include "archive/modZipMember.h"
#include "archive/modZipTexts.h"
#include "base/Problem.h"
#include "base/modSystemError.h"
#include "base/modWide.h"

#include <algorithm>
#include <exception>

namespace vesk {

namespace {

std::string messageBuffer;

constexpr const char* kNotExtracted = "not extracted";
constexpr const char* kNotReadWhole = "not read whole";
constexpr const char* kWrittenOver = "written over another member";

std::string SameNameAs(const ZipMember& other) {
    return "has the same name as " + ShownName(other);
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
            const ZipDirectory directory = ReadZipDirectory(archive.Bytes());
            if (!directory.problem.empty())
                Fail("", kNotReadWhole, directory.problem);
            totals_.commentLength = directory.comment.size();
            if (options_.nvflag)
                List(directory);
            else
                Extract(archive.Bytes(), directory);
        } catch (const std::exception& problem) {
            Fail("", kNotExtracted, ReasonOf(problem));
        } catch (const OwnerThrew& owner) {
            std::rethrow_exception(owner.thrown);
        }
        messageBuffer += Summary(ZipVersion(), totals_);
        return std::move(outcome_);
    }

private:
    /// @param member empty for the archive as a whole
    void Fail(const std::string& member, const std::string& what, const std::string& reason) {
        messageBuffer +=
            (member.empty() ? options_.Zip : member) + ": " + what + ", " + reason + "\r\n";
        outcome_.failures.push_back({member, what, reason});
    }

    void List(const ZipDirectory& directory) {
        messageBuffer += ListingHeading();
        for (const ZipMember& member : directory.members) {
            messageBuffer += ListingLine(member, ShownName(member));
            totals_.Add(member);
        }
    }

    void Extract(std::span<const std::byte> archive, const ZipDirectory& directory) {
        clsUnzipTarget target(options_.ExtractDir);
        ZipMemberReader reader(archive, directory.members, [this](bool wrongBefore) {
            return AskOwner([&] {
                return callbacks_.password ? callbacks_.password(wrongBefore) : std::nullopt;
            });
        });
        Progress progress(directory, callbacks_.progress);
        for (const ZipMember& member : directory.members) {
            totals_.Add(member);
            ExtractOrFail(member, directory, reader, target, progress);
            if (cancelled_)
                break;
            progress.Done(member);
        }
        target.FinishFolders([&](std::size_t number, std::uint32_t error) {
            FailTimes(directory.members[number], error);
        });
    }

    void ExtractOrFail(const ZipMember& member, const ZipDirectory& directory,
                       ZipMemberReader& reader, clsUnzipTarget& target, const Progress& progress) {
        const auto number = static_cast<std::size_t>(&member - directory.members.data());
        try {
            const auto added = ExtractMember(member, number, reader, target, progress);
            if (added)
                Tell(member, *added, directory);
        } catch (const ZipProblem& problem) {
            Fail(ShownName(member), kNotExtracted, problem.what());
        } catch (const std::exception& problem) {
            Fail(ShownName(member), "not written", ReasonOf(problem));
        }
    }

    void Tell(const ZipMember& member, const AddedFile& added, const ZipDirectory& directory) {
        if (added.writtenOver) // so that there is one member less on the disk than was extracted
            Fail(ShownName(member), kWrittenOver,
                 SameNameAs(directory.members[*added.writtenOver]));
        else
            ++outcome_.extracted;
        if (added.timeError != 0 && !added.writtenOver)
            FailTimes(member, added.timeError);
    }

    void FailTimes(const ZipMember& member, std::uint32_t error) {
        Fail(ShownName(member), "time not set", AsReason(SystemErrorText(error)));
    }

    /// @return nothing when the owner wants to keep an old file
    std::optional<AddedFile> ExtractMember(const ZipMember& member, std::size_t number,
                                           ZipMemberReader& reader, clsUnzipTarget& target,
                                           const Progress& progress) {
        if (!member.refusal.empty())
            throw ZipProblem(member.refusal);
        const std::wstring path = MemberPath(target.Folder(), member);
        const FileStamp stamp = stamps_.Of(member);
        if (member.IsFolder()) {
            target.AddFolder(path, number, stamp);
            if (member.size != 0)
                throw ZipProblem("is a folder and has content all the same");
            return AddedFile();
        }
        if (!MayWrite(path))
            return std::nullopt;
        if (!ZipMemberReader::IsLarge(member))
            return target.AddFile(path, number, reader.Read(member), stamp);
        const auto fill = [&](const clsUnzipTarget::Sink& sink) {
            reader.Stream(member, [&](std::span<const std::byte> piece, std::uint64_t packedDone) {
                sink(piece);
                progress.Within(packedDone);
            });
        };
        return target.AddLargeFile(path, number, member.size, fill, stamp);
    }

    bool MayWrite(const std::wstring& path) {
        const DWORD attributes = options_.noflag && !options_.PromptToOverwrite
                                     ? INVALID_FILE_ATTRIBUTES
                                     : GetFileAttributesW(path.c_str());
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
    StampMaker stamps_;
    ZipTotals totals_;
    ExtractionOutcome outcome_;
    bool cancelled_ = false;
};

/// Brings a member's name into the tree as an extraction would. @throws ZipProblem
std::optional<std::size_t> PutName(clsNameTree& names, const ZipMember& member,
                                   std::size_t number) {
    if (!member.refusal.empty())
        throw ZipProblem(member.refusal);
    const std::wstring path = MemberPath(L"", member);
    const auto nothingToCreate = [](std::wstring_view) {};
    if (member.IsFolder()) {
        names.EnterFolder(path, 0, nothingToCreate);
        return std::nullopt;
    }
    const std::wstring_view whole = path;
    const std::size_t end = whole.rfind(L'\\');
    const std::size_t folder = names.EnterFolder(whole.substr(0, end), 0, nothingToCreate);
    return names.PutFile(folder, whole.substr(end + 1), number);
}

std::vector<MemberFailure> InspectMembers(const ZipDirectory& directory) {
    std::vector<MemberFailure> failures;
    if (!directory.problem.empty())
        failures.push_back({"", kNotReadWhole, directory.problem});
    clsNameTree names;
    for (std::size_t number = 0; number < directory.members.size(); ++number) {
        const ZipMember& member = directory.members[number];
        try {
            if (const auto other = PutName(names, member, number))
                failures.push_back(
                    {ShownName(member), kWrittenOver, SameNameAs(directory.members[*other])});
        } catch (const ZipProblem& problem) {
            failures.push_back({ShownName(member), kNotExtracted, problem.what()});
        }
    }
    return failures;
}

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

std::vector<MemberFailure> InspectZip(const std::string& zipPath) {
    try {
        const clsMappedArchive archive(zipPath);
        return InspectMembers(ReadZipDirectory(archive.Bytes()));
    } catch (const std::exception& problem) {
        return {{"", kNotExtracted, ReasonOf(problem)}};
    }
}

const std::string& UnzipMessages() {
    return messageBuffer;
}

} // namespace vesk
