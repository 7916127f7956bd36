#include "../tests/archive/MemorySource.h"
#include "archive/modCabDirectory.h"
#include "archive/modCabImage.h"
#include "archive/modCabJudge.h"
#include "archive/modCabUnpack.h"
#include "base/Failure.h"

#include <cstdlib>

using namespace vesk;

namespace {

/// A member that ends must have all its bytes.
class Counter : public CabSink {
public:
    Counter(const CabDirectory& directory, std::span<const std::size_t> entries)
        : directory_(directory), entries_(entries) {}
    bool Begin(std::size_t place) override {
        size_ = directory_.entries[entries_[place]].size;
        return true;
    }
    void Write(std::span<const std::byte> bytes) override {
        if (bytes.size() > size_)
            std::abort();
        size_ -= bytes.size();
    }
    void End() override {
        if (size_ != 0)
            std::abort();
    }

private:
    const CabDirectory& directory_;
    std::span<const std::size_t> entries_;
    std::uint64_t size_ = 0;
};

} // namespace

/// A whole extraction without a disk; what the system's library would be given is judged again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::MemorySource source({reinterpret_cast<const char*>(data), size});
    ByteWindow cabinet(source);
    try {
        CabDirectory directory = ReadCabDirectory(cabinet);
        JudgeCabData(cabinet, directory, [] {});
        const std::vector<std::size_t> order = JudgeCabEntries(directory);
        for (std::size_t index = 0; index < directory.folders.size(); ++index) {
            std::vector<std::size_t> entries;
            for (const std::size_t entry : order)
                if (directory.entries[entry].folder == index &&
                    directory.entries[entry].size != 0 && directory.entries[entry].refusal.empty())
                    entries.push_back(entry);
            if (entries.empty())
                continue;
            const CabFolder& folder = directory.folders[index];
            Counter counter(directory, entries);
            if (IsUnpackedHere(folder))
                UnpackCabFolder(cabinet, directory, folder, entries, counter);
            const std::string image = CabFolderImage(directory, folder, entries);
            test::MemorySource imageSource(image);
            ByteWindow imageWindow(imageSource);
            if (ReadCabDirectory(imageWindow).entries.size() != entries.size())
                std::abort();
        }
    } catch (const Failure&) { // an ordinary answer
    }
    return 0;
}
