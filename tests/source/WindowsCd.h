#pragma once

#include "TestFolder.h"

namespace vesk::test {

/// Writes the files of a Windows CD. @param i386 its I386 folder @param withVersion whether
/// NTDLL.DLL is a copy of a library with a version, else it is a text
inline void WriteCd(const TestFolder& folder, const std::string& i386,
                    const std::string& product = "Windows XP Home",
                    const std::string& tag = "tags\\win51.sp2", bool withVersion = false) {
    folder.Write(i386 + "\\LAYOUT.INF", "[Strings]\r\nproductname = \"" + product +
                                            "\"\r\nspcdtagfilei = \"" + tag + "\"\r\n");
    folder.Write(i386 + "\\SETUPLDR.BIN", "x");
    const std::string library = folder.Write(i386 + "\\NTDLL.DLL", "x");
    std::array<char, MAX_PATH> system{};
    GetSystemDirectoryA(system.data(), static_cast<UINT>(system.size()));
    if (withVersion)
        CopyFileOver(std::string(system.data()) + "\\kernel32.dll", library);
}

} // namespace vesk::test
