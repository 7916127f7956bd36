#include "catalogue/clsEntryEditor.h"

#include "base/modText.h"

#include <algorithm>
#include <iterator>

namespace vesk {

std::vector<std::string> clsEntryEditor::Names() const {
    std::vector<std::string> names;
    std::ranges::transform(Entries(), std::back_inserter(names), &CatalogueEntry::name);
    return names;
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
    return entry != nullptr && (Entries().size() > 1 || *entry != CatalogueEntry());
}

void clsEntryEditor::ChangeAll(const std::function<void(CatalogueEntry&)>& change) {
    std::ranges::for_each(rows_.All(), change);
}

void clsEntryEditor::Remove() {
    const CatalogueEntry* entry = Current();
    if (entry == nullptr || entry->lock)
        return;
    const int removed = Selected();
    rows_.Remove();
    if (Entries().empty())
        rows_.Add();
    Select(removed - 1);
}

void clsEntryEditor::TakeArchive(std::string_view path, const std::string& crc) {
    SetField(&CatalogueEntry::zip, FileNameOf(path));
    SetField(&CatalogueEntry::crc, crc);
}

} // namespace vesk
