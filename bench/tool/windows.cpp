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

/// PROGRAM: starts it, and ends it; milliseconds until its window answers.
const Action kFirstWindow("first-window", [](const Arguments& arguments) {
    return Figures{Timed([&] { AnswerTime(WizardDriver(arguments.at(0)).Window()); })};
});

/// WIZARD TREE: lets the wizard build into the tree; the milliseconds of its window's longest
/// answer.
const Action kAnswers("answers", [](const Arguments& arguments) {
    const WizardDriver wizard(arguments.at(0));
    StartBuild(wizard, arguments.at(1));
    constexpr DWORD kPatience = 120'000;
    double longest = 0;
    const auto isDone = [&] {
        longest = std::max(longest, AnswerTime(wizard.Window()));
        if (const HWND question = FindWindowA("#32770", "Confirmation"))
            PostMessageA(question, WM_COMMAND, IDYES, 0);
        return wizard.IsEnabled(IDC_CMD_NEXT) && wizard.Text(IDC_CMD_NEXT) == "&Finish";
    };
    if (!test::WaitUntil(isDone, kPatience))
        throw std::runtime_error("the build did not end");
    return Figures{longest};
});

} // namespace

} // namespace vesk::bench
