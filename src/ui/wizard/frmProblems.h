#pragma once

#include "base/Problem.h"
#include "ui/kit/clsDialog.h"
#include "ui/kit/clsLayout.h"
#include "ui/kit/clsReportList.h"
#include "ui/kit/clsSubclass.h"

#include <vector>

namespace vesk {

/// Lists what a build did not do: place, what was not done, why. The line at hand is shown whole
/// below the list, and lines can be copied.
class frmProblems : public clsDialog {
public:
    /// @param problems outlive the dialog; at least one
    explicit frmProblems(const std::vector<Problem>& problems) : problems_(problems) {}

    void Show(HWND owner);

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnCreated();
    void ShowWhole() const;

    const std::vector<Problem>& problems_;
    clsLayout layout_;
    clsReportList list_;
    clsSubclass whole_;
};

} // namespace vesk
