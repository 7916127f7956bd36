#pragma once

#include "archive/CabSink.h"
#include "archive/clsCRC.h"
#include "archive/clsCabIteration.h"
#include "archive/clsDosClock.h"
#include "archive/clsExtractionTarget.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

/// Extracts or tests a cabinet's members: what clsCab::Extract and clsCab::Test promise.
class clsCabExtraction : private CabSink {
public:
    enum class Mode { Extract, Test };

    /// @throws Failure as clsCab's methods do
    clsCabExtraction(const clsCab& cab, std::weak_ptr<CabEvents*> owner, Mode mode)
        : iteration_(cab, std::move(owner)), mode_(mode) {}

    /// @throws Failure, and what an event throws
    void Run();

private:
    /// Why a member is not extracted.
    struct Trouble {
        std::uint32_t number = 0; ///< None for what is not raised at the end.
        MemberFailure failure;    ///< Its member's name is filled in when it is reported.
    };

    void Prepare();
    void ExtractAll();
    void ExtractGroup(std::span<const std::size_t> group);
    void ExtractLeft();
    void HandleUnreadUpTo(std::size_t end);
    void HandleUnread(std::size_t place);
    void CreateFolderOf(const CabEntry& entry);
    void CopyTwin(const CabEntry& entry);
    void CopyKeptFile();

    bool Begin(std::size_t place) override;
    void Write(std::span<const std::byte> bytes) override;
    void End() override;

    [[nodiscard]] const CabEntry& EntryAt(std::size_t place) const {
        return directory_.entries[group_[place]];
    }
    [[nodiscard]] std::size_t NumberOf(const CabEntry& entry) const;
    [[nodiscard]] std::wstring PathOf(const CabEntry& entry) const;
    bool IsWanted(const CabEntry& entry);
    void Open(const CabEntry& entry);
    void Finish(const CabEntry& entry);
    void Keep(const CabEntry& entry);
    void Tell(const MemberFailure& failure);
    void Fail(const CabEntry& entry, Trouble trouble);
    void CountAsDone(const CabEntry& entry);
    void ShowProgress();
    FileStamp StampOf(const CabEntry& entry);

    clsCabIteration iteration_;
    const Mode mode_;
    CabDirectory directory_;
    std::vector<std::size_t> order_;
    clsExtractionTarget target_;
    clsDosClock clock_;

    std::span<const std::size_t> group_; ///< Members of the folder at hand, in order.
    bool isUnpacked_ = true;             ///< The reader is asked for them at all.
    std::vector<std::size_t> readable_;  ///< Places in the group that the reader is given.
    std::vector<std::size_t> left_;      ///< Members wanted whose twin was not kept, in order.
    bool isSecondTime_ = false;          ///< The folder is read once more, for those.
    std::size_t cursor_ = 0;             ///< Place in the group of the next member to deal with.
    Trouble unread_; ///< Why readable members of the group were not reached by the reader.

    std::optional<clsExtractionTarget::LargeFile> file_; ///< The member being written, if large.
    std::vector<std::byte> held_;                        ///< Its bytes, if it is not.
    std::uint64_t size_ = 0;                             ///< Bytes of it that came.
    clsCRC crc_;                                         ///< Of them.
    std::optional<std::size_t> kept_; ///< The last member that has a twin and was kept.
    std::uint32_t keptCrc_ = 0;
    bool isCopy_ = false;              ///< The member being written is its twin.
    std::vector<std::byte> keptBytes_; ///< Its bytes, if it is small.
    bool begun_ = false;               ///< The member before the cursor waits for its end.
    std::optional<Trouble> trouble_;   ///< Its failure in writing.

    std::optional<Trouble> first_; ///< What is raised at the end.
    std::uint64_t wanted_ = 0;     ///< Bytes of all members wanted.
    std::uint64_t done_ = 0;       ///< Bytes of members that are dealt with.
    std::uint64_t shown_ = 0;      ///< Bytes of which progress was shown.
};

} // namespace vesk
