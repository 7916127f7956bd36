#include "bench.h"

#include "base/UniqueHandle.h"
#include "ui/resources/ids.h"

#include <algorithm>
#include <functional>
#include <stdexcept>

namespace vesk::bench {

namespace {

constexpr const char* kTitle = "Vesk Builder";
constexpr double kPatience = 120'000; // milliseconds

double longestAnswer = 0; ///< Milliseconds, of all that was asked since it was last set to 0.

/// Sends a message to another program's window and notes how long the answer took.
DWORD_PTR Ask(HWND window, UINT message, WPARAM first = 0, LPARAM second = 0) {
    DWORD_PTR answer = 0;
    const double took = Timed(
        [&] { SendMessageTimeoutA(window, message, first, second, SMTO_NORMAL, 60'000, &answer); });
    longestAnswer = std::max(longestAnswer, took);
    return answer;
}

std::string TextOf(HWND window) {
    std::string text(256, '\0');
    text.resize(Ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data())));
    return text;
}

/// Calls back for each window that an enumeration finds, until one matches.
struct Search {
    std::function<bool(HWND)> matches;
    HWND found = nullptr;

    static BOOL CALLBACK Visit(HWND window, LPARAM search) {
        auto& self = *reinterpret_cast<Search*>(search);
        if (!self.matches(window))
            return TRUE;
        self.found = window;
        return FALSE;
    }
};

/// A program whose windows are worked from here.
class Program {
public:
    explicit Program(const std::string& path) {
        std::string commandLine = "\"" + path + "\"";
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started{};
        if (CreateProcessA(path.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                           nullptr, &startup, &started) == 0)
            throw std::runtime_error("cannot start " + path);
        CloseHandle(started.hThread);
        process_.Reset(started.hProcess);
        id_ = started.dwProcessId;
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        TerminateProcess(process_.Get(), 0);
        WaitForSingleObject(process_.Get(), 5000);
    }

    /// The first visible window that matches; null when there is none.
    [[nodiscard]] HWND Window(const std::function<bool(HWND)>& matches) const {
        Search search{[&](HWND window) {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            return process == id_ && IsWindowVisible(window) && matches(window);
        }};
        EnumWindows(Search::Visit, reinterpret_cast<LPARAM>(&search));
        return search.found;
    }

    /// Waits for its own window, not one that it asks something with.
    HWND AwaitMain() const {
        HWND window = nullptr;
        AwaitThat([&] {
            window = Window([](HWND found) {
                return GetWindow(found, GW_OWNER) == nullptr && TextOf(found) == kTitle;
            });
            return window != nullptr;
        });
        return window;
    }

    static void AwaitThat(const std::function<bool()>& condition) {
        const double start = Now();
        while (!condition()) {
            if (Now() - start > kPatience)
                throw std::runtime_error("a window did not come");
            Sleep(1);
        }
    }

private:
    UniqueHandle<::CloseHandle, HANDLE> process_;
    DWORD id_ = 0;
};

HWND Control(HWND window, int id) {
    Search search{[&](HWND child) { return GetDlgCtrlID(child) == id; }};
    EnumChildWindows(window, Search::Visit, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

void Next(HWND wizard) {
    const HWND button = Control(wizard, IDC_CMD_NEXT);
    Program::AwaitThat([&] { return IsWindowEnabled(button) != FALSE; });
    PostMessageA(button, BM_CLICK, 0, 0);
    Ask(wizard, WM_NULL);
    Sleep(50);
}

/// From the first page to the build.
void StartBuild(HWND wizard, const std::string& tree) {
    Next(wizard);
    SendMessageA(Control(wizard, IDC_TXT_PROG_PATH), WM_SETTEXT, 0,
                 reinterpret_cast<LPARAM>(tree.c_str()));
    for (int page = 0; page < 3; ++page)
        Next(wizard);
}

/// What the program asks is answered with yes.
void AnswerQuestions(const Program& program) {
    if (const HWND box = program.Window([](HWND found) { return TextOf(found) == "Confirmation"; }))
        PostMessageA(box, WM_COMMAND, IDYES, 0);
}

} // namespace

void FirstWindow(const Arguments& arguments) {
    Print({Timed([&] {
        const Program program(arguments.at(0));
        Ask(program.AwaitMain(), WM_NULL);
    })});
}

void Answers(const Arguments& arguments) {
    const Program program(arguments.at(0));
    const HWND wizard = program.AwaitMain();
    StartBuild(wizard, arguments.at(1));
    const HWND next = Control(wizard, IDC_CMD_NEXT);
    longestAnswer = 0;
    const double took = Timed([&] {
        Program::AwaitThat([&] {
            Ask(wizard, WM_NULL);
            AnswerQuestions(program);
            return IsWindowEnabled(next) != FALSE && TextOf(next) == "&Finish";
        });
    });
    Print({longestAnswer, took});
}

} // namespace vesk::bench
