#include "catalogue/clsEntryEditor.h"

#include "base/modText.h"

#include <algorithm>
#include <iterator>

namespace vesk {

void clsEntryEditor::Load(std::vector<CatalogueEntry> entries) {
    entries_ = std::move(entries);
    Select(0);
}

std::vector<std::string> clsEntryEditor::Names() const {
    std::vector<std::string> names;
    std::ranges::transform(entries_, std::back_inserter(names), &CatalogueEntry::name);
    return names;
}

const CatalogueEntry* clsEntryEditor::Current() const {
    return selected_ == kNoSelection ? nullptr : &entries_[static_cast<std::size_t>(selected_)];
}

void clsEntryEditor::Select(int index) {
    selected_ = Holds(index) ? index : kNoSelection;
}

void clsEntryEditor::Add() {
    entries_.emplace_back();
    selected_ = static_cast<int>(entries_.size()) - 1;
}

std::optional<EditorPrompt> clsEntryEditor::PromptForRemoval() const {
    const CatalogueEntry* entry = Current();
    if (entry == nullptr)
        return std::nullopt;
    if (entry->lock)
        return EditorPrompt{"Plugin is locked, unlock plugin\r\nto delete...", "Locked", false};
    return EditorPrompt{"Are you sure you want to remove this entry ?\r\n'" + entry->name + "'",
                        "Confirmation", true};
}

bool clsEntryEditor::CanRemove() const {
    const CatalogueEntry* entry = Current();
    return entry != nullptr && (entries_.size() > 1 || *entry != CatalogueEntry());
}

void clsEntryEditor::ChangeAll(const std::function<void(CatalogueEntry&)>& change) {
    std::ranges::for_each(entries_, change);
}

void clsEntryEditor::Remove() {
    const CatalogueEntry* entry = Current();
    if (entry == nullptr || entry->lock)
        return;
    entries_.erase(entries_.begin() + selected_);
    if (entries_.empty())
        entries_.emplace_back();
    Select(selected_ - 1);
}

bool clsEntryEditor::MoveTo(int index) {
    if (selected_ == kNoSelection || !Holds(index))
        return false;
    std::swap(entries_[static_cast<std::size_t>(selected_)],
              entries_[static_cast<std::size_t>(index)]);
    selected_ = index;
    return true;
}

void clsEntryEditor::TakeArchive(std::string_view path, const std::string& crc) {
    SetField(&CatalogueEntry::zip, FileNameOf(path));
    SetField(&CatalogueEntry::crc, crc);
}

} // namespace vesk
