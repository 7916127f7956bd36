#pragma once

#include "catalogue/modCatalogueCheck.h"
#include "ui/kit/clsListDialog.h"
#include "ui/kit/clsSubclass.h"

#include <optional>
#include <string>
#include <vector>

namespace vesk {

/// Lists what would go wrong in a build, a line each, with the line at hand shown whole below; the
/// user can go from a line to its entry.
class frmCheck : public clsListDialog {
public:
    /// @param check what was found, of which the dialog keeps a copy
    explicit frmCheck(CatalogueCheck check);

    /// Shows the list, or says that it is empty. @return the entry that the user wants to see
    std::optional<EntryPlace> Show(HWND owner);

private:
    void OnCreated() override;
    void OnCommand(int id, int notification) override;
    void OnListNotify(const NMHDR& header) override;
    void ShowSelected() const;
    void GoTo();
    [[nodiscard]] const CatalogueProblem* Selected() const;

    std::vector<CatalogueProblem> problems_;
    std::string verdict_; ///< What is said when there are none.
    std::optional<EntryPlace> chosen_;
    clsSubclass whole_;
};

} // namespace vesk
