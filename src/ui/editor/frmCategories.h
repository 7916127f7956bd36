#pragma once

#include "catalogue/clsCatalogueEditor.h"
#include "catalogue/clsCategoryEditor.h"
#include "ui/kit/clsDialog.h"
#include "ui/kit/clsLayout.h"
#include "ui/kit/clsReportList.h"

namespace vesk {

/// Edits the catalogue's categories: what the plug-in folder is divided into, and whether PE
/// Builder shows it.
class frmCategories : public clsDialog {
public:
    /// @param editor outlives the dialog; takes over the categories when OK is pressed
    explicit frmCategories(clsCatalogueEditor& editor);

    /// @return whether the user pressed OK
    bool Show(HWND owner);

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnCreated();
    void FollowSize();
    void OnCommand(int id, int notification);
    void OnField(int id);
    void OnSelected();
    void Do(int button);
    void Remove();
    void Accept();
    void ShowList();
    void ShowCurrent();
    void EnableWhatWorks() const;

    clsCatalogueEditor& editor_;
    clsCategoryEditor categories_;
    clsLayout layout_;
    clsReportList list_;
    bool showing_ = false; ///< Controls change because something is shown, not by the user.
};

} // namespace vesk
