#include <windows.h>

#include <cstdio>
#include <string_view>

namespace {

constexpr const char* kTitle = "Vesk canary";

/// Keeps the system's own processes alive for the tests: they end with the last program, and those
/// that show windows with the last window.
int Wait() {
    constexpr DWORD kLongerThanAllTests = 90 * 60 * 1000; // milliseconds
    CreateWindowA("STATIC", kTitle, WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    Sleep(kLongerThanAllTests);
    return 0;
}

/// @return 0 once another canary waits. A test must not be the first program to need the system's
/// processes: they would hold its output open for as long as they live.
int Awaited() {
    constexpr DWORD kPause = 50; // milliseconds
    for (int tries = 0; tries < 2400; ++tries, Sleep(kPause)) {
        if (FindWindowA("STATIC", kTitle) != nullptr)
            return 0;
    }
    return 1;
}

} // namespace

/// Says that it ran. With "wait" it stays for an hour and a half; with "awaited" it returns when
/// another one does so; with any other argument it returns 3.
int main(int argc, char** argv) {
    const std::string_view word = argc > 1 ? argv[1] : "";
    if (word == "wait")
        return Wait();
    if (word == "awaited")
        return Awaited();
    std::puts("canary sings");
    return word.empty() ? 0 : 3;
}
