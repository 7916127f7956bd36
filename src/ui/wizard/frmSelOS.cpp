#include "ui/wizard/frmSelOS.h"

#include "base/ScopeFlag.h"
#include "ui/kit/modWindow.h"
#include "ui/resources/ids.h"

#include <cstddef>
#include <string>

namespace vesk {

namespace {

constexpr UINT kScanMessage = WM_APP;
constexpr const char* kNothingYet = "Nothing found yet.";

} // namespace

frmSelOS::frmSelOS(SourceState& source) : scan_(*this, source) {}

std::optional<FoundSource> frmSelOS::Choose(HWND owner) {
    RunModal(owner, IDD_SELOS);
    return chosen_;
}

void frmSelOS::OnCreated() {
    SetWindowIcon(Window());
    CenterWindow(Window());
    list_.Attach(Control(IDC_LST_FOUND), {.titles = {"Directory", "Product Name"},
                                          .count = [this] { return found_.size(); },
                                          .cell =
                                              [this](std::size_t line, int column) {
                                                  const FoundSource& found = found_[line];
                                                  return column == 0 ? found.rootFolder
                                                                     : found.productName + " " +
                                                                           found.servicePackTag;
                                              },
                                          .whenEmpty = kNothingYet});
    layout_.Attach(Window());
    layout_.Add(list_.Window(), clsLayout::kGrowX | clsLayout::kGrowY);
    layout_.Follow(clsLayout::kGrowX | clsLayout::kMoveY, {IDC_LABEL1});
    layout_.Follow(clsLayout::kMoveY, {IDC_CMD_STOP});
    layout_.Follow(clsLayout::kMoveX | clsLayout::kMoveY, {IDC_CMD_SELECT, IDCANCEL});
    PostMessageA(Window(), kScanMessage, 0, 0);
}

void frmSelOS::Scan() {
    if (scanning_)
        return; // the scan before has not noticed yet that it was stopped: it restarts itself
    {
        const ScopeFlag scanning(scanning_);
        do {
            found_.clear();
            ShowScanning();
            restart_ = false;
            scan_.Run(SearchableDrives(GetLogicalDrives()));
        } while (restart_ && !closed_);
    }
    if (!closed_)
        ShowResult();
}

void frmSelOS::ShowScanning() {
    list_.Refresh();
    EnableWindow(Control(IDC_CMD_STOP), TRUE);
    EnableWindow(Control(IDC_CMD_SELECT), FALSE);
}

/// The first find is ready to be taken. The first button keeps its caption: after a scan that ran
/// to its end it says "Stop" until it is clicked, and then "Start".
void frmSelOS::ShowResult() {
    list_.SetNote("No Windows installation files were found.");
    list_.Refresh();
    SetText(Control(IDC_LABEL1), "");
    if (found_.empty())
        return;
    EnableWindow(Control(IDC_CMD_SELECT), TRUE);
    SendMessageA(Window(), DM_SETDEFID, IDC_CMD_SELECT, 0);
    if (list_.Selected() == clsReportList::kNone)
        list_.Select(0);
    SetFocus(list_.Window());
}

void frmSelOS::StopOrStart() {
    if (!scan_.IsStopped()) {
        SetText(Control(IDC_CMD_STOP), "&Start");
        scan_.Stop();
        return;
    }
    SetText(Control(IDC_CMD_STOP), "&Stop");
    SendMessageA(Window(), DM_SETDEFID, IDC_CMD_STOP, 0);
    list_.SetNote(kNothingYet);
    restart_ = true;
    Scan();
}

/// Also when the wizard below is closed meanwhile: the scan then ends, and with it the program.
void frmSelOS::Close(INT_PTR result) {
    closed_ = true;
    scan_.Stop();
    EndDialog(Window(), result);
}

void frmSelOS::Select() {
    const int line = list_.Selected();
    if (line == clsReportList::kNone)
        return;
    chosen_ = found_.at(static_cast<std::size_t>(line));
    Close(IDOK);
}

void frmSelOS::OnCommand(int id) {
    switch (id) {
    case IDC_CMD_STOP:
        StopOrStart();
        break;
    case IDC_CMD_SELECT:
        Select();
        break;
    case IDCANCEL:
        Close(IDCANCEL);
        break;
    default:
        break;
    }
}

void frmSelOS::OnFolder(const std::string& folder) {
    SetText(Control(IDC_LABEL1), folder);
}

void frmSelOS::OnFound(const FoundSource& found) {
    found_.push_back(found);
    list_.Refresh();
}

void frmSelOS::OnEntryDone() {
    RunPendingEvents();
}

INT_PTR frmSelOS::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_INITDIALOG:
        OnCreated();
        return TRUE;
    case kScanMessage:
        Scan();
        return TRUE;
    case WM_COMMAND:
        OnCommand(LOWORD(wparam));
        return TRUE;
    case WM_DESTROY:
        Close(IDCANCEL);
        return TRUE;
    case WM_NOTIFY: {
        const auto& header = *reinterpret_cast<const NMHDR*>(lparam);
        if (!list_.HandleNotify(header) && header.idFrom == IDC_LST_FOUND &&
            header.code == NM_DBLCLK && IsWindowEnabled(Control(IDC_CMD_SELECT)))
            Select();
        return FALSE;
    }
    default:
        if (!layout_.Handle(message, lparam))
            return FALSE;
        list_.FitColumns();
        return TRUE;
    }
}

} // namespace vesk
