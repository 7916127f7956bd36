// Runs a program as a user without an administrator's rights would, and returns what it returns:
//   limited PROGRAM ARGUMENT...
#include "base/UniqueHandle.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

using Handle = vesk::UniqueHandle<::CloseHandle, HANDLE>;

/// A token as this process has it, in which the group of the administrators only forbids.
/// @return false where the system makes none
bool MakeLimited(Handle& limited) {
    std::array<BYTE, SECURITY_MAX_SID_SIZE> group{};
    DWORD size = SECURITY_MAX_SID_SIZE;
    SID_AND_ATTRIBUTES administrators{group.data(), 0};
    Handle token;
    return CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, group.data(), &size) != FALSE &&
           OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, token.Out()) != FALSE &&
           CreateRestrictedToken(token.Get(), 0, 1, &administrators, 0, nullptr, 0, nullptr,
                                 limited.Out()) != FALSE;
}

} // namespace

int main(int count, char** words) {
    Handle limited;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    std::string line = std::string("\"") + words[1] + '"';
    for (int i = 2; i < count; ++i)
        line.append(" ").append(words[i]);
    if (!MakeLimited(limited) ||
        CreateProcessAsUserA(limited.Get(), words[1], line.data(), nullptr, nullptr, FALSE, 0,
                             nullptr, nullptr, &startup, &started) == FALSE) {
        std::fprintf(stderr, "limited: error %lu\n", GetLastError());
        return 125;
    }
    const Handle thread(started.hThread);
    const Handle process(started.hProcess);
    DWORD code = 125;
    WaitForSingleObject(process.Get(), INFINITE);
    GetExitCodeProcess(process.Get(), &code);
    return static_cast<int>(code);
}
