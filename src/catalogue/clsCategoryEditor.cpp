#include "catalogue/clsCategoryEditor.h"

#include <algorithm>
#include <utility>

namespace vesk {

clsCategoryEditor::clsCategoryEditor(const std::vector<CategoryRecord>& categories,
                                     CaptionOf captionOf)
    : captionOf_(std::move(captionOf)) {
    for (const CategoryRecord& category : categories)
        rows_.push_back({category, category.key});
    Select(0);
}

std::vector<CategoryRecord> clsCategoryEditor::Categories() const {
    std::vector<CategoryRecord> categories;
    categories.reserve(rows_.size());
    for (const Row& row : rows_)
        categories.push_back(row.record);
    return categories;
}

clsCategoryEditor::Row* clsCategoryEditor::CurrentRow() {
    return selected_ == kNoSelection ? nullptr : &rows_[static_cast<std::size_t>(selected_)];
}

const CategoryRecord* clsCategoryEditor::Current() const {
    return selected_ == kNoSelection ? nullptr : &rows_[static_cast<std::size_t>(selected_)].record;
}

std::string clsCategoryEditor::OriginalKey() const {
    return selected_ == kNoSelection ? std::string()
                                     : rows_[static_cast<std::size_t>(selected_)].original;
}

void clsCategoryEditor::Select(int index) {
    const bool holds = index >= 0 && static_cast<std::size_t>(index) < rows_.size();
    selected_ = holds ? index : kNoSelection;
}

void clsCategoryEditor::Add() {
    rows_.emplace_back();
    selected_ = static_cast<int>(rows_.size()) - 1;
}

void clsCategoryEditor::Remove() {
    if (selected_ == kNoSelection)
        return;
    rows_.erase(rows_.begin() + selected_);
    Select(std::min(selected_, static_cast<int>(rows_.size()) - 1));
}

bool clsCategoryEditor::CanMoveDown() const {
    return selected_ != kNoSelection && static_cast<std::size_t>(selected_) + 1 < rows_.size();
}

void clsCategoryEditor::MoveTo(int index) {
    std::swap(rows_[static_cast<std::size_t>(selected_)], rows_[static_cast<std::size_t>(index)]);
    selected_ = index;
}

void clsCategoryEditor::MoveUp() {
    if (CanMoveUp())
        MoveTo(selected_ - 1);
}

void clsCategoryEditor::MoveDown() {
    if (CanMoveDown())
        MoveTo(selected_ + 1);
}

void clsCategoryEditor::SetKey(const std::string& key) {
    if (Row* row = CurrentRow())
        row->record = {row->record.value, key, captionOf_(row->record.value, key)};
}

void clsCategoryEditor::SetValue(const std::string& value) {
    if (Row* row = CurrentRow())
        row->record = {value, row->record.key, captionOf_(value, row->record.key)};
}

std::map<std::string, std::string> clsCategoryEditor::Renames() const {
    std::map<std::string, std::string> renames;
    for (const Row& row : rows_) {
        if (!row.original.empty() && row.original != row.record.key)
            renames.try_emplace(row.original, row.record.key);
    }
    // Where two came under one key, plug-ins mean the one that still has it.
    for (const Row& row : rows_) {
        if (row.original == row.record.key)
            renames.erase(row.original);
    }
    return renames;
}

} // namespace vesk
