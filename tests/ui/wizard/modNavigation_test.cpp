#include "base/Failure.h"
#include "ui/wizard/modListWalk.h"
#include "ui/wizard/modNavigation.h"

#include <doctest/doctest.h>

#include <array>

using namespace vesk;
using Kind = NavigationStep::Kind;

TEST_CASE("each button leads from each page to where the wizard's plan says") {
    const NavigationStep nothing;
    const NavigationStep help{Kind::ShowHelp};
    const NavigationStep close{Kind::Close};
    const auto to = [](Page page) { return NavigationStep{Kind::GoToPage, page}; };
    struct Row {
        Page page;
        std::array<NavigationStep, 4> steps; // Help, Back, Next, Cancel
    };
    for (const Row& row : {
             Row{Page::Welcome, {help, nothing, to(Page::BaseComponents), close}},
             Row{Page::BaseComponents, {help, to(Page::Welcome), to(Page::Plugins), close}},
             Row{Page::Plugins, {help, to(Page::BaseComponents), to(Page::Summary), close}},
             Row{Page::Summary,
                 {help, to(Page::Plugins), {Kind::StartBuild}, {Kind::ClearBusyAndClose}}},
             Row{Page::Build, {help, nothing, close, nothing}},
         }) {
        for (int button = 0; button < 4; ++button) {
            CAPTURE(static_cast<int>(row.page));
            CAPTURE(button);
            CHECK(NextStep(row.page, static_cast<WizardButton>(button)) ==
                  row.steps[static_cast<std::size_t>(button)]);
        }
    }
}

TEST_CASE("closing is refused while busy, asked for once, and free when finished") {
    struct Row {
        ClosingState state;
        ClosingAnswer answer;
    };
    for (const Row& row : {
             Row{{.finished = false, .busy = false, .exitConfirmed = false}, ClosingAnswer::Ask},
             Row{{.finished = false, .busy = false, .exitConfirmed = true}, ClosingAnswer::Close},
             Row{{.finished = false, .busy = true, .exitConfirmed = false}, ClosingAnswer::Refuse},
             Row{{.finished = false, .busy = true, .exitConfirmed = true}, ClosingAnswer::Refuse},
             Row{{.finished = true, .busy = true, .exitConfirmed = false}, ClosingAnswer::Close},
         })
        CHECK(AnswerClosing(row.state) == row.answer);
}

TEST_CASE("a walk over the list springs locked lines back and takes over the others") {
    struct Row {
        bool enabled, lock, ticked; // before
        bool enabledAfter, tickedAfter;
    };
    for (const Row& row : {
             Row{true, true, false, true, true},
             Row{false, true, true, false, false},
             Row{true, false, false, false, false},
             Row{false, false, true, true, true},
         }) {
        std::vector<CatalogueEntry> entries(1);
        entries[0].enabled = row.enabled;
        entries[0].lock = row.lock;
        bool ticked = row.ticked;
        WalkTicks(
            entries, 1,
            {[&](std::size_t) { return ticked; }, [&](std::size_t, bool tick) { ticked = tick; }});
        CHECK(entries[0].enabled == row.enabledAfter);
        CHECK(ticked == row.tickedAfter);
    }
}

TEST_CASE("a walk ends in an overflow behind 256 lines") {
    std::vector<CatalogueEntry> entries(300);
    const TickAccess allTicked{[](std::size_t) { return true; }, [](std::size_t, bool) {}};
    CHECK_NOTHROW(WalkTicks(entries, 256, allTicked));
    CHECK_FALSE(entries[256].enabled);
    CHECK_THROWS_WITH_AS(WalkTicks(entries, 257, allTicked), "Overflow", Failure);
    CHECK(entries[255].enabled);
}

TEST_CASE("the heading tells what became of a build, and why") {
    struct Row {
        BuildOutcome outcome;
        const char *title, *sentence;
    };
    for (const Row& row : {
             Row{{BuildEnding::Done, true, true, 0, ""},
                 "Build Complete",
                 "Everything is in the build tree, which is ready for PE Builder."},
             Row{{BuildEnding::Done, true, true, 1, ""},
                 "Built, with 1 Problem",
                 "Not everything is in the build tree: the list of problems shows what is "
                 "missing and why."},
             Row{{BuildEnding::Done, true, true, 12, ""}, "Built, with 12 Problems", nullptr},
             Row{{BuildEnding::Done, true, false, 2, "no such host"},
                 "Not Usable",
                 "PE Builder's archive was not installed: no such host."},
             Row{{BuildEnding::Aborted, false, false, 1, "answered No"},
                 "Not Built",
                 "No usable build tree was made: answered No."},
             Row{{BuildEnding::Done, false, false, 1, "no network connection"},
                 "Not Built",
                 "No usable build tree was made: no network connection."},
             Row{{BuildEnding::InstallFailed, false, false, 1, ""},
                 "Not Built",
                 "No usable build tree was made."},
         }) {
        const EndingHeading heading = HeadingOf(row.outcome);
        CHECK(heading.title == row.title);
        if (row.sentence)
            CHECK(heading.sentence == row.sentence);
    }
}
