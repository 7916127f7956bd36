#include "startup/modStartUp.h"

#include "base/modSystemLibrary.h"
#include "base/modText.h"
#include "base/modWide.h"

#include <windows.h>

#include <array>

namespace vesk {

namespace {

bool IsWindowsNt() {
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version;
    return GetVersionExA(&version) != FALSE && version.dwPlatformId == VER_PLATFORM_WIN32_NT;
}

/// Whether what this process does is done with the rights of the administrators' group. Since
/// Windows Vista an administrator's programs have that group, but only to be refused things for it,
/// until they are started as an administrator. Nothing when the system could not be asked.
std::optional<bool> HasAdministratorsRights() {
    std::array<BYTE, SECURITY_MAX_SID_SIZE> group{};
    DWORD size = group.size();
    BOOL isMember = FALSE;
    if (CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, group.data(), &size) == FALSE ||
        CheckTokenMembership(nullptr, group.data(), &isMember) == FALSE)
        return std::nullopt;
    return isMember != FALSE;
}

std::optional<bool> IsAdministrator() {
    using IsNtAdmin = BOOL(WINAPI*)(DWORD, DWORD*);
    const auto isNtAdmin = SystemFunction<IsNtAdmin>("advpack.dll", "IsNTAdmin");
    if (isNtAdmin == nullptr)
        return std::nullopt;
    if (isNtAdmin(0, nullptr) == FALSE)
        return false;
    return HasAdministratorsRights(); // the question before may count a group that only forbids
}

/// The runtime asks for memory of its own when the first exception is thrown, and ends the program
/// without a word if it gets none: too late for the exception that tells of missing memory.
void ReserveForExceptions() {
    try {
        throw 0;
    } catch (int) { // it was only to be thrown
    }
}

} // namespace

ProgramPaths FindProgramPaths() {
    std::array<char, MAX_PATH * 2> program{};
    GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size() - 1));
    return {WithTrailingBackslash(ParentOf(program.data())),
            ReadEnvironmentVariable("Temp") + "\\"};
}

std::optional<ProgramFolderFault> FindProgramFolderFault() {
    std::wstring program(32768, L'\0'); // the system's own limit
    program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    if (program.size() >= MAX_PATH)
        return ProgramFolderFault{"the path is longer than the 259 characters that can be used",
                                  "Move the program to a folder with a shorter path.", program};
    if (!NarrowedExactly(program))
        return ProgramFolderFault{"the name of the program's folder has characters that the "
                                  "system's code page lacks",
                                  "Move the program to a folder with a plain name.", program};
    return std::nullopt;
}

void PrepareProcess() {
    ReserveForExceptions();
    UseSystemCodePage();
    SetErrorMode(SEM_FAILCRITICALERRORS);
}

std::string ReadEnvironmentVariable(const std::string& name) {
    constexpr DWORD kLongest = 254;
    std::string value(32767, '\0'); // the system's own limit
    value.resize(
        GetEnvironmentVariableA(name.c_str(), value.data(), static_cast<DWORD>(value.size())));
    return value.substr(0, kLongest);
}

SystemProbe WindowsProbe() {
    return {IsWindowsNt, IsAdministrator};
}

StartRefusal CheckSystem(const SystemProbe& probe) {
    if (!probe.isWindowsNt())
        return StartRefusal::NotWindowsNt;
    const std::optional<bool> administrator = probe.isAdministrator();
    if (!administrator)
        return StartRefusal::RightsUnknown;
    return *administrator ? StartRefusal::None : StartRefusal::NotAdministrator;
}

std::string RefusalText(StartRefusal refusal) {
    switch (refusal) {
    case StartRefusal::NotWindowsNt:
        return "Sorry only NT systems supported, setup cannot continue...";
    case StartRefusal::NotAdministrator:
        return "You need to be an Administrator to run this software";
    case StartRefusal::RightsUnknown:
        return "Windows could not be asked whether you are an Administrator: its advpack.dll "
               "cannot be used, or it does not tell your groups";
    case StartRefusal::None:
        break;
    }
    return {};
}

} // namespace vesk
