#pragma once

#include "base/Problem.h"
#include "ui/kit/clsListDialog.h"
#include "ui/kit/clsSubclass.h"

#include <vector>

namespace vesk {

/// Lists what a build did not do: place, what was not done, why. The line at hand is shown whole
/// below the list, and lines can be copied.
class frmProblems : public clsListDialog {
public:
    /// @param problems outlive the dialog; at least one
    explicit frmProblems(const std::vector<Problem>& problems) : problems_(problems) {}

    /// Shows the dialog and returns when it is closed. @throws Failure
    void Show(HWND owner);

private:
    void OnCreated() override;
    void OnCommand(int id, int notification) override;
    void OnListNotify(const NMHDR& header) override;
    void ShowWhole() const;

    const std::vector<Problem>& problems_;
    clsSubclass whole_;
};

} // namespace vesk
