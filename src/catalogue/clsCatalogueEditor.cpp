#include "catalogue/clsCatalogueEditor.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace vesk {

std::string CategoryItem::Text() const {
    if (key.empty() && caption.empty())
        return "(none)";
    if (key == caption) // a category's own caption never holds its key
        return key + " (no such category)";
    return caption.empty() ? key : key + " - " + caption;
}

clsCatalogueEditor::clsCatalogueEditor(Catalogue catalogue) : applied_(std::move(catalogue)) {
    Revert();
}

std::vector<std::string>
clsCatalogueEditor::InstallPathItems(const std::string& programFilesFolder) {
    constexpr std::size_t kRootLength = 3; // "C:\"
    return {programFilesFolder.substr(0, kRootLength), programFilesFolder + "\\"};
}

int clsCatalogueEditor::InstallPathItem() const {
    return installPathFlag_ == "0" ? 0 : 1;
}

void clsCatalogueEditor::SetInstallPathItem(int item) {
    // Any flag but "0" means the second item: one that says so in its own way is left as it is.
    if (item != InstallPathItem())
        installPathFlag_ = item == 0 ? '0' : '1';
}

std::vector<CategoryItem> clsCatalogueEditor::CategoryItems() const {
    std::vector<CategoryItem> items;
    std::ranges::transform(applied_.categories, std::back_inserter(items),
                           [](const CategoryRecord& category) {
                               return CategoryItem{category.key, category.caption};
                           });
    const CatalogueEntry* plugin = plugins_.Current();
    if (plugin != nullptr &&
        std::ranges::find(items, plugin->cat, &CategoryItem::key) == items.end())
        items.push_back({plugin->cat, plugin->cat});
    return items;
}

int clsCatalogueEditor::CategoryItemIndex() const {
    const CatalogueEntry* plugin = plugins_.Current();
    if (plugin == nullptr)
        return -1;
    const std::vector<CategoryItem> items = CategoryItems();
    return static_cast<int>(std::ranges::find(items, plugin->cat, &CategoryItem::key) -
                            items.begin());
}

bool clsCatalogueEditor::IsModified() const {
    return installFolder_ != applied_.installFolder ||
           installPathFlag_ != applied_.installPathFlag ||
           base_.Entries() != applied_.baseComponents || plugins_.Entries() != applied_.plugins;
}

void clsCatalogueEditor::Apply(const std::function<void(const Catalogue&)>& save) {
    Catalogue edited = Edited();
    save(edited);
    applied_ = std::move(edited);
    Revert();
}

void clsCatalogueEditor::Revert() {
    installFolder_ = applied_.installFolder;
    installPathFlag_ = applied_.installPathFlag;
    base_.Load(applied_.baseComponents);
    plugins_.Load(applied_.plugins);
}

Catalogue clsCatalogueEditor::Edited() const {
    Catalogue edited = applied_;
    edited.installFolder = installFolder_;
    edited.installPathFlag = installPathFlag_;
    edited.baseComponents = base_.Entries();
    edited.plugins = plugins_.Entries();
    return edited;
}

} // namespace vesk
