#pragma once

#include "catalogue/Catalogue.h"
#include "catalogue/clsSelectableRows.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace vesk {

/// A message box that the form is to show.
struct EditorPrompt {
    std::string text;
    std::string title;
    bool asksYesNo =
        false; ///< Yes and No with the question icon; else OK with the information icon.

    bool operator==(const EditorPrompt&) const = default;
};

/// What one frame of the catalogue editor does to its list, base components and plug-ins alike. The
/// form shows entries and selection again after each action.
class clsEntryEditor {
public:
    /// Takes a list to work on and selects its first entry.
    void Load(std::vector<CatalogueEntry> entries) { rows_.Load(std::move(entries)); }

    /// The list as it is now.
    [[nodiscard]] const std::vector<CatalogueEntry>& Entries() const { return rows_.All(); }

    /// What the entry selector offers: the names, in list order.
    [[nodiscard]] std::vector<std::string> Names() const;

    /// Index of the entry shown in the fields, or kNoSelection.
    [[nodiscard]] int Selected() const { return rows_.Selected(); }

    /// The entry shown in the fields; null without a selection.
    [[nodiscard]] const CatalogueEntry* Current() const { return rows_.Current(); }

    /// Selects an entry; an index outside the list selects none.
    void Select(int index) { rows_.Select(index); }

    /// Appends an empty entry and selects it.
    void Add() { rows_.Add(); }

    /// What to show before the selected entry goes: a refusal when it is locked, else the question
    /// whether to remove it. Nothing without a selection.
    [[nodiscard]] std::optional<EditorPrompt> PromptForRemoval() const;

    /// What the buttons would do something for. A locked entry can be chosen for removal: the
    /// refusal says why it stays.
    [[nodiscard]] bool CanRemove() const;
    [[nodiscard]] bool CanMoveUp() const { return rows_.CanMoveUp(); }
    [[nodiscard]] bool CanMoveDown() const { return rows_.CanMoveDown(); }

    /// Removes the selected entry, after a Yes, and selects the one before it; none after the
    /// first. A list that becomes empty keeps one empty entry. A locked entry stays.
    void Remove();

    /// Exchanges the selected entry with its neighbour; it stays selected. Nothing happens at the
    /// list's end and without a selection. @return whether it moved
    bool MoveUp() { return rows_.MoveUp(); }
    bool MoveDown() { return rows_.MoveDown(); }

    /// Takes a browsed archive: its file name without the folder, and its checksum.
    void TakeArchive(std::string_view path, const std::string& crc);

    /// Changes one field of the selected entry: SetField(&CatalogueEntry::url, text).
    template <class Value>
    void SetField(Value CatalogueEntry::*field, std::type_identity_t<Value> value) {
        if (CatalogueEntry* entry = rows_.Current())
            entry->*field = std::move(value);
    }

    /// Changes whatever entries `change` is for; the selection stays.
    void ChangeAll(const std::function<void(CatalogueEntry&)>& change);

private:
    clsSelectableRows<CatalogueEntry> rows_;
};

} // namespace vesk
