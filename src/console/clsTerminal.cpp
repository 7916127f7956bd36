#include "console/clsTerminal.h"

#include <windows.h>

#include <cstddef>
#include <cstdio>
#include <iostream>
#include <vector>

namespace vesk {

namespace {

bool IsConsole(DWORD standardHandle) {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(standardHandle), &mode) != FALSE;
}

/// Asked once and not for every line of a log: it is a question to the console's own process.
bool OutputIsConsole() {
    static const bool is = IsConsole(STD_OUTPUT_HANDLE);
    return is;
}

/// A console takes UTF-16; a file or pipe gets the ANSI bytes that the rest of the program works
/// on.
void Put(DWORD standardHandle, std::FILE* stream, const std::string& text) {
    if (standardHandle == STD_OUTPUT_HANDLE ? !OutputIsConsole() : !IsConsole(standardHandle)) {
        std::fwrite(text.data(), 1, text.size(), stream); // NUL bytes are printed like any other
        std::fflush(stream);
        return;
    }
    std::vector<WCHAR> wide(text.size() + 1);
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                           wide.data(), static_cast<int>(wide.size()));
    DWORD written = 0;
    WriteConsoleW(GetStdHandle(standardHandle), wide.data(), static_cast<DWORD>(length), &written,
                  nullptr);
}

std::size_t ConsoleWidth() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    constexpr std::size_t kUsualWidth = 80;
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info) == FALSE ||
        info.dwSize.X < 2)
        return kUsualWidth;
    return static_cast<std::size_t>(info.dwSize.X);
}

void PutError(const std::string& text) {
    Put(STD_ERROR_HANDLE, stderr, text);
}

} // namespace

clsTerminal::clsTerminal(bool quiet) : draws_(!quiet && IsConsole(STD_ERROR_HANDLE)) {}

clsTerminal::~clsTerminal() {
    Erase();
}

void clsTerminal::PrintLine(const std::string& line) {
    const std::string drawn = drawn_;
    Erase();
    Put(STD_OUTPUT_HANDLE, stdout, OutputIsConsole() ? line + "\r\n" : line + "\n");
    Draw(drawn);
}

void clsTerminal::Draw(const std::string& text) {
    if (!draws_ || text == drawn_)
        return;
    Erase();
    drawn_ = text.substr(0, ConsoleWidth() - 1);
    PutError(drawn_);
}

void clsTerminal::Erase() {
    if (drawn_.empty())
        return;
    PutError("\r" + std::string(drawn_.size(), ' ') + "\r");
    drawn_.clear();
}

void clsTerminal::Complain(const std::string& sentence) {
    Erase();
    PutError("veskbuild: " + sentence + "\n");
}

bool clsTerminal::Ask(const std::string& question) {
    if (!IsConsole(STD_INPUT_HANDLE))
        return false;
    Erase();
    PutError(question + " [y/N] ");
    std::string answer;
    std::getline(std::cin, answer);
    return !answer.empty() && (answer[0] == 'y' || answer[0] == 'Y');
}

std::optional<std::string> clsTerminal::AskSecret(const std::string& question) {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(input, &mode) == FALSE)
        return std::nullopt;
    Erase();
    PutError(question + " ");
    SetConsoleMode(input, mode & ~DWORD{ENABLE_ECHO_INPUT});
    std::string answer;
    std::getline(std::cin, answer);
    SetConsoleMode(input, mode);
    PutError("\n");
    while (answer.ends_with('\r'))
        answer.pop_back();
    return answer.empty() ? std::nullopt : std::optional(answer);
}

bool clsTerminal::OutputIsWhole() {
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

} // namespace vesk
