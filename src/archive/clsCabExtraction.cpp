#include "archive/clsCabExtraction.h"

#include "archive/modCabFailure.h"
#include "archive/modCabJudge.h"
#include "archive/modCabName.h"
#include "archive/modCabReader.h"
#include "archive/modCabUnpack.h"
#include "archive/modMemberFailure.h"
#include "archive/modMemberPath.h"
#include "base/Problem.h"
#include "base/UniqueHandle.h"
#include "base/modFile.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace vesk {

namespace {

constexpr const char* kTwinNotKept = "it has the data of another member, which was not extracted";
constexpr const char* kCannotUnpack = "its data is damaged";

/// Progress is shown when so many more bytes are done.
constexpr std::uint64_t kProgressStep = std::uint64_t{1} << 20;

/// Up to this size a member is written at once, and only when it is complete.
constexpr std::uint64_t kHeldBack = std::uint64_t{256} << 10;

std::string ShownName(const CabEntry& entry) {
    return vesk::ShownName(CabEntryName(entry));
}

} // namespace

void clsCabExtraction::Run() {
    iteration_.Run([this] {
        Prepare();
        ExtractAll();
    });
    if (first_)
        ThrowCabFailure(first_->number, first_->failure.reason);
}

void clsCabExtraction::Prepare() {
    directory_ = iteration_.ReadDirectory();
    try {
        std::uint64_t judged = 0;
        JudgeCabData(iteration_.Cabinet(), directory_, [&] {
            if (++judged % (kProgressStep / kCabBlockSize) == 0)
                ShowProgress();
        });
        JudgeCabNames(directory_); // first: what is not extracted lends its data to no other member
        order_ = JudgeCabEntries(directory_);
        const std::string& folder = iteration_.Destination();
        if (mode_ == Mode::Extract &&
            std::ranges::any_of(directory_.entries,
                                [&](const CabEntry& entry) { return iteration_.Matches(entry); }))
            target_ = clsExtractionTarget(
                folder.empty() ? ParentOf(AbsolutePath(iteration_.CabName())) : folder);
    } catch (const std::exception& failure) {
        ThrowCabFailure(CabNumberOf(failure), ReasonOf(failure));
    }
    for (const CabEntry& entry : directory_.entries)
        if (iteration_.Matches(entry))
            wanted_ += entry.size;
}

void clsCabExtraction::ExtractAll() {
    for (std::size_t start = 0; start < order_.size();) {
        const auto folder = [this](std::size_t at) {
            return directory_.entries[order_[at]].folder;
        };
        std::size_t end = start;
        while (end < order_.size() && folder(end) == folder(start))
            ++end;
        ExtractGroup(std::span(order_).subspan(start, end - start));
        ExtractLeft();
        start = end;
    }
    target_.FinishFolders([this](std::size_t number, std::uint32_t error) {
        Tell(NotStamped(ShownName(directory_.entries[number]), error));
    });
}

/// Reads the data once more for members whose twin was not kept, which may have had reasons of its
/// own. Once only: how often a small cabinet can have its data unpacked has a limit.
void clsCabExtraction::ExtractLeft() {
    const std::vector<std::size_t> left = std::exchange(left_, {});
    std::optional<std::size_t> lost;
    std::size_t first = 0; // of those that have the same data
    for (const std::size_t index : left) {
        CabEntry& entry = directory_.entries[index];
        if (entry.twin == lost) {
            entry.twin = first;
            directory_.entries[first].hasTwin = true;
        } else {
            lost = std::exchange(entry.twin, std::nullopt);
            first = index;
        }
    }
    isSecondTime_ = true;
    ExtractGroup(left);
    isSecondTime_ = false;
}

void clsCabExtraction::ExtractGroup(std::span<const std::size_t> group) {
    group_ = group;
    cursor_ = 0;
    readable_.clear();
    std::vector<std::size_t> entries;
    for (std::size_t place = 0; place < group_.size(); ++place)
        if (const CabEntry& entry = EntryAt(place);
            entry.refusal.empty() && entry.size != 0 && iteration_.Matches(entry) &&
            !(entry.twin && iteration_.Matches(directory_.entries[*entry.twin]))) {
            readable_.push_back(place);
            entries.push_back(group_[place]);
        }
    unread_ = {kCabDamaged, NotExtracted("", kCannotUnpack)};
    isUnpacked_ = true;
    if (!entries.empty()) {
        const CabFolder& folder = directory_.folders[EntryAt(0).folder];
        const bool here = IsUnpackedHere(folder);
        isUnpacked_ = here || mode_ == Mode::Extract;
        try {
            if (isUnpacked_)
                (here ? UnpackCabFolder : ReadCabFolder)(iteration_.Cabinet(), directory_, folder,
                                                         entries, *this);
        } catch (const std::exception& failure) {
            unread_ = {CabNumberOf(failure), FailureOf("", failure)};
        }
    }
    if (begun_) // the reader gave it up without a word
        End();
    HandleUnreadUpTo(group_.size());
}

/// Deals with the members that the reader passed over, or was not given.
void clsCabExtraction::HandleUnreadUpTo(std::size_t end) {
    while (cursor_ < end)
        HandleUnread(cursor_++);
}

void clsCabExtraction::HandleUnread(std::size_t place) {
    const CabEntry& entry = EntryAt(place);
    if (!iteration_.Matches(entry))
        return;
    if (IsWanted(entry)) {
        if (!entry.refusal.empty())
            Fail(entry, {entry.leftOut ? 0 : kCabDamaged, NotExtracted("", entry.refusal)});
        else if (IsCabFolderEntry(entry))
            CreateFolderOf(entry);
        else if (entry.twin && isUnpacked_ && kept_ != entry.twin && !isSecondTime_)
            return left_.push_back(NumberOf(entry));
        else if (entry.twin && isUnpacked_)
            CopyTwin(entry);
        else if (entry.size != 0 && isUnpacked_)
            Fail(entry, unread_);
        else {
            Open(entry);
            Finish(entry);
        }
    }
    CountAsDone(entry);
}

void clsCabExtraction::CreateFolderOf(const CabEntry& entry) {
    const std::wstring path = PathOf(entry);
    try {
        target_.AddFolder(path, NumberOf(entry), StampOf(entry));
    } catch (const std::exception& failure) {
        Fail(entry, {CabNumberOf(failure), FailureOf("", failure)});
        return;
    }
    iteration_.Raise(
        [&](CabEvents& owner) { owner.OnAfterExtract(Narrowed(WithoutLongPrefix(path))); });
}

/// Gives a member the data of the one that was kept just before.
void clsCabExtraction::CopyTwin(const CabEntry& entry) {
    if (kept_ != entry.twin)
        return Fail(entry, {kCabDamaged, NotExtracted("", kTwinNotKept)});
    Open(entry);
    begun_ = isCopy_ = true;
    if (!keptBytes_.empty())
        Write(keptBytes_);
    else if (mode_ == Mode::Extract)
        CopyKeptFile();
    else
        size_ = entry.size;
    begun_ = false;
    Finish(entry);
    isCopy_ = false;
}

void clsCabExtraction::CopyKeptFile() {
    const FileHandle kept(CreateFileW(PathOf(directory_.entries[*kept_]).c_str(), GENERIC_READ,
                                      FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    std::vector<std::byte> piece(kHeldBack);
    DWORD read = 0;
    while (kept &&
           ReadFile(kept.Get(), piece.data(), static_cast<DWORD>(piece.size()), &read, nullptr) !=
               0 &&
           read != 0)
        Write(std::span(piece).first(read));
}

bool clsCabExtraction::Begin(std::size_t place) {
    if (place >= readable_.size() || readable_[place] < cursor_)
        return false;
    HandleUnreadUpTo(readable_[place]);
    const CabEntry& entry = EntryAt(cursor_);
    if (!IsWanted(entry)) {
        ++cursor_;
        CountAsDone(entry);
        return false;
    }
    Open(entry); // when that fails, the member is still among those to be reported
    ++cursor_;
    begun_ = true;
    return true;
}

void clsCabExtraction::Write(std::span<const std::byte> bytes) {
    if (!begun_)
        return;
    size_ += bytes.size();
    crc_.AddBytes(bytes);
    if (!trouble_) {
        try {
            if (file_)
                file_->Write(bytes);
            else
                held_.insert(held_.end(), bytes.begin(), bytes.end());
        } catch (const std::exception& failure) {
            trouble_ = {CabNumberOf(failure), FailureOf("", failure)};
        }
    }
    if (done_ + size_ >= shown_ + kProgressStep)
        ShowProgress();
}

void clsCabExtraction::End() {
    if (!begun_)
        return;
    begun_ = false;
    const CabEntry& entry = EntryAt(cursor_ - 1);
    Finish(entry);
    CountAsDone(entry);
}

bool clsCabExtraction::IsWanted(const CabEntry& entry) {
    if (isSecondTime_) // the owner said so the first time
        return true;
    bool cancel = false;
    iteration_.Raise(
        [&](CabEvents& owner) { owner.OnBeforeExtract(cancel, CabMemberName(entry)); });
    return !cancel;
}

std::size_t clsCabExtraction::NumberOf(const CabEntry& entry) const {
    return static_cast<std::size_t>(&entry - directory_.entries.data());
}

std::wstring clsCabExtraction::PathOf(const CabEntry& entry) const {
    return MemberPath(target_.Folder(), CabEntryName(entry), IsCabFolderEntry(entry));
}

void clsCabExtraction::Open(const CabEntry& entry) {
    trouble_.reset();
    held_.clear();
    size_ = 0;
    crc_.Clear();
    if (entry.size <= kHeldBack)
        return;
    try {
        file_.emplace(target_, PathOf(entry), StampOf(entry), entry.size);
    } catch (const std::exception& failure) {
        trouble_ = {CabNumberOf(failure), FailureOf("", failure)};
    }
}

void clsCabExtraction::Finish(const CabEntry& entry) {
    if (!trouble_ && size_ != entry.size && isUnpacked_)
        trouble_ = unread_;
    if (trouble_)
        Fail(entry, *trouble_);
    else
        Keep(entry);
    file_.reset();
}

void clsCabExtraction::Keep(const CabEntry& entry) {
    const std::wstring path = PathOf(entry);
    MemberContent content{NumberOf(entry), entry.size, std::nullopt};
    if (isUnpacked_)
        content.crc = isCopy_ ? keptCrc_ : static_cast<std::uint32_t>(crc_.Value());
    const bool isSmall = !file_;
    const auto lend = [&] {
        kept_ = content.number;
        keptBytes_ = held_;
        keptCrc_ = content.crc.value_or(0);
    };
    if (entry.hasTwin && isSmall) // whether it can be written or not
        lend();
    AddedFile added;
    try {
        added =
            file_ ? file_->Keep(content) : target_.AddFile(path, content, held_, StampOf(entry));
    } catch (const std::exception& failure) {
        return Fail(entry, {CabNumberOf(failure), FailureOf("", failure)});
    }
    file_.reset(); // an event may look at it
    if (entry.hasTwin && !isSmall && (added.isWritten || mode_ == Mode::Test))
        lend();
    iteration_.Raise(
        [&](CabEvents& owner) { owner.OnAfterExtract(Narrowed(WithoutLongPrefix(path))); });
    if (const auto& both = added.overwriting)
        Tell(WrittenOver(ShownName(directory_.entries[both->later]),
                         ShownName(directory_.entries[both->earlier])));
    if (added.stampError != 0)
        Tell(NotStamped(ShownName(entry), added.stampError));
}

void clsCabExtraction::Tell(const MemberFailure& failure) {
    iteration_.Raise([&](CabEvents& owner) { owner.OnNotExtracted(failure); });
}

void clsCabExtraction::Fail(const CabEntry& entry, Trouble trouble) {
    if (!first_ && trouble.number != 0)
        first_ = trouble;
    trouble.failure.member = ShownName(entry);
    Tell(trouble.failure);
}

void clsCabExtraction::CountAsDone(const CabEntry& entry) {
    done_ += entry.size;
    file_.reset();
    ShowProgress();
}

void clsCabExtraction::ShowProgress() {
    shown_ = done_ + (begun_ ? size_ : 0);
    const double fraction =
        wanted_ == 0 ? 0 : static_cast<double>(shown_) / static_cast<double>(wanted_);
    iteration_.Raise([&](CabEvents& owner) { owner.OnProgress(std::min(fraction, 1.0)); });
}

FileStamp clsCabExtraction::StampOf(const CabEntry& entry) {
    constexpr DWORD kRestored = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;
    FileStamp stamp;
    stamp.attributes = entry.attributes & kRestored;
    stamp.modified = clock_.FileTimeOf(entry.dosDate, entry.dosTime, stamp.error);
    return stamp;
}

} // namespace vesk
