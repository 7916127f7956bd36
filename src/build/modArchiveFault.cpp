#include "build/modArchiveFault.h"

#include "archive/clsCRC.h"
#include "base/UniqueHandle.h"
#include "base/modSha256.h"
#include "base/modSystemError.h"
#include "base/modText.h"

#include <windows.h>

namespace vesk {

namespace {

/// Why a file has no checksum.
std::string WhyUnreadable(const std::string& path) {
    const FileHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
    if (!file)
        return AsReason(SystemErrorText(GetLastError()));
    LARGE_INTEGER size{};
    const bool isEmpty = GetFileSizeEx(file.Get(), &size) != FALSE && size.QuadPart == 0;
    return isEmpty ? "it is empty" : "it could not be read in full";
}

} // namespace

std::string ArchiveFault(const clsBuildContext& context, const std::string& path,
                         const CatalogueEntry& component) {
    const auto meanwhile = [&] { context.frontEnd.LetEventsRun(); };
    const std::string found = clsCRC().CalculateFile(path, meanwhile);
    if (found.empty()) // which matches nothing, an empty checksum in the catalogue included
        return WhyUnreadable(path);
    if (found != component.crc)
        return "its CRC-32 is " + found + " where the catalogue says " +
               (component.crc.empty() ? "nothing" : component.crc);
    return Sha256Fault(path, context.sha256.Expected(FileNameOf(path)), meanwhile);
}

} // namespace vesk
