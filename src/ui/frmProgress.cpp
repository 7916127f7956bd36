#include "ui/frmProgress.h"

#include "base/modText.h"
#include "net/modDownloadText.h"
#include "net/modLocaleNumber.h"
#include "ui/modWindow.h"
#include "ui/modWizardText.h"
#include "ui/resources/ids.h"

#include <commctrl.h>

namespace vesk {

namespace {

constexpr UINT kStartMessage = WM_APP;
constexpr UINT kFinishedMessage = WM_APP + 1;

} // namespace

DownloadOutcome frmProgress::DownloadFile(const DownloadRequest& request) {
    destination_ = request.destination;
    DownloadSessionEvents& events = *this;
    session_ = std::make_unique<clsDownloadSession>(events, request);
    RunModal(owner_, IDD_PROGRESS);
    RunPendingEvents(); // the dialog goes before the file is read
    DownloadOutcome outcome = session_->Outcome(RunPendingEvents);
    session_.reset();
    return outcome;
}

void frmProgress::OnActivate() {
    SetTopMost(Window(), true);
    SetText(Window(), kDownloadCaption);
    SetText(Control(IDC_LBL_FILE_NAME), FileNameOf(destination_));
    SendMessageA(Control(IDC_SHP_PROGRESS), PBM_SETRANGE32, 0, static_cast<LPARAM>(kFullBarWidth));
    CenterWindow(Window());
    // Not at once: a download that fails at its start would close a dialog that is not yet open.
    PostMessageA(Window(), kStartMessage, 0, 0);
}

void frmProgress::OnProgress(const DownloadProgress& progress) {
    if (progress.fileSize == 0)
        return;
    SetText(Window(), DownloadCaption(progress.received, progress.fileSize, GroupDigits));
    const std::string percent = PercentText(progress.received, progress.fileSize);
    SetText(Control(IDC_LBL_RATE), percent);
    SendMessageA(Control(IDC_SHP_PROGRESS), PBM_SETPOS, static_cast<WPARAM>(BarWidth(percent)), 0);
    SetText(Control(IDC_LBL_DETAIL), RateText(progress.bytesPerSecond, progress.secondsLeft));
}

void frmProgress::OnFinished() {
    PostMessageA(Window(), kFinishedMessage, 0, 0);
}

void frmProgress::cmdCancel_Click() {
    if (asking_ || session_->Finished())
        return;
    asking_ = true;
    const int answer = ShowMessage(Window(), "Are you sure you want to cancel download",
                                   "Confirmation", MB_YESNO | MB_ICONQUESTION);
    asking_ = false;
    // A download that ended meanwhile waits for the answer, which counts whatever became of it.
    if (answer == IDYES)
        session_->Cancel();
    if (session_->Finished())
        EndDialog(Window(), 0);
}

INT_PTR frmProgress::Handle(UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        OnActivate();
        return TRUE;
    case kStartMessage:
        session_->Start();
        return TRUE;
    case kFinishedMessage:
        if (!asking_)
            EndDialog(Window(), 0);
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wparam) == IDCANCEL)
            cmdCancel_Click();
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace vesk
