#pragma once

#include "archive/CabSink.h"
#include "archive/clsCabIteration.h"
#include "archive/clsCabTarget.h"
#include "archive/clsDosClock.h"
#include "archive/clsMemberFile.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace vesk {

/// Extracts a cabinet's members: what clsCab::Extract promises.
class clsCabExtraction : private CabSink {
public:
    /// @throws Failure as clsCab's methods do
    clsCabExtraction(const clsCab& cab, std::weak_ptr<CabEvents*> owner)
        : iteration_(cab, std::move(owner)) {}

    /// @throws Failure, and what an event throws
    void Run();

private:
    /// Why a member is not extracted.
    struct Trouble {
        std::uint32_t number = 0; ///< clsCabTarget::kLeftOut for what is not raised at the end.
        std::string reason;
    };

    void Prepare();
    void ExtractAll();
    void ExtractGroup();
    void HandleUnreadUpTo(std::size_t end);
    void HandleUnread(std::size_t index);
    void CreateFolderOf(const CabEntry& entry);

    bool Begin(std::size_t place) override;
    void Write(std::span<const std::byte> bytes) override;
    void End() override;

    [[nodiscard]] CabEntry& EntryAt(std::size_t place) { return directory_.entries[group_[place]]; }
    bool IsWanted(const CabEntry& entry);
    void Open(const CabEntry& entry);
    void Finish(const CabEntry& entry);
    void Fail(const CabEntry& entry, const Trouble& trouble);
    void CountAsDone(const CabEntry& entry);
    void ShowProgress();
    MemberStamp StampOf(const CabEntry& entry);

    clsCabIteration iteration_;
    CabDirectory directory_;
    std::vector<std::size_t> order_;
    std::optional<clsCabTarget> target_;
    clsDosClock clock_;
    std::vector<std::byte> buffer_;

    std::span<const std::size_t> group_; ///< Members of the folder at hand, in order.
    std::vector<std::size_t> readable_;  ///< Places in the group that the reader is given.
    std::size_t cursor_ = 0;             ///< Place in the group of the next member to deal with.
    Trouble unread_; ///< Why readable members of the group were not reached by the reader.

    std::optional<clsMemberFile> file_; ///< The member being written.
    bool begun_ = false;                ///< The member before the cursor waits for its end.
    std::optional<Trouble> trouble_;    ///< Its failure in writing.

    std::optional<Trouble> first_; ///< What is raised at the end.
    std::uint64_t wanted_ = 0;     ///< Bytes of all members wanted.
    std::uint64_t done_ = 0;       ///< Bytes of members that are dealt with.
    std::uint64_t shown_ = 0;      ///< Bytes of which progress was shown.
};

} // namespace vesk
