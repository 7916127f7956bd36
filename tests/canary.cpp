#include <windows.h>

#include <cstdio>
#include <string_view>

/// Says that it ran. With "wait" it stays for half an hour; with any other argument it returns 3.
int main(int argc, char** argv) {
    std::puts("canary sings");
    if (argc > 1 && std::string_view(argv[1]) == "wait") {
        constexpr DWORD kHalfAnHour = 30 * 60 * 1000;
        Sleep(kHalfAnHour);
        return 0;
    }
    return argc > 1 ? 3 : 0;
}
