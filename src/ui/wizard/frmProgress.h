#pragma once

#include "net/clsDownloadSession.h"
#include "ui/kit/clsDialog.h"

#include <memory>
#include <string>

namespace vesk {

/// The modal dialog through which a build downloads one archive.
class frmProgress : public clsDialog, private DownloadSessionEvents {
public:
    /// @param owner window that is disabled while the dialog is open
    explicit frmProgress(HWND owner) : owner_(owner) {}

    /// Downloads and checks one archive; returns when that is over or the user cancelled it.
    DownloadOutcome DownloadFile(const DownloadRequest& request);

private:
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnProgress(const DownloadProgress& progress) override;
    void OnFinished() override;
    void OnActivate();
    void OnStart();
    void Show(const DownloadProgress& progress);
    void ShowEnd();
    void LetUserAct();
    void cmdCancel_Click();
    void CloseWhenOver();

    HWND owner_;
    std::string destination_;
    std::unique_ptr<clsDownloadSession> session_; ///< While the dialog works.
    DWORD lastInput_ = 0;                         ///< When input was let through last.
    bool asking_ = false;                         ///< The cancel question is open.
};

} // namespace vesk
