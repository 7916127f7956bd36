#include "archive/clsCabExtraction.h"

#include "archive/modCabFailure.h"
#include "archive/modCabJudge.h"
#include "archive/modCabName.h"
#include "archive/modCabReader.h"
#include "archive/modCabUnpack.h"
#include "base/Failure.h"
#include "base/Problem.h"
#include "base/modFile.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <algorithm>

namespace vesk {

namespace {

constexpr const char* kCannotUnpack = "its data is damaged";

/// Progress is shown when so many more bytes are done.
constexpr std::uint64_t kProgressStep = std::uint64_t{1} << 20;

} // namespace

void clsCabExtraction::Run() {
    iteration_.Run([this] {
        Prepare();
        ExtractAll();
    });
    if (first_)
        ThrowCabFailure(first_->number, first_->reason);
}

void clsCabExtraction::Prepare() {
    directory_ = iteration_.ReadDirectory();
    try {
        std::uint64_t judged = 0;
        JudgeCabData(iteration_.Cabinet(), directory_, [&] {
            if (++judged % (kProgressStep / kCabBlockSize) == 0)
                ShowProgress();
        });
        order_ = JudgeCabEntries(directory_);
        JudgeCabNames(directory_);
        const std::string& folder = iteration_.Destination();
        target_.emplace(folder.empty() ? ParentOf(AbsolutePath(iteration_.CabName())) : folder);
    } catch (const std::exception& failure) {
        ThrowCabFailure(CabNumberOf(failure), ReasonOf(failure));
    }
    for (const CabEntry& entry : directory_.entries)
        if (iteration_.Matches(entry))
            wanted_ += entry.size;
}

void clsCabExtraction::ExtractAll() {
    for (std::size_t start = 0; start < order_.size(); start += group_.size()) {
        const auto folder = [this](std::size_t at) {
            return directory_.entries[order_[at]].folder;
        };
        std::size_t end = start;
        while (end < order_.size() && folder(end) == folder(start))
            ++end;
        group_ = std::span(order_).subspan(start, end - start);
        ExtractGroup();
    }
}

void clsCabExtraction::ExtractGroup() {
    cursor_ = 0;
    readable_.clear();
    std::vector<std::size_t> entries;
    for (std::size_t place = 0; place < group_.size(); ++place)
        if (const CabEntry& entry = EntryAt(place);
            entry.refusal.empty() && entry.size != 0 && iteration_.Matches(entry)) {
            readable_.push_back(place);
            entries.push_back(group_[place]);
        }
    unread_ = {kCabDamaged, kCannotUnpack};
    if (!entries.empty()) {
        const CabFolder& folder = directory_.folders[EntryAt(0).folder];
        try {
            const auto unpack = IsUnpackedHere(folder) ? UnpackCabFolder : ReadCabFolder;
            unpack(iteration_.Cabinet(), directory_, folder, entries, *this);
        } catch (const std::exception& failure) {
            unread_ = {CabNumberOf(failure), ReasonOf(failure)};
        }
    }
    if (begun_) // the reader gave it up without a word
        End();
    HandleUnreadUpTo(group_.size());
}

/// Deals with the members that the reader passed by, or was not told of.
void clsCabExtraction::HandleUnreadUpTo(std::size_t end) {
    while (cursor_ < end)
        HandleUnread(cursor_++);
}

void clsCabExtraction::HandleUnread(std::size_t place) {
    CabEntry& entry = EntryAt(place);
    if (!iteration_.Matches(entry))
        return;
    if (IsWanted(entry)) {
        if (!entry.refusal.empty())
            Fail(entry, {entry.leftOut ? clsCabTarget::kLeftOut : kCabDamaged, entry.refusal});
        else if (IsCabFolderEntry(entry))
            CreateFolderOf(entry);
        else if (entry.size != 0)
            Fail(entry, unread_);
        else {
            Open(entry);
            Finish(entry);
        }
    }
    CountAsDone(entry);
}

void clsCabExtraction::CreateFolderOf(const CabEntry& entry) {
    const std::wstring path = target_->PathOf(*CabTargetName(entry));
    try {
        target_->EnsureFolder(path);
    } catch (const std::exception& failure) {
        Fail(entry, {CabNumberOf(failure), ReasonOf(failure)});
        return;
    }
    iteration_.Raise(
        [&](CabEvents& owner) { owner.OnAfterExtract(Narrowed(WithoutLongPrefix(path))); });
}

bool clsCabExtraction::Begin(std::size_t place) {
    if (place >= readable_.size() || readable_[place] < cursor_)
        return false;
    HandleUnreadUpTo(readable_[place]);
    const CabEntry& entry = EntryAt(cursor_++);
    if (!IsWanted(entry)) {
        CountAsDone(entry);
        return false;
    }
    Open(entry);
    begun_ = true;
    return true;
}

void clsCabExtraction::Write(std::span<const std::byte> bytes) {
    if (!begun_)
        return;
    if (!trouble_) {
        try {
            file_->Write(bytes);
        } catch (const std::exception& failure) {
            trouble_ = {CabNumberOf(failure), ReasonOf(failure)};
        }
    }
    if (done_ + file_->Size() >= shown_ + kProgressStep)
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
    bool cancel = false;
    iteration_.Raise(
        [&](CabEvents& owner) { owner.OnBeforeExtract(cancel, CabMemberName(entry)); });
    return !cancel;
}

void clsCabExtraction::Open(const CabEntry& entry) {
    trouble_.reset();
    file_.emplace(*target_, target_->PathOf(*CabTargetName(entry)), StampOf(entry), buffer_);
}

void clsCabExtraction::Finish(const CabEntry& entry) {
    if (!trouble_ && file_->Size() != entry.size)
        trouble_ = unread_;
    if (!trouble_) {
        try {
            file_->Keep();
        } catch (const std::exception& failure) {
            trouble_ = {CabNumberOf(failure), ReasonOf(failure)};
        }
    }
    const std::string path = Narrowed(WithoutLongPrefix(file_->Path()));
    file_.reset();
    if (trouble_)
        Fail(entry, *trouble_);
    else
        iteration_.Raise([&](CabEvents& owner) { owner.OnAfterExtract(path); });
}

void clsCabExtraction::Fail(const CabEntry& entry, const Trouble& trouble) {
    if (!first_ && trouble.number != clsCabTarget::kLeftOut)
        first_ = trouble;
    const MemberFailure failure{CabDisplayName(entry), "not written", AsReason(trouble.reason)};
    iteration_.Raise([&](CabEvents& owner) { owner.OnNotExtracted(failure); });
}

void clsCabExtraction::CountAsDone(const CabEntry& entry) {
    done_ += entry.size;
    file_.reset();
    ShowProgress();
}

void clsCabExtraction::ShowProgress() {
    shown_ = done_ + (file_ ? file_->Size() : 0);
    const double fraction =
        wanted_ == 0 ? 0 : static_cast<double>(shown_) / static_cast<double>(wanted_);
    iteration_.Raise([&](CabEvents& owner) { owner.OnProgress(std::min(fraction, 1.0)); });
}

MemberStamp clsCabExtraction::StampOf(const CabEntry& entry) {
    constexpr DWORD kRestored = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;
    return {entry.attributes & kRestored, clock_.FileTimeOf(entry.dosDate, entry.dosTime)};
}

} // namespace vesk
