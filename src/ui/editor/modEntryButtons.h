#pragma once

#include "catalogue/Catalogue.h"

#include <span>

/// The buttons of the catalogue editor's two frames of fields. They are one array of controls.
namespace vesk {

/// What a button does with the entry that its frame shows, or with the list.
enum class EntryAction { Add, Remove, Browse, MoveUp, MoveDown };

/// One button: what it does, and in which frame.
struct EntryButton {
    EntryList list;
    EntryAction action;
};

/// All of them, in the order of the array.
std::span<const EntryButton> EntryButtons();

/// The button of a control; null when the control is none of them.
const EntryButton* EntryButtonOf(int controlId);

/// Number of a button's control.
int EntryButtonId(EntryList list, EntryAction action);

} // namespace vesk
