#include "bench.h"

#include "ui/driver/WizardDriver.h"
#include "ui/resources/ids.h"

#include <algorithm>
#include <stdexcept>

namespace vesk::bench {

namespace {

using test::WizardDriver;

/// Milliseconds that another program's window took for an answer.
double AnswerTime(HWND window) {
    DWORD_PTR answer = 0;
    return Timed([&] { SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_NORMAL, 60'000, &answer); });
}

/// From the first page to the build.
void StartBuild(const WizardDriver& wizard, const std::string& tree) {
    for (int page = 0; page < 4; ++page) {
        wizard.Click(IDC_CMD_NEXT);
        AnswerTime(wizard.Window());
        Sleep(50);
        if (page == 0)
            wizard.SetText(IDC_TXT_PROG_PATH, tree);
    }
}

} // namespace

void FirstWindow(const Arguments& arguments) {
    Print({Timed([&] {
        const WizardDriver program(arguments.at(0));
        AnswerTime(program.Window());
    })});
}

void Answers(const Arguments& arguments) {
    const WizardDriver wizard(arguments.at(0));
    StartBuild(wizard, arguments.at(1));
    constexpr DWORD kPatience = 120'000;
    double longest = 0;
    bool done = false;
    const double took = Timed([&] {
        done = test::WaitUntil(
            [&] {
                longest = std::max(longest, AnswerTime(wizard.Window()));
                if (const HWND question = FindWindowA("#32770", "Confirmation"))
                    PostMessageA(question, WM_COMMAND, IDYES, 0);
                return wizard.IsEnabled(IDC_CMD_NEXT) && wizard.Text(IDC_CMD_NEXT) == "&Finish";
            },
            kPatience);
    });
    if (!done)
        throw std::runtime_error("the build did not end");
    Print({longest, took});
}

} // namespace vesk::bench
