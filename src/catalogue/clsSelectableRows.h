#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace vesk {

/// In place of a selected row's index.
inline constexpr int kNoSelection = -1;

/// A list of which one row is selected, or none.
template <class Row>
class clsSelectableRows {
public:
    /// Takes these, the first one selected.
    void Load(std::vector<Row> rows) {
        rows_ = std::move(rows);
        Select(0);
    }

    /// The rows; as changeable ones, their number and order stay.
    [[nodiscard]] const std::vector<Row>& All() const { return rows_; }
    [[nodiscard]] std::vector<Row>& All() { return rows_; }

    /// Index of the selected row, or kNoSelection.
    [[nodiscard]] int Selected() const { return selected_; }

    /// The selected row; null for none. It stays where it is until rows come, go or move.
    [[nodiscard]] const Row* Current() const { return Holds(selected_) ? &At(selected_) : nullptr; }
    [[nodiscard]] Row* Current() { return Holds(selected_) ? &At(selected_) : nullptr; }

    /// Selects a row; an index outside the list selects none.
    void Select(int index) { selected_ = Holds(index) ? index : kNoSelection; }

    /// Appends an empty row and selects it.
    void Add() {
        rows_.emplace_back();
        Select(static_cast<int>(rows_.size()) - 1);
    }

    /// Takes the selected row away, if there is one; none is selected then.
    void Remove() {
        if (selected_ != kNoSelection)
            rows_.erase(rows_.begin() + selected_);
        selected_ = kNoSelection;
    }

    /// Whether there is a selected row, and one before or behind it.
    [[nodiscard]] bool CanMoveUp() const { return selected_ > 0; }
    [[nodiscard]] bool CanMoveDown() const {
        return selected_ != kNoSelection && Holds(selected_ + 1);
    }

    /// Exchanges the selected row with its neighbour; it stays selected. Nothing happens at the
    /// list's end and without a selection. @return whether it moved
    bool MoveUp() { return CanMoveUp() && MoveTo(selected_ - 1); }
    bool MoveDown() { return CanMoveDown() && MoveTo(selected_ + 1); }

private:
    [[nodiscard]] bool Holds(int index) const {
        return index >= 0 && static_cast<std::size_t>(index) < rows_.size();
    }
    [[nodiscard]] const Row& At(int index) const { return rows_[static_cast<std::size_t>(index)]; }
    [[nodiscard]] Row& At(int index) { return rows_[static_cast<std::size_t>(index)]; }

    bool MoveTo(int index) {
        std::swap(At(selected_), At(index));
        selected_ = index;
        return true;
    }

    std::vector<Row> rows_;
    int selected_ = kNoSelection;
};

} // namespace vesk
