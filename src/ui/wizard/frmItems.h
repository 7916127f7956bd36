#pragma once

#include "catalogue/Catalogue.h"
#include "catalogue/clsProgramArchives.h"
#include "ui/kit/clsDialog.h"
#include "ui/kit/clsSubclass.h"
#include "ui/kit/modWindow.h"

#include <string>

namespace vesk {

/// Shows all that the catalogue says of one entry, and whether its archive is there and good.
class frmItems : public clsDialog {
public:
    /// @param place of the entry, which is copied: it may go while the dialog is open
    /// @param archives outlives the dialog
    frmItems(const Catalogue& catalogue, const EntryPlace& place, clsProgramArchives& archives);

    /// Shows the dialog and returns when it is closed. @throws Failure
    void Show(HWND owner);

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnCreated();
    void ShowWholeName() const;

    EntryPlace place_;
    CatalogueEntry entry_;
    std::string category_;
    clsProgramArchives& archives_;
    GdiHandle nameFont_;
    clsSubclass name_;
    clsSubclass address_;
};

} // namespace vesk
