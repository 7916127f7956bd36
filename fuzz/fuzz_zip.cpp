#include "archive/ArchiveContents.h"

/// A whole extraction without a disk: every member that is not refused is read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vesk::test::ZipContents({reinterpret_cast<const char*>(data), size});
    return 0;
}
