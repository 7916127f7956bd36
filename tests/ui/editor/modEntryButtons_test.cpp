#include "ui/editor/modEntryButtons.h"

#include "ui/resources/ids.h"

#include <doctest/doctest.h>

using namespace vesk;

TEST_CASE("each button has a control of its own, and no other control is taken for one") {
    for (const EntryButton& button : EntryButtons())
        CHECK(EntryButtonOf(EntryButtonId(button.list, button.action)) == &button);
    CHECK(EntryButtonOf(IDC_CMD_BUTTONS - 1) == nullptr);
    CHECK(EntryButtonOf(IDC_CMD_BUTTONS + static_cast<int>(EntryButtons().size())) == nullptr);
    CHECK(EntryButtonId(EntryList::Plugins, EntryAction::Browse) == IDC_CMD_BUTTONS + 5);
}
