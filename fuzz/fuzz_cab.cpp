#include "archive/ArchiveContents.h"

/// A whole extraction without a disk; what the system's library would be given is judged again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vesk::test::ReadCab({reinterpret_cast<const char*>(data), size});
    return 0;
}
