#include "catalogue/clsCategoryEditor.h"

#include <algorithm>
#include <utility>

namespace vesk {

clsCategoryEditor::clsCategoryEditor(const std::vector<CategoryRecord>& categories,
                                     CaptionOf captionOf)
    : captionOf_(std::move(captionOf)) {
    std::vector<Row> rows;
    for (const CategoryRecord& category : categories)
        rows.push_back({category, category.key});
    rows_.Load(std::move(rows));
}

std::vector<CategoryRecord> clsCategoryEditor::Categories() const {
    std::vector<CategoryRecord> categories;
    categories.reserve(Count());
    for (const Row& row : rows_.All())
        categories.push_back(row.record);
    return categories;
}

const CategoryRecord* clsCategoryEditor::Current() const {
    const Row* row = rows_.Current();
    return row == nullptr ? nullptr : &row->record;
}

std::string clsCategoryEditor::OriginalKey() const {
    const Row* row = rows_.Current();
    return row == nullptr ? std::string() : row->original;
}

void clsCategoryEditor::Remove() {
    const int removed = Selected();
    rows_.Remove();
    Select(std::min(removed, static_cast<int>(Count()) - 1));
}

void clsCategoryEditor::SetKey(const std::string& key) {
    if (Row* row = rows_.Current())
        row->record = {row->record.value, key, captionOf_(row->record.value, key)};
}

void clsCategoryEditor::SetValue(const std::string& value) {
    if (Row* row = rows_.Current())
        row->record = {value, row->record.key, captionOf_(value, row->record.key)};
}

std::map<std::string, std::string> clsCategoryEditor::Renames() const {
    std::map<std::string, std::string> renames;
    for (const Row& row : rows_.All()) {
        if (!row.original.empty() && row.original != row.record.key)
            renames.try_emplace(row.original, row.record.key);
    }
    // Where two came under one key, plug-ins mean the one that still has it.
    for (const Row& row : rows_.All()) {
        if (row.original == row.record.key)
            renames.erase(row.original);
    }
    return renames;
}

} // namespace vesk
