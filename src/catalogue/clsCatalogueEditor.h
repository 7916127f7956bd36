#pragma once

#include "catalogue/Catalogue.h"
#include "catalogue/clsEntryEditor.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace vesk {

/// One item of the plug-in frame's category combo.
struct CategoryItem {
    std::string key;
    std::string caption;
    bool isKnown = true; ///< There is such a category, or none is meant.

    bool operator==(const CategoryItem&) const = default;

    /// Key and caption as one text for people; a key that no category has says so.
    [[nodiscard]] std::string Text() const;
};

/// The catalogue editor's working copy of a catalogue: every edit goes here at once, and nowhere
/// else until it is applied.
class clsCatalogueEditor {
public:
    /// Begins with a catalogue that counts as saved.
    explicit clsCatalogueEditor(Catalogue catalogue);

    /// The editors of the two lists.
    [[nodiscard]] clsEntryEditor& Base() { return base_; }
    [[nodiscard]] clsEntryEditor& Plugins() { return plugins_; }

    /// Name of the folder that a build makes below the installation path.
    [[nodiscard]] const std::string& InstallFolder() const { return installFolder_; }
    void SetInstallFolder(const std::string& folder) { installFolder_ = folder; }

    /// The two items of the installation path: the drive root and the Program Files folder.
    static std::vector<std::string> InstallPathItems(const std::string& programFilesFolder);

    /// 0 for the drive root, 1 for the Program Files folder.
    [[nodiscard]] int InstallPathItem() const;
    void SetInstallPathItem(int item);

    /// The categories, and whether PE Builder's list of plug-ins is divided by them.
    [[nodiscard]] const std::vector<CategoryRecord>& Categories() const { return categories_; }
    [[nodiscard]] bool ShowCategories() const { return showCategories_; }

    /// Takes over edited categories. Plug-ins follow a key that became another.
    /// @param renames from the old key to the new one
    void TakeCategories(std::vector<CategoryRecord> categories, bool show,
                        const std::map<std::string, std::string>& renames);

    /// How many plug-ins carry a category's key.
    [[nodiscard]] std::size_t PluginsIn(const std::string& categoryKey) const;

    /// Starts over with another catalogue, as one more edit.
    void Offer(const Catalogue& catalogue);

    /// What the category combo offers: the categories in their order and, when the selected plug-in
    /// carries a key that none of them has, that key as it is, so that showing it cannot lose it.
    [[nodiscard]] std::vector<CategoryItem> CategoryItems() const;

    /// The combo's item that belongs to the selected plug-in; -1 without a selection.
    [[nodiscard]] int CategoryItemIndex() const;

    /// True when there is something to apply.
    [[nodiscard]] bool IsModified() const;

    /// The catalogue with all edits, as its file gives it back: without blanks around texts.
    [[nodiscard]] Catalogue Edited() const;

    /// Hands the edited catalogue to `save`. Only when that returns the edits count as applied, and
    /// the first entries are selected. What it throws passes through.
    void Apply(const std::function<void(const Catalogue&)>& save);

    /// Discards all edits since the last Apply and selects the first entries.
    void Revert();

private:
    Catalogue applied_;
    std::string installFolder_;
    std::string installPathFlag_;
    clsEntryEditor base_;
    clsEntryEditor plugins_;
    std::vector<CategoryRecord> categories_;
    bool showCategories_ = false;
};

/// What a catalogue begins with that somebody makes from nothing: PE Builder, and the categories
/// that its own plug-ins need.
/// @param captionOf derives a category's title from its folder and key
Catalogue BeginnersCatalogue(
    const std::function<std::string(const std::string& value, const std::string& key)>& captionOf);

} // namespace vesk
