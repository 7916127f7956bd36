#pragma once

#include "ui/kit/clsDialog.h"
#include "ui/kit/clsLayout.h"
#include "ui/kit/clsReportList.h"

#include <initializer_list>

namespace vesk {

/// A dialog around one list: it can be sized, its columns follow, and the keyboard begins in the
/// list.
class clsListDialog : public clsDialog {
protected:
    /// Fills in the controls, the list first. The dialog is centred afterwards.
    virtual void OnCreated() = 0;

    /// A control's command, as WM_COMMAND brings it.
    virtual void OnCommand(int id, int notification) = 0;

    /// A notification of the list that it does not answer itself.
    virtual void OnListNotify(const NMHDR& header) = 0;

    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;

    /// Lets controls follow the dialog's size; for OnCreated. @param how values of clsLayout
    void Follow(unsigned how, std::initializer_list<int> ids) { layout_.Follow(how, ids); }

    /// The list; OnCreated attaches it.
    [[nodiscard]] clsReportList& List() { return list_; }
    [[nodiscard]] const clsReportList& List() const { return list_; }

private:
    clsLayout layout_;
    clsReportList list_;
};

} // namespace vesk
