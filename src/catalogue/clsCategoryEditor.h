#pragma once

#include "catalogue/Catalogue.h"
#include "catalogue/clsSelectableRows.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace vesk {

/// A working copy of the catalogue's categories. It remembers under which key each one came, so
/// that plug-ins can follow a key that became another.
class clsCategoryEditor {
public:
    /// Derives a category's title from its folder and key.
    using CaptionOf = std::function<std::string(const std::string& value, const std::string& key)>;

    /// Begins with these, the first one selected.
    clsCategoryEditor(const std::vector<CategoryRecord>& categories, CaptionOf captionOf);

    /// What the copy holds now.
    [[nodiscard]] std::vector<CategoryRecord> Categories() const;

    /// How many there are, and one of them; the reference holds until the next change.
    [[nodiscard]] std::size_t Count() const { return rows_.All().size(); }
    [[nodiscard]] const CategoryRecord& At(std::size_t index) const {
        return rows_.All().at(index).record;
    }

    /// Index of the selected category, or kNoSelection.
    [[nodiscard]] int Selected() const { return rows_.Selected(); }

    /// The selected category; null for none.
    [[nodiscard]] const CategoryRecord* Current() const;

    /// Key under which the selected category came; empty for a new one and without a selection.
    [[nodiscard]] std::string OriginalKey() const;

    /// Selects a category; an index outside the list selects none.
    void Select(int index) { rows_.Select(index); }

    /// Appends an empty category and selects it.
    void Add() { rows_.Add(); }

    /// Removes the selected category and selects its neighbour, as long as there is one.
    void Remove();

    /// What the buttons would do something for.
    [[nodiscard]] bool CanMoveUp() const { return rows_.CanMoveUp(); }
    [[nodiscard]] bool CanMoveDown() const { return rows_.CanMoveDown(); }

    /// Exchanges the selected category with its neighbour, if there is one; it stays selected.
    void MoveUp() { rows_.MoveUp(); }
    void MoveDown() { rows_.MoveDown(); }

    /// Change the selected category, and with it the title.
    void SetKey(const std::string& key);
    void SetValue(const std::string& value);

    /// The keys that became others: from the one that came to the one that it is now.
    [[nodiscard]] std::map<std::string, std::string> Renames() const;

private:
    struct Row {
        CategoryRecord record;
        std::string original;
    };

    CaptionOf captionOf_;
    clsSelectableRows<Row> rows_;
};

} // namespace vesk
