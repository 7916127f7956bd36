#include "catalogue/clsCatalogueEditor.h"

#include "base/modText.h"
#include "catalogue/modArchiveState.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace vesk {

std::string CategoryItem::Text() const {
    if (key.empty() && caption.empty())
        return "(none)";
    if (!isKnown)
        return key + " (no such category)";
    return caption.empty() ? key : key + " - " + caption;
}

namespace {

/// The file's sections count by their position: a list without any entry would leave its section
/// out, and the next one would be taken for it.
void KeepOne(std::vector<CatalogueEntry>& entries) {
    if (entries.empty())
        entries.emplace_back();
}

/// Readers get texts back without the blanks around them.
void TrimTexts(Catalogue& catalogue) {
    catalogue.installFolder = TrimBlanks(catalogue.installFolder);
    for (const EntryList list : {EntryList::BaseComponents, EntryList::Plugins}) {
        for (CatalogueEntry& entry : EntriesOf(catalogue, list)) {
            for (std::string* text : {&entry.name, &entry.zip, &entry.cat, &entry.url, &entry.crc})
                *text = TrimBlanks(*text);
        }
    }
}

} // namespace

clsCatalogueEditor::clsCatalogueEditor(Catalogue catalogue) : applied_(std::move(catalogue)) {
    KeepOne(applied_.baseComponents);
    KeepOne(applied_.plugins);
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
    std::ranges::transform(categories_, std::back_inserter(items),
                           [](const CategoryRecord& category) {
                               return CategoryItem{category.key, category.caption, true};
                           });
    const CatalogueEntry* plugin = plugins_.Current();
    if (plugin != nullptr &&
        std::ranges::find(items, plugin->cat, &CategoryItem::key) == items.end())
        items.push_back({plugin->cat, "", plugin->cat.empty()});
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
           base_.Entries() != applied_.baseComponents || plugins_.Entries() != applied_.plugins ||
           categories_ != applied_.categories || showCategories_ != applied_.showCategories;
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
    categories_ = applied_.categories;
    showCategories_ = applied_.showCategories;
}

void clsCatalogueEditor::TakeCategories(std::vector<CategoryRecord> categories, bool show,
                                        const std::map<std::string, std::string>& renames) {
    categories_ = std::move(categories);
    showCategories_ = show;
    plugins_.ChangeAll([&](CatalogueEntry& plugin) {
        const auto renamed = renames.find(plugin.cat);
        if (renamed != renames.end())
            plugin.cat = renamed->second;
    });
}

std::size_t clsCatalogueEditor::PluginsIn(const std::string& categoryKey) const {
    return static_cast<std::size_t>(
        std::ranges::count(plugins_.Entries(), categoryKey, &CatalogueEntry::cat));
}

void clsCatalogueEditor::Offer(const Catalogue& catalogue) {
    clsCatalogueEditor offered(catalogue);
    installFolder_ = std::move(offered.installFolder_);
    installPathFlag_ = std::move(offered.installPathFlag_);
    base_ = std::move(offered.base_);
    plugins_ = std::move(offered.plugins_);
    categories_ = std::move(offered.categories_);
    showCategories_ = offered.showCategories_;
}

Catalogue clsCatalogueEditor::Edited() const {
    Catalogue edited = applied_;
    edited.installFolder = installFolder_;
    edited.installPathFlag = installPathFlag_;
    edited.baseComponents = base_.Entries();
    edited.plugins = plugins_.Entries();
    edited.categories = categories_;
    edited.showCategories = showCategories_;
    TrimTexts(edited);
    return edited;
}

Catalogue BeginnersCatalogue(
    const std::function<std::string(const std::string& value, const std::string& key)>& captionOf) {
    Catalogue catalogue;
    catalogue.installFolder = "VeskLive";
    catalogue.installPathFlag = '0';
    catalogue.baseComponents = {{"PE Builder v3.1.10a", kFirstArchiveName, "", true, true, "", ""}};
    catalogue.showCategories = true;
    for (const auto& [key, value] :
         {std::pair("100", "100_system_tools"), std::pair("200", "200_applications"),
          std::pair("300", "300_drivers_and_network"), std::pair("500", "500_security")})
        catalogue.categories.push_back({value, key, captionOf(value, key)});
    return catalogue;
}

} // namespace vesk
