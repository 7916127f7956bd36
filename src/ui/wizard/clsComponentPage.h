#pragma once

#include "catalogue/Catalogue.h"
#include "ui/kit/clsDialog.h"
#include "ui/kit/clsLayout.h"
#include "ui/wizard/clsComponentList.h"

#include <initializer_list>
#include <string>

namespace vesk {

/// A page of the wizard with a list of components: the list follows the page's size, and looks at
/// the archives anew whenever the page is shown.
class clsComponentPage : public clsDialog {
protected:
    /// @param listId, detailsId the list, and the button that opens its selected line
    clsComponentPage(clsComponentList::Kind kind, Catalogue& catalogue,
                     const std::string& programPath, int listId, int detailsId);

    /// Fills in the other controls; the list is there.
    virtual void OnCreated() = 0;

    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;

    /// Lets controls follow the page's size; for OnCreated. @param how values of clsLayout
    void Follow(unsigned how, std::initializer_list<int> ids) { layout_.Follow(how, ids); }

    /// Shows the list's selected entry in the item view, if one is selected.
    void OpenSelected() { list_.OpenSelected(); }

private:
    int listId_;
    int detailsId_;
    clsComponentList list_;
    clsLayout layout_;
};

} // namespace vesk
