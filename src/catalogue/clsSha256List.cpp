#include "catalogue/clsSha256List.h"

#include "base/Failure.h"
#include "base/UniqueHandle.h"
#include "base/modFile.h"
#include "base/modSha256.h"
#include "base/modSystemError.h"
#include "base/modText.h"

#include <windows.h>

namespace vesk {

namespace {

/// Why a file that is there cannot be read; empty when it can, or there is none.
std::string WhyUnreadable(const std::string& path) {
    const FileHandle file(CreateFileA(path.c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                      nullptr));
    const DWORD error = file ? ERROR_SUCCESS : GetLastError();
    return error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND
               ? std::string()
               : AsReason(SystemErrorText(error));
}

} // namespace

clsSha256List::clsSha256List(const std::string& programPath) {
    constexpr const char* kUnread = "not read, so no archive's SHA-256 is checked";
    const std::string path = programPath + kSha256FileName;
    if (const std::string why = WhyUnreadable(path); !why.empty())
        problems_.push_back({path, kUnread, why});
    const std::string text = ReadWholeFile(path);
    if (IsUtf16(text)) {
        problems_.push_back({path, kUnread, kIsUtf16});
        return;
    }
    text_ = ParseSha256Text(text);
    for (const std::string& fault : text_.faults)
        problems_.push_back({path, "not read in full", fault});
}

std::string clsSha256List::Expected(const std::string& archiveName) const {
    const auto found = text_.digests.find(LowerCase(archiveName));
    return found == text_.digests.end() ? std::string() : found->second;
}

bool UpdateSha256List(const std::string& programPath, const std::string& archiveName) {
    const std::string path = programPath + kSha256FileName;
    if (!FileExists(path))
        return false;
    const std::string text = ReadWholeFile(path);
    if (const std::string why = IsUtf16(text) ? kIsUtf16 : WhyUnreadable(path); !why.empty())
        throw Failure(ERROR_READ_FAULT, "UpdateSha256List", "cannot read " + path + ": " + why,
                      why);
    WriteCompleteFile(path, WithSha256(text, archiveName, Sha256OfFile(programPath + archiveName)));
    return true;
}

} // namespace vesk
