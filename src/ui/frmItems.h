#pragma once

#include "catalogue/Catalogue.h"
#include "ui/clsDialog.h"
#include "ui/clsSubclass.h"
#include "ui/modWindow.h"

#include <string>

namespace vesk {

/// Shows all that the catalogue says of one entry, and whether its archive is there and good.
class frmItems : public clsDialog {
public:
    /// @param entry may go while the dialog is open: it is copied
    frmItems(const Catalogue& catalogue, const CatalogueEntry& entry, std::string programPath);

    void Show(HWND owner);

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnCreated();
    void ShowWholeName() const;
    [[nodiscard]] std::string ArchiveSentence() const;

    CatalogueEntry entry_;
    std::string category_;
    std::string programPath_;
    GdiHandle nameFont_;
    clsSubclass name_;
    clsSubclass address_;
};

} // namespace vesk
