#include "ui/wizard/modNavigation.h"

#include <array>
#include <cstddef>

namespace vesk {

namespace {

using Kind = NavigationStep::Kind;

constexpr NavigationStep kNothing{};
constexpr NavigationStep kHelp{Kind::ShowHelp};
constexpr NavigationStep kClose{Kind::Close};

constexpr NavigationStep GoTo(Page page) {
    return {Kind::GoToPage, page};
}

// Rows are pages, columns are the buttons Help, Back, Next, Cancel.
constexpr std::array<std::array<NavigationStep, 4>, 5> kSteps{{
    {kHelp, kNothing, GoTo(Page::BaseComponents), kClose},
    {kHelp, GoTo(Page::Welcome), GoTo(Page::Plugins), kClose},
    {kHelp, GoTo(Page::BaseComponents), GoTo(Page::Summary), kClose},
    {kHelp, GoTo(Page::Plugins), {Kind::StartBuild}, {Kind::ClearBusyAndClose}},
    {kHelp, kNothing, kClose, kNothing},
}};

} // namespace

NavigationStep NextStep(Page page, WizardButton button) {
    return kSteps.at(static_cast<std::size_t>(page)).at(static_cast<std::size_t>(button));
}

std::string PageHeading(Page page, const std::string& versionText) {
    switch (page) {
    case Page::Welcome:
        return "Welcome to Vesk Builder " + versionText;
    case Page::BaseComponents:
        return "Vesk Builder Base Components";
    case Page::Plugins:
        return "Vesk Builder Plugins";
    case Page::Summary:
        return "Vesk Builder Summary";
    case Page::Build:
        return "Copying Files";
    }
    return {};
}

std::string PageSubheading(Page page) {
    switch (page) {
    case Page::Welcome:
        return {};
    case Page::BaseComponents:
        return "Tick what the build starts from and name the folders to work with";
    case Page::Plugins:
        return "Tick the plug-ins to download and add to the build";
    case Page::Summary:
        return "Check the choices before anything is changed on this computer";
    case Page::Build:
        return "Please wait while the files are copied";
    }
    return {};
}

EndingHeading HeadingOf(const BuildOutcome& outcome) {
    const std::string why = outcome.reason.empty() ? "" : ": " + outcome.reason;
    switch (VerdictOf(outcome)) {
    case BuildVerdict::Whole:
        return {"Build Complete",
                "Everything is in the build tree, which is ready for PE Builder."};
    case BuildVerdict::WithProblems:
        return {"Built, with " + ProblemCount(outcome.problems),
                "Not everything is in the build tree: the list of problems shows what is missing "
                "and why."};
    case BuildVerdict::NotUsable:
        return {"Not Usable", "PE Builder's archive was not installed" + why + "."};
    case BuildVerdict::NotBuilt:
        break;
    }
    return {"Not Built", "No usable build tree was made" + why + "."};
}

std::string ProblemCount(std::size_t problems) {
    return std::to_string(problems) + (problems == 1 ? " Problem" : " Problems");
}

ClosingAnswer AnswerClosing(const ClosingState& state) {
    if (state.finished)
        return ClosingAnswer::Close;
    if (state.busy)
        return ClosingAnswer::Refuse;
    return state.exitConfirmed ? ClosingAnswer::Close : ClosingAnswer::Ask;
}

} // namespace vesk
