#include "ui/wizard/modNavigation.h"

#include "ExpectedText.h"
#include "base/Failure.h"
#include "ui/wizard/modListWalk.h"

#include <array>

using namespace vesk;

TEST_CASE("where the buttons lead, what closing does, and how a build is said to have ended") {
    std::string text;
    constexpr std::array kSteps{"nothing", "help", "page ", "build", "close", "not busy, close"};
    for (int page = 0; page < 5; ++page) {
        const auto thisPage = static_cast<Page>(page);
        text += PageHeading(thisPage, "v1") + "; " + PageSubheading(thisPage) + ":";
        for (int button = 0; button < 4; ++button) {
            const NavigationStep step = NextStep(thisPage, static_cast<WizardButton>(button));
            text += std::string(" ") + kSteps.at(static_cast<std::size_t>(step.kind));
            if (step.kind == NavigationStep::Kind::GoToPage)
                text += std::to_string(static_cast<int>(step.page));
        }
        text += "\n";
    }
    for (const unsigned bits : {0u, 1u, 2u, 3u, 6u, 4u}) {
        const ClosingState state{
            .finished = (bits & 4) != 0, .busy = (bits & 2) != 0, .exitConfirmed = (bits & 1) != 0};
        constexpr std::array kAnswers{"closes", "refuses", "asks"};
        text += std::string(state.finished ? "finished " : "") + (state.busy ? "busy " : "") +
                (state.exitConfirmed ? "confirmed " : "") +
                kAnswers.at(static_cast<std::size_t>(AnswerClosing(state))) + "\n";
    }
    for (const BuildOutcome& outcome : {
             BuildOutcome{BuildEnding::Done, true, true, 0, ""},
             BuildOutcome{BuildEnding::Done, true, true, 1, ""},
             BuildOutcome{BuildEnding::Done, true, true, 12, ""},
             BuildOutcome{BuildEnding::Done, true, false, 2, "no such host"},
             BuildOutcome{BuildEnding::Aborted, false, false, 1, "answered No"},
             BuildOutcome{BuildEnding::Done, false, false, 1, "no network connection"},
             BuildOutcome{BuildEnding::InstallFailed, false, false, 1, ""},
         })
        text += HeadingOf(outcome).title + "; " + HeadingOf(outcome).sentence + "\n";
    test::CheckExpected("navigation", text);
}

TEST_CASE("a walk takes over the lines' ticks, springs locked ones back, ends behind 256 of them") {
    std::vector<CatalogueEntry> entries(300);
    std::vector<bool> ticked(300, true);
    std::vector<bool> wanted = ticked;
    for (unsigned bits = 0; bits < 8; ++bits) {
        entries[bits].enabled = (bits & 1) != 0;
        entries[bits].lock = (bits & 2) != 0;
        ticked[bits] = (bits & 4) != 0;
        wanted[bits] = entries[bits].lock ? entries[bits].enabled : ticked[bits];
    }
    const TickAccess ticks{[&](std::size_t line) { return ticked[line]; },
                           [&](std::size_t line, bool tick) { ticked[line] = tick; }};
    CHECK_NOTHROW(WalkTicks(entries, 256, ticks));
    for (std::size_t line = 0; line < 257; ++line) {
        CAPTURE(line);
        CHECK(entries[line].enabled == (line < 256 && wanted[line]));
    }
    CHECK(ticked == wanted);
    CHECK_THROWS_WITH_AS(WalkTicks(entries, 257, ticks), "Overflow", Failure);
}
