#pragma once

#include "build/BuildFrontEnd.h"

#include <cstddef>
#include <string>

namespace vesk {

/// The wizard's pages in their order.
enum class Page { Welcome, BaseComponents, Plugins, Summary, Build };

/// The four command buttons; the numbers are their indices.
enum class WizardButton { Help = 0, Back = 1, Next = 2, Cancel = 3 };

/// What a button does on a page.
struct NavigationStep {
    enum class Kind { Nothing, ShowHelp, GoToPage, StartBuild, Close, ClearBusyAndClose };

    Kind kind = Kind::Nothing;
    Page page = Page::Welcome; ///< Where GoToPage leads.

    bool operator==(const NavigationStep&) const = default;
};

/// The step that a click on a button takes from a page.
NavigationStep NextStep(Page page, WizardButton button);

/// The heading of a page. @param versionText "v" and the version, for the welcome page
std::string PageHeading(Page page, const std::string& versionText);

/// The sentence below the heading; empty for the welcome page, which has none.
std::string PageSubheading(Page page);

/// "1 Problem", "3 Problems".
std::string ProblemCount(std::size_t problems);

/// Title and sentence that replace heading and subheading once a build run is over.
struct EndingHeading {
    std::string title;
    std::string sentence;
};

/// What came of a build: built whole, built with problems, not usable, or not built, with the
/// reason for the last two.
EndingHeading HeadingOf(const BuildOutcome& outcome);

/// What decides whether the wizard may close.
struct ClosingState {
    bool finished = false;      ///< The build run is over: closing is never questioned again.
    bool busy = false;          ///< The build run works.
    bool exitConfirmed = false; ///< The exit question was answered Yes.
};

/// What becomes of the wish to close; Ask: the exit question decides.
enum class ClosingAnswer { Close, Refuse, Ask };

/// Whether the wizard closes when the user or the system wants that.
ClosingAnswer AnswerClosing(const ClosingState& state);

} // namespace vesk
