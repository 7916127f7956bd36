#pragma once

#include "catalogue/Catalogue.h"
#include "catalogue/clsEntryEditor.h"

#include <functional>
#include <string>
#include <vector>

namespace vesk {

/// One item of the plug-in frame's category combo.
struct CategoryItem {
    std::string key;
    std::string caption;

    bool operator==(const CategoryItem&) const = default;

    /// Key and caption as one text for people; a key that no category has says so.
    [[nodiscard]] std::string Text() const;
};

/// The catalogue editor's working copy of a catalogue: every edit goes here at once, and nowhere
/// else until it is applied.
class clsCatalogueEditor {
public:
    explicit clsCatalogueEditor(Catalogue catalogue);

    [[nodiscard]] clsEntryEditor& Base() { return base_; }
    [[nodiscard]] clsEntryEditor& Plugins() { return plugins_; }

    [[nodiscard]] const std::string& InstallFolder() const { return installFolder_; }
    void SetInstallFolder(const std::string& folder) { installFolder_ = folder; }

    /// The two items of the installation path: the drive root and the Program Files folder.
    static std::vector<std::string> InstallPathItems(const std::string& programFilesFolder);

    /// 0 for the drive root, 1 for the Program Files folder.
    [[nodiscard]] int InstallPathItem() const;
    void SetInstallPathItem(int item);

    /// What the category combo offers: the categories in their order and, when the selected plug-in
    /// carries a key that none of them has, that key as it is, so that showing it cannot lose it.
    [[nodiscard]] std::vector<CategoryItem> CategoryItems() const;

    /// The combo's item that belongs to the selected plug-in; -1 without a selection.
    [[nodiscard]] int CategoryItemIndex() const;

    /// True when there is something to apply.
    [[nodiscard]] bool IsModified() const;

    /// The catalogue with all edits. Everything but the four edited parts, categories above all, is
    /// as it came.
    [[nodiscard]] Catalogue Edited() const;

    /// Hands the edited catalogue to `save`. Only when that returns the edits count as applied, and
    /// the first entries are selected. What it throws passes through.
    void Apply(const std::function<void(const Catalogue&)>& save);

    /// Drops all edits since the last Apply and selects the first entries.
    void Revert();

private:
    Catalogue applied_;
    std::string installFolder_;
    std::string installPathFlag_;
    clsEntryEditor base_;
    clsEntryEditor plugins_;
};

} // namespace vesk
