#include "ui/wizard/frmProgress.h"

#include "base/ScopeFlag.h"
#include "base/modText.h"
#include "net/modDownloadText.h"
#include "net/modLocaleNumber.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"
#include "ui/wizard/modWizardText.h"

#include <commctrl.h>

namespace vesk {

namespace {

constexpr UINT kStartMessage = WM_APP;
constexpr UINT kFinishedMessage = WM_APP + 1;

/// Posted by the Cancel button: its question is not to run inside an event of the download.
constexpr UINT kCancelMessage = WM_APP + 2;

/// The rate falls and the seconds without data count also when nothing comes.
constexpr UINT_PTR kTimer = 1;
constexpr UINT kTick = 500; // milliseconds

/// Lets keys, clicks and painting through. The system hands out posted messages first, and a fast
/// server keeps those coming.
void RunInputAndPaint() {
    constexpr int kMost = 50; // a window that does not paint itself would ask for ever
    MSG message{};
    for (int i = 0; i < kMost && PeekMessageW(&message, nullptr, 0, 0,
                                              PM_REMOVE | PM_QS_INPUT | PM_QS_PAINT) != 0;
         ++i)
        DispatchForDialogs(message);
}

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

void frmProgress::OnStart() {
    SetTimer(Window(), kTimer, kTick, nullptr);
    session_->Start();
    session_->OnTime();
}

void frmProgress::LetUserAct() {
    constexpr DWORD kDistance = 50; // milliseconds
    if (GetTickCount() - lastInput_ < kDistance)
        return;
    lastInput_ = GetTickCount();
    RunInputAndPaint();
}

void frmProgress::OnProgress(const DownloadProgress& progress) {
    Show(progress);
    LetUserAct();
}

void frmProgress::Show(const DownloadProgress& progress) {
    SetText(Control(IDC_LBL_DETAIL), DownloadDetail(progress));
    if (!progress.lastFailure.empty())
        SetText(Control(IDC_LBL_REASON), "Another address failed: " + progress.lastFailure);
    if (progress.fileSize == 0)
        return;
    SetText(Window(), DownloadCaption(progress.received, progress.fileSize, GroupDigits));
    const std::string percent = PercentText(progress.received, progress.fileSize);
    SetText(Control(IDC_LBL_RATE), percent);
    SendMessageA(Control(IDC_SHP_PROGRESS), PBM_SETPOS, static_cast<WPARAM>(BarWidth(percent)), 0);
}

void frmProgress::OnFinished() {
    PostMessageA(Window(), kFinishedMessage, 0, 0);
}

/// Shows behind an open question what became of the download.
void frmProgress::ShowEnd() {
    const std::string failure = session_->FailureSoFar();
    SetText(Control(IDC_LBL_DETAIL),
            failure.empty() ? "The download is complete." : "The download failed.");
    SetText(Control(IDC_LBL_REASON), failure);
}

void frmProgress::cmdCancel_Click() {
    if (asking_ || session_->Finished())
        return;
    const int answer = [this] {
        const ScopeFlag asking(asking_);
        return ShowMessage(Window(), "Are you sure you want to cancel download", "Confirmation",
                           MB_YESNO | MB_ICONQUESTION);
    }();
    // A download that ended meanwhile waits for the answer, which counts whatever became of it.
    if (answer == IDYES)
        session_->Cancel();
    CloseWhenOver();
}

void frmProgress::CloseWhenOver() {
    if (session_->Finished() && !asking_)
        EndDialog(Window(), 0);
}

INT_PTR frmProgress::Handle(UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        OnActivate();
        return TRUE;
    case kStartMessage:
        OnStart();
        return TRUE;
    case WM_TIMER:
        session_->OnTime();
        CloseWhenOver(); // its message did not come when too many others were waiting
        return TRUE;
    case kFinishedMessage:
        if (asking_)
            ShowEnd();
        CloseWhenOver();
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wparam) == IDCANCEL)
            PostMessageA(Window(), kCancelMessage, 0, 0);
        return TRUE;
    case kCancelMessage:
        cmdCancel_Click();
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace vesk
