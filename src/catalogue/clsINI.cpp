#include "catalogue/clsINI.h"

#include "base/modSystemError.h"
#include "catalogue/modIniText.h"
#include "catalogue/modNameList.h"

#include <windows.h>

namespace vesk {

namespace {

// The sizes are part of what catalogues in use rely on: a longer section list is cut.
constexpr DWORD kValueSize = kLongestIniValue + 1;
constexpr DWORD kSectionListSize = kLongestSectionList + 1;
constexpr DWORD kKeyListSize = kLongestKeyList + 1;

/// The profile functions take a longer path for another file's.
bool Holds(const std::string& iniFile) {
    if (iniFile.size() < MAX_PATH)
        return true;
    SetLastError(ERROR_FILENAME_EXCED_RANGE);
    return false;
}

std::string ReadProfile(const char* section, const char* key, DWORD size,
                        const std::string& iniFile) {
    std::string buffer(size, ' ');
    if (!Holds(iniFile))
        return key != nullptr && section != nullptr ? "" : std::string(2, '\0');
    const DWORD length =
        GetPrivateProfileStringA(section, key, "", buffer.data(), size, iniFile.c_str());
    if (key != nullptr && section != nullptr)
        buffer.resize(length);
    return buffer;
}

} // namespace

std::string clsINI::GetStringValue(const std::string& section, const std::string& key) const {
    return ReadProfile(section.c_str(), key.c_str(), kValueSize, iniFileName);
}

bool clsINI::IsCut(const std::string& section, const std::string& key) const {
    constexpr DWORD kRoomForMore = kValueSize + 2;
    return GetStringValue(section, key).size() == kValueSize - 1 &&
           ReadProfile(section.c_str(), key.c_str(), kRoomForMore, iniFileName).size() >=
               kValueSize;
}

std::string clsINI::ReadStringValue(const std::string& section, const std::string& key) const {
    SetLastError(ERROR_SUCCESS);
    std::string value = GetStringValue(section, key);
    const DWORD error = GetLastError();
    const bool isAnswer = error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND ||
                          error == ERROR_PATH_NOT_FOUND || error == ERROR_MORE_DATA;
    if (value.empty() && !isAnswer)
        ThrowSystemError(error, "cannot read", iniFileName);
    return value;
}

int clsINI::GetIntValue(const std::string& section, const std::string& key) const {
    if (!Holds(iniFileName))
        return 0;
    return static_cast<int>(
        GetPrivateProfileIntA(section.c_str(), key.c_str(), 0, iniFileName.c_str()));
}

std::vector<std::string> clsINI::GetAllSections() const {
    return SplitNameList(ReadProfile(nullptr, nullptr, kSectionListSize, iniFileName));
}

std::vector<std::string> clsINI::GetAllKeys(const std::string& section) const {
    return SplitNameList(ReadProfile(section.c_str(), nullptr, kKeyListSize, iniFileName));
}

bool clsINI::SetValue(const std::string& section, const std::string& key,
                      const std::optional<std::string>& value) const {
    return Holds(iniFileName) && WritePrivateProfileStringA(section.c_str(), key.c_str(),
                                                            value ? value->c_str() : nullptr,
                                                            iniFileName.c_str()) != FALSE;
}

} // namespace vesk
