#pragma once

#include "catalogue/clsCatalogueEditor.h"
#include "ui/editor/modEntryButtons.h"
#include "ui/kit/clsToolTips.h"

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

namespace vesk {

/// One frame of the catalogue editor's form: shows one list's selected entry in its controls and
/// takes over at once what the user changes in them.
class clsEntryFrame {
public:
    using Kind = EntryList;
    using Action = EntryAction;

    /// @param editor outlives the frame
    /// @param programPath where browsing for an archive begins
    clsEntryFrame(Kind kind, clsCatalogueEditor& editor, std::string programPath);

    /// Takes over the frame's controls of a dialog.
    void Attach(HWND dialog, const clsToolTips& tips);

    /// Shows the list and its selected entry again.
    void Show();

    /// Shows an entry and gives the keyboard to its name.
    void GoTo(std::size_t index);

    /// Does what one of the frame's buttons says. @return true when an entry was moved
    bool Do(Action action);

    /// Takes over a change in one of the frame's fields.
    /// @return false when the control is none of them
    bool HandleField(int id, int notification);

    /// Enables those of the frame's buttons that would do something.
    void EnableButtons() const;

    /// Place of the selected entry in its list, for people.
    [[nodiscard]] std::string PlaceText() const;

private:
    [[nodiscard]] clsEntryEditor& Entries() const;
    [[nodiscard]] HWND Text(int index) const;
    [[nodiscard]] HWND Combo(int index) const;
    void AddTips(const clsToolTips& tips) const;
    void ShowFields();
    void ShowCategories();
    void EnableFields(bool enabled) const;
    void ShowName() const;
    bool HandleText(int index);
    bool HandleCombo(int index);
    void Remove();
    void Browse();
    void TakeSha256(const std::string& path) const;
    [[nodiscard]] std::string BroughtHere(const std::string& path) const;
    void WidenSelector() const;

    Kind kind_;
    clsCatalogueEditor& editor_;
    std::string programPath_;
    HWND dialog_ = nullptr;
    std::vector<CategoryItem> categories_; ///< What the category combo offers.
    bool showing_ = false; ///< The fields change because an entry is shown, not by the user.
};

} // namespace vesk
