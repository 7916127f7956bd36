#pragma once

#include "source/SourceState.h"
#include "source/clsDriveScan.h"
#include "ui/kit/clsDialog.h"
#include "ui/kit/clsLayout.h"
#include "ui/kit/clsReportList.h"

#include <optional>
#include <string>
#include <vector>

namespace vesk {

/// The dialog that searches all drives for Windows installation files and lets the user pick one.
class frmSelOS : public clsDialog, private DriveScanEvents {
public:
    /// @param source outlives the dialog; a find raises its valid flag even when nothing is picked
    explicit frmSelOS(SourceState& source);

    /// Shows the dialog. @return what the user picked
    std::optional<FoundSource> Choose(HWND owner);

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnFolder(const std::string& folder) override;
    void OnFound(const FoundSource& found) override;
    void OnEntryDone() override;
    void OnCreated();
    void OnCommand(int id);
    void Scan();
    void ShowScanning();
    void ShowResult();
    void Close(INT_PTR result);
    void StopOrStart();
    void Select();

    clsDriveScan scan_;
    clsLayout layout_;
    clsReportList list_;
    std::vector<FoundSource> found_;
    std::optional<FoundSource> chosen_;
    bool scanning_ = false;
    bool restart_ = false; ///< Asked for while the scan before was still running.
    bool closed_ = false;  ///< The dialog is about to go, or gone: nothing is shown any more.
};

} // namespace vesk
