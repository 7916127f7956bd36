#include "startup/modStartUp.h"

#include "base/CodePage.h"
#include "base/UniqueHandle.h"

#include <windows.h>

#include <doctest/doctest.h>

#include <array>

using namespace vesk;

TEST_CASE("the program refuses what it cannot run on, the system first") {
    const auto yes = [] { return true; };
    const auto no = [] { return false; };
    const auto administrator = [] { return std::optional(true); };
    const auto user = [] { return std::optional(false); };
    const auto unknown = [] { return std::optional<bool>(); };
    CHECK(CheckSystem({no, user}) == StartRefusal::NotWindowsNt);
    CHECK(CheckSystem({yes, user}) == StartRefusal::NotAdministrator);
    CHECK(CheckSystem({yes, unknown}) == StartRefusal::RightsUnknown);
    CHECK(CheckSystem({yes, administrator}) == StartRefusal::None);
    CHECK(RefusalText(StartRefusal::NotWindowsNt) ==
          "Sorry only NT systems supported, setup cannot continue...");
    CHECK(RefusalText(StartRefusal::NotAdministrator) ==
          "You need to be an Administrator to run this software");
    CHECK(RefusalText(StartRefusal::RightsUnknown) ==
          "Windows could not be asked whether you are an Administrator: its advpack.dll cannot be "
          "used, or it does not tell your groups");
    CHECK(CheckSystem(WindowsProbe()) == StartRefusal::None); // Wine takes everybody for one
}

TEST_CASE("an administrator whose rights were not raised is refused") {
    using Handle = UniqueHandle<::CloseHandle, HANDLE>;
    std::array<BYTE, SECURITY_MAX_SID_SIZE> group{};
    DWORD size = group.size();
    REQUIRE(CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, group.data(), &size));
    SID_AND_ATTRIBUTES administrators{group.data(), 0};
    Handle token;
    Handle limited;
    REQUIRE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, token.Out()));
    REQUIRE(CreateRestrictedToken(token.Get(), 0, 1, &administrators, 0, nullptr, 0, nullptr,
                                  limited.Out()));
    REQUIRE(ImpersonateLoggedOnUser(limited.Get()));
    const StartRefusal refusal = CheckSystem(WindowsProbe());
    RevertToSelf();
    CHECK(refusal == StartRefusal::NotAdministrator);
}

TEST_CASE("a process works in the system's code page, and shows no box for an empty drive") {
    const UINT before = SetErrorMode(0);
    SetCodePage({[](unsigned char) { return true; }, ""});
    PrepareProcess();
    CHECK((CurrentCodePage().isLeadByte == nullptr));
    CHECK(CurrentCodePage().poundAndNegation == "\xA3\xAC");
    CHECK(SetErrorMode(before) == UINT{SEM_FAILCRITICALERRORS});
}

TEST_CASE("the environment: cut, and empty when unset") {
    SetEnvironmentVariableA("VESK_TEST", std::string(400, 'x').c_str());
    CHECK(ReadEnvironmentVariable("VESK_TEST") == std::string(254, 'x'));
    SetEnvironmentVariableA("VESK_TEST", nullptr);
    CHECK(ReadEnvironmentVariable("VESK_TEST").empty());
    SetEnvironmentVariableA("Temp", "C:\\x y");
    CHECK(FindProgramPaths().temporaryPath == "C:\\x y\\");
    SetEnvironmentVariableA("Temp", nullptr);
    CHECK(FindProgramPaths().temporaryPath == "\\");
    CHECK(FindProgramPaths().programPath.ends_with("\\tests\\"));
}
