#pragma once

#include "ProgramFolder.h"
#include "WizardDriver.h"
#include "ui/resources/ids.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <string>
#include <vector>

/// What the tests of the wizard do again and again.
namespace vesk::test {

inline constexpr const char* kBaseHeading = "Vesk Builder Base Components";
inline constexpr const char* kPluginsHeading = "Vesk Builder Plugins";
inline constexpr const char* kSummaryHeading = "Vesk Builder Summary";

/// The wizard in a program folder of its own, on a page that is reached by Next. To be taken apart:
/// const auto& [program, wizard] = Opened(kBaseHeading);
struct Opened {
    explicit Opened(const std::string& heading = "") {
        for (const char* next : {kBaseHeading, kPluginsHeading}) {
            if (heading.empty() || wizard.Heading() == heading)
                return;
            wizard.GoTo(IDC_CMD_NEXT, next);
        }
    }

    const ProgramFolder program{};
    const WizardDriver wizard{program.Wizard()};
};

/// From the page of the base components to the summary.
inline void GoToSummaryFromBase(const WizardDriver& wizard) {
    wizard.GoTo(IDC_CMD_NEXT, kPluginsHeading);
    wizard.GoTo(IDC_CMD_NEXT, kSummaryHeading);
}

/// From the welcome page to the summary, with the test's own folder to build into.
inline void GoToSummary(const WizardDriver& wizard, const ProgramFolder& program) {
    wizard.GoTo(IDC_CMD_NEXT, kBaseHeading);
    wizard.SetText(IDC_TXT_PROG_PATH, program.Tree());
    GoToSummaryFromBase(wizard);
}

inline void AwaitFinish(const WizardDriver& wizard) {
    REQUIRE(WaitUntil(
        [&] { return wizard.Text(IDC_CMD_NEXT) == "&Finish" && wizard.IsEnabled(IDC_CMD_NEXT); }));
}

inline bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

inline bool Holds(const std::vector<std::string>& lines, const std::string& part) {
    return std::ranges::any_of(lines, [&](const std::string& line) { return Holds(line, part); });
}

inline std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

/// Polls until the clipboard holds the text.
inline bool AwaitClipboard(const std::string& wanted) {
    return WaitUntil(
        [&] {
            if (!OpenClipboard(nullptr))
                return false; // the program still has it
            const HANDLE data = GetClipboardData(CF_TEXT);
            const std::string text = data ? static_cast<const char*>(GlobalLock(data)) : "none";
            CloseClipboard();
            return text == wanted;
        },
        5000);
}

/// A message box of the wizard: what it says, and its answer.
inline std::string AnswerBox(const WizardDriver& wizard, const std::string& title, int answer) {
    const HWND box = wizard.AwaitDialog(title);
    const std::string text = WizardDriver::BoxText(box);
    WizardDriver::Answer(box, answer);
    return text;
}

} // namespace vesk::test
