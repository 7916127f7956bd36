#include "console/clsTerminal.h"

#include "base/modWide.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <string>

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
    const std::wstring wide = Widen(text);
    DWORD written = 0;
    WriteConsoleW(GetStdHandle(standardHandle), wide.data(), static_cast<DWORD>(wide.size()),
                  &written, nullptr);
}

/// A line that is typed, without its end. As bytes it would come in the code page of DOS.
std::wstring ReadTyped(HANDLE console) {
    std::wstring line;
    std::array<wchar_t, 256> piece{};
    DWORD length = 0;
    while (!line.ends_with(L'\n') &&
           ReadConsoleW(console, piece.data(), static_cast<DWORD>(piece.size()), &length,
                        nullptr) != FALSE &&
           length != 0)
        line.append(piece.data(), length);
    line.erase(line.find_last_not_of(L"\r\n") + 1);
    return line;
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

void clsTerminal::PrintLines(const std::string& lines) {
    if (!OutputIsConsole()) {
        Put(STD_OUTPUT_HANDLE, stdout, lines);
        return;
    }
    // A console of Windows XP takes no text of any length.
    for (std::size_t begin = 0; begin < lines.size();) {
        const std::size_t end = std::min(lines.find('\n', begin), lines.size());
        PrintLine(lines.substr(begin, end - begin));
        begin = end + 1;
    }
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
    std::optional<std::string> answer;
    while (!answer) {
        Erase();
        PutError(question + " ");
        SetConsoleMode(input, mode & ~DWORD{ENABLE_ECHO_INPUT});
        answer = NarrowedExactly(ReadTyped(input));
        SetConsoleMode(input, mode);
        PutError("\n");
        if (!answer)
            Complain("the system's code page cannot hold what was typed");
    }
    return answer->empty() ? std::nullopt : answer;
}

bool clsTerminal::OutputIsWhole() {
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

} // namespace vesk
