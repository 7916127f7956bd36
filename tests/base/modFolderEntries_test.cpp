#include "base/modFolderEntries.h"

#include "TestFolder.h"

using namespace vesk;
using namespace vesk::test;

TEST_CASE("links are known by their tags") {
    constexpr std::uint32_t kTagged = FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_ARCHIVE;
    for (const std::uint32_t tag : {IO_REPARSE_TAG_MOUNT_POINT, IO_REPARSE_TAG_SYMLINK, //
                                    0xA000001DUL /* of Linux */, 0x20001234UL /* of others */,
                                    IO_REPARSE_TAG_DFS, 0x80000014UL /* NFS */, 0UL}) {
        CAPTURE(tag);
        CHECK(IsLink(kTagged, tag));
        CHECK(IsLink(kTagged | FILE_ATTRIBUTE_DIRECTORY, tag));
        CHECK_FALSE(IsLink(FILE_ATTRIBUTE_DIRECTORY, tag));
    }
    for (const std::uint32_t tag :
         {0x9000001AUL, 0x9000F01AUL /* OneDrive */, 0x80000013UL /* stored once */,
          0x80000017UL /* compressed */, 0x00001234UL})
        CHECK_FALSE(IsLink(kTagged | FILE_ATTRIBUTE_DIRECTORY, tag));
    const TestFolder folder;
    const std::wstring path = Widen(folder.Write("plain", ""));
    CHECK_FALSE(IsLink(path, FILE_ATTRIBUTE_ARCHIVE));
    CHECK(IsLink(path, kTagged)); // it has become another since
}
