#pragma once

#include "catalogue/clsCatalogueEditor.h"
#include "catalogue/clsCategoryEditor.h"
#include "ui/kit/clsListDialog.h"

namespace vesk {

/// Edits the catalogue's categories: what the plug-in folder is divided into, and whether PE
/// Builder shows it.
class frmCategories : public clsListDialog {
public:
    /// @param editor outlives the dialog; takes over the categories when OK is pressed
    explicit frmCategories(clsCatalogueEditor& editor);

    /// @return whether the user pressed OK
    bool Show(HWND owner);

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnCreated() override;
    void OnCommand(int id, int notification) override;
    void OnListNotify(const NMHDR& header) override;
    void FollowSize();
    void OnField(int id);
    void OnSelected();
    void Do(int button);
    void Remove();
    void Accept();
    [[nodiscard]] bool ShowsCategories() const;
    [[nodiscard]] bool IsModified() const;
    void ShowList();
    void ShowCurrent();
    void EnableWhatWorks() const;

    clsCatalogueEditor& editor_;
    clsCategoryEditor categories_;
    bool showing_ = false; ///< Controls change because something is shown, not by the user.
};

} // namespace vesk
