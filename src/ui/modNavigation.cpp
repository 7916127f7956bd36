#include "ui/modNavigation.h"

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
    const std::string count = std::to_string(outcome.problems);
    switch (VerdictOf(outcome)) {
    case BuildVerdict::Whole:
        return {"Built Whole", "The build folder is ready for PE Builder"};
    case BuildVerdict::WithProblems:
        return {"Built, " + count + (outcome.problems == 1 ? " Problem" : " Problems"),
                "Not everything is in the build"};
    case BuildVerdict::NotUsable:
        return {"Not Usable", "PE Builder's archive was not installed: " + outcome.reason};
    case BuildVerdict::NotBuilt:
        break;
    }
    return {"Not Built", outcome.reason};
}

ClosingAnswer AnswerClosing(const ClosingState& state) {
    if (state.finished)
        return ClosingAnswer::Close;
    if (state.busy)
        return ClosingAnswer::Refuse;
    return state.exitConfirmed ? ClosingAnswer::Close : ClosingAnswer::Ask;
}

} // namespace vesk
