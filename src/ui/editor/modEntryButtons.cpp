#include "ui/editor/modEntryButtons.h"

#include "ui/resources/ids.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace vesk {

namespace {

constexpr auto kBase = EntryList::BaseComponents;
constexpr auto kPlugin = EntryList::Plugins;
constexpr std::array<EntryButton, 10> kButtons{{{kBase, EntryAction::Add},
                                                {kBase, EntryAction::Remove},
                                                {kBase, EntryAction::Browse},
                                                {kPlugin, EntryAction::Add},
                                                {kPlugin, EntryAction::Remove},
                                                {kPlugin, EntryAction::Browse},
                                                {kBase, EntryAction::MoveUp},
                                                {kBase, EntryAction::MoveDown},
                                                {kPlugin, EntryAction::MoveUp},
                                                {kPlugin, EntryAction::MoveDown}}};

} // namespace

std::span<const EntryButton> EntryButtons() {
    return kButtons;
}

const EntryButton* EntryButtonOf(int controlId) {
    const auto index = static_cast<std::size_t>(controlId - IDC_CMD_BUTTONS);
    return index < kButtons.size() ? &kButtons.at(index) : nullptr;
}

int EntryButtonId(EntryList list, EntryAction action) {
    const auto* const found = std::ranges::find_if(kButtons, [&](const EntryButton& button) {
        return button.list == list && button.action == action;
    });
    return IDC_CMD_BUTTONS + static_cast<int>(found - kButtons.begin());
}

} // namespace vesk
